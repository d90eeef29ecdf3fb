#include "app/cli/folder_load.h"

#include <QDir>
#include <QFileInfo>

#include "app/cli/cli.h"
#include "app/cli/console_interaction.h"
#include "audit/audited_library.h"
#include "forms/captions.h"
#include "forms/core_messages.h"
#include "text/path_text.h"

namespace tidewick::cli {

namespace {

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

}  // namespace

namespace {

// The arguments of the load itself; false when `argument` is none of them.
bool takeLoadArgument(const QStringList& arguments, qsizetype& i, FolderArguments& parsed,
                      QString& kindName, bool& sessionGiven, bool& badType) {
    const QString& argument = arguments[i];
    const bool hasValue = i + 1 < arguments.size();
    SessionOptions& options = parsed.options;
    if (argument == QLatin1String("--all")) {
        parsed.all = true;
    } else if (argument == QLatin1String("--trim")) {
        options.trimFolders = true;
    } else if (argument == QLatin1String("--keep-peaks")) {
        options.keepPeaks = true;
    } else if (argument == QLatin1String("--add-folder")) {
        options.rowOn = true;
    } else if (argument == QLatin1String("--kind") && hasValue) {
        kindName = arguments[++i];
    } else if (argument == QLatin1String("--session") && hasValue) {
        parsed.session = arguments[++i];
        sessionGiven = true;
    } else if (argument == QLatin1String("--sub-folder") && hasValue) {
        parsed.pickedRowFolder = arguments[++i];
    } else if (argument == QLatin1String("--type") && hasValue) {
        bool number = false;
        options.mediaType = arguments[++i].toInt(&number);
        badType = !number || options.mediaType < 0 || options.mediaType > 23;
    } else {
        return false;
    }
    return true;
}

// Whether the arguments name a folder, a kind and one way to select sessions, the kind known and
// its options fitting it; says what is wrong otherwise.
bool checkLoadArguments(FolderArguments& parsed, const QString& kindName, bool sessionGiven,
                        QTextStream& err, const QString& command, const char* usage) {
    if (parsed.options.folder.isEmpty() || kindName.isEmpty() || sessionGiven == parsed.all) {
        err << usage;
        return false;
    }
    parsed.options.kind = sessionKindByIdText(kindName);
    if (parsed.options.kind == nullptr) {
        err << "tidewick-cli " << command << ": unknown kind '" << kindName
            << "'; use ses, sesx, xml, rpp or veg\n";
        return false;
    }
    if ((parsed.options.rowOn || parsed.pickedRowFolder) && !parsed.options.kind->subFolderRow) {
        err << "tidewick-cli " << command
            << ": --add-folder and --sub-folder need --kind rpp or veg, the kinds with a "
               "sub-folder row\n";
        return false;
    }
    return true;
}

}  // namespace

std::optional<FolderArguments> parseFolderArguments(const QStringList& arguments, QTextStream& err,
                                                    const QString& command, const char* usage,
                                                    bool wantsTarget, const OwnOption& own) {
    FolderArguments parsed;
    QString kindName;
    bool sessionGiven = false;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        bool badType = false;
        if (takeLoadArgument(arguments, i, parsed, kindName, sessionGiven, badType)) {
            if (badType) {
                err << "tidewick-cli " << command << ": --type takes a media type from 0 to 23\n";
                return std::nullopt;
            }
        } else if (wantsTarget && argument == QLatin1String("--to") && i + 1 < arguments.size()) {
            parsed.target = trimBlanks(arguments[++i]);
        } else if (bool bad = false; own && own(arguments, i, bad)) {
            if (bad) {
                return std::nullopt;
            }
        } else if (argument.startsWith(QLatin1String("--")) || !parsed.options.folder.isEmpty()) {
            err << "tidewick-cli " << command << ": unexpected argument '" << argument << "'\n"
                << usage;
            return std::nullopt;
        } else {
            parsed.options.folder = argument;
        }
    }
    if (!checkLoadArguments(parsed, kindName, sessionGiven, err, command, usage)) {
        return std::nullopt;
    }
    if (wantsTarget && parsed.target.isEmpty()) {
        err << "tidewick-cli " << command << ": --to TARGET is missing\n" << usage;
        return std::nullopt;
    }
    if (wantsTarget) {
        parsed.target = QDir::cleanPath(QFileInfo(parsed.target).absoluteFilePath());
    }
    return parsed;
}

int loadFolder(const FolderArguments& arguments, SessionFolder& folder, QTextStream& err,
               const QString& command) {
    const QFileInfo folderInfo(arguments.options.folder);
    if (!folderInfo.isDir()) {
        err << "tidewick-cli " << command << ": no such folder: " << arguments.options.folder
            << '\n';
        return UsageError;
    }
    const FileSystem disk;
    // The options a switch to the kind's tab leaves, then the session picked or "Check All".
    const SessionOptions& asked = arguments.options;
    SessionOptions options = startingOptions(*asked.kind, folderInfo.absoluteFilePath(), disk);
    options.trimFolders = asked.trimFolders;
    options.mediaType = asked.mediaType;
    options.keepPeaks = asked.keepPeaks;
    options.rowOn = asked.rowOn;
    options.excludeOn = asked.excludeOn;
    options.excluded = asked.excluded;
    if (arguments.all) {
        options = withWholeFolder(options);
    } else {
        options.selected = int(options.sessions.indexOf(arguments.session));
    }
    if (options.selected < 0) {
        if (arguments.all) {
            err << "tidewick-cli " << command << ": no " << asked.kind->sessionPattern
                << " files in " << asked.folder << '\n';
        } else {
            err << "tidewick-cli " << command << ": no session file '" << arguments.session
                << "' in " << asked.folder << " (pattern " << asked.kind->sessionPattern << ")\n";
        }
        return UsageError;
    }
    ScanInteraction ui(err);
    SweepEvents events;
    events.tell = [&ui](const ReadProblem& problem) {
        ui.showMessage(readProblemMessage(problem));
    };
    // The sessions of other folders that the last audit found using files here guard them, as
    // they do in the window.
    auto library = std::make_shared<std::pair<AuditedLibrary, FileSystem>>();
    folder.setSessionsElsewhere([library, &folder](const QStringList& folders) {
        return library->first.sessionsUsing(folders, library->second, folder.cache());
    });
    folder.load(options, events);
    if (arguments.pickedRowFolder && !folder.stopped()) {
        // Picked with the row's folder button after the load, the row switched on.
        SessionOptions picked = folder.options();
        picked.rowOn = true;
        folder.pickRowFolder(picked, *arguments.pickedRowFolder, events);
    }
    if (folder.stopped()) {
        err << "tidewick-cli " << command << ": "
            << stoppedText(folder.used(), folder.scannedCount()) << '\n';
    }
    return ui.failures > 0 || folder.stopped() ? ReaderError : Success;
}

}  // namespace tidewick::cli
