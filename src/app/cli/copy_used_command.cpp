#include <QJsonArray>

#include "app/cli/cli.h"
#include "app/cli/cli_output.h"
#include "app/cli/commands.h"
#include "app/cli/folder_load.h"
#include "fileops/copy_used.h"
#include "fileops/move_run.h"
#include "text/number_text.h"
#include "text/path_text.h"

// `copy-used`: what the window's "Cop&y Files" copies (the used files present on disk), after
// the same scan as `scan`, with a log line a file as `move` prints them; a file that fails is
// reported and left out, as "Ignore" does, and a used file that is not on disk is named.
namespace tidewick::cli {

namespace {

// What became of each file, for the log's totals and the JSON summary.
struct CopyReport {
    QJsonArray files;
    QStringList missing;
};

QJsonObject fileJson(const CopyItem& item, const QString& destination, qint64 size,
                     const QString& outcome, const QString& result) {
    return {{QStringLiteral("text"), item.text},          {QStringLiteral("source"), item.source},
            {QStringLiteral("destination"), destination}, {QStringLiteral("size"), size},
            {QStringLiteral("outcome"), outcome},         {QStringLiteral("result"), result}};
}

// The events of the run: a log line a file on `out` (or a JSON entry with `json`), failures on
// `err`, the progress line, and --overwrite's answer.
CopyEvents copyEvents(bool json, bool keepExisting, CopyReport& report, ProgressLine& progress,
                      QTextStream& out, QTextStream& err) {
    const auto log = [json, &progress, &out](const CopyItem& item, const QString& result) {
        if (!json) {
            progress.clear();
            out << "Copying..." << visibleText(item.source) << result << '\n';
        }
    };
    CopyEvents events;
    events.copied = [&report, log](const CopyItem& item, const QString& destination, qint64 size) {
        const QString result =
            QStringLiteral("OK - ") + countText(size, "byte") + QStringLiteral(" copied.");
        report.files.append(fileJson(item, destination, size, QStringLiteral("copied"), result));
        log(item, QStringLiteral("...") + result);
    };
    events.skipped = [&report, log](const CopyItem& item, const QString& destination) {
        const QString result = QStringLiteral("Skipped - a file of that name is in the target");
        report.files.append(fileJson(item, destination, 0, QStringLiteral("skipped"), result));
        log(item, QStringLiteral("...") + result);
    };
    events.failed = [&report, &err, log](const CopyItem& item, const Error& error) {
        const QString result = QStringLiteral("Error ") + errorText(error);
        report.files.append(fileJson(item, {}, 0, QStringLiteral("failed"), result));
        log(item, QStringLiteral("...") + result);
        err << visibleText(copyFailureText(error, item.text)) << '\n';
        return CopyFailureAnswer::Ignore;
    };
    events.progress = [&progress](qint64 done, qint64 total) {
        progress.show([&] { return progressBytesText(done, total); });
    };
    if (keepExisting) {
        events.keepExisting = [](const CopyItem&, const QString&) { return true; };
    }
    events.stopRequested = interrupted;
    return events;
}

// "Files Copied: 2 - Files Skipped: 1 - Files Missing: 1 - Bytes Copied:  3,000 (0.00Mb)".
QString copyTotalsLine(const CopyOutcome& outcome, qsizetype missing) {
    return QStringLiteral("Files Copied: ") + groupedNumber(outcome.copied) +
           QStringLiteral(" - Files Skipped: ") + groupedNumber(outcome.skipped) +
           QStringLiteral(" - Files Missing: ") + groupedNumber(missing) +
           QStringLiteral(" - Bytes Copied:  ") + groupedNumber(outcome.bytes) +
           QStringLiteral(" (") + megabyteText(outcome.bytes) + QStringLiteral("Mb)");
}

QString copyJson(const QString& folder, const CopyReport& report, const CopyOutcome& outcome) {
    return jsonDocument(QStringLiteral("copy-used"),
                        {{QStringLiteral("destination"), folder},
                         {QStringLiteral("files"), report.files},
                         {QStringLiteral("missing"), QJsonArray::fromStringList(report.missing)},
                         {QStringLiteral("cancelled"), outcome.aborted},
                         {QStringLiteral("totals"),
                          QJsonObject{{QStringLiteral("filesCopied"), outcome.copied},
                                      {QStringLiteral("filesSkipped"), outcome.skipped},
                                      {QStringLiteral("filesFailed"), outcome.failed},
                                      {QStringLiteral("filesMissing"), report.missing.size()},
                                      {QStringLiteral("bytesCopied"), outcome.bytes}}}});
}

// Each file and where it would go, and whether a file of its name in the target keeps it out.
void printPlan(const CopyRequest& request, const QString& folder, bool keepExisting,
               const FileSystem& disk, QTextStream& out) {
    for (const CopyItem& item : request.items) {
        const QString destination = withSeparator(folder) + hostFileName(item.source);
        const bool skipped = keepExisting && disk.FileExists(destination);
        out << visibleText(item.source) << " -> " << visibleText(destination)
            << (skipped ? "  (skipped: a file of that name is in the target)" : "") << '\n';
    }
}

}  // namespace

int runCopyUsed(const CommandLine& line, QTextStream& out, QTextStream& err) {
    const std::optional<FolderArguments> parsed = parseFolderArguments(line, err, true);
    const std::optional<OverwriteAnswer> overwrite = overwriteOption(line, err);
    if (!parsed || !overwrite) {
        return UsageError;
    }
    const bool json = line.isSet(QStringLiteral("json"));
    const bool keepExisting = *overwrite == OverwriteAnswer::No;
    FileOperations disk;
    SessionFolder session(disk);
    if (const int exitCode =
            loadFolderToChange(*parsed, session, err, QStringLiteral("copy-used"), "copied");
        exitCode != Success) {
        return exitCode;
    }
    CopyReport report;
    for (const UsedLine& used : session.usedLines()) {
        if (!used.exists) {
            report.missing.append(used.path);
            err << "tidewick-cli copy-used: not on disk, not copied: " << visibleText(used.path)
                << '\n';
        }
    }
    const QString folder = parsed->target;
    const CopyRequest request = session.copyRequest(session.rowsOnDisk());
    if (line.isSet(QStringLiteral("dry-run"))) {
        printPlan(request, folder, keepExisting, disk, out);
        return Success;
    }
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
    ProgressLine progress(err, QStringLiteral("copy-used"));
    const CopyOutcome outcome = copyUsedFiles(
        request.items, withSeparator(folder), disk,
        copyEvents(json, keepExisting, report, progress, out, err), request.usedFiles);
    progress.clear();
    out << (json ? copyJson(folder, report, outcome)
                 : u'\n' + copyTotalsLine(outcome, report.missing.size()) + u'\n');
    if (outcome.aborted) {
        return kInterrupted;
    }
    return outcome.failed > 0 ? MoveFailed : Success;
}

}  // namespace tidewick::cli
