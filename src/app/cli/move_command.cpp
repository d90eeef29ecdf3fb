#include "app/cli/cli.h"
#include "app/cli/folder_load.h"
#include "fileops/move_record.h"
#include "session/session_folder.h"
#include "text/path_text.h"
#include "text/wildcard.h"

// `move`: what the window's "&Move Files" would move with the lines of "Files to be Moved"
// checked, after the same scan as `scan`, by the same run as the results window, whose log it
// prints.
namespace tidewick::cli {

namespace {

const char* const kMoveUsage =
    "usage: tidewick-cli move FOLDER --kind ses|sesx|xml|rpp|veg (--session NAME | --all)\n"
    "                         --to TARGET [--trim] [--type N] [--keep-peaks]\n"
    "                         [--add-folder | --sub-folder PATH] [--store-in-sub-folder]\n"
    "                         [--exclude PATTERN]... [--only PATTERN]...\n"
    "                         [--overwrite no|yes] [--dry-run]\n";

struct MoveOptions {
    bool storeInSubFolder = false;
    QStringList excluded;
    QStringList only;
    OverwriteAnswer overwrite = OverwriteAnswer::No;
    bool dryRun = false;
};

// The options of `move` beyond those of the scan.
OwnOption moveOptions(MoveOptions& options, QTextStream& err) {
    return [&options, &err](const QStringList& arguments, qsizetype& at, bool& bad) {
        const QString& argument = arguments[at];
        if (argument == QLatin1String("--store-in-sub-folder")) {
            options.storeInSubFolder = true;
        } else if (argument == QLatin1String("--dry-run")) {
            options.dryRun = true;
        } else if (at + 1 >= arguments.size()) {
            return false;
        } else if (argument == QLatin1String("--exclude")) {
            options.excluded.append(arguments[++at]);
        } else if (argument == QLatin1String("--only")) {
            options.only.append(arguments[++at]);
        } else if (argument == QLatin1String("--overwrite")) {
            const QString answer = arguments[++at];
            bad = answer != QLatin1String("no") && answer != QLatin1String("yes");
            if (bad) {
                err << "tidewick-cli move: --overwrite takes no or yes\n";
            }
            options.overwrite =
                answer == QLatin1String("yes") ? OverwriteAnswer::YesToAll : OverwriteAnswer::No;
        } else {
            return false;
        }
        return true;
    };
}

// The lines of "Files to be Moved", checked as the window's user would: all of them, or those
// matching an --only pattern.
QList<MoveItem> checkedItems(const SessionFolder& folder, const QStringList& only) {
    QList<MoveItem> items;
    for (const OtherFile& file : folder.otherFiles()) {
        items.append({file.text, only.isEmpty() || wildcardMatchesAny(file.text, only)});
    }
    return items;
}

void printPlan(const MoveRequest& request, const FileSystem& fs, QTextStream& out) {
    for (const MoveItem& item : request.items) {
        if (item.checked) {
            const PlannedMove planned = planMove(request, item.text, fs);
            out << visibleText(planned.source) << " -> "
                << (planned.excluded ? QStringLiteral("(excluded)")
                                     : visibleText(planned.destination))
                << '\n';
        }
    }
}

}  // namespace

int runMove(const QStringList& arguments, QTextStream& out, QTextStream& err) {
    MoveOptions options;
    std::optional<FolderArguments> parsed = parseFolderArguments(
        arguments, err, QStringLiteral("move"), kMoveUsage, true, moveOptions(options, err));
    if (!parsed) {
        return UsageError;
    }
    parsed->options.excludeOn = !options.excluded.isEmpty();
    parsed->options.excluded = options.excluded;
    FileOperations disk;
    SessionFolder folder(disk);
    if (const int exitCode = loadFolder(*parsed, folder, err, QStringLiteral("move"));
        exitCode != Success) {
        if (exitCode != UsageError) {
            err << "tidewick-cli move: nothing moved\n";
        }
        return exitCode;
    }
    const MoveRequest request =
        folder.moveRequest(folder.options(), checkedItems(folder, options.only), parsed->target,
                           options.storeInSubFolder);
    if (const Result<void> ready = moveCanStart(request, disk); !ready) {
        err << "tidewick-cli move: " << visibleText(ready.error().cause)
            << "\ntidewick-cli move: nothing moved\n";
        return MoveFailed;
    }
    if (options.dryRun) {
        printPlan(request, disk, out);
        return Success;
    }
    MoveEvents events;
    events.log = logPrinter(out);
    events.askOverwrite = [&options](const QString&) { return options.overwrite; };
    events.stopRequested = interrupted;
    const auto [outcome, record] = runRecordedMove(request, disk, events, moveRecordsFolder());
    if (!record.isEmpty()) {
        err << "tidewick-cli move: the record of this move is " << visibleText(record) << '\n';
    }
    out << '\n';
    if (interrupted()) {
        return kInterrupted;
    }
    return outcome.failed ? MoveFailed : Success;
}

}  // namespace tidewick::cli
