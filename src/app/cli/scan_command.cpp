#include <QFileInfo>
#include <QSignalBlocker>

#include "app/cli/cli.h"
#include "app/cli/console_interaction.h"
#include "readers/session_kinds.h"
#include "sweep/main_form.h"

// `scan`: the main window's two lists for one session folder, computed by the window's own
// logic with no widgets: the tab, the options and the session are chosen as a user would, and
// the load runs from the selection.
namespace tidewick::cli {

namespace {

const char* const kScanUsage =
    "usage: tidewick-cli scan FOLDER --kind ses|sesx|xml|rpp|veg (--session NAME | --all)\n"
    "                         [--trim] [--type N] [--keep-peaks] [--sub-folder PATH]\n";

// The console user, who also keeps count of the failures the load reports.
class ScanInteraction : public ConsoleInteraction {
public:
    using ConsoleInteraction::ConsoleInteraction;

    MessageAnswer showMessage(const MessageBoxRequest& request) override {
        if (request.icon == MessageIcon::Critical || request.icon == MessageIcon::Exclamation) {
            ++failures;
        }
        return ConsoleInteraction::showMessage(request);
    }

    int failures = 0;
};

struct ScanOptions {
    QString folder;
    const SessionKind* kind = nullptr;
    QString session;
    bool all = false;
    bool trim = false;
    int type = 0;
    bool keepPeaks = false;
    bool subFolderGiven = false;
    QString subFolder;
};

const SessionKind* kindByOption(const QString& name) {
    for (const SessionKind& kind : sessionKinds()) {
        if (kind.tabCaption.compare(name, Qt::CaseInsensitive) == 0) {
            return &kind;
        }
    }
    return nullptr;
}

// Reads the arguments into `options`; on a mistake says what is wrong and returns false.
bool parseScanArguments(const QStringList& arguments, ScanOptions& options, QTextStream& err) {
    QString kindName;
    bool sessionGiven = false;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        const bool hasValue = i + 1 < arguments.size();
        if (argument == QLatin1String("--all")) {
            options.all = true;
        } else if (argument == QLatin1String("--trim")) {
            options.trim = true;
        } else if (argument == QLatin1String("--keep-peaks")) {
            options.keepPeaks = true;
        } else if (argument == QLatin1String("--kind") && hasValue) {
            kindName = arguments[++i];
        } else if (argument == QLatin1String("--session") && hasValue) {
            options.session = arguments[++i];
            sessionGiven = true;
        } else if (argument == QLatin1String("--sub-folder") && hasValue) {
            options.subFolder = arguments[++i];
            options.subFolderGiven = true;
        } else if (argument == QLatin1String("--type") && hasValue) {
            bool number = false;
            options.type = arguments[++i].toInt(&number);
            if (!number || options.type < 0 || options.type > 23) {
                err << "tidewick-cli scan: --type takes a media type from 0 to 23\n";
                return false;
            }
        } else if (argument.startsWith(QLatin1String("--")) || !options.folder.isEmpty()) {
            err << "tidewick-cli scan: unexpected argument '" << argument << "'\n" << kScanUsage;
            return false;
        } else {
            options.folder = argument;
        }
    }
    if (options.folder.isEmpty() || kindName.isEmpty() || sessionGiven == options.all) {
        err << kScanUsage;
        return false;
    }
    options.kind = kindByOption(kindName);
    if (options.kind == nullptr) {
        err << "tidewick-cli scan: unknown kind '" << kindName
            << "'; use ses, sesx, xml, rpp or veg\n";
        return false;
    }
    if (options.subFolderGiven && options.kind->id != SessionKindId::Rpp &&
        options.kind->id != SessionKindId::Veg) {
        err << "tidewick-cli scan: --sub-folder needs --kind rpp or veg, the kinds with a "
               "sub-folder row\n";
        return false;
    }
    return true;
}

}  // namespace

int runScan(const QStringList& arguments, QTextStream& out, QTextStream& err) {
    ScanOptions options;
    if (!parseScanArguments(arguments, options, err)) {
        return UsageError;
    }
    const QFileInfo folderInfo(options.folder);
    if (!folderInfo.isDir()) {
        err << "tidewick-cli scan: no such folder: " << options.folder << '\n';
        return UsageError;
    }

    ScanInteraction ui(err);
    MainForm form(ui);
    form.Form_Load();
    form.pointBrowserAt(folderInfo.absoluteFilePath());
    {
        // The tab switch runs once, also when the kind's tab is the one already selected.
        const QSignalBlocker blocker(form.FileTypeTab);
        form.selectTabByKey(options.kind->tabKey);
    }
    form.FileTypeTab_Click();

    form.IgnoreFoldersCheck.setChecked(options.trim);
    form.ScanAll.setChecked(options.all);
    form.FileTypesCombo.setListIndex(options.type);
    form.KeepPKCheck.setChecked(options.keepPeaks);
    if (options.subFolderGiven) {
        // As when the folder has been chosen with the row's button and the box then checked.
        form.state.RecordFolder = options.subFolder;
        form.SubFolderName.setText(options.subFolder);
        form.SubFolderCheck.setChecked(true);
    }

    const QStringList sessions = form.SESFile.items();
    const int index = options.all ? (sessions.isEmpty() ? -1 : 0)
                                  : static_cast<int>(sessions.indexOf(options.session));
    if (index < 0) {
        if (options.all) {
            err << "tidewick-cli scan: no " << options.kind->sessionPattern << " files in "
                << options.folder << '\n';
        } else {
            err << "tidewick-cli scan: no session file '" << options.session << "' in "
                << options.folder << " (pattern " << options.kind->sessionPattern << ")\n";
        }
        return UsageError;
    }
    form.SESFile.setListIndex(index);  // the selection runs the load

    out << "used: " << form.UsedFrame.text() << '\n';
    for (int row = 0; row < form.UsedFiles.count(); ++row) {
        out << (form.UsedFiles.isChecked(row) ? "[x] " : "[ ] ") << form.UsedFiles.text(row)
            << '\n';
    }
    out << "unused: " << form.UnusedFrame.text() << '\n';
    for (int row = 0; row < form.UnusedFiles.count(); ++row) {
        out << (form.UnusedFiles.isChecked(row) ? "[x] " : "[ ] ") << form.UnusedFiles.text(row)
            << '\n';
    }
    out << "info: " << form.InfoLabel.text() << '\n';
    return ui.failures > 0 ? ReaderError : Success;
}

}  // namespace tidewick::cli
