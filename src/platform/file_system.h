#pragma once

#include <QString>

// The one file-system object of the process: the disk operations the logic relies on.
namespace tidewick {

class FileSystem {
public:
    /// True when `path` names an existing file (not a folder).
    bool FileExists(const QString& path) const;

    /// True when `path` names an existing folder; a relative path is taken from the current
    /// directory.
    bool FolderExists(const QString& path) const;

    /// The program's current directory.
    QString currentDirectory() const;
};

}  // namespace tidewick
