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

// Whether `path` can stand as a line of UTF-8: no line end, and no lone surrogate (a byte of a
// file name that is no UTF-8, as decodeFileName gives it).
bool isUtf8Line(QStringView path) {
    // Nearly every path holds neither: one pass without branches tells.
    unsigned unusual = 0;
    for (const QChar c : path) {
        unusual |= unsigned(c.unicode() == u'\n') | unsigned((c.unicode() & 0xF800) == 0xD800);
    }
    if (unusual == 0) {
        return true;
    }
    for (qsizetype at = 0; at < path.size(); ++at) {
        if (path[at] == u'\n') {
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
    out << qint32(read.outcome) << read.paths.toList() << ses.version << ses.versionFound
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
    read.paths = readList<QString>(in);
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
    // Thousands of names a folder: each from the folder on, in UTF-8, a line each; a whole path
    // (of a file elsewhere) after a NUL, which no file name holds. A text that is no line
    // of UTF-8 (it holds a line end, or a byte of a name that is no UTF-8) goes as it stands
    // after two NULs, as its file name's bytes in URL escapes.
    QByteArray names;
    // The sizes, eight bytes each, least significant first: written at once, not one by one.
    QByteArray sizes(report.reclaimable.size() * qsizetype(sizeof(qint64)), Qt::Uninitialized);
    char* size = sizes.data();
    QStringEncoder utf8(QStringEncoder::Utf8);
    const auto appendLine = [&names, &utf8](QStringView text) {
        const qsizetype at = names.size();
        names.resize(at + utf8.requiredSpace(text.size()) + 1);
        char* end = utf8.appendToBuffer(names.data() + at, text);
        *end++ = '\n';
        names.resize(end - names.constData());
    };
    for (const auto& [text, bytes] : report.reclaimable) {
        if (!isUtf8Line(text)) {
            names += QByteArray(2, '\0') + encodeFileName(text).toPercentEncoding() + '\n';
        } else if (!isHostRooted(text)) {
            appendLine(text);
        } else {
            names += '\0';
            appendLine(text);
        }
        qToLittleEndian(bytes, size);
        size += sizeof(qint64);
    }
    out << names << sizes << report.stopped << report.reason;
    return bytes;
}

namespace {

// The text of one line of a report's names (packReport), as the report names its file.
QString textOf(QByteArrayView name) {
    if (name.startsWith(QByteArrayView("\0\0", 2))) {
        return decodeFileName(QByteArray::fromPercentEncoding(name.sliced(2).toByteArray()));
    }
    return QString::fromUtf8(name.startsWith('\0') ? name.sliced(1) : name);
}

}  // namespace

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
