#include <QJsonArray>

#include "app/cli/cli.h"
#include "app/cli/cli_output.h"
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
    const std::optional<OverwriteAnswer> overwrite = overwriteOption(line, err);
    if (!overwrite) {
        return std::nullopt;
    }
    options.overwrite = *overwrite;
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

QString outcomeName(MovedFile::Outcome outcome) {
    switch (outcome) {
        case MovedFile::Outcome::Moved:
            return QStringLiteral("moved");
        case MovedFile::Outcome::Skipped:
            return QStringLiteral("skipped");
        case MovedFile::Outcome::Excluded:
            return QStringLiteral("excluded");
        case MovedFile::Outcome::Failed:
            return QStringLiteral("failed");
        case MovedFile::Outcome::CopiedSourceKept:
            return QStringLiteral("copiedSourceKept");
    }
    return {};
}

// A log line's words about a file, without the dots that join them to its name.
QString resultWords(const QString& result) {
    qsizetype dots = 0;
    while (dots < result.size() && result[dots] == u'.') {
        ++dots;
    }
    return result.mid(dots);
}

// The summary of a move for a script: each file done with, what became of it and the log's
// words for it, then the totals.
QString moveJson(const MoveRequest& request, const QList<MovedFile>& files,
                 const RecordedMove& move) {
    QJsonArray list;
    qsizetype item = 0;
    for (const MovedFile& file : files) {
        while (item < request.items.size() && request.items[item].text != file.text) {
            ++item;
        }
        list.append(
            QJsonObject{{QStringLiteral("text"), file.text},
                        {QStringLiteral("source"), file.source},
                        {QStringLiteral("destination"), file.destination},
                        {QStringLiteral("size"), file.size},
                        {QStringLiteral("outcome"), outcomeName(file.outcome)},
                        {QStringLiteral("result"), resultWords(move.outcome.results.value(item))}});
    }
    const MoveOutcome& outcome = move.outcome;
    return jsonDocument(QStringLiteral("move"),
                        {{QStringLiteral("destination"), moveDestination(request)},
                         {QStringLiteral("record"), move.record},
                         {QStringLiteral("files"), list},
                         {QStringLiteral("cancelled"), outcome.cancelled},
                         {QStringLiteral("totals"),
                          QJsonObject{{QStringLiteral("filesMoved"), outcome.filesMoved},
                                      {QStringLiteral("filesSkipped"), outcome.filesSkipped},
                                      {QStringLiteral("bytesMoved"), outcome.bytesMoved},
                                      {QStringLiteral("sourcesDeleted"), outcome.sourcesDeleted},
                                      {QStringLiteral("failed"), outcome.failed}}}});
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
    const bool json = line.isSet(QStringLiteral("json"));
    QList<MovedFile> files;
    ProgressLine progress(err, QStringLiteral("move"));
    MoveEvents events;
    events.explained = true;
    if (json) {
        events.fileDone = [&files](const MovedFile& file) { files.append(file); };
    } else {
        events.log = [&progress, print = logPrinter(out)](const QString& text) {
            progress.clear();
            print(text);
        };
    }
    events.progress = [&progress](qint64 done, qint64 total) {
        progress.show([&] { return progressBytesText(done, total); });
    };
    events.askOverwrite = [&options](const QString&) { return options.overwrite; };
    events.stopRequested = interrupted;
    const RecordedMove move = runRecordedMove(request, disk, events, moveRecordsFolder());
    progress.clear();
    if (!move.record.isEmpty()) {
        err << "tidewick-cli move: the record of this move is " << visibleText(move.record) << '\n';
    }
    out << (json ? moveJson(request, files, move) : QStringLiteral("\n"));
    if (interrupted()) {
        return kInterrupted;
    }
    return move.outcome.failed ? MoveFailed : Success;
}

}  // namespace tidewick::cli
