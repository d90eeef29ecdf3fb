#include <QElapsedTimer>

#include "app/cli/audit_output.h"
#include "app/cli/cli.h"
#include "app/cli/cli_output.h"
#include "app/cli/commands.h"
#include "app/cli/folder_load.h"
#include "audit/audit_text.h"
#include "audit/session_index.h"
#include "forms/core_messages.h"
#include "text/number_text.h"
#include "text/path_text.h"

// `audit`: every session folder under a root, what each could free and what each is missing.
namespace tidewick::cli {

int runAudit(const CommandLine& line, QTextStream& out, QTextStream& err) {
    const QStringList positional = line.positional();
    const bool json = line.isSet(QStringLiteral("json"));
    const bool csv = line.isSet(QStringLiteral("csv"));
    const bool missing = line.isSet(QStringLiteral("missing"));
    if (positional.size() != 1) {
        return usageError(line, err,
                          positional.isEmpty() ? QStringLiteral("ROOT is missing")
                                               : QStringLiteral("unexpected argument '") +
                                                     visibleText(positional[1]) + u'\'');
    }
    const QString root = positional.first();
    if (json && csv) {
        return usageError(line, err, QStringLiteral("--json and --csv cannot be used together"));
    }
    const FileSystem disk;
    if (!disk.FolderExists(root)) {
        err << "tidewick-cli audit: no such folder: " << visibleText(root) << '\n';
        return UsageError;
    }
    SessionIndex index;  // opened as the audit begins
    ProgressLine progressLine(err, QStringLiteral("audit"));
    QElapsedTimer clock;
    clock.start();
    AuditEvents events;
    events.progress = [&progressLine, &clock](const AuditProgress& progress) {
        progressLine.show([&] { return progressText(progress, clock.elapsed()); });
    };
    events.stopRequested = interrupted;
    events.describe = readProblemText;
    const LibraryReport report = auditLibrary(root, disk, &index, events);
    progressLine.clear();
    if (const std::optional<QString>& aside = index.setAside()) {
        err << "tidewick-cli audit: the index could not be used and was set aside as "
            << visibleText(*aside) << "; a new one is made\n";
    }
    if (json) {
        out << auditJson(report);
    } else {
        out << (csv ? auditCsv(report) : auditText(report, missing));
    }
    for (const FolderReport& folder : report.folders) {
        if (folder.stopped) {
            err << "tidewick-cli audit: " << visibleText(folder.folder) << ": "
                << visibleText(folder.reason) << '\n';
        }
    }
    if (interrupted()) {
        return kInterrupted;
    }
    return report.stopped > 0 ? ReaderError : Success;
}

}  // namespace tidewick::cli
