#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

#include "app/cli/cli.h"
#include "app/cli/cli_output.h"
#include "app/cli/commands.h"
#include "app/cli/folder_load.h"
#include "forms/captions.h"
#include "readers/session_kinds.h"
#include "sweep/listed_disk.h"
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
    // A folder's lines run to tens of thousands: each is made whole in one text and handed to
    // the stream at once.
    QString text;
    const auto put = [&out, &text](bool checked, const QString& line) {
        text.resize(0);
        text.append(QStringView(checked ? u"[x] " : u"[ ] "));
        text.append(visibleText(line)).append(u'\n');
        out << text;
    };
    for (const UsedLine& line : shownUsedLines(folder.used())) {
        put(line.exists, line.text);
    }
    out << "unused: " << captions.unused << '\n';
    for (const OtherFile& file : folder.otherFiles()) {
        put(false, file.text);
    }
    out << keptText(folder.keptFiles());
    out << "info: " << captions.sizes << '\n';
}

// The numbers behind the captions, for a script.
QJsonObject totalsJson(const SessionFolder& folder) {
    qint64 missing = 0, bytes = 0, keptBytes = 0;
    for (const UsedLine& line : shownUsedLines(folder.used())) {
        missing += line.exists ? 0 : 1;
    }
    for (const OtherFile& file : folder.otherFiles()) {
        bytes += file.size;
    }
    for (const KeptFile& file : folder.keptFiles()) {
        keptBytes += file.size;
    }
    return {{QStringLiteral("usedLines"), shownUsedLines(folder.used()).size()},
            {QStringLiteral("missingLines"), missing},
            {QStringLiteral("files"), folder.otherFiles().size()},
            {QStringLiteral("bytes"), bytes},
            {QStringLiteral("keptFiles"), folder.keptFiles().size()},
            {QStringLiteral("keptBytes"), keptBytes}};
}

// Where and why a load stopped; null for a load that read every session.
QJsonValue stopJson(const SessionFolder& folder, const QStringList& problems) {
    if (!folder.stopped()) {
        return QJsonValue::Null;
    }
    return QJsonObject{{QStringLiteral("session"), folder.used().stoppedAt},
                       {QStringLiteral("unread"), folder.used().unread},
                       {QStringLiteral("reasons"), QJsonArray::fromStringList(problems)}};
}

// One JSON document with the captions, the totals and both lists, each line with the file it
// stands for.
void printFolderJson(const SessionFolder& folder, const QStringList& problems, QTextStream& out) {
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
    out << jsonDocument(
        QStringLiteral("scan"),
        {{QStringLiteral("folder"), folder.options().folder},
         {QStringLiteral("kind"), folder.options().kind->idText},
         {QStringLiteral("used"),
          QJsonObject{{QStringLiteral("caption"), captions.used}, {QStringLiteral("lines"), used}}},
         {QStringLiteral("unused"), QJsonObject{{QStringLiteral("caption"), captions.unused},
                                                {QStringLiteral("files"), others}}},
         {QStringLiteral("info"), captions.sizes},
         {QStringLiteral("totals"), totalsJson(folder)},
         {QStringLiteral("stopped"), folder.stopped()},
         {QStringLiteral("stop"), stopJson(folder, problems)},
         {QStringLiteral("kept"), QJsonObject{{QStringLiteral("files"), kept}}}});
}

}  // namespace

int runScan(const CommandLine& line, QTextStream& out, QTextStream& err) {
    const bool json = line.isSet(QStringLiteral("json"));
    const std::optional<FolderArguments> parsed = parseFolderArguments(line, err, false);
    if (!parsed) {
        return UsageError;
    }
    // A scan changes nothing: each folder is listed once for the whole command.
    const FileSystem real;
    const ListedDisk disk(real);
    SessionFolder folder(disk);
    QStringList problems;
    const int exitCode = loadFolder(*parsed, folder, err, QStringLiteral("scan"), &problems);
    if (exitCode == UsageError) {
        return exitCode;
    }
    if (json) {
        printFolderJson(folder, problems, out);
    } else {
        printFolder(folder, out);
    }
    return exitCode;
}

}  // namespace tidewick::cli
