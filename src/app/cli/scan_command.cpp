#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "app/cli/cli.h"
#include "app/cli/folder_scan.h"
#include "forms/captions.h"
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

void printSweep(const SweepRequest& request, const Sweep& sweep, QTextStream& out) {
    const Captions captions = captionsOf(request, sweep);
    out << "used: " << visibleText(captions.used) << '\n';
    for (const UsedLine& line : shownUsedLines(sweep.used)) {
        out << (line.exists ? "[x] " : "[ ] ") << visibleText(line.text) << '\n';
    }
    out << "unused: " << captions.unused << '\n';
    for (const OtherFile& file : sweep.others) {
        out << "[ ] " << visibleText(file.text) << '\n';
    }
    if (!sweep.kept.isEmpty()) {
        out << "kept: " << sweep.kept.size() << " file(s) used by other sessions\n";
        for (const KeptFile& file : sweep.kept) {
            out << visibleText(file.text) << "  <- "
                << visibleText(file.usedBy.join(QStringLiteral(", "))) << '\n';
        }
    }
    out << "info: " << captions.sizes << '\n';
}

// One JSON document with the captions and both lists, each line with the file it stands for.
void printSweepJson(const SweepRequest& request, const Sweep& sweep, QTextStream& out) {
    const Captions captions = captionsOf(request, sweep);
    QJsonArray used;
    for (const UsedLine& line : shownUsedLines(sweep.used)) {
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
    QJsonArray kept;
    for (const KeptFile& file : sweep.kept) {
        kept.append(
            QJsonObject{{QStringLiteral("text"), file.text},
                        {QStringLiteral("path"), file.path},
                        {QStringLiteral("size"), file.size},
                        {QStringLiteral("usedBy"), QJsonArray::fromStringList(file.usedBy)}});
    }
    const QJsonObject document{
        {QStringLiteral("used"),
         QJsonObject{{QStringLiteral("caption"), captions.used}, {QStringLiteral("lines"), used}}},
        {QStringLiteral("unused"), QJsonObject{{QStringLiteral("caption"), captions.unused},
                                               {QStringLiteral("files"), others}}},
        {QStringLiteral("info"), captions.sizes},
        {QStringLiteral("stopped"), sweep.used.stopped},
        {QStringLiteral("kept"), QJsonObject{{QStringLiteral("files"), kept}}},
    };
    out << QJsonDocument(document).toJson(QJsonDocument::Indented);
}

}  // namespace

int runScan(const QStringList& arguments, QTextStream& out, QTextStream& err) {
    ScanOptions options;
    bool json = false;
    const auto jsonOption = [&json](const QStringList& all, qsizetype& at, bool&) {
        json = all[at] == QLatin1String("--json");
        return json;
    };
    if (!parseScanArguments(arguments, options, err, QStringLiteral("scan"), kScanUsage,
                            jsonOption)) {
        return UsageError;
    }
    int exitCode = UsageError;
    const std::optional<FolderScan> scan =
        scanFolder(options, err, QStringLiteral("scan"), exitCode);
    if (!scan) {
        return exitCode;
    }
    if (json) {
        printSweepJson(scan->request, scan->sweep, out);
    } else {
        printSweep(scan->request, scan->sweep, out);
    }
    return exitCode;
}

}  // namespace tidewick::cli
