#pragma once

#include <QStringList>
#include <QTextStream>
#include <functional>
#include <optional>

#include "app/cli/command_line.h"
#include "fileops/overwrite_answer.h"
#include "session/session_folder.h"

// What the commands that start from one session folder (`scan`, `move`, `copy-used`) share: their
// arguments made into the load's options, and the load of the folder.
namespace tidewick::cli {

/// A command's arguments about its session folder: the load's options, the session to select by
/// name or every one, the folder picked for the sub-folder row after the load, and the target.
struct FolderArguments {
    SessionOptions options;
    QString session;
    bool all = false;
    std::optional<QString> pickedRowFolder;
    QString target;
};

/// Reads the arguments of a folder command; with `wantsTarget`, `--to TARGET` too (trimmed of
/// blanks where it enters, made a whole path). A session file given as FOLDER stands for its
/// folder and `--session` it; without `--kind`, the kind of FOLDER's sessions when they are all
/// of one kind. On a mistake says what is wrong and gives nothing.
std::optional<FolderArguments> parseFolderArguments(const CommandLine& line, QTextStream& err,
                                                    bool wantsTarget);

/// The answer of `--overwrite no|yes` to "a file of that name is in the target": No (the
/// default) or YesToAll; nothing, said, for any other value.
std::optional<OverwriteAnswer> overwriteOption(const CommandLine& line, QTextStream& err);

/// Says `problem` about the command of `line`, with where its help is; the usage error's code.
int usageError(const CommandLine& line, QTextStream& err, const QString& problem);

/// Loads the folder of `arguments` into `folder` as the window would, telling the readers'
/// messages on `err`: Success, UsageError when the folder or the session is missing, ReaderError
/// when a session could not be read (said on `err`, the load then stopped). The problems told
/// are also added to `told` where given, in plain words.
int loadFolder(const FolderArguments& arguments, SessionFolder& folder, QTextStream& err,
               const QString& command, QStringList* told = nullptr);

/// loadFolder for a command that changes the disk (`move`, `copy-used`): after a load that
/// stopped it also says that nothing was `done` ("moved").
int loadFolderToChange(const FolderArguments& arguments, SessionFolder& folder, QTextStream& err,
                       const QString& command, const char* done);

}  // namespace tidewick::cli
