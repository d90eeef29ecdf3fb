#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include "platform/file_system.h"
#include "readers/session_kinds.h"
#include "text/text_index.h"

// The project kinds (Ableton Live sets, Audacity projects, Ardour sessions, FL Studio and MLT
// projects) name their files by references that may be read several ways; a reference keeps every
// file it could name. A load of such a session lists the project's whole tree.
namespace tidewick {

class ListedDisk;

/// The folders a load of project sessions lists, from the project folder down.
struct ProjectTree {
    /// The project folder, with its separator: the lines of "Files to be Moved" are relative to it.
    QString root;
    /// Every folder of the tree, with its separator, and its path from the root ("" for the root,
    /// "Samples/Recorded/"), the root first.
    QList<std::pair<QString, QString>> folders;
    /// The files of the tree by usedKey of their name, as full paths.
    TextMap<QStringList> byName;

    /// The folders alone.
    QStringList folderPaths() const;
};

/// The project folder of a session of `kind` in `sessionFolder`: for a Live set the nearest
/// folder at or above it that holds "Ableton Project Info"; else (and for the other kinds) the
/// session folder. With its separator.
QString projectFolderOf(const SessionKind& kind, const QString& sessionFolder,
                        const FileSystem& fs);

/// The data folder of the Audacity project `sessionPath`: "<name>_data" beside it.
QString dataFolderOf(const QString& sessionPath);

/// Walks the tree a load of the `sessions` (full paths, each of a project kind) lists: a Live
/// project's folder whole (but its "Ableton Project Info"), or, without one, the set's folder and
/// its "Samples"; an Audacity project's folder and its data folder; the session's folder whole
/// for the other kinds. Hidden files and folders are
/// left out, links to folders never followed. Listings are handed to `listed` when given.
ProjectTree projectTree(const QStringList& sessions, const FileSystem& fs, ListedDisk* listed);

/// How one reference of a session stands on disk.
struct ReferenceFiles {
    QString shown;  ///< the used line: the file found, or how the session names it
    bool exists = false;
    bool outside = false;  ///< in an editor's library: keeps nothing in the project
    /// Every other file the reference could name that exists, and, when none does, the files of
    /// its name in the tree: kept.
    QStringList kept;
};

/// The files `reference` of the session `sessionPath` could name: its absolute paths as written;
/// its relative path from `folders` (the session's folder, and more for a backup), the project
/// folder of `tree` or the session's data folder; and, where none of those exists, a file of its
/// name anywhere in `tree`.
ReferenceFiles filesOfReference(const FileReference& reference, const QString& sessionPath,
                                const QStringList& folders, const ProjectTree& tree,
                                const FileSystem& fs);

/// The files of the project session `sessionPath` besides its own that are part of it and never
/// offered: an Audacity 3 project's "-wal" and "-shm"; the history, pending save, backups
/// ("*.bak") and "instant.xml" beside an Ardour session.
QStringList sessionOwnFiles(const QString& sessionPath, const FileSystem& fs);

/// Whether `name` is one of the files Ardour keeps beside its snapshots: their history
/// ("*.history"), a pending save, backups ("*.bak") and the window's state ("instant.xml", which
/// is no Audition XML session).
bool isArdourStateFile(const QString& name);

/// Whether the file `name` is part of a project session and never offered: a session file of a
/// project kind, or an Audacity 3 project's "-wal" or "-shm" companion.
bool partOfProjectSession(const QString& name);

}  // namespace tidewick
