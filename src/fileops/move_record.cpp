#include "fileops/move_record.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <atomic>
#include <chrono>
#include <vector>

#include "platform/file_system.h"
#include "platform/on_cores.h"
#include "platform/process_setup.h"
#include "text/path_text.h"

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "fileops/file_copy.h"
#endif

namespace tidewick {

namespace {

const char* const kOutcomes[] = {"moved", "skipped", "excluded", "failed", "copiedSourceKept"};

QString outcomeName(MovedFile::Outcome outcome) {
    return QString::fromLatin1(kOutcomes[int(outcome)]);
}

std::optional<MovedFile::Outcome> outcomeOf(const QString& name) {
    for (int i = 0; i < int(std::size(kOutcomes)); ++i) {
        if (name == QLatin1String(kOutcomes[i])) {
            return MovedFile::Outcome(i);
        }
    }
    return std::nullopt;
}

QJsonObject placeJson(const TrashPlace& place) {
    return {{QStringLiteral("file"), place.file}, {QStringLiteral("info"), place.info}};
}

TrashPlace placeOf(const QJsonValue& json) {
    return {json[QLatin1String("file")].toString(), json[QLatin1String("info")].toString()};
}

QJsonObject fileJson(const MovedFile& file) {
    return {{QStringLiteral("text"), file.text},
            {QStringLiteral("source"), file.source},
            {QStringLiteral("destination"), file.destination},
            {QStringLiteral("size"), file.size},
            {QStringLiteral("modified"), QString::number(file.modified)},
            {QStringLiteral("outcome"), outcomeName(file.outcome)},
            {QStringLiteral("trash"), placeJson(file.sourceTrash)},
            {QStringLiteral("sourceDeleted"), file.sourceDeleted},
            {QStringLiteral("replaced"), placeJson(file.replaced)},
            {QStringLiteral("replacedSize"), QString::number(file.replacedStamp.size)},
            {QStringLiteral("replacedModified"), QString::number(file.replacedStamp.modified)}};
}

std::optional<MovedFile> fileOf(const QJsonObject& json) {
    const std::optional<MovedFile::Outcome> outcome =
        outcomeOf(json[QLatin1String("outcome")].toString());
    bool number = false;
    const qint64 modified = json[QLatin1String("modified")].toString().toLongLong(&number);
    if (!outcome || !number || !json[QLatin1String("source")].isString()) {
        return std::nullopt;
    }
    return MovedFile{json[QLatin1String("text")].toString(),
                     json[QLatin1String("source")].toString(),
                     json[QLatin1String("destination")].toString(),
                     qint64(json[QLatin1String("size")].toDouble()),
                     modified,
                     *outcome,
                     placeOf(json[QLatin1String("trash")]),
                     json[QLatin1String("sourceDeleted")].toBool(),
                     placeOf(json[QLatin1String("replaced")]),
                     {json[QLatin1String("replacedSize")].toString().toLongLong(),
                      json[QLatin1String("replacedModified")].toString().toLongLong()}};
}

const QLatin1String kCheck("check");

// The checksum of a line: of its JSON without the checksum, as the writer wrote it.
QString checksum(QJsonObject json) {
    json.remove(kCheck);
    return QString::fromLatin1(
        QCryptographicHash::hash(QJsonDocument(json).toJson(QJsonDocument::Compact),
                                 QCryptographicHash::Sha256)
            .toHex());
}

// A line as read: its object, and whether its checksum holds (false when it has none).
struct ReadLine {
    std::optional<QJsonObject> json;
    bool checked = false;
};

// Whether the bytes of `line` without its checksum member hash to that checksum: so they do for
// a line as the writer wrote it, which is then not written out again to be checked.
bool bytesMatchChecksum(const QByteArray& line) {
    const QByteArrayView member = "\"check\":\"";
    const qsizetype at = line.indexOf(member);
    const qsizetype from = at + member.size();
    const qsizetype to = at < 0 ? -1 : line.indexOf('"', from);
    if (to < 0) {
        return false;
    }
    // The member and the comma that parts it from the next one, or from the one before.
    const bool commaAfter = to + 1 < line.size() && line[to + 1] == ',';
    const bool commaBefore = !commaAfter && at > 0 && line[at - 1] == ',';
    QByteArray rest = line.left(at - (commaBefore ? 1 : 0));
    rest += QByteArrayView(line).sliced(to + 1 + (commaAfter ? 1 : 0));
    return QCryptographicHash::hash(rest, QCryptographicHash::Sha256).toHex() ==
           QByteArrayView(line).sliced(from, to - from);
}

ReadLine readLine(const QByteArray& line) {
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(line, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject()) {
        return {};
    }
    const QJsonObject json = document.object();
    return {json, json[kCheck].isString() &&
                      (bytesMatchChecksum(line) || json[kCheck].toString() == checksum(json))};
}

// A record's name: the time it began in UTC to the nanosecond, so that the names sort as the
// moves were made, then the process and a random part, so that no two runs share one.
QString recordName() {
    const qint64 now = std::chrono::duration_cast<std::chrono::nanoseconds>(
                           std::chrono::system_clock::now().time_since_epoch())
                           .count();
    return QDateTime::fromSecsSinceEpoch(now / 1000000000, Qt::UTC)
               .toString(QStringLiteral("yyyy-MM-ddTHH-mm-ss")) +
           u'.' + QStringLiteral("%1").arg(now % 1000000000, 9, 10, QLatin1Char('0')) + u'-' +
           QString::number(QCoreApplication::applicationPid()) + u'-' +
           QString::number(QRandomGenerator::global()->generate(), 16) + QStringLiteral(".jsonl");
}

// The bytes of the record `path`: an ordinary file (never a pipe, a device or a socket, which
// could block or never end) of at most kMoveRecordLimit bytes.
Result<QByteArray> recordBytes(const QString& path) {
    const Error notOrdinary{0, QStringLiteral("it is no ordinary file")};
    const Error tooLarge{0, QStringLiteral("it is larger than a record can be")};
#ifdef Q_OS_UNIX
    const QByteArray name = encodeFileName(path);
    struct stat entry {};
    if (::stat(name.constData(), &entry) != 0) {
        return lastError();
    }
    if (!S_ISREG(entry.st_mode)) {
        return notOrdinary;
    }
    Descriptor file(::open(name.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat opened {};
    if (file.fd < 0 || ::fstat(file.fd, &opened) != 0) {
        return lastError();
    }
    if (!S_ISREG(opened.st_mode)) {
        return notOrdinary;
    }
    if (opened.st_size > kMoveRecordLimit) {
        return tooLarge;
    }
    QByteArray bytes(qsizetype(opened.st_size), Qt::Uninitialized);
    qsizetype got = 0;
    while (got < bytes.size()) {
        const ssize_t part = ::read(file.fd, bytes.data() + got, size_t(bytes.size() - got));
        if (part < 0 && errno == EINTR) {
            continue;
        }
        if (part < 0) {
            return lastError();
        }
        if (part == 0) {
            break;
        }
        got += part;
    }
    bytes.truncate(got);
    return bytes;
#else
    QFile file(path);
    if (!QFileInfo(path).isFile()) {
        return notOrdinary;
    }
    if (file.size() > kMoveRecordLimit) {
        return tooLarge;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        return Error{0, file.errorString()};
    }
    return file.read(kMoveRecordLimit);
#endif
}

QString now() {
    return QDateTime::currentDateTime().toString(Qt::ISODate);
}

}  // namespace

QString moveRecordsFolder() {
#ifdef Q_OS_LINUX
    const QString data = userDataFolder();
#else
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
#endif
    return data.isEmpty() ? QString() : data + QStringLiteral("/Tidewick/moves");
}

qint64 MoveRecord::filesMoved() const {
    return std::count_if(files.cbegin(), files.cend(), [](const MovedFile& file) {
        return file.outcome == MovedFile::Outcome::Moved;
    });
}

qint64 MoveRecord::bytesMoved() const {
    qint64 bytes = 0;
    for (const MovedFile& file : files) {
        if (file.outcome == MovedFile::Outcome::Moved ||
            file.outcome == MovedFile::Outcome::CopiedSourceKept) {
            bytes += file.size;
        }
    }
    return bytes;
}

Result<void> MoveRecordWriter::open(const QString& folder, const MoveRequest& request,
                                    const QStringList& addedFolders) {
    if (folder.isEmpty() || !QDir().mkpath(folder)) {
        return Error{0, QStringLiteral("the folder ") + folder + QStringLiteral(" cannot be made")};
    }
    file_.setFileName(QDir(folder).filePath(recordName()));
    if (!file_.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
        return Error{0, file_.fileName() + QStringLiteral(": ") + file_.errorString()};
    }
    const Result<void> written =
        writeLine({{QStringLiteral("tidewickMove"), 1},
                   {QStringLiteral("started"), now()},
                   {QStringLiteral("sessionFolder"), request.sessionFolder},
                   {QStringLiteral("session"), request.sessionFile},
                   {QStringLiteral("target"), moveDestination(request)},
                   {QStringLiteral("addedFolders"), QJsonArray::fromStringList(addedFolders)}});
    if (!written) {
        file_.remove();  // no record is better than one that says nothing
    }
    return written;
}

Result<void> MoveRecordWriter::add(const MovedFile& file) {
    return writeLine(fileJson(file));
}

Result<void> MoveRecordWriter::finish(const MoveOutcome& outcome) {
    Result<void> done = writeLine({{QStringLiteral("finished"), now()},
                                   {QStringLiteral("filesMoved"), outcome.filesMoved},
                                   {QStringLiteral("bytesMoved"), outcome.bytesMoved}});
#ifdef Q_OS_UNIX
    if (done && file_.isOpen() && ::fsync(file_.handle()) != 0) {
        done = lastError();
    }
#endif
    file_.close();
    return done;
}

Result<void> MoveRecordWriter::writeLine(QJsonObject json) {
    if (!file_.isOpen()) {
        return Error{EBADF, QStringLiteral("The record is not open")};
    }
    json.insert(kCheck, checksum(json));
    const QByteArray line = QJsonDocument(json).toJson(QJsonDocument::Compact) + '\n';
    // Flushed, so that a run that dies leaves every line written so far.
    if (file_.write(line) != line.size() || !file_.flush()) {
        return Error{0, file_.fileName() + QStringLiteral(": ") + file_.errorString()};
    }
    return {};
}

Result<MoveRecord> readMoveRecord(const QString& path) {
    const Result<QByteArray> bytes = recordBytes(path);
    if (!bytes) {
        return bytes.error();
    }
    QList<QByteArray> lines = bytes->split('\n');
    // The last piece has no line end: a run that died while writing it (or none at all).
    lines.removeLast();
    const ReadLine head = readLine(lines.value(0));
    if (!head.json || (*head.json)[QLatin1String("tidewickMove")].toInt() != 1) {
        return Error{0, QStringLiteral("it is no record of a Tidewick move")};
    }
    const QJsonObject& json = *head.json;
    MoveRecord record;
    record.path = path;
    record.started = QDateTime::fromString(json[QLatin1String("started")].toString(), Qt::ISODate);
    record.sessionFolder = json[QLatin1String("sessionFolder")].toString();
    record.session = json[QLatin1String("session")].toString();
    record.target = json[QLatin1String("target")].toString();
    for (const QJsonValue& folder : json[QLatin1String("addedFolders")].toArray()) {
        record.addedFolders.append(folder.toString());
    }
    record.checked = json.contains(kCheck);
    if (record.checked && !head.checked) {
        return Error{0, QStringLiteral("it is damaged at line 1")};
    }
    // Each line is a function of its bytes alone (its parse, its checksum): they are read side by
    // side on the cores, then taken in order.
    struct Parsed {
        bool blank = true;
        ReadLine line;
        std::optional<MovedFile> moved;
    };
    std::vector<Parsed> parsed(size_t(lines.size()));
    constexpr qsizetype kShare = 64;  // lines a core takes at a time
    std::atomic<qsizetype> next = 1;
    onCores(lines.size() / kShare + 1, [&](bool) {
        for (qsizetype from = next.fetch_add(kShare); from < lines.size();
             from = next.fetch_add(kShare)) {
            for (qsizetype at = from; at < std::min(from + kShare, lines.size()); ++at) {
                Parsed& each = parsed[size_t(at)];
                each.blank = lines[at].trimmed().isEmpty();
                if (!each.blank) {
                    each.line = readLine(lines[at]);
                    each.moved = each.line.json ? fileOf(*each.line.json) : std::nullopt;
                }
            }
        }
    });
    record.files.reserve(lines.size() - 1);
    for (qsizetype at = 1; at < lines.size(); ++at) {
        if (parsed[size_t(at)].blank) {
            continue;
        }
        const ReadLine& line = parsed[size_t(at)].line;
        std::optional<MovedFile>& moved = parsed[size_t(at)].moved;
        if (!line.json || (record.checked && !line.checked) ||
            (!moved && !line.json->contains(QLatin1String("finished")))) {
            record.damagedLines.append(at + 1);
        } else if (moved) {
            record.files.append(std::move(*moved));
        } else {
            record.finished = true;
        }
    }
    return record;
}

QString newestMoveRecord(const QString& folder) {
    QStringList names = QDir(folder).entryList({QStringLiteral("*.jsonl")}, QDir::Files);
    std::sort(names.begin(), names.end(), std::greater<>());
    return names.isEmpty() ? QString() : QDir(folder).filePath(names.first());
}

QList<MoveRecord> moveRecords(const QString& folder, qsizetype limit) {
    QStringList names = QDir(folder).entryList({QStringLiteral("*.jsonl")}, QDir::Files);
    std::sort(names.begin(), names.end(), std::greater<>());
    QList<MoveRecord> records;
    for (const QString& name : names) {
        if (Result<MoveRecord> record = readMoveRecord(QDir(folder).filePath(name))) {
            records.append(std::move(*record));
            if (records.size() == limit) {
                break;
            }
        }
    }
    return records;
}

namespace {

// The folders of the whole-path items of `request`: those beyond its session folder.
QStringList addedFoldersOf(const MoveRequest& request, const FileSystem& disk) {
    QStringList folders;
    for (const MoveItem& item : request.items) {
        const QString source = planMove(request, item.text, disk).source;
        const QString folder = hostParentFolder(source);
        if (item.checked && !source.startsWith(withSeparator(request.sessionFolder)) &&
            !folders.contains(folder)) {
            folders.append(folder);
        }
    }
    return folders;
}

}  // namespace

RecordedMove runRecordedMove(const MoveRequest& request, FileOperations& disk, MoveEvents events,
                             const QString& folder) {
    MoveRecordWriter writer;
    QString record;
    bool undoable = false;
    std::optional<Error> failure;
    if (const Result<void> opened = writer.open(folder, request, addedFoldersOf(request, disk))) {
        record = writer.path();
        // The run calls these after this block: what they keep of it is copied in.
        events.fileDone = [&writer, &failure, &undoable,
                           done = events.fileDone](const MovedFile& file) {
            if (const Result<void> added = writer.add(file); !added && !failure) {
                failure = added.error();
            }
            undoable = undoable || file.outcome == MovedFile::Outcome::Moved ||
                       file.outcome == MovedFile::Outcome::CopiedSourceKept;
            if (done) {
                done(file);
            }
        };
        // A record that stops taking lines stops the run after the file in hand.
        const auto stop = events.stopRequested;
        events.stopRequested = [&failure, stop] { return failure.has_value() || (stop && stop()); };
    } else {
        events.notice = QStringLiteral("Error: no record of this move can be kept (") +
                        visibleText(opened.error().cause) +
                        QStringLiteral("), so it cannot be restored.");
    }
    MoveOutcome outcome = runMove(request, disk, events);
    outcome.failed = outcome.failed || record.isEmpty();
    if (!record.isEmpty()) {
        if (const Result<void> finished = writer.finish(outcome); !finished && !failure) {
            failure = finished.error();
        }
    }
    if (failure) {
        outcome.failed = true;
        if (events.log) {
            events.log(kLogLineEnd +
                       QStringLiteral("Error: the record of this move cannot be "
                                      "written (") +
                       visibleText(failure->cause) + QStringLiteral("), so the move stopped."));
        }
    }
    if (!undoable && !record.isEmpty()) {  // a run that moved nothing has nothing to undo
        QFile::remove(record);
        record.clear();
    }
    return {outcome, record};
}

}  // namespace tidewick
