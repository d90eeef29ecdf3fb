#include "platform/file_system.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <numeric>
#include <string>
#include <string_view>
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

// The order of `entries` by their names lower-cased, as UTF-16 code units compare; names that
// differ only in letter case by the names themselves.
template <typename Entry>
std::vector<qsizetype> orderByLowered(const QList<Entry>& entries) {
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
    std::vector<qsizetype> order;
    order.reserve(keys.size());
    for (const auto& key : keys) {
        order.push_back(key.second);
    }
    return order;
}

// The same order when every name is ASCII (else empty): then a byte compares as its code unit
// does, and each name lower-cased is its bytes with A-Z moved, held in one buffer.
template <typename Entry>
std::vector<qsizetype> orderByAsciiBytes(const QList<Entry>& entries) {
    qsizetype total = 0;
    for (const Entry& entry : entries) {
        if (!QtPrivate::isAscii(entry.name)) {
            return {};
        }
        total += 2 * entry.name.size();
    }
    std::string bytes(size_t(total), '\0');
    std::vector<std::pair<std::string_view, std::string_view>> names;  // lowered, as written
    names.reserve(size_t(entries.size()));
    char* out = bytes.data();
    for (const Entry& entry : entries) {
        const auto size = size_t(entry.name.size());
        for (size_t i = 0; i < size; ++i) {
            const char c = char(entry.name[qsizetype(i)].unicode());
            out[size + i] = c;
            out[i] = c >= 'A' && c <= 'Z' ? char(c + 32) : c;
        }
        names.emplace_back(std::string_view(out, size), std::string_view(out + size, size));
        out += 2 * size;
    }
    std::vector<qsizetype> order(names.size());
    std::iota(order.begin(), order.end(), 0);
    std::sort(order.begin(), order.end(),
              [&](qsizetype a, qsizetype b) { return names[size_t(a)] < names[size_t(b)]; });
    return order;
}

// Sorted by name ignoring case, as the folder lists of the window show files; names that differ
// only in letter case keep a fixed order among themselves.
template <typename Entry>
void sortByName(QList<Entry>& entries) {
    std::vector<qsizetype> order = orderByAsciiBytes(entries);
    if (order.empty()) {
        order = orderByLowered(entries);
    }
    QList<Entry> sorted;
    sorted.reserve(entries.size());
    for (const qsizetype at : order) {
        sorted.append(std::move(entries[at]));
    }
    entries = std::move(sorted);
}

#ifdef Q_OS_UNIX
// The length of the valid UTF-8 sequence at the start of `bytes`, or 0 when there is none.
qsizetype utf8SequenceLength(QByteArrayView bytes) {
    const auto lead = static_cast<unsigned char>(bytes[0]);
    const qsizetype length = lead < 0x80   ? 1
                             : lead < 0xC2 ? 0
                             : lead < 0xE0 ? 2
                             : lead < 0xF0 ? 3
                             : lead < 0xF5 ? 4
                                           : 0;
    if (length == 0 || length > bytes.size()) {
        return 0;
    }
    for (qsizetype i = 1; i < length; ++i) {
        if ((static_cast<unsigned char>(bytes[i]) & 0xC0) != 0x80) {
            return 0;
        }
    }
    // Overlong forms, surrogates and code points past U+10FFFF are no UTF-8.
    const auto second = static_cast<unsigned char>(bytes.size() > 1 ? bytes[1] : 0);
    if ((lead == 0xE0 && second < 0xA0) || (lead == 0xED && second >= 0xA0) ||
        (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second >= 0x90)) {
        return 0;
    }
    return length;
}

