#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "app/cli/cli.h"
#include "app/cli/commands.h"
#include "app/cli/folder_load.h"
#include "forms/captions.h"
#include "readers/session_kinds.h"
#include "sweep/media_types.h"
#include "sweep/sweep.h"
#include "text/path_text.h"

// `scan`: the main window's two lists for one session folder, as the sweep computes them for
// the window, with the frame captions and the sizes line.
namespace tidewick::cli {

namespace {

// The captions of a scan as the window would show them, nothing checked.
struct Captions {
    QString used, unused, sizes;
};

Captions captionsOf(const SessionFolder& folder) {
    qint64 listed = 0;
    for (const OtherFile& file : folder.otherFiles()) {
        listed += file.size;
    }
    const SessionOptions& options = folder.options();
    return {usedFrameText(folder.usedLines().size(), folder.used().noMedia, options.wholeFolder,
                          options.selectedSession(), folder.stopped()),
            unusedFrameText(0, folder.otherFiles().size()),
            folder.stopped() ? stoppedText(folder.used(), folder.scannedCount())
                             : sizesText(listed, 0)};
}

void printFolder(const SessionFolder& folder, QTextStream& out) {
    const Captions captions = captionsOf(folder);
    out << "used: " << visibleText(captions.used) << '\n';
    for (const UsedLine& line : shownUsedLines(folder.used())) {
        out << (line.exists ? "[x] " : "[ ] ") << visibleText(line.text) << '\n';
    }
    out << "unused: " << captions.unused << '\n';
    for (const OtherFile& file : folder.otherFiles()) {
        out << "[ ] " << visibleText(file.text) << '\n';
    }
    if (!folder.keptFiles().isEmpty()) {
        out << "kept: " << folder.keptFiles().size() << " file(s) used by other sessions\n";
        for (const KeptFile& file : folder.keptFiles()) {
            out << visibleText(file.text) << "  <- "
                << visibleText(file.usedBy.join(QStringLiteral(", "))) << '\n';
        }
    }
    out << "info: " << captions.sizes << '\n';
}

// One JSON document with the captions and both lists, each line with the file it stands for.
void printFolderJson(const SessionFolder& folder, QTextStream& out) {
    const Captions captions = captionsOf(folder);
    QJsonArray used;
    for (const UsedLine& line : shownUsedLines(folder.used())) {
        QJsonObject entry{{QStringLiteral("text"), line.text},
                          {QStringLiteral("exists"), line.exists},
                          {QStringLiteral("path"), line.path}};
        if (line.outside) {
            entry.insert(QStringLiteral("outside"), true);  // in an editor's library or pack
        }
        used.append(entry);
    }
    QJsonArray others;
    const QString sessionFolder = withSeparator(folder.root());
    for (const OtherFile& file : folder.otherFiles()) {
        others.append(
            QJsonObject{{QStringLiteral("text"), file.text},
                        {QStringLiteral("size"), file.size},
                        {QStringLiteral("path"), otherFilePath(sessionFolder, file.text)}});
    }
    QJsonArray kept;
    for (const KeptFile& file : folder.keptFiles()) {
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
        {QStringLiteral("stopped"), folder.stopped()},
        {QStringLiteral("kept"), QJsonObject{{QStringLiteral("files"), kept}}},
    };
    out << QJsonDocument(document).toJson(QJsonDocument::Indented);
}

}  // namespace

int runScan(const CommandLine& line, QTextStream& out, QTextStream& err) {
    const bool json = line.isSet(QStringLiteral("json"));
    const std::optional<FolderArguments> parsed = parseFolderArguments(line, err, false);
    if (!parsed) {
        return UsageError;
    }
    const FileSystem disk;
    SessionFolder folder(disk);
    const int exitCode = loadFolder(*parsed, folder, err, QStringLiteral("scan"));
    if (exitCode == UsageError) {
        return exitCode;
    }
    if (json) {
        printFolderJson(folder, out);
    } else {
        printFolder(folder, out);
    }
    return exitCode;
}

}  // namespace tidewick::cli
