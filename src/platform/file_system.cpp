#include "platform/file_system.h"
#include "platform/name_order.h"
#include "platform/on_cores.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstring>
#include <string>
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
template <typename Entry>
void sortByName(QList<Entry>& entries) {
    const std::vector<qsizetype> order = orderByName(
        entries.size(), [&entries](qsizetype at) -> const QString& { return entries[at].name; });
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

// A name of a folder's reading, before the stat that tells what it is: where its bytes begin in
// the reading's buffer and how many there are, and what the directory entry says of it.
struct Named {
    size_t bytesAt;
    size_t length;
    unsigned char type;
    quint64 inode;
};

// What one stat made of a name: nothing to list, a folder, or a file.
struct Statted {
    enum { Nothing, Folder, File } what = Nothing;
    qint64 size = 0;
    bool link = false;
    FileId id;
};

// The directory entry's type says whether a name is a file or a link, and the stat gives the
// size (of the target, for a link) in the same call.
Statted statNamed(int fd, const char* name, const Named& named, quint64 device) {
    struct stat info {};
    bool link = named.type == DT_LNK;
    bool isFolder = named.type == DT_DIR;
    if (named.type == DT_UNKNOWN) {
        if (::fstatat(fd, name, &info, AT_SYMLINK_NOFOLLOW) != 0) {
            return {};
        }
        link = S_ISLNK(info.st_mode);
        isFolder = S_ISDIR(info.st_mode);
    }
    if (isFolder) {
        return {Statted::Folder, 0, false, {}};
    }
    if (named.type != DT_REG && named.type != DT_LNK && named.type != DT_UNKNOWN) {
        return {};  // a pipe, socket or device
    }
    if (::fstatat(fd, name, &info, link ? 0 : AT_SYMLINK_NOFOLLOW) != 0 || !S_ISREG(info.st_mode)) {
        return {};  // a broken link, or one that leads to no ordinary file
    }
    // The entry's own inode: for a link the link's, not its target's.
    const FileId id =
        link ? FileId{device, named.inode} : FileId{quint64(info.st_dev), quint64(info.st_ino)};
    return {Statted::File, qint64(info.st_size), link, id};
}

// One readdir pass, then one stat per name, a large folder's shared among the cores; the files
// sorted by name (orderByName), which this thread works out while the others stat. The folders
// themselves (no links to them) go into `folders`, when given. A folder of ASCII names, nearly
// every one, is sorted on their bytes, and each name made a QString in the sorted order: the
// later passes over the names then walk memory in order.
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
    std::string bytes;  // every name kept, each ending in its NUL
    std::vector<Named> named;
    bool ascii = true;
    QString decoded;  // written over while the names it held are passed over
    while (const dirent* entry = ::readdir(dir)) {
        const char* name = entry->d_name;
        if (name[0] == '.' && (!withHidden || name[1] == 0 || (name[1] == '.' && name[2] == 0))) {
            continue;  // hidden, and "." and ".."
        }
        const size_t length = std::strlen(name);
        const bool asciiName = QtPrivate::isAscii(QLatin1StringView(name, qsizetype(length)));
        if (wanted) {
            decoded = asciiName ? QString(QLatin1StringView(name, qsizetype(length)))
                                : decodeFileName(name);
            if (!wanted(decoded)) {
                continue;
            }
        }
        ascii = ascii && asciiName;
        named.push_back({bytes.size(), length, entry->d_type, quint64(entry->d_ino)});
        bytes.append(name, length).push_back('\0');
    }
    // An ASCII name is the same text as decodeFileName gives.
    const auto bytesOf = [&](size_t at) {
        return std::string_view(bytes.data() + named[at].bytesAt, named[at].length);
    };
    std::vector<QString> names;  // a folder with other names: each, in the order read
    if (!ascii) {
        names.reserve(named.size());
        for (size_t i = 0; i < named.size(); ++i) {
            names.push_back(decodeFileName(bytesOf(i).data()));
        }
    }
    constexpr size_t kShare = 1024;  // names a core takes at a time
    std::vector<Statted> statted(named.size());
    std::atomic<size_t> next{0};
    std::vector<qsizetype> order;
    onCores(qsizetype(named.size() / (4 * kShare)) + 1, [&](bool here) {
        if (here && ascii) {
            order = orderByAsciiName(qsizetype(named.size()),
                                     [&](qsizetype at) { return bytesOf(size_t(at)); });
        } else if (here) {
            order = orderByName(qsizetype(names.size()), [&names](qsizetype at) -> const QString& {
                return names[size_t(at)];
            });
        }
        for (size_t from = next.fetch_add(kShare); from < named.size();
             from = next.fetch_add(kShare)) {
            for (size_t i = from; i < std::min(from + kShare, named.size()); ++i) {
                statted[i] = statNamed(fd, bytesOf(i).data(), named[i], device);
            }
        }
    });
    ::closedir(dir);
    entries.reserve(qsizetype(named.size()));
    for (const qsizetype at : order) {
        const size_t i = size_t(at);
        if (statted[i].what == Statted::Nothing ||
            (statted[i].what == Statted::Folder && !folders)) {
            continue;
        }
        QString name =
            ascii ? QString(QLatin1StringView(bytesOf(i).data(), qsizetype(named[i].length)))
                  : std::move(names[i]);
        if (statted[i].what == Statted::File) {
            entries.append({std::move(name), statted[i].size, statted[i].link, statted[i].id});
        } else {
            folders->append(std::move(name));
        }
    }
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
    sortByName(entries);
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
    return readFolder(folder, withHidden, wanted);
}

QList<SubFolder> FileSystem::listFolders(const QString& folder) const {
    QList<SubFolder> folders = readSubFolders(folder);
    sortByName(folders);
    return folders;
}

FileSystem::Contents FileSystem::listContents(const QString& folder) const {
    Contents contents;
    contents.files = readFolder(folder, true, {}, &contents.folders);
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

FileIds FileSystem::fileIds(const QString& path) const {
    FileIds ids;
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