// One readdir pass and one stat per file: the directory entry's type says whether a name is a
// file or a link, and the stat gives the size (of the target, for a link) in the same call.
// The folders themselves (no links to them) go into `folders`, when given.
QList<FolderEntry> readFolder(const QString& folder, bool withHidden,
                              const FileSystem::NameTest& wanted, QStringList* folders = nullptr) {
    QList<FolderEntry> entries;
    DIR* dir = ::opendir(encodeFileName(folder).constData());
    if (dir == nullptr) {
        return entries;
    }
    const int fd = ::dirfd(dir);
    struct stat self {};
    const quint64 device = ::fstat(fd, &self) == 0 ? quint64(self.st_dev) : 0;
    while (const dirent* entry = ::readdir(dir)) {
        const char* name = entry->d_name;
        if (name[0] == '.' && (!withHidden || name[1] == 0 || (name[1] == '.' && name[2] == 0))) {
            continue;  // hidden, and "." and ".."
        }
        const QString decoded = decodeFileName(name);
        if (wanted && !wanted(decoded)) {
            continue;
        }
        struct stat info {};
        bool link = entry->d_type == DT_LNK;
        bool isFolder = entry->d_type == DT_DIR;
        if (entry->d_type == DT_UNKNOWN) {
            if (::fstatat(fd, name, &info, AT_SYMLINK_NOFOLLOW) != 0) {
                continue;
            }
            link = S_ISLNK(info.st_mode);
            isFolder = S_ISDIR(info.st_mode);
        }
        if (isFolder) {
            if (folders != nullptr) {
                folders->append(decoded);
            }
            continue;
        }
        if (entry->d_type != DT_REG && entry->d_type != DT_LNK && entry->d_type != DT_UNKNOWN) {
            continue;  // a folder, pipe, socket or device
        }
        if (::fstatat(fd, name, &info, link ? 0 : AT_SYMLINK_NOFOLLOW) != 0 ||
            !S_ISREG(info.st_mode)) {
            continue;  // a broken link, or one that leads to no ordinary file
        }
        // The entry's own inode: for a link the link's, not its target's.
        const FileId id = link ? FileId{device, quint64(entry->d_ino)}
                               : FileId{quint64(info.st_dev), quint64(info.st_ino)};
        entries.append({decoded, qint64(info.st_size), link, id});
    }
    ::closedir(dir);
    return entries;
}

QList<SubFolder> readSubFolders(const QString& folder) {
    QList<SubFolder> folders;
    DIR* dir = ::opendir(encodeFileName(folder).constData());
    if (dir == nullptr) {
        return folders;
    }
    const int fd = ::dirfd(dir);
    while (const dirent* entry = ::readdir(dir)) {
        const char* name = entry->d_name;
        if (name[0] == '.' ||
            (entry->d_type != DT_DIR && entry->d_type != DT_LNK && entry->d_type != DT_UNKNOWN)) {
            continue;  // hidden, "." and "..", or no folder
        }
        struct stat info {};
        if (::fstatat(fd, name, &info, 0) != 0 || !S_ISDIR(info.st_mode)) {
            continue;
        }
        // A folder's link count is 2 plus its folders on most file systems; a count of 1 (btrfs,
        // some network file systems) says nothing.
        folders.append({decodeFileName(name), info.st_nlink != 2});
    }
    ::closedir(dir);
    return folders;
}
#else
QList<FolderEntry> readFolder(const QString& folder, bool withHidden,
                              const FileSystem::NameTest& wanted, QStringList* folders = nullptr) {
    if (folders != nullptr) {
        QDirIterator dirs(folder,
                          QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden | QDir::NoSymLinks);
        while (dirs.hasNext()) {
            dirs.next();
            folders->append(dirs.fileName());
        }
    }
    QList<FolderEntry> entries;
    QDirIterator it(folder, withHidden ? QDir::Files | QDir::Hidden : QDir::Files);
    while (it.hasNext()) {
        it.next();
        const QFileInfo info = it.fileInfo();
        if (wanted && !wanted(info.fileName())) {
            continue;
        }
        entries.append({info.fileName(), info.size(), info.isSymLink(), {}});
    }
    return entries;
}

QList<SubFolder> readSubFolders(const QString& folder) {
    QList<SubFolder> folders;
    QDirIterator it(folder, QDir::Dirs | QDir::NoDotAndDotDot);
    while (it.hasNext()) {
        it.next();
        folders.append({it.fileName(), true});
    }
    return folders;
}
#endif

}  // namespace

#ifdef Q_OS_UNIX
QString decodeFileName(QByteArrayView bytes) {
    if (QtPrivate::isAscii(QLatin1StringView(bytes))) {
        return QString::fromLatin1(bytes);  // most names: one pass, no decoding
    }
    if (QUtf8StringView(bytes).isValidUtf8()) {
        return QString::fromUtf8(bytes);
    }
    QString name;
    name.reserve(bytes.size());
    for (qsizetype at = 0; at < bytes.size();) {
        const qsizetype length = utf8SequenceLength(bytes.sliced(at));
        if (length == 0) {
            name.append(QChar(char16_t(0xDC00 + static_cast<unsigned char>(bytes[at]))));
            ++at;
        } else {
            name.append(QString::fromUtf8(bytes.sliced(at, length)));
            at += length;
        }
    }
    return name;
}

QByteArray encodeFileName(const QString& path) {
    QByteArray bytes;
    bytes.reserve(path.size());
    qsizetype from = 0;
    for (qsizetype at = 0; at < path.size(); ++at) {
        const char16_t unit = path[at].unicode();
        if (unit >= 0xDC80 && unit <= 0xDCFF && (at == 0 || !path[at - 1].isHighSurrogate())) {
            bytes.append(path.sliced(from, at - from).toUtf8());
            bytes.append(char(unit - 0xDC00));
            from = at + 1;
        }
    }
    bytes.append(path.sliced(from).toUtf8());
    return bytes;
}

