#pragma once

#include <QString>
#include <QStringList>
#include <optional>

#include "fileops/disk_types.h"

// What a line of a move's record may claim. A record is a file anyone can write (mailed,
// shared, left in a synced folder), so a restore takes none of its paths on trust: a source
// lies in the folders the move took files from, a copy in the move's target, a trash entry in
// a trash, with a ".trashinfo" record naming the file that went there. Paths are compared once
// their ".." steps and links are resolved, so that neither leads out of a folder.
namespace tidewick {

/// `path` as the kernel reaches it: its folders' links and ".." steps resolved (from the
/// nearest folder that exists), its own name kept, so that a link is the link itself. None
/// for a relative path, or one with a "." or ".." step past the folders that exist.
std::optional<QString> resolvedEntry(const QString& path);

/// Whether `path` lies inside `folder` (at any depth), both resolved; `folder` itself is not
/// inside.
bool liesInside(const QString& path, const QString& folder);

/// What the ".trashinfo" record `info` says: the path the file had, percent escapes undone
/// (a relative one as it stands); none when it is no such record (no "[Trash Info]" heading, no
/// Path=, no DeletionDate=, not an ordinary file, larger than a record can be).
std::optional<QString> trashInfoPath(const QString& info);

/// Why `place` is no entry of a trash that took the file `original`: its file not in the
/// "files" folder of the home trash `homeTrash` or of a volume's top-directory trash
/// (".Trash/<uid>", ".Trash-<uid>"), its record not the "info" of the same name, or the record
/// naming another file than `original` or `alsoNamed`. Nothing when it is one. An entry whose file
/// and record are both gone (an emptied trash) needs only its place to be right.
std::optional<QString> trashEntryDoubt(const TrashPlace& place, const QString& original,
                                       const QString& homeTrash, const QString& alsoNamed = {});

}  // namespace tidewick
