#pragma once

#include <QStringList>
#include <QTextStream>
#include <functional>
#include <optional>

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

/// A command's own options: given the arguments and the position of one that the folder's
/// options do not know, it takes it (and its value, moving the position on) and returns true,
/// or returns false for an argument it does not know either. It sets `bad` after saying what is
/// wrong.
using OwnOption = std::function<bool(const QStringList& arguments, qsizetype& at, bool& bad)>;

/// Reads the arguments of `command`; with `wantsTarget`, `--to TARGET` too (trimmed of blanks
/// where it enters, made a whole path). On a mistake says what is wrong, with `usage`, and gives
/// nothing.
std::optional<FolderArguments> parseFolderArguments(const QStringList& arguments, QTextStream& err,
                                                    const QString& command, const char* usage,
                                                    bool wantsTarget, const OwnOption& own = {});

/// Loads the folder of `arguments` into `folder` as the window would, telling the readers'
/// messages on `err`: Success, UsageError when the folder or the session is missing, ReaderError
/// when a session could not be read (said on `err`, the load then stopped).
int loadFolder(const FolderArguments& arguments, SessionFolder& folder, QTextStream& err,
               const QString& command);

}  // namespace tidewick::cli