namespace {
bool statPath(const QString& path, struct stat& info) {
    return !path.isEmpty() && ::stat(encodeFileName(path).constData(), &info) == 0;
}
}  // namespace

bool FileSystem::FileExists(const QString& path) const {
    struct stat info {};
    return statPath(path, info) && !S_ISDIR(info.st_mode);
}

bool FileSystem::FolderExists(const QString& path) const {
    struct stat info {};
    return statPath(path, info) && S_ISDIR(info.st_mode);
}

qint64 FileSystem::fileSize(const QString& path) const {
    struct stat info {};
    return statPath(path, info) && !S_ISDIR(info.st_mode) ? qint64(info.st_size) : -1;
}
#else
QString decodeFileName(QByteArrayView bytes) {
    return QFile::decodeName(bytes.toByteArray());
}

QByteArray encodeFileName(const QString& path) {
    return QFile::encodeName(path);
}

bool FileSystem::FileExists(const QString& path) const {
    const QFileInfo info(path);
    return info.exists() && !info.isDir();
}

bool FileSystem::FolderExists(const QString& path) const {
    return !path.isEmpty() && QFileInfo(path).isDir();
}

qint64 FileSystem::fileSize(const QString& path) const {
    const QFileInfo info(path);
    return info.exists() && !info.isDir() ? info.size() : -1;
}
#endif

Error errorOf(int code) {
    return {code, qt_error_string(code)};
}

Error lastError() {
    return errorOf(errno);
}

QList<FolderEntry> FileSystem::listFiles(const QString& folder, bool withHidden,
                                         const NameTest& wanted) const {
    QList<FolderEntry> entries = readFolder(folder, withHidden, wanted);
    sortByName(entries);
    return entries;
}

QList<SubFolder> FileSystem::listFolders(const QString& folder) const {
    QList<SubFolder> folders = readSubFolders(folder);
    sortByName(folders);
    return folders;
}

FileSystem::Contents FileSystem::listContents(const QString& folder) const {
    Contents contents;
    contents.files = readFolder(folder, true, {}, &contents.folders);
    sortByName(contents.files);
    contents.folders.sort(Qt::CaseInsensitive);
    return contents;
}

std::optional<FileStamp> FileSystem::fileStamp(const QString& path) const {
#ifdef Q_OS_UNIX
    struct stat info {};
    if (::stat(encodeFileName(path).constData(), &info) != 0 || !S_ISREG(info.st_mode)) {
        return std::nullopt;
    }
    return FileStamp{qint64(info.st_size),
                     qint64(info.st_mtim.tv_sec) * 1000000000 + info.st_mtim.tv_nsec,
                     quint64(info.st_ino)};
#else
    const QFileInfo info(path);
    if (!info.isFile()) {
        return std::nullopt;
    }
    return FileStamp{info.size(), info.lastModified().toMSecsSinceEpoch() * 1000000};
#endif
}

QList<FileId> FileSystem::fileIds(const QString& path) const {
    QList<FileId> ids;
#ifdef Q_OS_UNIX
    // A chain of links ends at a file, at a name that is missing, or after as many links as the
    // system itself follows.
    QString at = path;
    for (int hop = 0; hop < 40; ++hop) {
        struct stat info {};
        if (::lstat(encodeFileName(at).constData(), &info) != 0) {
            break;
        }
        ids.append({quint64(info.st_dev), quint64(info.st_ino)});
        if (!S_ISLNK(info.st_mode)) {
            break;
        }
        QByteArray target(PATH_MAX, Qt::Uninitialized);
        const ssize_t length =
            ::readlink(encodeFileName(at).constData(), target.data(), size_t(target.size()));
        if (length <= 0 || length >= target.size()) {
            break;
        }
        target.truncate(int(length));
        const QString next = decodeFileName(target);
        // A relative target is read from the link's own folder.
        at = next.startsWith(u'/') ? next : at.left(at.lastIndexOf(u'/') + 1) + next;
    }
#else
    Q_UNUSED(path);
#endif
    return ids;
}

QString FileSystem::currentDirectory() const {
    return QDir::currentPath();
}

bool FileSystem::folderReadable(const QString& folder) const {
#ifdef Q_OS_UNIX
    DIR* dir = ::opendir(encodeFileName(folder).constData());
    if (dir != nullptr) {
        ::closedir(dir);
        return true;
    }
    return errno == ENOENT || errno == ENOTDIR;
#else
    const QFileInfo info(folder);
    return !info.isDir() || info.isReadable();
#endif
}

}  // namespace tidewick
