#include "platform/file_system.h"

#include <QDir>
#include <QFileInfo>

namespace tidewick {

bool FileSystem::FileExists(const QString& path) const {
    const QFileInfo info(path);
    return info.exists() && !info.isDir();
}

bool FileSystem::FolderExists(const QString& path) const {
    return !path.isEmpty() && QFileInfo(path).isDir();
}

QString FileSystem::currentDirectory() const {
    return QDir::currentPath();
}

}  // namespace tidewick
