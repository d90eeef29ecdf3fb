#pragma once

#include <QString>
#include <functional>
#include <optional>

#include "platform/file_system.h"

// The disk as the move and the copy change it. Every change is made so that no byte is lost: a
// copy is complete under a temporary name before it takes its final name, and whatever leaves
// its place goes to the desktop's trash.
namespace tidewick {

/// A failure as the system reports it: its number and its description.
struct FileError {
    int code = 0;
    QString description;
    bool operator==(const FileError&) const = default;
};

/// A failure as messages show it: "2 (No such file or directory)".
QString errorText(const FileError& error);

/// What a change of the disk came to: nothing when it succeeded.
using FileResult = std::optional<FileError>;

/// The file-system object with the operations that change the disk. They are virtual so that
/// tests can stand in a disk that fails where a real one seldom does.
class FileOperations : public FileSystem {
public:
    /// Called as a copy goes on, with the bytes written since the last call.
    using Progress = std::function<void(qint64 bytes)>;

    /// The length of the file `path` itself in bytes (of a link, the link), or its failure.
    virtual std::optional<qint64> entrySize(const QString& path, FileError* error) const;

    /// Creates the folder `path`; its parent must exist.
    virtual FileResult createFolder(const QString& path);

    /// Copies the file `source` to `destination` so that a file under that name is always whole:
    /// the data goes to a temporary name beside it, the copy must have the source's size, and
    /// only then does it take the final name. A file already there is put into the trash first (a
    /// folder there makes the copy fail);
    /// a failure at any step leaves no temporary file, the old file in place and the source
    /// untouched. A symbolic link is copied as a link; its target is never read.
    virtual FileResult copyFile(const QString& source, const QString& destination,
                                const Progress& progress = {});

    /// Puts `path` into the desktop's trash.
    virtual FileResult moveToTrash(const QString& path);

    /// Deletes the file `path` for good.
    virtual FileResult removeFile(const QString& path);

    /// Writes what `path` holds through to the disk, so that it survives a power cut.
    virtual FileResult flushToDisk(const QString& path);
};

}  // namespace tidewick
