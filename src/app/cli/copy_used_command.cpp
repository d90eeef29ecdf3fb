#include "app/cli/cli.h"
#include "app/cli/commands.h"
#include "app/cli/folder_load.h"
#include "fileops/copy_used.h"
#include "fileops/move_run.h"
#include "text/path_text.h"

// `copy-used`: what the window's "Cop&y Files" copies (the used files present on disk), after
// the same scan as `scan`; a file that fails is reported and left out, as "Ignore" does.
namespace tidewick::cli {

int runCopyUsed(const CommandLine& line, QTextStream& out, QTextStream& err) {
    const std::optional<FolderArguments> parsed = parseFolderArguments(line, err, true);
    if (!parsed) {
        return UsageError;
    }
    FileOperations disk;
    SessionFolder session(disk);
    if (const int exitCode =
            loadFolderToChange(*parsed, session, err, QStringLiteral("copy-used"), "copied");
        exitCode != Success) {
        return exitCode;
    }
    QString folder = parsed->target;
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
    const CopyRequest request = session.copyRequest(session.rowsOnDisk());
    CopyEvents events;
    events.failed = [&err](const CopyItem& item, const Error& error) {
        err << visibleText(copyFailureText(error, item.text)) << '\n';
        return CopyFailureAnswer::Ignore;
    };
    events.stopRequested = interrupted;
    const CopyOutcome outcome =
        copyUsedFiles(request.items, AddBackslash(folder), disk, events, request.usedFiles);
    out << visibleText(copiedFilesLine(outcome.copied, folder)) << '\n';
    if (outcome.aborted) {
        return kInterrupted;
    }
    return outcome.failed > 0 ? MoveFailed : Success;
}

}  // namespace tidewick::cli
