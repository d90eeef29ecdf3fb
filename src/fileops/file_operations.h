#pragma once

#include <QString>
#include <optional>

#include "fileops/disk_types.h"
#include "platform/file_system.h"
#include "platform/result.h"

// The disk as the move and the copy change it. Every change is made so that no byte is lost: a
// copy is complete under a temporary name before it takes its final name, and whatever leaves
// its place goes to the desktop's trash.
namespace tidewick {

/// The name a copy has on its way into a folder: hidden, short, and naming the process that
/// writes it, so that a later run can tell the leftovers of a run that died from a copy under way.
QString temporaryCopyName();

/// The file-system object with the operations that change the disk. They are virtual so that
/// tests can stand in a disk that fails where a real one seldom does.
class FileOperations : public FileSystem {
public:
    /// Called as a copy goes on, with the bytes written since the last call.
    using Progress = CopyProgress;

    /// The length of the file `path` itself in bytes (of a link, the link), or its failure.
    virtual Result<qint64> entrySize(const QString& path) const;

    /// Whether the folder `folder` can take new files; the failure says why not (a read-only
    /// disk, an immutable folder, no permission).
    virtual Result<void> writable(const QString& folder) const;

    /// The length and time of change of the entry `path` itself (of a link, the link).
    virtual std::optional<FileStamp> entryStamp(const QString& path) const;

    /// Creates the folder `path`; its parent must exist.
    virtual Result<void> createFolder(const QString& path);

    /// Copies the file `source` to `destination` so that a file under that name is always whole:
    /// the data goes to a temporary name beside it, the copy must have the source's size, and
    /// only then does it take the final name, by a rename that never replaces a file: a name
    /// that another program took meanwhile makes the copy fail. A file already there is put into
    /// the trash first when `mode` says so (a folder there makes the copy fail). A failure at any
    /// step leaves no temporary file, the old file in place and the source untouched. A source
    /// that changes (its size or time of change) while it is read is copied once more; changing
    /// again, the copy fails with changedWhileCopied (file_copy.h) and nothing takes its name.
    /// Gives where the file it replaced went in the trash (empty when it replaced none).
    virtual Result<TrashPlace> copyFile(const QString& source, const QString& destination,
                                        CopyMode mode = {}, const Progress& progress = {});

    /// Puts `path` into the desktop's trash (Trash::put) and gives where it went.
    virtual Result<TrashPlace> trash(const QString& path);

    /// Puts the file `path`, a copy of a file just taken out of the trash, into the place
    /// `freed` that the file left (Trash::putInPlaceOf), and gives where it went.
    virtual Result<TrashPlace> trashInPlaceOf(const TrashPlace& freed, const QString& path);

    /// Gives the file `from` the name `to`, which no file may have: it never replaces one (EXDEV
    /// when the two lie on different disks).
    virtual Result<void> renameNoReplace(const QString& from, const QString& to);

    /// Deletes the file `path` for good.
    virtual Result<void> removeFile(const QString& path);

    /// Writes what `path` holds through to the disk, so that it survives a power cut; a link is
    /// never opened (only its folder is written through).
    virtual Result<void> flushToDisk(const QString& path);

    /// Removes what runs that died left in `folder`: copies on their way (temporaryCopyName) of
    /// processes that no longer run.
    void removeLeftovers(const QString& folder);
};

}  // namespace tidewick
