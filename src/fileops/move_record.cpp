#include "fileops/move_record.h"

#include <QCoreApplication>
#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>

#include "platform/process_setup.h"

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
            {QStringLiteral("replaced"), placeJson(file.replaced)}};
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
                     placeOf(json[QLatin1String("replaced")])};
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

Result<void> MoveRecordWriter::open(const QString& folder, const MoveRequest& request) {
    if (folder.isEmpty() || !QDir().mkpath(folder)) {
        return Error{0, QStringLiteral("the folder ") + folder + QStringLiteral(" cannot be made")};
    }
    // Named by the time it began in UTC, so that the names sort as the moves were made.
    const QString name =
        QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyy-MM-ddTHH-mm-ss")) + u'-' +
        QString::number(QCoreApplication::applicationPid()) + QStringLiteral(".jsonl");
    file_.setFileName(QDir(folder).filePath(name));
    if (!file_.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
        return Error{0, file_.fileName() + QStringLiteral(": ") + file_.errorString()};
    }
    writeLine(QJsonDocument(QJsonObject{{QStringLiteral("tidewickMove"), 1},
                                        {QStringLiteral("started"), now()},
                                        {QStringLiteral("sessionFolder"), request.sessionFolder},
                                        {QStringLiteral("session"), request.sessionFile},
                                        {QStringLiteral("target"), moveDestination(request)}})
                  .toJson(QJsonDocument::Compact));
    return {};
}

void MoveRecordWriter::add(const MovedFile& file) {
    writeLine(QJsonDocument(fileJson(file)).toJson(QJsonDocument::Compact));
}

void MoveRecordWriter::finish(const MoveOutcome& outcome) {
    writeLine(QJsonDocument(QJsonObject{{QStringLiteral("finished"), now()},
                                        {QStringLiteral("filesMoved"), outcome.filesMoved},
                                        {QStringLiteral("bytesMoved"), outcome.bytesMoved}})
                  .toJson(QJsonDocument::Compact));
    file_.close();
}

void MoveRecordWriter::writeLine(const QByteArray& json) {
    if (file_.isOpen()) {
        file_.write(json + '\n');
        file_.flush();  // a run that dies leaves every line written so far
    }
}

Result<MoveRecord> readMoveRecord(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return Error{0, file.errorString()};
    }
    const QList<QByteArray> lines = file.readAll().split('\n');
    const QJsonObject head = QJsonDocument::fromJson(lines.value(0)).object();
    if (head[QLatin1String("tidewickMove")].toInt() != 1) {
        return Error{0, QStringLiteral("it is no record of a Tidewick move")};
    }
    MoveRecord record{path,
                      QDateTime::fromString(head[QLatin1String("started")].toString(), Qt::ISODate),
                      false,
                      head[QLatin1String("sessionFolder")].toString(),
                      head[QLatin1String("session")].toString(),
                      head[QLatin1String("target")].toString(),
                      {}};
    record.files.reserve(lines.size());
    for (qsizetype at = 1; at < lines.size(); ++at) {
        if (lines[at].trimmed().isEmpty()) {
            continue;
        }
        const QJsonObject json = QJsonDocument::fromJson(lines[at]).object();
        if (json.contains(QLatin1String("finished"))) {
            record.finished = true;
            continue;
        }
        const std::optional<MovedFile> moved = fileOf(json);
        if (moved) {
            record.files.append(*moved);
        } else if (at + 1 < lines.size() && !lines[at + 1].trimmed().isEmpty()) {
            // Only the last line may be cut short, by a run that died while writing it.
            return Error{0, QStringLiteral("it is damaged at line ") + QString::number(at + 1)};
        }
    }
    return record;
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

RecordedMove runRecordedMove(const MoveRequest& request, FileOperations& disk, MoveEvents events,
                             const QString& folder) {
    MoveRecordWriter writer;
    QString record;
    bool undoable = false;
    if (const Result<void> opened = writer.open(folder, request)) {
        record = writer.path();
        const auto done = events.fileDone;
        events.fileDone = [&writer, &undoable, done](const MovedFile& file) {
            writer.add(file);
            undoable = undoable || file.outcome == MovedFile::Outcome::Moved ||
                       file.outcome == MovedFile::Outcome::CopiedSourceKept;
            if (done) {
                done(file);
            }
        };
    } else {
        events.notice = QStringLiteral("Warning: no record of this move can be kept (") +
                        opened.error().cause + QStringLiteral("), so it cannot be restored.");
    }
    const MoveOutcome outcome = runMove(request, disk, events);
    writer.finish(outcome);
    if (!undoable && !record.isEmpty()) {  // a run that moved nothing has nothing to undo
        QFile::remove(record);
        record.clear();
    }
    return {outcome, record};
}

}  // namespace tidewick
