#include <QFileInfo>

#include "app/cli/cli.h"
#include "app/cli/console_interaction.h"
#include "readers/import_ses.h"
#include "readers/session_kinds.h"

namespace tidewick::cli {

namespace {

const SessionKind* kindByOption(const QString& name) {
    for (const SessionKind& kind : sessionKinds()) {
        if (kind.tabCaption.compare(name, Qt::CaseInsensitive) == 0) {
            return &kind;
        }
    }
    return nullptr;
}

}  // namespace

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
        kindName.isEmpty() ? sessionKindForFile(fileName) : kindByOption(kindName);
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

    ProgramState state;
    ConsoleInteraction ui(err);
    FileSystem fs;
    ReaderContext context{state, ui, fs, info.absolutePath()};
    const ReaderOutcome outcome = kind->reader(info.absoluteFilePath(), context);
    if (outcome == ReaderOutcome::Rejected && kind->id == SessionKindId::Ses &&
        state.SesVersion.isEmpty()) {
        err << '"' << info.fileName() << "\" does not appear to be a valid session file.\n";
    }
    if (verbose) {
        if (kind->id == SessionKindId::Ses) {
            err << "version: " << state.SesVersion << '\n';
        }
        if (kind->id == SessionKindId::Rpp) {
            err << "record folder: " << state.RecordFolder << '\n';
        }
    }
    if (outcome != ReaderOutcome::Read) {
        return ReaderError;
    }
    for (const QString& path : readerMediaPaths(*kind, state)) {
        out << path << '\n';
    }
    return Success;
}

}  // namespace tidewick::cli
