#include "audit/index_packing.h"

#include <QDataStream>
#include <QIODevice>
#include <QStringEncoder>
#include <QtNumeric>

#include <algorithm>
#include <optional>

#include "platform/file_system.h"
#include "text/path_text.h"

namespace tidewick {

namespace {

Error damaged() {
    return Error{0, QStringLiteral("the index holds damaged bytes")};
}

// `value`, when everything it was read from was there.
template <typename T>
Result<T> whole(const QDataStream& in, T value) {
    if (in.status() != QDataStream::Ok) {
        return damaged();
    }
    return value;
}

// Whether `path` can stand as a line of UTF-8: no line end, no NUL (which marks a line), and no
// lone surrogate (a byte of a file name that is no UTF-8, as decodeFileName gives it).
bool isUtf8Line(QStringView path) {
    // Nearly every path holds none: one pass without branches tells.
    unsigned unusual = 0;
    for (const QChar c : path) {
        unusual |= unsigned(c.unicode() == u'\n') | unsigned(c.unicode() == 0) |
                   unsigned((c.unicode() & 0xF800) == 0xD800);
    }
    if (unusual == 0) {
        return true;
    }
    for (qsizetype at = 0; at < path.size(); ++at) {
        if (path[at] == u'\n' || path[at].unicode() == 0) {
            return false;
        }
        if (path[at].isHighSurrogate() && at + 1 < path.size() && path[at + 1].isLowSurrogate()) {
            ++at;
        } else if (path[at].isSurrogate()) {
            return false;
        }
    }
    return true;
}

// Numbers as a run of bytes, seven bits a byte, least significant first, the top bit set in
// every byte but a number's last: most of the index's numbers are small.
void appendNumber(QByteArray& run, quint64 number) {
    while (number >= 0x80) {
        run += char(0x80 | (number & 0x7F));
        number >>= 7;
    }
    run += char(number);
}

// The number at `at` in `run` (appendNumber), `at` moved past it; none when the run ends first
// or the number would not fit.
std::optional<quint64> takeNumber(QByteArrayView run, qsizetype& at) {
    quint64 number = 0;
    for (int shift = 0; at < run.size() && shift < 64; shift += 7) {
        const auto byte = quint8(run[at++]);
        if (shift == 63 && byte > 1) {
            return std::nullopt;
        }
        number |= quint64(byte & 0x7F) << shift;
        if ((byte & 0x80) == 0) {
            return number;
        }
    }
    return std::nullopt;
}

// A size as a number of the run: folded so that one told as unknown (-1) is small too, and
// unfolded again (zigzag).
quint64 foldedSize(qint64 size) {
    return (quint64(size) << 1) ^ quint64(size >> 63);
}
qint64 unfoldedSize(quint64 folded) {
    return qint64((folded >> 1) ^ (0 - (folded & 1)));
}

// Texts as lines of UTF-8, each ended by a line end, one after another. Each line holds only what
// follows the bytes it shares with the line before, whose count goes into a run of its own
// (`shared`, appendNumber): a session's paths, and a folder's names, share most of theirs with
// the one before. A text that is no line of UTF-8 goes after two NULs, as its file name's bytes
// (encodeFileName) in URL escapes.
class TextLines {
public:
    explicit TextLines(qsizetype count) {
        bytes_.reserve(count * 12);
        shared_.reserve(count);
    }

