#include "readers/session_bytes.h"

#include "platform/file_system.h"
#include "readers/session_text.h"

#include <QFile>
#include <QFileInfo>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#endif

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <limits>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace tidewick {

namespace {

// Opens `fileName` into `file` for reading as a session: an ordinary file of at most 2 GB. The
// reason when it cannot be, empty when open.
QString openSessionFile(const QString& fileName, QFile& file) {
#ifdef Q_OS_UNIX
    // Opened by the name's own bytes, without waiting for a writer; what was opened is then
    // asked whether it is an ordinary file, so nothing can swap it in between.
    const int fd = ::open(encodeFileName(fileName).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        return errno == ENOENT ? QStringLiteral("The file does not exist.")
                               : QString::fromLocal8Bit(std::strerror(errno));
    }
    struct stat info {};
    if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        ::close(fd);
        // A pipe would block the read and a device such as /dev/zero would never end it.
        return QStringLiteral("It is not an ordinary file.");
    }
    if (!file.open(fd, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(fd);
        return file.errorString();
    }
#else
    if (!QFileInfo(fileName).isFile()) {
        return QStringLiteral("It is not an ordinary file.");
    }
    file.setFileName(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        return file.errorString();
    }
#endif
    if (file.size() > qint64(std::numeric_limits<qint32>::max()) - 1024) {
        // Session positions are 32-bit; no real session comes near this.
        return QStringLiteral("The file is larger than 2 GB.");
    }
    return {};
}

}  // namespace

QString readSessionBytes(const QString& fileName, QByteArray& bytes) {
    QFile file;
    if (QString error = openSessionFile(fileName, file); !error.isEmpty()) {
        return error;
    }
    bytes.resize(file.size());
    const qint64 read = file.read(bytes.data(), bytes.size());
    if (read < 0) {
        return file.errorString();
    }
    bytes.resize(read);                // the file was cut while being read
    if (!file.atEnd() || read == 0) {  // it grew, or its size is not told (as in /proc)
        bytes += file.readAll();
    }
    if (file.error() != QFileDevice::NoError) {
        return file.errorString();
    }
    return {};
}

QString readSessionPieces(const QString& fileName, qsizetype pieceSize,
                          const std::function<qsizetype(const QByteArray&, bool)>& take) {
    QFile file;
    if (QString error = openSessionFile(fileName, file); !error.isEmpty()) {
        return error;
    }
    QByteArray bytes;
    qsizetype taken = 0;
    for (;;) {
        // The next piece goes after the bytes not taken yet: in the same buffer, unless `take`
        // kept a copy of it (which shares its bytes). While they are one piece of text not yet
        // whole, the room doubles.
        const qsizetype held = bytes.size() - taken;
        const qsizetype room = std::max(pieceSize, held);
        if (bytes.isDetached() && bytes.capacity() >= held + room) {
            std::memmove(bytes.data(), bytes.constData() + taken, size_t(held));
            bytes.resize(held + room);
        } else {
            QByteArray next(held + room, Qt::Uninitialized);
            std::memcpy(next.data(), bytes.constData() + taken, size_t(held));
            bytes = std::move(next);
        }
        const qint64 got = file.read(bytes.data() + held, room);
        if (got < 0) {
            return file.errorString();
        }
        bytes.resize(held + got);
        const bool atEnd = got == 0 || file.atEnd();
        taken = take(bytes, atEnd);
        if (taken < 0 || atEnd) {
            return {};
        }
    }
}

qsizetype LineReader::lineEndFrom(qsizetype from) const {
    const char* data = bytes_.data();
    const qsizetype size = bytes_.size();
    const char lineFeed = lineFeedEndsLine_ ? '\n' : '\r';
#ifdef __SSE2__
    const __m128i cr = _mm_set1_epi8('\r');
    const __m128i lf = _mm_set1_epi8(lineFeed);
    for (; from + 16 <= size; from += 16) {
        const __m128i chunk = _mm_loadu_si128(reinterpret_cast<const __m128i*>(data + from));
        const auto hits = unsigned(
            _mm_movemask_epi8(_mm_or_si128(_mm_cmpeq_epi8(chunk, cr), _mm_cmpeq_epi8(chunk, lf))));
        if (hits != 0) {
            return from + std::countr_zero(hits);
        }
    }
#endif
    for (; from < size; ++from) {
        if (data[from] == '\r' || data[from] == lineFeed) {
            return from;
        }
    }
    return size;
}

qsizetype LineReader::pastLineEnd(qsizetype end) const {
    if (end >= bytes_.size()) {
        return bytes_.size();
    }
    const qsizetype next = end + 1;  // past the CR or LF itself
    return bytes_[end] == '\r' && next < bytes_.size() && bytes_[next] == '\n' ? next + 1 : next;
}

QByteArrayView LineReader::next() {
    const qsizetype begin = pos_;
    if (begin >= bytes_.size()) {
        return {};
    }
    const qsizetype end = lineEndFrom(begin);
    pos_ = pastLineEnd(end);
    return bytes_.sliced(begin, end - begin);
}

qsizetype LineReader::lineStartAt(qsizetype hit) const {
    const char* data = bytes_.data();
    qsizetype start = hit;
    while (start > pos_ && (data[start - 1] == ' ' || data[start - 1] == '\t')) {
        --start;
    }
    const bool afterLineEnd =
        start == pos_ || data[start - 1] == '\r' ||
        (data[start - 1] == '\n' &&
         (lineFeedEndsLine_ || (start - 2 >= pos_ && data[start - 2] == '\r')));
    return afterLineEnd ? start : -1;
}

void LineReader::skipLinesNotBeginningWith(QByteArrayView firsts) {
    Q_ASSERT(!firsts.isEmpty() && firsts.size() <= 4);
    const char* data = bytes_.data();
    const qsizetype size = bytes_.size();
    // A line's first character is one of `firsts` with nothing but blanks and tabs before it
    // back to a line end, or back to where this reader stands, which is a line's start. Each
    // such character is looked for sixteen bytes at a time, and every one found is tested.
    qsizetype from = pos_;
#ifdef __SSE2__
    __m128i wanted[4];
    for (qsizetype i = 0; i < 4; ++i) {
        wanted[i] = _mm_set1_epi8(firsts[std::min(i, firsts.size() - 1)]);
    }
    for (; from + 16 <= size; from += 16) {
        const __m128i chunk = _mm_loadu_si128(reinterpret_cast<const __m128i*>(data + from));
        const __m128i hits = _mm_or_si128(
            _mm_or_si128(_mm_cmpeq_epi8(chunk, wanted[0]), _mm_cmpeq_epi8(chunk, wanted[1])),
            _mm_or_si128(_mm_cmpeq_epi8(chunk, wanted[2]), _mm_cmpeq_epi8(chunk, wanted[3])));
        for (auto mask = unsigned(_mm_movemask_epi8(hits)); mask != 0; mask &= mask - 1) {
            if (const qsizetype start = lineStartAt(from + std::countr_zero(mask)); start >= 0) {
                pos_ = start;
                return;
            }
        }
    }
#endif
    for (; from < size; ++from) {
        if (std::find(firsts.begin(), firsts.end(), data[from]) != firsts.end()) {
            if (const qsizetype start = lineStartAt(from); start >= 0) {
                pos_ = start;
                return;
            }
        }
    }
    pos_ = size;
}

QByteArrayView trimmedLine(QByteArrayView line) {
    qsizetype begin = 0;
    qsizetype end = line.size();
    while (begin < end && line[begin] == ' ') {
        ++begin;
    }
    while (end > begin && line[end - 1] == ' ') {
        --end;
    }
    return line.sliced(begin, end - begin);
}

QByteArrayView trimmedOfBlanksAndTabs(QByteArrayView line) {
    qsizetype begin = 0;
    qsizetype end = line.size();
    auto blank = [](char c) { return c == ' ' || c == '\t'; };
    while (begin < end && blank(line[begin])) {
        ++begin;
    }
    while (end > begin && blank(line[end - 1])) {
        --end;
    }
    return line.sliced(begin, end - begin);
}

QByteArray cleanedLine(QByteArrayView line) {
    QByteArray out = trimmedOfBlanksAndTabs(line).toByteArray();
    out.replace('\t', ' ');
    return out;
}

QString quotedLine(QByteArrayView line) {
    constexpr qsizetype kMaxCharacters = 1024;
    // Four bytes hold any character; the cut backs off to the start of one.
    qsizetype end = qMin(line.size(), 4 * kMaxCharacters);
    while (end < line.size() && end > 0 && (static_cast<unsigned char>(line[end]) & 0xC0) == 0x80) {
        --end;
    }
    return decodeSessionText(cleanedLine(line.first(end))).left(kMaxCharacters);
}

}  // namespace tidewick

