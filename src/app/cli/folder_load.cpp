#include "app/cli/folder_load.h"

#include <QDir>
#include <QFileInfo>

#include "app/cli/cli.h"
#include "app/cli/console_interaction.h"
#include "audit/audited_library.h"
#include "forms/captions.h"
#include "forms/core_messages.h"
#include "readers/session_kinds.h"
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

// The kind of the sessions in `folder` when they are all of one kind; nullptr when there are
// none or several.
const SessionKind* kindOfSessionsIn(const QString& folder) {
    const SessionKind* found = nullptr;
    for (const FolderEntry& entry : FileSystem().listFiles(folder, true)) {
        const SessionKind* kind = sessionKindForFile(entry.name);
        if (kind != nullptr && found != nullptr && kind != found) {
            return nullptr;
        }
        found = kind != nullptr ? kind : found;
    }
    return found;
}

// The folder, kind and session the arguments name: a session file given as FOLDER stands for its
// folder and that session. Gives the problem's words when they name none.
std::optional<QString> takeFolderAndKind(const CommandLine& line, FolderArguments& parsed) {
    const QStringList positional = line.positional();
    if (positional.isEmpty()) {
        return QStringLiteral("FOLDER is missing");
    }
    if (positional.size() > 1) {
        return QStringLiteral("unexpected argument '") + visibleText(positional[1]) + u'\'';
    }
    parsed.options.folder = positional.first();
    const QFileInfo given(parsed.options.folder);
    if (given.isFile()) {
        const SessionKind* kind = sessionKindForFile(given.fileName());
        if (kind == nullptr || line.isSet(QStringLiteral("session")) ||
            line.isSet(QStringLiteral("all"))) {
            return visibleText(parsed.options.folder) + QStringLiteral(" is a file, not a folder");
        }
        parsed.options.folder = given.absolutePath();
        parsed.session = given.fileName();
        parsed.options.kind = kind;
    }
    const QString kindName = line.value(QStringLiteral("kind"));
    if (!kindName.isEmpty()) {
        parsed.options.kind = sessionKindByIdText(kindName);
        if (parsed.options.kind == nullptr) {
            return QStringLiteral("unknown kind '") + visibleText(kindName) +
                   QStringLiteral("'; use ") + sessionKindIdTexts();
        }
    } else if (parsed.options.kind == nullptr) {
        // The session's name tells the kind, or else the folder's sessions, all of one kind.
        parsed.options.kind = sessionKindForFile(line.value(QStringLiteral("session")));
        if (parsed.options.kind == nullptr) {
            parsed.options.kind = kindOfSessionsIn(parsed.options.folder);
        }
        if (parsed.options.kind == nullptr) {
            return QStringLiteral("--kind is required: ") + sessionKindIdTexts();
        }
    }
    return std::nullopt;
}

// The load's own options; gives the problem's words when they do not fit together.
std::optional<QString> takeLoadOptions(const CommandLine& line, FolderArguments& parsed) {
    SessionOptions& options = parsed.options;
    if (parsed.session.isEmpty()) {
        parsed.session = line.value(QStringLiteral("session"));
    }
    parsed.all = line.isSet(QStringLiteral("all"));
    if (parsed.all && !parsed.session.isEmpty()) {
        return QStringLiteral("--session and --all cannot be used together");
    }
    if (!parsed.all && parsed.session.isEmpty()) {
        return QStringLiteral("--session NAME or --all is required");
    }
    options.trimFolders = line.isSet(QStringLiteral("trim"));
    options.keepPeaks = line.isSet(QStringLiteral("keep-peaks"));
    options.rowOn = line.isSet(QStringLiteral("add-folder"));
    if (line.isSet(QStringLiteral("sub-folder"))) {
        parsed.pickedRowFolder = line.value(QStringLiteral("sub-folder"));
    }
    if (options.rowOn && parsed.pickedRowFolder) {
        return QStringLiteral("--add-folder and --sub-folder cannot be used together");
    }
    if ((options.rowOn || parsed.pickedRowFolder) && !options.kind->subFolderRow) {
        return QStringLiteral(
            "--add-folder and --sub-folder need --kind rpp or veg, the kinds "
            "with a sub-folder row");
    }
    if (line.isSet(QStringLiteral("type"))) {
        bool number = false;
        options.mediaType = line.value(QStringLiteral("type")).toInt(&number);
        if (!number || options.mediaType < 0 || options.mediaType > 23) {
            return QStringLiteral("--type takes a media type from 0 to 23");
        }
    }
    return std::nullopt;
}

