#include <QLocale>

#include "app/cli/cli.h"
#include "fileops/restore.h"
#include "text/number_text.h"
#include "text/path_text.h"

// `restore`: a move undone from its record, as "File > Restore a Move..." does it.
namespace tidewick::cli {

namespace {

const char* const kRestoreUsage =
    "usage: tidewick-cli restore (RECORD | --last) [--dry-run] [--force]\n"
    "       tidewick-cli restore --list\n";

// One line a record, newest first: its path, date, session folder, files and bytes moved.
int listRecords(QTextStream& out) {
    for (const MoveRecord& record : moveRecords(moveRecordsFolder())) {
        out << visibleText(record.path) << "  "
            << QLocale().toString(record.started, QLocale::ShortFormat) << "  "
            << visibleText(record.sessionFolder) << "  " << groupedNumber(record.filesMoved())
            << " file(s)  " << groupedNumber(record.bytesMoved()) << " bytes"
            << (record.finished ? "" : "  (cut short)") << '\n';
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

int runRestore(const QStringList& arguments, QTextStream& out, QTextStream& err) {
    QString path;
    bool last = false, dryRun = false, list = false, force = false;
    for (const QString& argument : arguments) {
        if (argument == QLatin1String("--last")) {
            last = true;
        } else if (argument == QLatin1String("--dry-run")) {
            dryRun = true;
        } else if (argument == QLatin1String("--list")) {
            list = true;
        } else if (argument == QLatin1String("--force")) {
            force = true;
        } else if (argument.startsWith(QLatin1String("--")) || !path.isEmpty()) {
            err << "tidewick-cli restore: unexpected argument '" << visibleText(argument) << "'\n"
                << kRestoreUsage;
            return UsageError;
        } else {
            path = argument;
        }
    }
    if (list) {
        return arguments.size() == 1 ? listRecords(out) : (err << kRestoreUsage, UsageError);
    }
    if (last == !path.isEmpty()) {
        err << kRestoreUsage;
        return UsageError;
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