namespace tidewick {

namespace {

// The UTF-8 bytes of a code point; none for one that no text may hold.
std::optional<QByteArray> utf8Of(char32_t code) {
    if (code == 0 || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) {
        return std::nullopt;
    }
    return QString::fromUcs4(&code, 1).toUtf8();
}

// The code point of a numeric escape's digits ("38", "x26"); none for anything else.
std::optional<char32_t> numericEscape(QByteArrayView digits) {
    const bool hex = digits.startsWith("x") || digits.startsWith("X");
    if (hex) {
        digits = digits.sliced(1);
    }
    if (digits.isEmpty() || digits.size() > 8) {
        return std::nullopt;
    }
    char32_t code = 0;
    for (const char c : digits) {
        const int digit = c >= '0' && c <= '9'          ? c - '0'
                          : hex && c >= 'a' && c <= 'f' ? c - 'a' + 10
                          : hex && c >= 'A' && c <= 'F' ? c - 'A' + 10
                                                        : -1;
        if (digit < 0) {
            return std::nullopt;
        }
        code = code * (hex ? 16 : 10) + char32_t(digit);
    }
    return code;
}

}  // namespace

QByteArray decodeXmlEscapes(QByteArrayView text) {
    static const std::pair<QByteArrayView, char> kNamed[] = {
        {"amp", '&'}, {"apos", '\''}, {"quot", '"'}, {"lt", '<'}, {"gt", '>'}};
    QByteArray out;
    out.reserve(text.size());
    qsizetype at = 0;
    while (at < text.size()) {
        const qsizetype amp = text.indexOf('&', at);
        if (amp < 0) {
            out.append(text.sliced(at));
            break;
        }
        out.append(text.sliced(at, amp - at));
        const qsizetype semicolon = text.indexOf(';', amp + 1);
        // The longest escape is "&#x10FFFF;"; anything longer is no escape.
        const QByteArrayView name = semicolon > amp && semicolon - amp <= 10
                                        ? text.sliced(amp + 1, semicolon - amp - 1)
                                        : QByteArrayView();
        std::optional<QByteArray> decoded;
        if (name.startsWith("#")) {
            if (const std::optional<char32_t> code = numericEscape(name.sliced(1))) {
                decoded = utf8Of(*code);
            }
        } else {
            for (const auto& [escape, character] : kNamed) {
                if (name == escape) {
                    decoded = QByteArray(1, character);
                }
            }
        }
        if (decoded) {
            out.append(*decoded);
            at = semicolon + 1;
        } else {
            out.append('&');
            at = amp + 1;
        }
    }
    return out;
}

qsizetype findBytes(QByteArrayView bytes, QByteArrayView needle, qsizetype from) {
    if (from < 0 || bytes.size() - from < needle.size() || needle.isEmpty()) {
        return -1;  // also an empty text, which may have no bytes at all to point at
    }
    const char* data = bytes.data();
#ifdef __SSE2__
    // A place where the needle's first and last bytes both stand, sixteen places a step, is then
    // compared whole: few places pass both, where memmem weighs every one.
    const qsizetype last = needle.size() - 1;
    if (last > 0) {
        const __m128i first = _mm_set1_epi8(needle[0]);
        const __m128i final = _mm_set1_epi8(needle[last]);
        for (; from + last + 16 <= bytes.size(); from += 16) {
            const auto* at = reinterpret_cast<const __m128i*>(data + from);
            const auto* atLast = reinterpret_cast<const __m128i*>(data + from + last);
            const __m128i both = _mm_and_si128(_mm_cmpeq_epi8(_mm_loadu_si128(at), first),
                                               _mm_cmpeq_epi8(_mm_loadu_si128(atLast), final));
            for (auto mask = unsigned(_mm_movemask_epi8(both)); mask != 0; mask &= mask - 1) {
                const qsizetype hit = from + std::countr_zero(mask);
                if (std::memcmp(data + hit + 1, needle.data() + 1, size_t(last - 1)) == 0) {
                    return hit;
                }
            }
        }
        if (bytes.size() - from < needle.size()) {
            return -1;
        }
    }
#endif
    const void* at =
        ::memmem(data + from, size_t(bytes.size() - from), needle.data(), size_t(needle.size()));
    return at == nullptr ? -1 : static_cast<const char*>(at) - data;
}

bool endsWithClosing(QByteArrayView bytes, QByteArrayView closing) {
    qsizetype end = bytes.size();
    while (end > 0 && (bytes[end - 1] == ' ' || bytes[end - 1] == '\t' || bytes[end - 1] == '\r' ||
                       bytes[end - 1] == '\n' || bytes[end - 1] == '\0')) {
        --end;
    }
    return bytes.first(end).endsWith(closing);
}

namespace {

bool isXmlSpace(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

}  // namespace

qsizetype rootElementStart(QByteArrayView text) {
    qsizetype at = text.startsWith("\xEF\xBB\xBF") ? 3 : 0;
    for (;;) {
        while (at < text.size() && isXmlSpace(text[at])) {
            ++at;
        }
        if (at + 1 >= text.size() || text[at] != '<') {
            return -1;
        }
        if (text[at + 1] != '?' && text[at + 1] != '!') {
            return at;
        }
        // A declaration, a comment or a document type before the root.
        const qsizetype end =
            text.sliced(at).startsWith("<!--") ? findBytes(text, "-->", at) : text.indexOf('>', at);
        if (end < 0) {
            return -1;
        }
        at = end + 1;
    }
}

bool startsElement(QByteArrayView text, QByteArrayView name) {
    const qsizetype after = name.size() + 1;
    return text.size() > after && text[0] == '<' && text.sliced(1).startsWith(name) &&
           (text[after] == '>' || text[after] == '/' || isXmlSpace(text[after]));
}

namespace {

// Where the first of `a`, `b` and `c` stands in `data` from `from` up to `size`, or `size`:
// sixteen bytes a step where the processor compares them at once.
qsizetype firstOf(const char* data, qsizetype from, qsizetype size, char a, char b, char c) {
#ifdef __SSE2__
    const __m128i wantA = _mm_set1_epi8(a);
    const __m128i wantB = _mm_set1_epi8(b);
    const __m128i wantC = _mm_set1_epi8(c);
    for (; from + 16 <= size; from += 16) {
        const __m128i chunk = _mm_loadu_si128(reinterpret_cast<const __m128i*>(data + from));
        const __m128i hits =
            _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(chunk, wantA), _mm_cmpeq_epi8(chunk, wantB)),
                         _mm_cmpeq_epi8(chunk, wantC));
        if (const auto mask = unsigned(_mm_movemask_epi8(hits)); mask != 0) {
            return from + std::countr_zero(mask);
        }
    }
#endif
    while (from < size && data[from] != a && data[from] != b && data[from] != c) {
        ++from;
    }
    return from;
}

// 1 when an odd number of the bits of `bits` (sixteen) are set.
unsigned oddCount(unsigned bits) {
    bits ^= bits >> 8;
    bits ^= bits >> 4;
    bits ^= bits >> 2;
    bits ^= bits >> 1;
    return bits & 1;
}

// The end of the start tag at `at`, walked a quoted value at a time.
QByteArrayView walkedStartTagAt(QByteArrayView text, qsizetype at) {
    const char* data = text.data();
    const qsizetype size = text.size();
    for (qsizetype next = at + 1;;) {
        next = firstOf(data, next, size, '>', '"', '\'');
        if (next == size) {
            return {};
        }
        if (data[next] == '>') {
            return text.sliced(at, next + 1 - at);
        }
        // A quoted value, passed over whole.
        const auto* end = static_cast<const char*>(
            std::memchr(data + next + 1, data[next], size_t(size - next - 1)));
        if (end == nullptr) {
            return {};
        }
        next = end - data + 1;
    }
}

}  // namespace

