#include <QLocale>

#include "app/cli/cli.h"
#include "fileops/restore.h"
#include "text/number_text.h"
#include "text/path_text.h"

// `restore`: a move undone from its record, as "File > Restore a Move..." does it.
namespace tidewick::cli {

namespace {

const char* const kRestoreUsage =
    "usage: tidewick-cli restore (RECORD | --last) [--dry-run]\n"
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

}  // namespace

int runRestore(const QStringList& arguments, QTextStream& out, QTextStream& err) {
    QString path;
    bool last = false, dryRun = false, list = false;
    for (const QString& argument : arguments) {
        if (argument == QLatin1String("--last")) {
            last = true;
        } else if (argument == QLatin1String("--dry-run")) {
            dryRun = true;
        } else if (argument == QLatin1String("--list")) {
            list = true;
        } else if (argument.startsWith(QLatin1String("--")) || !path.isEmpty()) {
            err << "tidewick-cli restore: unexpected argument '" << argument << "'\n"
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
    Result<MoveRecord> record = Error{};
    if (last) {
        const QList<MoveRecord> records = moveRecords(moveRecordsFolder(), 1);
        if (records.isEmpty()) {
            err << "tidewick-cli restore: no move has been recorded in "
                << visibleText(moveRecordsFolder()) << '\n';
            return ReaderError;
        }
        record = records.first();
    } else {
        record = readMoveRecord(path);
    }
    if (!record) {
        err << "tidewick-cli restore: the record " << visibleText(path)
            << " cannot be read: " << record.error().cause << '\n';
        return ReaderError;
    }
    RestoreEvents events;
    events.log = logPrinter(out);  // as the move's log prints
    events.left = [&err](const QString& text) {
        err << "tidewick-cli restore: " << visibleText(text) << '\n';
    };
    FileOperations disk;
    const RestoreOutcome outcome = restoreMove(*record, disk, dryRun, events);
    return outcome.left > 0 ? MoveFailed : Success;
}

}  // namespace tidewick::cli