// The position of the session `asked` (a name, or a path whose file name is taken) in
// `sessions`: the name as it stands, else the one name that matches it ignoring letter case and
// the Unicode form of accented letters, as the window compares names; −1 for none.
int sessionIndex(const QStringList& sessions, const QString& asked) {
    const QString name = hostFileName(asked);
    if (const qsizetype exact = sessions.indexOf(name); exact >= 0) {
        return int(exact);
    }
    int found = -1;
    for (int index = 0; index < sessions.size(); ++index) {
        if (usedKey(sessions[index]) == usedKey(name)) {
            if (found >= 0) {
                return -1;  // two sessions differ only so: neither is taken for the other
            }
            found = index;
        }
    }
    return found;
}

}  // namespace

std::optional<OverwriteAnswer> overwriteOption(const CommandLine& line, QTextStream& err) {
    const QString answer = line.value(QStringLiteral("overwrite"));
    if (!line.isSet(QStringLiteral("overwrite")) || answer == QLatin1String("no")) {
        return OverwriteAnswer::No;
    }
    if (answer == QLatin1String("yes")) {
        return OverwriteAnswer::YesToAll;
    }
    usageError(line, err, QStringLiteral("--overwrite takes no or yes"));
    return std::nullopt;
}

int usageError(const CommandLine& line, QTextStream& err, const QString& problem) {
    err << "tidewick-cli " << line.command() << ": " << problem << "\nTry 'tidewick-cli "
        << line.command() << " --help'.\n";
    return UsageError;
}

std::optional<FolderArguments> parseFolderArguments(const CommandLine& line, QTextStream& err,
                                                    bool wantsTarget) {
    FolderArguments parsed;
    std::optional<QString> problem = takeFolderAndKind(line, parsed);
    if (!problem) {
        problem = takeLoadOptions(line, parsed);
    }
    if (!problem && wantsTarget) {
        parsed.target = trimBlanks(line.value(QStringLiteral("to")));
        if (parsed.target.isEmpty()) {
            problem = QStringLiteral("--to TARGET is required");
        } else {
            parsed.target = QDir::cleanPath(QFileInfo(parsed.target).absoluteFilePath());
        }
    }
    if (problem) {
        usageError(line, err, *problem);
        return std::nullopt;
    }
    return parsed;
}

int loadFolder(const FolderArguments& arguments, SessionFolder& folder, QTextStream& err,
               const QString& command, QStringList* told) {
    const QFileInfo folderInfo(arguments.options.folder);
    if (!folderInfo.isDir()) {
        err << "tidewick-cli " << command << ": no such folder: " << arguments.options.folder
            << '\n';
        return UsageError;
    }
    // The options a switch to the kind's tab leaves, then the session picked or "Check All".
    const SessionOptions& asked = arguments.options;
    SessionOptions options = atFolder(asked, folderInfo.absoluteFilePath(), folder.disk());
    if (arguments.all) {
        options = withWholeFolder(options);
    } else {
        options.selected = sessionIndex(options.sessions, arguments.session);
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
    events.tell = [&ui, told](const ReadProblem& problem) {
        ui.showMessage(readProblemMessage(problem));
        if (told != nullptr) {
            told->append(readProblemText(problem));
        }
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

int loadFolderToChange(const FolderArguments& arguments, SessionFolder& folder, QTextStream& err,
                       const QString& command, const char* done) {
    const int exitCode = loadFolder(arguments, folder, err, command);
    if (exitCode != Success && exitCode != UsageError) {
        err << "tidewick-cli " << command << ": nothing " << done << '\n';
    }
    return exitCode;
}

}  // namespace tidewick::cli
