#include "fileops/file_operations.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <algorithm>
#include <cerrno>

#include "fileops/home_trash.h"
#include "platform/path_text.h"
#include "platform/process_setup.h"

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace tidewick {

namespace {

FileError errorOf(int code) {
    return {code, qt_error_string(code)};
}

FileError lastError() {
    return errorOf(errno);
}

const QString kCopyPrefix = QStringLiteral(".tidewick-copy-");

// A name in the folder of `destination` for a copy on its way there.
QString temporaryNameBeside(const QString& destination) {
    const QString folder = hostParentFolder(destination);
    return folder.isEmpty() ? temporaryCopyName() : withSeparator(folder) + temporaryCopyName();
}

#if defined(Q_OS_UNIX) && !defined(Q_OS_DARWIN)
// The desktop's trash on Linux and the BSDs: the freedesktop trash in the user's data folder.
// Qt 6.4 writes "files" and "info" into the current directory when that trash does not exist
// yet, so it is made first, and a place that Qt reports outside a trash counts as a failure.
QString homeTrash() {
    const QString data = userDataFolder();
    return data.isEmpty() ? QString() : data + QStringLiteral("/Trash");
}

// Whether `path` lies on the disk of `place`, or of its nearest folder that exists.
bool onDiskOf(const QString& path, QString place) {
    struct stat file {};
    struct stat there {};
    if (::lstat(encodeFileName(path).constData(), &file) != 0) {
        return false;
    }
    while (::stat(encodeFileName(place).constData(), &there) != 0 || !S_ISDIR(there.st_mode)) {
        const QString parent = hostParentFolder(place);
        if (parent.isEmpty() || parent == place) {
            return false;
        }
        place = parent;
    }
    return there.st_dev == file.st_dev;
}

bool isTrashFilesFolder(const QString& folder) {
    const QFileInfo files(folder);
    if (files.fileName() != QLatin1String("files")) {
        return false;
    }
    const QFileInfo trash(files.path());
    return (!homeTrash().isEmpty() &&
            trash.absoluteFilePath() == QFileInfo(homeTrash()).absoluteFilePath()) ||
           trash.fileName().startsWith(QLatin1String(".Trash-")) ||
           QFileInfo(trash.path()).fileName() == QLatin1String(".Trash");
}
#endif

}  // namespace

QString temporaryCopyName() {
    return kCopyPrefix + QString::number(QCoreApplication::applicationPid()) + u'-' +
           QString::number(QRandomGenerator::global()->generate64(), 36);
}

QString errorText(const FileError& error) {
    return QString::number(error.code) + QStringLiteral(" (") + error.description +
           QLatin1Char(')');
}

#ifdef Q_OS_UNIX

namespace {

constexpr qint64 kCopyChunk = 8 * 1024 * 1024;
constexpr qint64 kBufferSize = 1024 * 1024;

// Closes its descriptor when it goes.
struct Descriptor {
    int fd = -1;
    explicit Descriptor(int descriptor) : fd(descriptor) {}
    ~Descriptor() {
        if (fd >= 0) {
            ::close(fd);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    // Closes now, where a failure to write the last data back still shows.
    bool close() { return ::close(std::exchange(fd, -1)) == 0; }
};

FileError endedEarly() {
    return {EIO, QStringLiteral("The file ended before its copy was complete")};
}

// Copies `length` bytes at `offset` with read and write, through a buffer.
FileResult copyThroughBuffer(int in, int out, off_t offset, qint64 length,
                             const FileOperations::Progress& progress) {
    QByteArray buffer(int(std::min(length, kBufferSize)), Qt::Uninitialized);
    while (length > 0) {
        const ssize_t got =
            ::pread(in, buffer.data(), size_t(std::min<qint64>(length, buffer.size())), offset);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            return lastError();
        }
        if (got == 0) {
            return endedEarly();
        }
        for (ssize_t written = 0; written < got;) {
            const ssize_t put = ::pwrite(out, buffer.constData() + written, size_t(got - written),
                                         offset + written);
            if (put < 0 && errno != EINTR) {
                return lastError();
            }
            written += std::max<ssize_t>(put, 0);
        }
        offset += got;
        length -= got;
        if (progress) {
            progress(got);
        }
    }
    return std::nullopt;
}

// Copies `length` bytes at `offset`: inside the kernel where it can (which also lets a file
// system share the blocks), through a buffer where it cannot.
FileResult copyRange(int in, int out, off_t offset, qint64 length,
                     const FileOperations::Progress& progress) {
#ifdef Q_OS_LINUX
    while (length > 0) {
        off_t from = offset;
        off_t to = offset;
        const ssize_t done =
            ::copy_file_range(in, &from, out, &to, size_t(std::min(length, kCopyChunk)), 0);
        if (done < 0 && errno == EINTR) {
            continue;
        }
        if (done < 0 && (errno == EXDEV || errno == ENOSYS || errno == EINVAL ||
                         errno == EOPNOTSUPP || errno == EPERM)) {
            break;  // the kernel cannot do it here: the buffer does the rest
        }
        if (done < 0) {
            return lastError();
        }
        if (done == 0) {
            return endedEarly();
        }
        offset += done;
        length -= done;
        if (progress) {
            progress(done);
        }
    }
#endif
    return copyThroughBuffer(in, out, offset, length, progress);
}

// Copies the data of `in` (`size` bytes) to `out`; holes stay holes, so a sparse file costs
// only its data. A hole counts as done as soon as it is passed.
FileResult copyData(int in, int out, qint64 size, const FileOperations::Progress& progress) {
    const auto passHole = [&progress](qint64 length) {
        if (progress && length > 0) {
            progress(length);
        }
    };
    off_t offset = 0;
    while (offset < size) {
        off_t data = ::lseek(in, offset, SEEK_DATA);
        if (data < 0 && errno == ENXIO) {
            break;  // only a hole is left
        }
        off_t hole = data < 0 ? size : ::lseek(in, data, SEEK_HOLE);
        data = std::max<off_t>(data, offset);
        hole = hole < 0 ? size : std::min<off_t>(hole, size);
        passHole(data - offset);
        if (const FileResult failed = copyRange(in, out, data, hole - data, progress)) {
            return failed;
        }
        offset = std::max(hole, data + 1);
    }
    passHole(size - offset);
    // A file that ends in a hole gets its length from the last data on.
    const bool endsInHole = ::lseek(out, 0, SEEK_END) < size;
    return !endsInHole || ::ftruncate(out, size) == 0 ? FileResult() : lastError();
}

// Writes the file `source` (described by `info`) under the new name `copy`.
FileResult writeCopy(const QByteArray& source, const struct stat& info, const QByteArray& copy,
                     const FileOperations::Progress& progress) {
    if (S_ISLNK(info.st_mode)) {
        QByteArray target(int(info.st_size) + 1, Qt::Uninitialized);
        const ssize_t length = ::readlink(source.constData(), target.data(), size_t(target.size()));
        if (length < 0) {
            return lastError();
        }
        if (length != info.st_size) {
            return endedEarly();
        }
        target.truncate(int(length));
        return ::symlink(target.constData(), copy.constData()) == 0 ? FileResult() : lastError();
    }
    // A link reaches here only when it is to be followed (its stat is then its target's).
    Descriptor in(::open(source.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat opened {};
    if (in.fd < 0 || ::fstat(in.fd, &opened) != 0) {
        return lastError();
    }
    if (!S_ISREG(opened.st_mode)) {
        return FileError{EINVAL, QStringLiteral("Not an ordinary file")};
    }
    Descriptor out(::open(copy.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (out.fd < 0) {
        return lastError();
    }
    if (const FileResult failed = copyData(in.fd, out.fd, opened.st_size, progress)) {
        return failed;
    }
    // The copy keeps the file's permissions and times where the target folder's file system
    // can hold them; where it cannot, the data is what counts.
    ::fchmod(out.fd, opened.st_mode & 07777);
    const struct timespec times[2] = {opened.st_atim, opened.st_mtim};
    ::futimens(out.fd, times);
    struct stat after {};
    struct stat written {};
    if (::fstat(in.fd, &after) != 0 || ::fstat(out.fd, &written) != 0) {
        return lastError();
    }
    if (after.st_size != opened.st_size || written.st_size != opened.st_size) {
        return FileError{EIO, QStringLiteral("The copy's size differs from the file's")};
    }
    return out.close() ? FileResult() : lastError();
}

// Gives `from` the name `to` unless a file has that name: never replaces. Where the file system
// has no such rename, a hard link does the same, as the first of two names to take a file wins.
FileResult renameNoReplace(const QByteArray& from, const QByteArray& to) {
    const auto taken = [] {
        return FileError{EEXIST,
                         QStringLiteral("A file of that name appeared in the target folder")};
    };
#ifdef Q_OS_LINUX
    if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0) {
        return std::nullopt;
    }
    if (errno == EEXIST) {
        return taken();
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return lastError();
    }
#endif
    if (::link(from.constData(), to.constData()) == 0) {
        ::unlink(from.constData());
        return std::nullopt;
    }
    return errno == EEXIST ? FileResult(taken()) : FileResult(lastError());
}

}  // namespace

std::optional<qint64> FileOperations::entrySize(const QString& path, FileError* error) const {
    struct stat info {};
    if (::lstat(encodeFileName(path).constData(), &info) != 0) {
        *error = lastError();
        return std::nullopt;
    }
    return qint64(info.st_size);
}

std::optional<FileError> FileOperations::writeRefusal(const QString& folder) const {
    // The kernel answers for the folder's permissions, its disk being read-only and its being
    // immutable, as a write would meet them.
    if (::access(encodeFileName(folder).constData(), W_OK | X_OK) != 0) {
        return lastError();
    }
    return std::nullopt;
}

FileResult FileOperations::createFolder(const QString& path) {
    return ::mkdir(encodeFileName(path).constData(), 0777) == 0 ? FileResult() : lastError();
}

FileResult FileOperations::copyFile(const QString& source, const QString& destination,
                                    CopyMode mode, const Progress& progress, TrashPlace* replaced) {
    const QByteArray from = encodeFileName(source);
    const QByteArray to = encodeFileName(destination);
    struct stat info {};
    if ((mode.followLinks ? ::stat(from.constData(), &info) : ::lstat(from.constData(), &info)) !=
        0) {
        return lastError();
    }
    struct stat present {};
    const bool replacing = ::lstat(to.constData(), &present) == 0;
    if (replacing && present.st_dev == info.st_dev && present.st_ino == info.st_ino) {
        return FileError{EEXIST, QStringLiteral("The file is already in the target folder")};
    }
    if (replacing && S_ISDIR(present.st_mode)) {
        return errorOf(EISDIR);  // a folder of that name is never put aside for a file
    }
    if (replacing && !mode.replace) {
        return FileError{EEXIST, QStringLiteral("A file of that name is in the target folder")};
    }

    const QString temporary = temporaryNameBeside(destination);
    const QByteArray copy = encodeFileName(temporary);
    if (const FileResult failed = writeCopy(from, info, copy, progress)) {
        ::unlink(copy.constData());
        return failed;
    }
    if (replacing) {
        if (const FileResult failed = moveToTrash(destination, replaced)) {
            ::unlink(copy.constData());
            return failed;
        }
    }
    if (const FileResult failed = renameNoReplace(copy, to)) {
        ::unlink(copy.constData());
        return failed;
    }
    return std::nullopt;
}

FileResult FileOperations::removeFile(const QString& path) {
    return ::unlink(encodeFileName(path).constData()) == 0 ? FileResult() : lastError();
}

FileResult FileOperations::flushToDisk(const QString& path) {
    // A link is written through as its folder's entry; opening it could block on whatever it
    // points at (a pipe) or reach another disk altogether.
    Descriptor file(
        ::open(encodeFileName(path).constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (file.fd < 0 && errno != ELOOP) {
        return lastError();
    }
    if (file.fd >= 0 && ::fsync(file.fd) != 0) {
        return lastError();
    }
    Descriptor folder(::open(encodeFileName(hostParentFolder(path)).constData(),
                             O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.fd < 0 || ::fsync(folder.fd) != 0) {
        return lastError();
    }
    return std::nullopt;
}

void FileOperations::removeLeftovers(const QString& folder) {
    for (const FolderEntry& entry : listFiles(
             folder, true, [](const QString& name) { return name.startsWith(kCopyPrefix); })) {
        // ".tidewick-copy-<process>-<random>": a copy of a process that is gone is a leftover.
        bool number = false;
        const qint64 process =
            entry.name.mid(kCopyPrefix.size()).section(u'-', 0, 0).toLongLong(&number);
        if (number && process > 0 && (::kill(pid_t(process), 0) == 0 || errno != ESRCH)) {
            continue;
        }
        ::unlink(encodeFileName(withSeparator(folder) + entry.name).constData());
    }
}

#else  // Windows: Qt's own file operations

std::optional<qint64> FileOperations::entrySize(const QString& path, FileError* error) const {
    const QFileInfo info(path);
    if (!info.exists() && !info.isSymLink()) {
        *error = errorOf(ENOENT);
        return std::nullopt;
    }
    return info.size();
}

std::optional<FileError> FileOperations::writeRefusal(const QString& folder) const {
    return QFileInfo(folder).isWritable() ? std::nullopt : std::optional(errorOf(EACCES));
}

FileResult FileOperations::createFolder(const QString& path) {
    return QDir().mkdir(path) ? FileResult() : errorOf(EACCES);
}

FileResult FileOperations::copyFile(const QString& source, const QString& destination,
                                    CopyMode mode, const Progress& progress, TrashPlace* replaced) {
    if (QFileInfo::exists(destination) && !mode.replace) {
        return FileError{EEXIST, QStringLiteral("A file of that name is in the target folder")};
    }
    const QString temporary = temporaryNameBeside(destination);
    QFile file(source);
    if (!file.copy(temporary)) {
        return FileError{int(file.error()), file.errorString()};
    }
    if (QFileInfo(temporary).size() != QFileInfo(source).size()) {
        QFile::remove(temporary);
        return FileError{EIO, QStringLiteral("The copy's size differs from the file's")};
    }
    if (QFileInfo(destination).isDir()) {
        QFile::remove(temporary);
        return FileError{EISDIR, QStringLiteral("Is a directory")};
    }
    if (QFileInfo::exists(destination)) {
        if (const FileResult failed = moveToTrash(destination, replaced)) {
            QFile::remove(temporary);
            return failed;
        }
    }
    QFile copy(temporary);
    if (!copy.rename(destination)) {
        QFile::remove(temporary);
        return FileError{int(copy.error()), copy.errorString()};
    }
    if (progress) {
        progress(QFileInfo(destination).size());
    }
    return std::nullopt;
}

FileResult FileOperations::removeFile(const QString& path) {
    QFile file(path);
    return file.remove() ? FileResult() : FileError{int(file.error()), file.errorString()};
}

FileResult FileOperations::flushToDisk(const QString& path) {
    Q_UNUSED(path);
    return std::nullopt;
}

void FileOperations::removeLeftovers(const QString& folder) {
    Q_UNUSED(folder);
}

#endif

FileResult FileOperations::moveToTrash(const QString& path, TrashPlace* place) {
#if defined(Q_OS_UNIX) && !defined(Q_OS_DARWIN)
    const QString trash = homeTrash();
    if (trash.isEmpty()) {
        // A relative home would put a trash under the current folder, wherever that is.
        return FileError{ENOENT, QStringLiteral("There is no trash: HOME is not a full path")};
    }
    if (QDir().mkpath(trash + QStringLiteral("/files")) &&
        QDir().mkpath(trash + QStringLiteral("/info"))) {
        if (const std::optional<FileResult> done = moveToHomeTrash(path, trash, place)) {
            return *done;
        }
    } else if (onDiskOf(path, trash)) {
        // A home trash that cannot be made (its place holds a file, the disk refuses) takes no
        // file of its disk; asked anyway, Qt would make one in the current folder.
        return FileError{ENOTDIR, QStringLiteral("Cannot make the trash folder ") + trash};
    }
#endif
    errno = 0;
    QString placeInTrash;
    if (!QFile::moveToTrash(path, &placeInTrash)) {
        const int code = errno != 0 ? errno : EIO;
        return FileError{code, qt_error_string(code)};
    }
#if defined(Q_OS_UNIX) && !defined(Q_OS_DARWIN)
    if (!isTrashFilesFolder(QFileInfo(placeInTrash).path())) {
        // Put back what went astray, and say that the trash did not take it.
        QFile::rename(placeInTrash, path);
        return FileError{EIO, QStringLiteral("The trash put the file outside the trash")};
    }
#endif
    if (place) {
        const QFileInfo file(placeInTrash);
        *place = {placeInTrash, file.dir().filePath(QStringLiteral("../info/") + file.fileName() +
                                                    QStringLiteral(".trashinfo"))};
        place->info = QDir::cleanPath(place->info);
    }
    return std::nullopt;
}

QString usedBy(const UsedFileOwners& owners, const QString& path) {
    if (owners.isEmpty()) {
        return {};
    }
    const QString canonical = QFileInfo(path).canonicalFilePath();
    return canonical.isEmpty() ? QString() : owners.value(canonical);
}

}  // namespace tidewick
