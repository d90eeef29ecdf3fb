#include "audit/index_packing.h"

#include <QDataStream>
#include <QIODevice>
#include <algorithm>

#include "platform/path_text.h"

namespace tidewick {

namespace {

// What follows a read's record path lines: nothing, a message of an earlier index (whose read is
// made again), or a problem.
constexpr qint8 kNoProblem = 0;
constexpr qint8 kProblem = 2;

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
    out << qint32(read.outcome) << read.paths << ses.version << ses.versionFound
        << qint32(lines.size());
    for (const RecordPathLine& line : lines) {
        out << line.hasValue << line.value;
    }
    out << (read.problem ? kProblem : kNoProblem);
    if (read.problem) {
        out << qint32(read.problem->failure) << qint32(read.problem->kind)
            << qint32(read.problem->severity) << read.problem->detail << read.problem->file;
    }
    return bytes;
}

std::optional<SessionRead> unpackRead(const QByteArray& bytes) {
    QDataStream in(bytes);
    in.setVersion(QDataStream::Qt_6_4);
    SessionRead read;
    SesFacts ses;
    qint32 outcome = 0, lines = 0;
    in >> outcome >> read.paths >> ses.version >> ses.versionFound >> lines;
    if (in.status() != QDataStream::Ok || outcome < 0 || outcome > 2 || lines < 0 ||
        lines > bytes.size()) {
        return std::nullopt;
    }
    read.outcome = ReaderOutcome(outcome);
    if (ses.versionFound || !ses.version.isEmpty()) {
        read.ses = ses;
    }
    QList<RecordPathLine> recordPaths;
    for (qint32 i = 0; i < lines; ++i) {
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
            return std::nullopt;
        }
        problem.failure = ReadFailure(failure);
        problem.kind = SessionKindId(kind);
        problem.severity = ReadSeverity(severity);
        read.problem = problem;
    } else if (told != kNoProblem) {
        return std::nullopt;
    }
    return in.status() == QDataStream::Ok ? std::optional(read) : std::nullopt;
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
    // Thousands of names a folder: each from the folder on, in UTF-8, a line each; a path
    // outside the folder whole, after a NUL (which no file name holds).
    const QString folder = withSeparator(report.folder);
    QByteArray names;
    QList<qint64> sizes;
    for (const auto& [path, size] : report.reclaimable) {
        if (path.startsWith(folder)) {
            names += QStringView(path).sliced(folder.size()).toUtf8() + '\n';
        } else {
            names += '\0' + path.toUtf8() + '\n';
        }
        sizes.append(size);
    }
    out << names << sizes << report.stopped << report.reason;
    return bytes;
}

// `folder` followed by the UTF-8 `name`, made in one piece (a report holds thousands).
QString joined(const QString& folder, QByteArrayView name) {
    if (std::any_of(name.begin(), name.end(), [](char c) { return uchar(c) >= 0x80; })) {
        return folder + QString::fromUtf8(name);
    }
    QString path(folder.size() + name.size(), Qt::Uninitialized);
    QChar* out = std::copy(folder.cbegin(), folder.cend(), path.data());
    std::transform(name.begin(), name.end(), out, [](char c) { return QLatin1Char(c); });
    return path;
}

std::optional<FolderReport> unpackReport(const QByteArray& bytes) {
    QDataStream in(bytes);
    in.setVersion(QDataStream::Qt_6_4);
    FolderReport report;
    qint32 count = 0;
    in >> report.folder >> count;
    for (qint32 i = 0; i < count && in.status() == QDataStream::Ok; ++i) {
        qint32 kind = 0;
        QStringList names;
        in >> kind >> names;
        if (kind < 0 || kind >= sessionKinds().size()) {
            return std::nullopt;
        }
        report.sessions.append({SessionKindId(kind), names});
    }
    qint64 used = 0;
    in >> used >> count;
    report.used = used;
    for (qint32 i = 0; i < count && in.status() == QDataStream::Ok; ++i) {
        MissingMedia missing;
        in >> missing.text >> missing.path >> missing.sessions;
        report.missing.append(missing);
    }
    QByteArray names;
    QList<qint64> sizes;
    in >> names >> sizes >> report.stopped >> report.reason;
    const QString folder = withSeparator(report.folder);
    qsizetype from = 0;
    report.reclaimable.reserve(sizes.size());
    for (const qint64 size : sizes) {
        const qsizetype end = names.indexOf('\n', from);
        if (end < 0) {
            return std::nullopt;
        }
        const QByteArrayView name = QByteArrayView(names).sliced(from, end - from);
        report.reclaimable.append(
            {name.startsWith('\0') ? QString::fromUtf8(name.sliced(1)) : joined(folder, name),
             size});
        report.reclaimableBytes += size;
        from = end + 1;
    }
    return in.status() == QDataStream::Ok ? std::optional(report) : std::nullopt;
}

}  // namespace tidewick
