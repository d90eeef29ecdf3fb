#include <QFileInfo>

#include "app/cli/cli.h"
#include "app/cli/console_interaction.h"
#include "platform/path_text.h"
#include "readers/import_rpp.h"
#include "readers/session_kinds.h"

namespace tidewick::cli {

int runMedia(const QStringList& arguments, QTextStream& out, QTextStream& err) {
    QString fileName;
    QString kindName;
    bool verbose = false;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        if (argument == QLatin1String("--verbose")) {
            verbose = true;
        } else if (argument == QLatin1String("--kind") && i + 1 < arguments.size()) {
            kindName = arguments[++i];
        } else if (argument.startsWith(QLatin1String("--")) || !fileName.isEmpty()) {
            err << "tidewick-cli media: unexpected argument '" << argument << "'\n";
            return UsageError;
        } else {
            fileName = argument;
        }
    }
    if (fileName.isEmpty()) {
        err << "usage: tidewick-cli media FILE [--kind ses|sesx|xml|rpp|veg] [--verbose]\n";
        return UsageError;
    }
    const SessionKind* kind =
        kindName.isEmpty() ? sessionKindForFile(fileName) : sessionKindByCaption(kindName);
    if (kind == nullptr) {
        if (kindName.isEmpty()) {
            err << "tidewick-cli media: cannot tell the kind of '" << fileName
                << "' from its extension; give --kind ses|sesx|xml|rpp|veg\n";
        } else {
            err << "tidewick-cli media: unknown kind '" << kindName
                << "'; use ses, sesx, xml, rpp or veg\n";
        }
        return UsageError;
    }
    const QFileInfo info(fileName);
    if (!info.isFile()) {
        err << "tidewick-cli media: no such file: " << fileName << '\n';
        return UsageError;
    }

    FileSystem fs;
    const SessionRead read =
        readSessionFile(*kind, info.absoluteFilePath(), SessionPlace{info.absolutePath(), &fs});
    if (read.message) {
        ConsoleInteraction ui(err);
        showOk(ui, read.message->text, read.message->title, read.message->icon);
    }
    if (read.outcome == ReaderOutcome::Rejected && kind->id == SessionKindId::Ses &&
        read.version.isEmpty()) {
        err << '"' << info.fileName() << "\" does not appear to be a valid session file.\n";
    }
    if (verbose) {
        if (kind->id == SessionKindId::Ses) {
            err << "version: " << read.version << '\n';
        }
        if (kind->id == SessionKindId::Rpp) {
            // The record folder a single-project load that starts from none arrives at.
            QString projectFolder = info.absolutePath();
            AddBackslash(projectFolder);
            QString recordFolder;
            for (const RecordPathLine& line : read.recordPaths) {
                recordFolder = foldRecordPath(recordFolder, line, projectFolder, false);
            }
            err << "record folder: " << recordFolder << '\n';
        }
    }
    if (read.outcome != ReaderOutcome::Read) {
        return ReaderError;
    }
    for (const QString& path : read.paths) {
        out << path << '\n';
    }
    return Success;
}

}  // namespace tidewick::cli
