#include <QFileInfo>

#include "app/cli/cli.h"
#include "app/cli/commands.h"
#include "app/cli/console_interaction.h"
#include "app/cli/folder_load.h"
#include "forms/core_messages.h"
#include "readers/import_rpp.h"
#include "readers/session_kinds.h"
#include "text/path_text.h"

namespace tidewick::cli {

namespace {

struct MediaOptions {
    QString fileName;
    const SessionKind* kind = nullptr;
    bool verbose = false;
};

// Reads the arguments into `options`; on a mistake says what is wrong and returns false.
bool parseMediaArguments(const CommandLine& line, MediaOptions& options, QTextStream& err) {
    const QStringList positional = line.positional();
    if (positional.size() != 1) {
        usageError(line, err,
                   positional.isEmpty() ? QStringLiteral("FILE is missing")
                                        : QStringLiteral("unexpected argument '") +
                                              visibleText(positional[1]) + u'\'');
        return false;
    }
    options.fileName = positional.first();
    options.verbose = line.isSet(QStringLiteral("verbose"));
    const QString kindName = line.value(QStringLiteral("kind"));
    options.kind =
        kindName.isEmpty() ? sessionKindForFile(options.fileName) : sessionKindByIdText(kindName);
    if (options.kind == nullptr) {
        if (kindName.isEmpty()) {
            err << "tidewick-cli media: cannot tell the kind of '" << options.fileName
                << "' from its extension; give --kind: " << sessionKindIdTexts() << '\n';
        } else {
            err << "tidewick-cli media: unknown kind '" << kindName << "'; use " << sessionKindIdTexts()
                << '\n';
        }
        return false;
    }
    return true;
}

// The version of a binary session, and the record folder that a single-project load starting
// from none arrives at.
void printDetails(const SessionKind& kind, const SessionRead& read, const QFileInfo& info,
                  QTextStream& err) {
    if (kind.id == SessionKindId::Ses) {
        err << "version: " << (read.ses ? read.ses->version : QString()) << '\n';
    }
    if (kind.id == SessionKindId::Rpp) {
        const QString projectFolder = withSeparator(info.absolutePath());
        QString recordFolder;
        if (read.reaper) {
            for (const RecordPathLine& line : read.reaper->recordPaths) {
                recordFolder = foldRecordPath(recordFolder, line, projectFolder, false);
            }
        }
        err << "record folder: " << recordFolder << '\n';
    }
}

}  // namespace

int runMedia(const CommandLine& line, QTextStream& out, QTextStream& err) {
    MediaOptions options;
    if (!parseMediaArguments(line, options, err)) {
        return UsageError;
    }
    const QFileInfo info(options.fileName);
    if (!info.isFile()) {
        err << "tidewick-cli media: no such file: " << options.fileName << '\n';
        return UsageError;
    }
    const SessionKind& kind = *options.kind;
    FileSystem fs;
    const SessionRead read =
        readSessionFile(kind, info.absoluteFilePath(), SessionPlace{info.absolutePath(), &fs});
    if (read.problem) {
        ConsoleInteraction ui(err);
        ui.showMessage(readProblemMessage(*read.problem));
    }
    if (read.outcome == ReaderOutcome::Rejected && kind.id == SessionKindId::Ses &&
        (!read.ses || read.ses->version.isEmpty())) {
        const ReadProblem invalid{ReadFailure::NotThisKind,
                                  SessionKindId::Ses,
                                  ReadSeverity::Error,
                                  {},
                                  info.absoluteFilePath()};
        err << readProblemText(invalid) << '\n';
    }
    if (options.verbose) {
        printDetails(kind, read, info, err);
    }
    if (read.outcome != ReaderOutcome::Read) {
        return ReaderError;
    }
    for (const QString& path : read.paths) {
        out << visibleText(path) << '\n';
    }
    return Success;
}

}  // namespace tidewick::cli
