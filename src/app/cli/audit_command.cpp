#include <QElapsedTimer>

#include "app/cli/audit_output.h"
#include "app/cli/cli.h"
#include "app/cli/commands.h"
#include "app/cli/folder_load.h"
#include "audit/audit_text.h"
#include "audit/session_index.h"
#include "forms/core_messages.h"
#include "text/number_text.h"
#include "text/path_text.h"

// `audit`: every session folder under a root, what each could free and what each is missing.
namespace tidewick::cli {

namespace {

// The audit's progress on a terminal, a few times a second, on one line that the next one
// overwrites; nothing at all when stderr is a file or a pipe.
class ProgressLine {
public:
    explicit ProgressLine(QTextStream& err) : err_(err), live_(isTerminal(err)) { clock_.start(); }

    void show(const AuditProgress& progress) {
        if (!live_ || (clock_.elapsed() - shown_ < 100 && shown_ > 0)) {
            return;
        }
        shown_ = clock_.elapsed();
        err_ << "\r\x1b[Ktidewick-cli audit: " << progressText(progress, clock_.elapsed());
        err_.flush();
    }

    void clear() {
        if (live_ && shown_ > 0) {
            err_ << "\r\x1b[K";
            err_.flush();
        }
    }

private:
    QTextStream& err_;
    bool live_ = false;
    QElapsedTimer clock_;
    qint64 shown_ = 0;
};

}  // namespace

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
    SessionIndex index;
    if (const std::optional<QString>& aside = index.setAside()) {
        err << "tidewick-cli audit: the index could not be used and was set aside as "
            << visibleText(*aside) << "; a new one is made\n";
    }
    ProgressLine progressLine(err);
    AuditEvents events;
    events.progress = [&progressLine](const AuditProgress& progress) {
        progressLine.show(progress);
    };
    events.stopRequested = interrupted;
    events.describe = readProblemText;
    const LibraryReport report = auditLibrary(root, disk, &index, events);
    progressLine.clear();
    if (json) {
        out << QString::fromUtf8(auditJson(report));
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