QByteArrayView startTagAt(QByteArrayView text, qsizetype at) {
#ifdef __SSE2__
    // Most tags quote their values in double quotes and hold no ">" in one: the first ">" ends
    // such a tag when an even number of double quotes stands before it. Others are walked.
    const char* data = text.data();
    const __m128i close = _mm_set1_epi8('>');
    const __m128i doubleQuote = _mm_set1_epi8('"');
    const __m128i singleQuote = _mm_set1_epi8('\'');
    unsigned quotes = 0;  // 1 while an odd number of double quotes stands before
    for (qsizetype from = at + 1; from + 16 <= text.size(); from += 16) {
        const __m128i chunk = _mm_loadu_si128(reinterpret_cast<const __m128i*>(data + from));
        const auto ends = unsigned(_mm_movemask_epi8(_mm_cmpeq_epi8(chunk, close)));
        const auto doubles = unsigned(_mm_movemask_epi8(_mm_cmpeq_epi8(chunk, doubleQuote)));
        const auto singles = unsigned(_mm_movemask_epi8(_mm_cmpeq_epi8(chunk, singleQuote)));
        const unsigned before = ends == 0 ? 0xFFFF : (ends & -ends) - 1;
        if ((singles & before) != 0) {
            break;
        }
        quotes ^= oddCount(doubles & before);
        if (ends != 0) {
            if (quotes != 0) {
                break;  // the ">" stands inside a value
            }
            return text.sliced(at, from + std::countr_zero(ends) + 1 - at);
        }
    }
#endif
    return walkedStartTagAt(text, at);
}

