#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "app/cli/cli.h"
#include "app/cli/console_interaction.h"
#include "platform/path_text.h"
#include "readers/session_kinds.h"
#include "sweep/media_types.h"
#include "sweep/sweep.h"

// `scan`: the main window's two lists for one session folder, as the sweep computes them for
// the window, with the frame captions and the sizes line.
namespace tidewick::cli {

namespace {

const char* const kScanUsage =
    "usage: tidewick-cli scan FOLDER --kind ses|sesx|xml|rpp|veg (--session NAME | --all)\n"
    "                         [--trim] [--type N] [--keep-peaks] [--add-folder | --sub-folder "
    "PATH]\n"
    "                         [--json]\n";

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
    bool addFolder = false;  // the sub-folder row switched on
    bool subFolderGiven = false;
    QString subFolder;
    bool json = false;
};

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
        } else if (argument == QLatin1String("--add-folder")) {
            options.addFolder = true;
        } else if (argument == QLatin1String("--json")) {
            options.json = true;
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
    options.kind = sessionKindByCaption(kindName);
    if (options.kind == nullptr) {
        err << "tidewick-cli scan: unknown kind '" << kindName
            << "'; use ses, sesx, xml, rpp or veg\n";
        return false;
    }
    if ((options.addFolder || options.subFolderGiven) && options.kind->id != SessionKindId::Rpp &&
        options.kind->id != SessionKindId::Veg) {
        err << "tidewick-cli scan: --add-folder and --sub-folder need --kind rpp or veg, the kinds "
               "with a sub-folder row\n";
        return false;
    }
    return true;
}

// The request the window would make for these options: the tab switch gives the record
// folder and the sub-folder row their starting value, "Check All" empties the record folder for
// REAPER, and --add-folder switches the row on.
SweepRequest scanRequest(const ScanOptions& options, const QString& folder, const FileSystem& fs) {
    const SessionKind& kind = *options.kind;
    const bool projectKind = kind.id == SessionKindId::Rpp || kind.id == SessionKindId::Veg;
    SweepRequest request;
    request.kind = &kind;
    request.folder = folder;
    request.sessions = sessionFiles(fs, folder, kind.sessionPattern);
    request.wholeFolder = options.all;
    request.selected = options.all ? (request.sessions.isEmpty() ? -1 : 0)
                                   : int(request.sessions.indexOf(options.session));
    request.trimFolders = options.trim;
    request.recordFolder = projectKind ? folder : QStringLiteral("_Recorded");
    if (options.all && kind.id == SessionKindId::Rpp) {
        request.recordFolder.clear();
    }
    request.typePattern = mediaTypeTable().FileTypePatterns.value(options.type);
    request.peaksListed = options.type == 0;
    request.keepPeaks = options.keepPeaks;
    request.subFolderOn = options.addFolder;
    request.subFolder = projectKind ? folder : QString();
    return request;
}

// The captions of a scan as the window would show them, nothing checked.
struct Captions {
    QString used, unused, sizes;
};

Captions captionsOf(const SweepRequest& request, const Sweep& sweep) {
    qint64 listed = 0;
    for (const OtherFile& file : sweep.others) {
        listed += file.size;
    }
    const ScanRange range = scanRange(request);
    return {usedFrameText(sweep.used.lines.size(), sweep.used.noMedia, request.wholeFolder,
                          request.sessions.value(request.selected), sweep.used.stopped),
            unusedFrameText(0, sweep.others.size()),
            sweep.used.stopped ? stoppedText(sweep.used, range.last - range.first + 1)
                               : sizesText(listed, 0)};
}

// The folder chosen for the sub-folder row after the load, as its "Select Folder" button does:
// its files join those of the load, each once, with the lines that lead to it.
void addChosenFolder(const SweepRequest& request, const QString& chosen, Sweep& sweep,
                     const FileSystem& fs) {
    SweepRequest withFolder = request;
    withFolder.subFolderOn = true;
    withFolder.subFolder = chosen;
    QStringList used, listed;
    for (const UsedLine& line : sweep.used.lines) {
        used.append(line.text);
    }
    for (const OtherFile& file : sweep.others) {
        listed.append(file.text);
    }
    const QList<OtherFile> more =
        listSubFolder(withFolder, UsedIndex(used, request.folder, request.trimFolders),
                      sweep.used.recordFolder, fs);
    sweep.others.append(otherFilesNotListed(listed, more, withSeparator(request.folder)));
}

void printSweep(const SweepRequest& request, const Sweep& sweep, QTextStream& out) {
    const Captions captions = captionsOf(request, sweep);
    out << "used: " << visibleText(captions.used) << '\n';
    for (const UsedLine& line : sweep.used.lines) {
        out << (line.exists ? "[x] " : "[ ] ") << visibleText(line.text) << '\n';
    }
    out << "unused: " << captions.unused << '\n';
    for (const OtherFile& file : sweep.others) {
        out << "[ ] " << visibleText(file.text) << '\n';
    }
    out << "info: " << captions.sizes << '\n';
}

// One JSON document with the captions and both lists, each line with the file it stands for.
void printSweepJson(const SweepRequest& request, const Sweep& sweep, QTextStream& out) {
    const Captions captions = captionsOf(request, sweep);
    QJsonArray used;
    for (const UsedLine& line : sweep.used.lines) {
        used.append(QJsonObject{{QStringLiteral("text"), line.text},
                                {QStringLiteral("exists"), line.exists},
                                {QStringLiteral("path"), line.path}});
    }
    QJsonArray others;
    const QString folder = withSeparator(request.folder);
    for (const OtherFile& file : sweep.others) {
        others.append(QJsonObject{{QStringLiteral("text"), file.text},
                                  {QStringLiteral("size"), file.size},
                                  {QStringLiteral("path"), otherFilePath(folder, file.text)}});
    }
    const QJsonObject document{
        {QStringLiteral("used"),
         QJsonObject{{QStringLiteral("caption"), captions.used}, {QStringLiteral("lines"), used}}},
        {QStringLiteral("unused"), QJsonObject{{QStringLiteral("caption"), captions.unused},
                                               {QStringLiteral("files"), others}}},
        {QStringLiteral("info"), captions.sizes},
        {QStringLiteral("stopped"), sweep.used.stopped},
    };
    out << QJsonDocument(document).toJson(QJsonDocument::Indented);
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
    const FileSystem fs;
    const SweepRequest request = scanRequest(options, folderInfo.absoluteFilePath(), fs);
    if (request.selected < 0) {
        if (options.all) {
            err << "tidewick-cli scan: no " << options.kind->sessionPattern << " files in "
                << options.folder << '\n';
        } else {
            err << "tidewick-cli scan: no session file '" << options.session << "' in "
                << options.folder << " (pattern " << options.kind->sessionPattern << ")\n";
        }
        return UsageError;
    }

    ScanInteraction ui(err);
    SweepEvents events;
    events.tell = [&ui](const MessageBoxRequest& message) { ui.showMessage(message); };
    Sweep sweep = sweepFolder(request, fs, events);
    if (options.subFolderGiven && !sweep.used.stopped) {
        addChosenFolder(request, options.subFolder, sweep, fs);
    }
    if (options.json) {
        printSweepJson(request, sweep, out);
    } else {
        printSweep(request, sweep, out);
    }
    if (sweep.used.stopped) {
        const ScanRange range = scanRange(request);
        err << "tidewick-cli scan: " << stoppedText(sweep.used, range.last - range.first + 1)
            << '\n';
        return ReaderError;
    }
    return ui.failures > 0 ? ReaderError : Success;
}

}  // namespace tidewick::cli
