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

#include <cstring>
#include <limits>

namespace tidewick {

FileBytes readSessionBytes(const QString& fileName) {
    QFile file;
#ifdef Q_OS_UNIX
    // Opened by the name's own bytes, without waiting for a writer; what was opened is then
    // asked whether it is an ordinary file, so nothing can swap it in between.
    const int fd = ::open(encodeFileName(fileName).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        return {{},
                errno == ENOENT ? QStringLiteral("The file does not exist.")
                                : QString::fromLocal8Bit(std::strerror(errno))};
    }
    struct stat info {};
    if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        ::close(fd);
        // A pipe would block the read and a device such as /dev/zero would never end it.
        return {{}, QStringLiteral("It is not an ordinary file.")};
    }
    if (!file.open(fd, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(fd);
        return {{}, file.errorString()};
    }
#else
    if (!QFileInfo(fileName).isFile()) {
        return {{}, QStringLiteral("It is not an ordinary file.")};
    }
    file.setFileName(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        return {{}, file.errorString()};
    }
#endif
    if (file.size() > qint64(std::numeric_limits<qint32>::max()) - 1024) {
        // Session positions are 32-bit; no real session comes near this.
        return {{}, QStringLiteral("The file is larger than 2 GB.")};
    }
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        return {{}, file.errorString()};
    }
    return {std::move(bytes), {}};
}

qsizetype LineReader::nextOf(char c, qsizetype& cached) const {
    if (cached < pos_) {
        const auto* hit = static_cast<const char*>(
            std::memchr(bytes_.data() + pos_, c, size_t(bytes_.size() - pos_)));
        cached = hit == nullptr ? bytes_.size() : hit - bytes_.data();
    }
    return cached;
}

QByteArrayView LineReader::next() {
    const qsizetype size = bytes_.size();
    const qsizetype begin = pos_;
    if (begin >= size) {
        return {};
    }
    qsizetype end = nextOf('\r', nextCr_);
    if (lineFeedEndsLine_) {
        end = qMin(end, nextOf('\n', nextLf_));
    }
    pos_ = end;
    if (pos_ < size) {
        const char* data = bytes_.data();
        ++pos_;  // the CR or LF itself
        if (data[end] == '\r' && pos_ < size && data[pos_] == '\n') {
            ++pos_;
        }
    }
    return bytes_.sliced(begin, end - begin);
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
    if (from < 0 || from > bytes.size()) {
        return -1;
    }
    const void* at = ::memmem(bytes.data() + from, size_t(bytes.size() - from), needle.data(),
                              size_t(needle.size()));
    return at == nullptr ? -1 : static_cast<const char*>(at) - bytes.data();
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

QByteArrayView startTagAt(QByteArrayView text, qsizetype at) {
    for (qsizetype next = at + 1; next < text.size(); ++next) {
        const char c = text[next];
        if (c == '>') {
            return text.sliced(at, next + 1 - at);
        }
        if (c == '"' || c == '\'') {
            next = text.indexOf(c, next + 1);
            if (next < 0) {
                break;
            }
        }
    }
    return {};
}

std::optional<QByteArray> tagAttribute(QByteArrayView tag, QByteArrayView name) {
    const auto skipSpace = [&tag](qsizetype at) {
        while (at < tag.size() && isXmlSpace(tag[at])) {
            ++at;
        }
        return at;
    };
    const auto endsName = [&tag](qsizetype at) {
        return tag[at] == '=' || tag[at] == '>' || tag[at] == '/' || isXmlSpace(tag[at]);
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
            return decodeXmlEscapes(tag.sliced(at + 1, close - at - 1));
        }
        at = close + 1;
    }
}

}  // namespace tidewick
