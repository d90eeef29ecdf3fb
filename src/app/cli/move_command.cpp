#include "app/cli/cli.h"
#include "app/cli/commands.h"
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

struct MoveOptions {
    bool storeInSubFolder = false;
    QStringList excluded;
    QStringList only;
    OverwriteAnswer overwrite = OverwriteAnswer::No;
    bool dryRun = false;
};

// The options of `move` beyond those of the scan; nothing, said, when --overwrite is neither no
// nor yes.
std::optional<MoveOptions> moveOptions(const CommandLine& line, QTextStream& err) {
    MoveOptions options;
    options.storeInSubFolder = line.isSet(QStringLiteral("store-in-sub-folder"));
    options.dryRun = line.isSet(QStringLiteral("dry-run"));
    options.excluded = line.values(QStringLiteral("exclude"));
    options.only = line.values(QStringLiteral("only"));
    if (line.isSet(QStringLiteral("overwrite"))) {
        const QString answer = line.value(QStringLiteral("overwrite"));
        if (answer != QLatin1String("no") && answer != QLatin1String("yes")) {
            usageError(line, err, QStringLiteral("--overwrite takes no or yes"));
            return std::nullopt;
        }
        options.overwrite =
            answer == QLatin1String("yes") ? OverwriteAnswer::YesToAll : OverwriteAnswer::No;
    }
    return options;
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

int runMove(const CommandLine& line, QTextStream& out, QTextStream& err) {
    std::optional<FolderArguments> parsed = parseFolderArguments(line, err, true);
    if (!parsed) {
        return UsageError;
    }
    const std::optional<MoveOptions> chosen = moveOptions(line, err);
    if (!chosen) {
        return UsageError;
    }
    const MoveOptions& options = *chosen;
    parsed->options.excludeOn = !options.excluded.isEmpty();
    parsed->options.excluded = options.excluded;
    FileOperations disk;
    SessionFolder folder(disk);
    if (const int exitCode =
            loadFolderToChange(*parsed, folder, err, QStringLiteral("move"), "moved");
        exitCode != Success) {
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
