#pragma once

#include <QString>

#include "fileops/disk_types.h"
#include "platform/result.h"

// The desktop's trash. On Linux and the BSDs it is the freedesktop trash: the home trash in the
// user's data folder ("~/.local/share/Trash", with "files" and "info"), and for a file of another
// volume that volume's own trash at its top directory (".Trash/<uid>" or ".Trash-<uid>");
// elsewhere, the system's own.
//
// A file of the home trash's disk is written there directly: a ".trashinfo" record that claims a
// name in "info", then one rename into "files". That costs two small writes a file, where the
// general route through QFile::moveToTrash looks up the mounted volumes for every file. Qt 6.4
// also writes "files" and "info" into the current directory when the home trash does not exist
// yet, so it is made first, and a place that Qt reports outside a trash counts as a failure.
namespace tidewick {

class Trash {
public:
    /// The user's trash as the environment names it now ($XDG_DATA_HOME/Trash, else
    /// $HOME/.local/share/Trash; none when neither is a full path).
    Trash();

    /// The home trash folder; empty where there is none (a relative home), or where the system
    /// keeps a trash of its own (Windows, macOS).
    const QString& home() const { return home_; }

    /// Puts `path` into the trash: the home trash for a file of its disk, else the trash of the
    /// file's own volume. Gives where it went.
    Result<TrashPlace> put(const QString& path) const;

    /// Puts the file `path`, a copy of a file just taken out of the trash, into the place `freed`
    /// that the file left: under that name, its record rewritten to name `path`. That spares the
    /// trash a record made and one deleted for each file, which a restore would otherwise pay.
    /// A run cut short between the two steps leaves a record that names where the same bytes
    /// were. A place that cannot take it (another disk, a name taken meanwhile) is given up, its
    /// record removed when its file is gone, and `path` is put into the trash as put() does.
    Result<TrashPlace> putInPlaceOf(const TrashPlace& freed, const QString& path) const;

private:
    // Writes `path` into the home trash directly; EXDEV when it cannot take the file this way
    // (another file system; a system without an atomic no-replace rename).
    Result<TrashPlace> putInHome(const QString& path) const;
    // The general route, which finds the trash of the file's volume.
    Result<TrashPlace> putByQt(const QString& path) const;
    // Puts `path` into the place `freed`; false, with the record as it was, when it cannot.
    bool reuse(const TrashPlace& freed, const QString& path) const;
    // Whether `folder` is the "files" folder of a trash.
    bool isFilesFolder(const QString& folder) const;

    QString home_;
};

}  // namespace tidewick
