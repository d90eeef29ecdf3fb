#include "audit/index_packing.h"

#include <QDataStream>
#include <QIODevice>
#include <QStringEncoder>
#include <QtEndian>

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

// Texts as lines of UTF-8, each ended by a line end, one after another. A text that is no line of
// UTF-8 goes after two NULs, as its file name's bytes (encodeFileName) in URL escapes.
class TextLines {
public:
    explicit TextLines(qsizetype count) { bytes_.reserve(count * 24); }

    /// `marked`: the line begins with one NUL, which no line of a text begins with.
    void append(QStringView text, bool marked = false) {
        if (!isUtf8Line(text)) {
            bytes_ +=
                QByteArray(2, '\0') + encodeFileName(text.toString()).toPercentEncoding() + '\n';
            return;
        }
        if (marked) {
            bytes_ += '\0';
        }
        appendUtf8(text);
    }
    const QByteArray& bytes() const { return bytes_; }

private:
    void appendUtf8(QStringView text) {
        const qsizetype at = bytes_.size();
        bytes_.resize(at + utf8_.requiredSpace(text.size()) + 1);
        char* end = utf8_.appendToBuffer(bytes_.data() + at, text);
        *end++ = '\n';
        bytes_.resize(end - bytes_.constData());
    }

    QByteArray bytes_;
    QStringEncoder utf8_{QStringEncoder::Utf8};
};

// The text of one line of TextLines, marked or not.
QString textOf(QByteArrayView line) {
    if (line.startsWith(QByteArrayView("\0\0", 2))) {
        return decodeFileName(QByteArray::fromPercentEncoding(line.sliced(2).toByteArray()));
    }
    return QString::fromUtf8(line.startsWith('\0') ? line.sliced(1) : line);
}

// Gives `take` each line of `lines` (TextLines), without its line end; false when the last has
// none.
template <typename Take>
bool forEachLine(const QByteArray& lines, const Take& take) {
    for (qsizetype from = 0; from < lines.size();) {
        const qsizetype end = lines.indexOf('\n', from);
        if (end < 0) {
            return false;
        }
        take(QByteArrayView(lines).sliced(from, end - from));
        from = end + 1;
    }
    return true;
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
// Beside a read's outcome: its paths follow as TextLines (an earlier index wrote a list).
constexpr qint32 kPathLines = 0x100;

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
    out << (qint32(read.outcome) | kPathLines) << paths.bytes() << ses.version << ses.versionFound
        << qint32(lines.size());
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
        outcome &= ~kPathLines;
        QByteArray paths;
        in >> paths;
        qsizetype count = 0;
        bool escaped = false;
        if (!forEachLine(paths, [&](QByteArrayView line) {
                escaped = escaped || line.startsWith('\0');
                ++count;
            })) {
            return damaged();
        }
        // Paths that are all lines of UTF-8, nearly every read's, stay so until asked for.
        if (!escaped) {
            read.paths.reserveBlock(count, paths.size());
            forEachLine(paths, [&](QByteArrayView line) { read.paths.appendUtf8(line); });
        } else {
            QStringList texts;
            forEachLine(paths, [&](QByteArrayView line) { texts.append(textOf(line)); });
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
    // path (of a file elsewhere) marked.
    TextLines names(report.reclaimable.size());
    // The sizes, eight bytes each, least significant first: written at once, not one by one.
    QByteArray sizes(report.reclaimable.size() * qsizetype(sizeof(qint64)), Qt::Uninitialized);
    char* size = sizes.data();
    for (const auto& [text, bytes] : report.reclaimable) {
        names.append(text, isHostRooted(text));
        qToLittleEndian(bytes, size);
        size += sizeof(qint64);
    }
    out << names.bytes() << sizes << report.stopped << report.reason;
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
    QByteArray names, sizes;
    in >> names >> sizes >> report.stopped >> report.reason;
    if (in.status() != QDataStream::Ok || sizes.size() % sizeof(qint64) != 0) {
        return damaged();
    }
    qsizetype from = 0;
    report.reclaimable.reserve(sizes.size() / qsizetype(sizeof(qint64)));
    for (qsizetype at = 0; at < sizes.size(); at += sizeof(qint64)) {
        const auto size = qFromLittleEndian<qint64>(sizes.constData() + at);
        const qsizetype end = names.indexOf('\n', from);
        if (end < 0) {
            return damaged();
        }
        const QByteArrayView name = QByteArrayView(names).sliced(from, end - from);
        report.reclaimable.append({textOf(name), size});
        report.reclaimableBytes += size;
        from = end + 1;
    }
    return report;
}

}  // namespace tidewick
