#include "app/cli/folder_scan.h"

#include <QDir>
#include <QFileInfo>

#include "app/cli/cli.h"
#include "app/cli/console_interaction.h"
#include "forms/captions.h"
#include "forms/core_messages.h"
#include "platform/path_text.h"

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

bool parseScanArguments(const QStringList& arguments, ScanOptions& options, QTextStream& err,
                        const QString& command, const char* usage, const OwnOption& own) {
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
        } else if (argument == QLatin1String("--add-folder")) {
            options.addFolder = true;
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
                err << "tidewick-cli " << command << ": --type takes a media type from 0 to 23\n";
                return false;
            }
        } else if (bool bad = false; own && own(arguments, i, bad)) {
            if (bad) {
                return false;
            }
        } else if (argument.startsWith(QLatin1String("--")) || !options.folder.isEmpty()) {
            err << "tidewick-cli " << command << ": unexpected argument '" << argument << "'\n"
                << usage;
            return false;
        } else {
            options.folder = argument;
        }
    }
    if (options.folder.isEmpty() || kindName.isEmpty() || sessionGiven == options.all) {
        err << usage;
        return false;
    }
    options.kind = sessionKindByIdText(kindName);
    if (options.kind == nullptr) {
        err << "tidewick-cli " << command << ": unknown kind '" << kindName
            << "'; use ses, sesx, xml, rpp or veg\n";
        return false;
    }
    if ((options.addFolder || options.subFolderGiven) && !options.kind->subFolderRow) {
        err << "tidewick-cli " << command
            << ": --add-folder and --sub-folder need --kind rpp or veg, the kinds with a "
               "sub-folder row\n";
        return false;
    }
    return true;
}

namespace {

// The request the window would make for these options: the tab switch gives the record
// folder and the sub-folder row their starting value, "Check All" empties the record folder for
// REAPER, and --add-folder switches the row on.
SweepRequest scanRequest(const ScanOptions& options, const QString& folder, const FileSystem& fs) {
    const SessionKind& kind = *options.kind;
    SweepOptions window;
    window.kind = &kind;
    window.folder = folder;
    window.sessions = sessionFiles(fs, folder, kind.sessionPattern);
    window.wholeFolder = options.all;
    window.selected = options.all ? (window.sessions.isEmpty() ? -1 : 0)
                                  : int(window.sessions.indexOf(options.session));
    window.trimFolders = options.trim;
    window.mediaType = options.type;
    window.keepPeaks = options.keepPeaks;
    window.subFolderChecked = options.addFolder;
    window.subFolder = kind.startingRecordFolder(folder);
    window.recordFolder = startingRecordFolder(kind, folder, options.all);
    return sweepRequest(window);
}

// The folder chosen for the sub-folder row after the load, as its "Select Folder" button does:
// its files join those of the load, each once, with the lines that lead to it.
void addChosenFolder(const SweepRequest& request, const QString& chosen, Sweep& sweep,
                     const FileSystem& fs, const SweepEvents& events) {
    SweepRequest withFolder = request;
    withFolder.subFolderOn = true;
    withFolder.subFolder = chosen;
    // The sessions of the chosen folder guard their media too.
    const QString folder = subFolderPath(request.folder, chosen, fs);
    if (!folder.isEmpty()) {
        QString stoppedAt;
        auto guard = sessionGuard({folder}, request.folder, fs, nullptr, events, &stoppedAt);
        if (!guard) {
            sweep.used.stopped = true;
            sweep.used.stoppedAt = stoppedAt;
            sweep.used.unread = 0;
            sweep.others.clear();
            sweep.kept.clear();
            return;
        }
        sweep.index->addGuard(std::move(guard));
    }
    QStringList listed;
    for (const OtherFile& file : sweep.others) {
        listed.append(file.text);
    }
    const QList<OtherFile> more =
        listSubFolder(withFolder, *sweep.index, sweep.used.recordFolder, fs, &sweep.kept);
    sweep.others.append(otherFilesNotListed(listed, more, withSeparator(request.folder)));
}

}  // namespace

std::optional<FolderScan> scanFolder(const ScanOptions& options, QTextStream& err,
                                     const QString& command, int& exitCode) {
    exitCode = UsageError;
    const QFileInfo folderInfo(options.folder);
    if (!folderInfo.isDir()) {
        err << "tidewick-cli " << command << ": no such folder: " << options.folder << '\n';
        return std::nullopt;
    }
    const FileSystem fs;
    FolderScan scan;
    scan.request = scanRequest(options, folderInfo.absoluteFilePath(), fs);
    if (scan.request.selected < 0) {
        if (options.all) {
            err << "tidewick-cli " << command << ": no " << options.kind->sessionPattern
                << " files in " << options.folder << '\n';
        } else {
            err << "tidewick-cli " << command << ": no session file '" << options.session << "' in "
                << options.folder << " (pattern " << options.kind->sessionPattern << ")\n";
        }
        return std::nullopt;
    }
    ScanInteraction ui(err);
    SweepEvents events;
    events.tell = [&ui](const ReadProblem& problem) {
        ui.showMessage(readProblemMessage(problem));
    };
    scan.sweep = sweepFolder(scan.request, fs, events);
    if (options.subFolderGiven && !scan.sweep.used.stopped) {
        addChosenFolder(scan.request, options.subFolder, scan.sweep, fs, events);
    }
    if (scan.sweep.used.stopped) {
        const ScanRange range = scanRange(scan.request);
        err << "tidewick-cli " << command << ": "
            << stoppedText(scan.sweep.used, range.last - range.first + 1) << '\n';
    }
    exitCode = ui.failures > 0 || scan.sweep.used.stopped ? ReaderError : Success;
    return scan;
}

std::optional<TargetScan> scanForTarget(const QStringList& arguments, QTextStream& err,
                                        const QString& command, const char* usage,
                                        const QString& done, const OwnOption& own, int& exitCode) {
    exitCode = UsageError;
    ScanOptions options;
    QString target;
    const OwnOption withTarget = [&](const QStringList& all, qsizetype& at, bool& bad) {
        if (all[at] == QLatin1String("--to") && at + 1 < all.size()) {
            target = trimBlanks(all[++at]);
            return true;
        }
        return own && own(all, at, bad);
    };
    if (!parseScanArguments(arguments, options, err, command, usage, withTarget)) {
        return std::nullopt;
    }
    if (target.isEmpty()) {
        err << "tidewick-cli " << command << ": --to TARGET is missing\n" << usage;
        return std::nullopt;
    }
    std::optional<FolderScan> scan = scanFolder(options, err, command, exitCode);
    if (!scan || exitCode != Success) {
        if (scan) {
            err << "tidewick-cli " << command << ": nothing " << done << '\n';
        }
        return std::nullopt;
    }
    return TargetScan{std::move(*scan), QDir::cleanPath(QFileInfo(target).absoluteFilePath())};
}

}  // namespace tidewick::cli
