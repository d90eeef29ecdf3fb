#include <QJsonArray>

#include "app/cli/cli.h"
#include "app/cli/cli_output.h"
#include "app/cli/commands.h"
#include "app/cli/folder_load.h"
#include "fileops/restore.h"
#include "forms/restore_form.h"
#include "text/path_text.h"

// `restore`: a move undone from its record, as "File > Restore a Move..." does it.
namespace tidewick::cli {

namespace {

// What has become of a recorded move: "moved" while none of its files is back, "restored" once
// all of them are, "partly restored" between.
QString moveState(qint64 moved, qint64 back) {
    if (back == 0) {
        return QStringLiteral("moved");
    }
    return back < moved ? QStringLiteral("partly restored") : QStringLiteral("restored");
}

// One line a record, newest first: its path, date, session folder, files and bytes moved, and
// whether the run was cut short or its files are back; or one JSON document of the same.
int listRecords(bool json, QTextStream& out) {
    const FileOperations disk;
    QJsonArray records;
    for (const MoveRecord& record : moveRecords(moveRecordsFolder())) {
        const qint64 back = filesBack(record, disk);
        const QString state = moveState(record.filesMoved(), back);
        if (json) {
            records.append(
                QJsonObject{{QStringLiteral("path"), record.path},
                            {QStringLiteral("started"), record.started.toString(Qt::ISODateWithMs)},
                            {QStringLiteral("finished"), record.finished},
                            {QStringLiteral("sessionFolder"), record.sessionFolder},
                            {QStringLiteral("session"), record.session},
                            {QStringLiteral("target"), record.target},
                            {QStringLiteral("filesMoved"), record.filesMoved()},
                            {QStringLiteral("bytesMoved"), record.bytesMoved()},
                            {QStringLiteral("filesBack"), back},
                            {QStringLiteral("state"), state}});
            continue;
        }
        out << visibleText(record.path) << "   " << recordLine(record)
            << (state == QLatin1String("moved") ? QString() : QStringLiteral("   (") + state + u')')
            << '\n';
    }
    if (json) {
        out << jsonDocument(QStringLiteral("restore"), {{QStringLiteral("records"), records}});
    }
    return Success;
}

// The record to restore: RECORD, or with --last the newest one, which must be sound: a newest
// record that cannot be read is named, and no older one taken in its place.
Result<MoveRecord> chosenRecord(QString& path, bool last, QTextStream& err) {
    if (last) {
        path = newestMoveRecord(moveRecordsFolder());
        if (path.isEmpty()) {
            err << "tidewick-cli restore: no move has been recorded in "
                << visibleText(moveRecordsFolder()) << '\n';
            return Error{};
        }
    }
    Result<MoveRecord> record = readMoveRecord(path);
    if (!record) {
        err << "tidewick-cli restore: the record " << visibleText(path)
            << " cannot be read: " << visibleText(record.error().cause) << '\n';
    }
    return record;
}

}  // namespace

int runRestore(const CommandLine& line, QTextStream& out, QTextStream& err) {
    const QStringList positional = line.positional();
    QString path = positional.value(0);
    const bool last = line.isSet(QStringLiteral("last"));
    const bool dryRun = line.isSet(QStringLiteral("dry-run"));
    const bool force = line.isSet(QStringLiteral("force"));
    if (positional.size() > 1) {
        return usageError(
            line, err,
            QStringLiteral("unexpected argument '") + visibleText(positional[1]) + u'\'');
    }
    if (line.isSet(QStringLiteral("json")) && !line.isSet(QStringLiteral("list"))) {
        return usageError(line, err, QStringLiteral("--json goes with --list"));
    }
    if (line.isSet(QStringLiteral("list"))) {
        if (last || dryRun || force || !path.isEmpty()) {
            return usageError(line, err, QStringLiteral("--list takes no other argument"));
        }
        return listRecords(line.isSet(QStringLiteral("json")), out);
    }
    if (last == !path.isEmpty()) {
        return usageError(line, err,
                          last ? QStringLiteral("RECORD and --last cannot be used together")
                               : QStringLiteral("RECORD, --last or --list is required"));
    }
    const Result<MoveRecord> record = chosenRecord(path, last, err);
    if (!record) {
        return ReaderError;
    }
    if (const std::optional<QString> doubt = recordDoubt(*record)) {
        err << "tidewick-cli restore: the record " << visibleText(path) << ' '
            << visibleText(*doubt)
            << (force ? "; --force: its sound lines are restored\n"
                      : "; nothing restored (--force restores its sound lines)\n");
        if (!force) {
            return ReaderError;
        }
    }
    RestoreEvents events;
    events.log = logPrinter(out);  // as the move's log prints
    events.left = [&err](const QString& text) {
        err << "tidewick-cli restore: " << visibleText(text) << '\n';
    };
    events.stopRequested = interrupted;
    FileOperations disk;
    const RestoreOutcome outcome = restoreMove(*record, disk, dryRun, events, force);
    if (outcome.cancelled) {
        return kInterrupted;
    }
    return outcome.left > 0 || outcome.refused > 0 ? MoveFailed : Success;
}

}  // namespace tidewick::cli
