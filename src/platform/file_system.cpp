#include "platform/file_system.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <vector>

#ifdef Q_OS_UNIX
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#else
#include <QDirIterator>
#endif

namespace tidewick {

namespace {

// Sorted by name ignoring case, as the folder lists of the window show files; names that differ
// only in letter case keep a fixed order among themselves.
void sortByName(QList<FolderEntry>& entries) {
    std::vector<std::pair<QString, qsizetype>> keys;
    keys.reserve(size_t(entries.size()));
    for (qsizetype i = 0; i < entries.size(); ++i) {
        keys.emplace_back(entries[i].name.toLower(), i);
    }
    std::sort(keys.begin(), keys.end(), [&](const auto& a, const auto& b) {
        if (const int c = a.first.compare(b.first); c != 0) {
            return c < 0;
        }
        return entries[a.second].name < entries[b.second].name;
    });
    QList<FolderEntry> sorted;
    sorted.reserve(entries.size());
    for (const auto& key : keys) {
        sorted.append(std::move(entries[key.second]));
    }
    entries = std::move(sorted);
}

#ifdef Q_OS_UNIX
// One readdir pass and one stat per file: the directory entry's type says whether a name is a
// file or a link, and the stat gives the size (of the target, for a link) in the same call.
QList<FolderEntry> readFolder(const QString& folder) {
    QList<FolderEntry> entries;
    DIR* dir = ::opendir(QFile::encodeName(folder).constData());
    if (dir == nullptr) {
        return entries;
    }
    const int fd = ::dirfd(dir);
    while (const dirent* entry = ::readdir(dir)) {
        const char* name = entry->d_name;
        if (name[0] == '.') {
            continue;  // hidden, and "." and ".."
        }
        struct stat info {};
        bool link = entry->d_type == DT_LNK;
        if (entry->d_type == DT_UNKNOWN) {
            if (::fstatat(fd, name, &info, AT_SYMLINK_NOFOLLOW) != 0) {
                continue;
            }
            link = S_ISLNK(info.st_mode);
        }
        if (entry->d_type != DT_REG && entry->d_type != DT_LNK && entry->d_type != DT_UNKNOWN) {
            continue;  // a folder, pipe, socket or device
        }
        if (::fstatat(fd, name, &info, link ? 0 : AT_SYMLINK_NOFOLLOW) != 0 ||
            !S_ISREG(info.st_mode)) {
            continue;  // a broken link, or one that leads to no ordinary file
        }
        entries.append({QFile::decodeName(name), qint64(info.st_size), link});
    }
    ::closedir(dir);
    return entries;
}
#else
QList<FolderEntry> readFolder(const QString& folder) {
    QList<FolderEntry> entries;
    QDirIterator it(folder, QDir::Files);
    while (it.hasNext()) {
        it.next();
        const QFileInfo info = it.fileInfo();
        entries.append({info.fileName(), info.size(), info.isSymLink()});
    }
    return entries;
}
#endif

}  // namespace

bool FileSystem::FileExists(const QString& path) const {
#ifdef Q_OS_UNIX
    struct stat info {};
    return !path.isEmpty() && ::stat(QFile::encodeName(path).constData(), &info) == 0 &&
           !S_ISDIR(info.st_mode);
#else
    const QFileInfo info(path);
    return info.exists() && !info.isDir();
#endif
}

bool FileSystem::FolderExists(const QString& path) const {
    return !path.isEmpty() && QFileInfo(path).isDir();
}

qint64 FileSystem::fileSize(const QString& path) const {
    const QFileInfo info(path);
    return info.exists() && !info.isDir() ? info.size() : -1;
}

QList<FolderEntry> FileSystem::listFiles(const QString& folder) const {
    QList<FolderEntry> entries = readFolder(folder);
    sortByName(entries);
    return entries;
}

QString FileSystem::currentDirectory() const {
    return QDir::currentPath();
}

}  // namespace tidewick
