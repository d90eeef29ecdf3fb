#pragma once

#include <QString>
#include <optional>

#include "fileops/file_operations.h"

// The freedesktop trash in the user's data folder ("~/.local/share/Trash"), written directly for
// a file on the same file system: a ".trashinfo" record that claims a name in "info", then one
// rename into "files". That costs two small writes a file, where the general route through
// QFile::moveToTrash looks up the mounted volumes for every file.
namespace tidewick {

/// Puts `path` into the trash folder `trash` (which holds "files" and "info"), telling where it
/// went. Nothing when the home trash cannot take it this way (another file system; a system
/// without an atomic no-replace rename), so that the general route is taken.
std::optional<Result<TrashPlace>> moveToHomeTrash(const QString& path, const QString& trash);

/// Puts `path` into the trash place `freed` (a name in "files" that its file just left, and its
/// record), then rewrites the record in place to name `path`. Nothing, with the record left as
/// it was, when the place cannot take it. `path` is the copy of the file that left, so a run cut
/// short between the two steps leaves a record that names where the same bytes were.
std::optional<Result<void>> reuseTrashPlace(const TrashPlace& freed, const QString& path);

}  // namespace tidewick
