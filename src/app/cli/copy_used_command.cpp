#include "app/cli/cli.h"
#include "app/cli/folder_scan.h"
#include "fileops/copy_used.h"
#include "fileops/move_run.h"
#include "platform/path_text.h"

// `copy-used`: what the window's "Cop&y Files" copies (the used files present on disk), after
// the same scan as `scan`; a file that fails is reported and left out, as "Ignore" does.
namespace tidewick::cli {

namespace {

const char* const kCopyUsedUsage =
    "usage: tidewick-cli copy-used FOLDER --kind ses|sesx|xml|rpp|veg (--session NAME | --all)\n"
    "                              --to TARGET [--trim]\n";

}  // namespace

int runCopyUsed(const QStringList& arguments, QTextStream& out, QTextStream& err) {
    int exitCode = UsageError;
    const std::optional<TargetScan> scan =
        scanForTarget(arguments, err, QStringLiteral("copy-used"), kCopyUsedUsage,
                      QStringLiteral("copied"), {}, exitCode);
    if (!scan) {
        return exitCode;
    }
    FileOperations disk;
    QString folder = scan->target;
    if (const Result<void> takes = targetFolderTakesFiles(folder, disk); !takes) {
        err << "tidewick-cli copy-used: " << visibleText(takes.error().cause)
            << "\ntidewick-cli copy-used: nothing copied\n";
        return MoveFailed;
    }
    if (!disk.FolderExists(folder)) {
        if (const Result<void> made = disk.createFolder(folder); !made) {
            err << "tidewick-cli copy-used: cannot create " << visibleText(folder) << ": Error "
                << errorText(made.error()) << '\n';
            return MoveFailed;
        }
    }
    QList<CopyItem> items;
    for (const UsedLine& line : scan->scan.sweep.used.lines) {
        if (line.exists) {
            items.append({line.text, line.path});
        }
    }
    CopyEvents events;
    events.failed = [&err](const CopyItem& item, const Error& error) {
        err << visibleText(copyFailureText(error, item.text)) << '\n';
        return CopyFailureAnswer::Ignore;
    };
    events.stopRequested = interrupted;
    const CopyOutcome outcome =
        copyUsedFiles(items, AddBackslash(folder), disk, events,
                      usedFileOwners(scan->scan.sweep.used.lines, scan->scan.sweep.kept));
    out << visibleText(copiedFilesLine(outcome.copied, folder)) << '\n';
    if (outcome.aborted) {
        return kInterrupted;
    }
    return outcome.failed > 0 ? MoveFailed : Success;
}

}  // namespace tidewick::cli