std::optional<QByteArrayView> tagAttributeText(QByteArrayView tag, QByteArrayView name) {
    const auto skipSpace = [&tag](qsizetype at) {
        while (at < tag.size() && isXmlSpace(tag[at])) {
            ++at;
        }
        return at;
    };
    // The bytes that end a name: "=", ">", "/" and XML's white space.
    static constexpr auto kNameEnds = [] {
        std::array<bool, 256> ends{};
        for (const unsigned char c : {'=', '>', '/', ' ', '\t', '\r', '\n'}) {
            ends[c] = true;
        }
        return ends;
    }();
    const auto endsName = [&tag](qsizetype at) {
        return kNameEnds[static_cast<unsigned char>(tag[at])];
    };
    qsizetype at = 1;  // past the "<"
    while (at < tag.size() && !endsName(at)) {
        ++at;  // the element's name
    }
    // Each attribute in turn: its name, "=", and its value in quotes.
    for (;;) {
        const qsizetype nameStart = at = skipSpace(at);
        while (at < tag.size() && !endsName(at)) {
            ++at;
        }
        const QByteArrayView attribute = tag.sliced(nameStart, at - nameStart);
        at = skipSpace(at);
        if (attribute.isEmpty() || at >= tag.size() || tag[at] != '=') {
            return std::nullopt;  // the tag's end, or no attribute as XML writes one
        }
        at = skipSpace(at + 1);
        if (at >= tag.size() || (tag[at] != '"' && tag[at] != '\'')) {
            return std::nullopt;
        }
        const qsizetype close = tag.indexOf(tag[at], at + 1);
        if (close < 0) {
            return std::nullopt;
        }
        if (attribute == name) {
            return tag.sliced(at + 1, close - at - 1);
        }
        at = close + 1;
    }
}

std::optional<QByteArray> tagAttribute(QByteArrayView tag, QByteArrayView name) {
    const std::optional<QByteArrayView> text = tagAttributeText(tag, name);
    return text ? std::optional(decodeXmlEscapes(*text)) : std::nullopt;
}

SessionRead failedSessionRead(SessionKindId kind, ReadFailure failure, const QString& detail) {
    SessionRead read;
    read.outcome =
        failure == ReadFailure::NotThisKind ? ReaderOutcome::Rejected : ReaderOutcome::Failed;
    read.problem = ReadProblem{failure, kind, ReadSeverity::Error, detail, {}};
    return read;
}

QString utf16LeText(QByteArrayView bytes) {
    QString text;
    for (qsizetype at = 0; at + 1 < bytes.size(); at += 2) {
        const char16_t unit = char16_t(quint8(bytes[at]) | quint8(bytes[at + 1]) << 8);
        if (unit == 0) {
            break;
        }
        text += QChar(unit);
    }
    return text;
}

}  // namespace tidewick