    /// `marked`: the line begins with one NUL, which no line of a text begins with.
    void append(QStringView text, bool marked = false) {
        line_.clear();
        if (!isUtf8Line(text)) {
            line_ += QByteArrayView("\0\0", 2);
            line_ += encodeFileName(text.toString()).toPercentEncoding();
        } else {
            if (marked) {
                line_ += '\0';
            }
            const qsizetype at = line_.size();
            line_.resize(at + utf8_.requiredSpace(text.size()));
            line_.resize(utf8_.appendToBuffer(line_.data() + at, text) - line_.constData());
        }
        const qsizetype kept =
            std::mismatch(line_.cbegin(), line_.cend(), last_.cbegin(), last_.cend()).first -
            line_.cbegin();
        appendNumber(shared_, quint64(kept));
        bytes_ += QByteArrayView(line_).sliced(kept);
        bytes_ += '\n';
        line_.swap(last_);
    }
    const QByteArray& bytes() const { return bytes_; }
    const QByteArray& shared() const { return shared_; }

private:
    QByteArray bytes_, shared_;
    QByteArray last_, line_;  // the line before, and the one being made
    QStringEncoder utf8_{QStringEncoder::Utf8};
};

// The text of one line of TextLines, marked or not.
QString textOf(QByteArrayView line) {
    if (line.startsWith(QByteArrayView("\0\0", 2))) {
        return decodeFileName(QByteArray::fromPercentEncoding(line.sliced(2).toByteArray()));
    }
    return QString::fromUtf8(line.startsWith('\0') ? line.sliced(1) : line);
}

// Gives `take` each whole line of `lines` (TextLines, with its run `shared`; whole lines where an
// earlier index wrote none), without its line end, as a view that lasts until the next. False
// when the bytes do not come out whole: a line without its end, more bytes shared than the line
// before holds, numbers missing or left over.
template <typename Take>
bool forEachLine(const QByteArray& lines, const QByteArray* shared, const Take& take) {
    QByteArray line;
    qsizetype at = 0;
    for (qsizetype from = 0; from < lines.size();) {
        const qsizetype end = lines.indexOf('\n', from);
        const std::optional<quint64> kept = shared ? takeNumber(*shared, at) : quint64(0);
        if (end < 0 || !kept || *kept > quint64(line.size())) {
            return false;
        }
        line.truncate(qsizetype(*kept));
        line += QByteArrayView(lines).sliced(from, end - from);
        take(QByteArrayView(line));
        from = end + 1;
    }
    return !shared || at == shared->size();
}

// A list as QDataStream writes it, a 32-bit count and the items, read without believing the
// count: QDataStream's own reading makes room for that many items before it reads one, so a
// damaged count would ask for gigabytes.
template <typename T>
QList<T> readList(QDataStream& in) {
    quint32 count = 0;
    in >> count;
    QList<T> items;
    for (quint32 i = 0; i < count && in.status() == QDataStream::Ok; ++i) {
        T item;
        in >> item;
        items.append(std::move(item));
    }
    return items;
}
// What follows a read's record path lines: nothing, a message of an earlier index (whose read is
// made again), or a problem.
constexpr qint8 kNoProblem = 0;
constexpr qint8 kProblem = 2;
constexpr quint8 kPatternBit = 0x80;
// Beside a read's outcome: its paths follow as TextLines (an earlier index wrote a list), and
// their run of shared bytes after them (an earlier index wrote whole lines).
constexpr qint32 kPathLines = 0x100;
constexpr qint32 kPathsShared = 0x200;

}  // namespace

// What the disk said about a record path is asked again whenever a read is used
// (SessionCache), so it is not kept; nor are a binary session's records, which only its paths
// are read for. A kind's own part comes back where it holds anything.
QByteArray packRead(const SessionRead& read) {
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setVersion(QDataStream::Qt_6_4);
    const SesFacts ses = read.ses.value_or(SesFacts());
    const QList<RecordPathLine> lines =
        read.reaper ? read.reaper->recordPaths : QList<RecordPathLine>();
    TextLines paths(read.paths.size());
    for (const QString& path : read.paths) {
        paths.append(path);
    }
    out << (qint32(read.outcome) | kPathLines | kPathsShared) << paths.bytes() << paths.shared()
        << ses.version << ses.versionFound << qint32(lines.size());
    for (const RecordPathLine& line : lines) {
        out << line.hasValue << line.value;
    }
    out << (read.problem ? kProblem : kNoProblem);
    if (read.problem) {
        out << qint32(read.problem->failure) << qint32(read.problem->kind)
            << qint32(read.problem->severity) << read.problem->detail << read.problem->file;
    }
    // A project kind's references, without which its read would keep nothing.
    out << quint32(read.references.size());
    for (const FileReference& reference : read.references) {
        // A pattern's reference is marked in the base's top bit.
        out << quint8(quint8(reference.base) | (reference.pattern ? kPatternBit : 0))
            << reference.relative << reference.absolute;
    }
    return bytes;
}

Result<SessionRead> unpackRead(const QByteArray& bytes) {
    QDataStream in(bytes);
    in.setVersion(QDataStream::Qt_6_4);
    SessionRead read;
    SesFacts ses;
    qint32 outcome = 0, lines = 0;
    in >> outcome;
    if (outcome & kPathLines) {
        QByteArray paths, shared;
        in >> paths;
        if (outcome & kPathsShared) {
            in >> shared;
        }
        const QByteArray* run = (outcome & kPathsShared) ? &shared : nullptr;
        outcome &= ~(kPathLines | kPathsShared);
        qsizetype count = 0, size = 0;
        bool escaped = false;
        if (!forEachLine(paths, run, [&](QByteArrayView line) {
                escaped = escaped || line.startsWith('\0');
                ++count;
                size += line.size();
            })) {
            return damaged();
        }
        // Paths that are all lines of UTF-8, nearly every read's, stay so until asked for.
        if (!escaped) {
            read.paths.reserveBlock(count, size);
            forEachLine(paths, run, [&](QByteArrayView line) { read.paths.appendUtf8(line); });
        } else {
            QStringList texts;
            forEachLine(paths, run, [&](QByteArrayView line) { texts.append(textOf(line)); });
            read.paths = texts;
        }
    } else {
        read.paths = readList<QString>(in);
    }
    in >> ses.version >> ses.versionFound >> lines;
    if (in.status() != QDataStream::Ok || outcome < 0 || outcome > 2 || lines < 0 ||
        lines > bytes.size()) {
        return damaged();
    }
    read.outcome = ReaderOutcome(outcome);
    if (ses.versionFound || !ses.version.isEmpty()) {
        read.ses = ses;
    }
    QList<RecordPathLine> recordPaths;
    for (qint32 i = 0; i < lines && in.status() == QDataStream::Ok; ++i) {
        RecordPathLine line;
        in >> line.hasValue >> line.value;
        recordPaths.append(line);
    }
    if (!recordPaths.isEmpty()) {
        read.reaper = ReaperFacts{recordPaths};
    }
    qint8 told = kNoProblem;
    in >> told;
    if (told == kProblem) {
        qint32 failure = 0, kind = 0, severity = 0;
        ReadProblem problem;
        in >> failure >> kind >> severity >> problem.detail >> problem.file;
        if (failure < 0 || failure > qint32(ReadFailure::Fault) || kind < 0 ||
            kind >= sessionKinds().size() || severity < 0 ||
            severity > qint32(ReadSeverity::Error)) {
            return damaged();
        }
        problem.failure = ReadFailure(failure);
        problem.kind = SessionKindId(kind);
        problem.severity = ReadSeverity(severity);
        read.problem = problem;
    } else if (told != kNoProblem) {
        return damaged();
    }
    quint32 references = 0;
    in >> references;
    for (quint32 i = 0; i < references && in.status() == QDataStream::Ok; ++i) {
        quint8 base = 0;
        FileReference reference;
        in >> base >> reference.relative;
        reference.absolute = readList<QString>(in);
        reference.pattern = (base & kPatternBit) != 0;
        base &= quint8(~kPatternBit);
        if (base > quint8(FileReference::Base::Interchange)) {
            return damaged();
        }
        reference.base = FileReference::Base(base);
        read.references.append(std::move(reference));
    }
    return whole(in, std::move(read));
}

QByteArray packReport(const FolderReport& report) {
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setVersion(QDataStream::Qt_6_4);
    out << report.folder << qint32(report.sessions.size());
    for (const auto& [kind, names] : report.sessions) {
        out << qint32(kind) << names;
    }
    out << qint64(report.used) << qint32(report.missing.size());
    for (const MissingMedia& missing : report.missing) {
        out << missing.text << missing.path << missing.sessions;
    }
    // Thousands of names a folder, each from the folder on, a line each (TextLines); a whole
    // path (of a file elsewhere) marked. Their sizes follow as a run of numbers (foldedSize).
    TextLines names(report.reclaimable.size());
    QByteArray sizes;
    sizes.reserve(report.reclaimable.size() * 4);
    for (const auto& [text, bytes] : report.reclaimable) {
        names.append(text, isHostRooted(text));
        appendNumber(sizes, foldedSize(bytes));
    }
    out << names.bytes() << names.shared() << sizes << report.stopped << report.reason;
    return bytes;
}

Result<FolderReport> unpackReport(const QByteArray& bytes) {
    QDataStream in(bytes);
    in.setVersion(QDataStream::Qt_6_4);
    FolderReport report;
    qint32 count = 0;
    in >> report.folder >> count;
    for (qint32 i = 0; i < count && in.status() == QDataStream::Ok; ++i) {
        qint32 kind = 0;
        in >> kind;
        const QStringList names = readList<QString>(in);
        if (kind < 0 || kind >= sessionKinds().size()) {
            return damaged();
        }
        report.sessions.append({SessionKindId(kind), names});
    }
    qint64 used = 0;
    in >> used >> count;
    report.used = used;
    for (qint32 i = 0; i < count && in.status() == QDataStream::Ok; ++i) {
        MissingMedia missing;
        in >> missing.text >> missing.path;
        missing.sessions = readList<QString>(in);
        report.missing.append(missing);
    }
    QByteArray names, shared, sizes;
    in >> names >> shared >> sizes >> report.stopped >> report.reason;
    if (in.status() != QDataStream::Ok) {
        return damaged();
    }
    qsizetype at = 0;
    bool sized = true;
    const bool whole = forEachLine(names, &shared, [&](QByteArrayView name) {
        const std::optional<quint64> folded = takeNumber(sizes, at);
        const qint64 size = folded ? unfoldedSize(*folded) : 0;
        sized = sized && folded &&
                !qAddOverflow(report.reclaimableBytes, size, &report.reclaimableBytes);
        if (sized) {
            report.reclaimable.append({textOf(name), size});
        }
    });
    if (!whole || !sized || at != sizes.size()) {
        return damaged();
    }
    return report;
}

}  // namespace tidewick
