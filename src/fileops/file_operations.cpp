#include "fileops/file_operations.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <algorithm>
#include <cerrno>

#include "fileops/file_copy.h"
#include "fileops/trash.h"
#include "text/path_text.h"

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace tidewick {

namespace {

const QString kCopyPrefix = QStringLiteral(".tidewick-copy-");

// A name in the folder of `destination` for a copy on its way there.
QString temporaryNameBeside(const QString& destination) {
    const QString folder = hostParentFolder(destination);
    return folder.isEmpty() ? temporaryCopyName() : withSeparator(folder) + temporaryCopyName();
}

}  // namespace

QString temporaryCopyName() {
    return kCopyPrefix + QString::number(QCoreApplication::applicationPid()) + u'-' +
           QString::number(QRandomGenerator::global()->generate64(), 36);
}

#ifdef Q_OS_UNIX

Result<qint64> FileOperations::entrySize(const QString& path) const {
    struct stat info {};
    if (::lstat(encodeFileName(path).constData(), &info) != 0) {
        return lastError();
    }
    return qint64(info.st_size);
}

std::optional<FileStamp> FileOperations::entryStamp(const QString& path) const {
    struct stat info {};
    if (::lstat(encodeFileName(path).constData(), &info) != 0) {
        return std::nullopt;
    }
    return FileStamp{qint64(info.st_size),
                     qint64(info.st_mtim.tv_sec) * 1000000000 + info.st_mtim.tv_nsec};
}

Result<void> FileOperations::writable(const QString& folder) const {
    // The kernel answers for the folder's permissions, its disk being read-only and its being
    // immutable, as a write would meet them.
    if (::access(encodeFileName(folder).constData(), W_OK | X_OK) != 0) {
        return lastError();
    }
    return {};
}

Result<void> FileOperations::createFolder(const QString& path) {
    return ::mkdir(encodeFileName(path).constData(), 0777) == 0 ? Result<void>() : lastError();
}

Result<TrashPlace> FileOperations::copyFile(const QString& source, const QString& destination,
                                            CopyMode mode, const Progress& progress) {
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
        return Error{EEXIST, QStringLiteral("The file is already in the target folder")};
    }
    if (replacing && S_ISDIR(present.st_mode)) {
        return errorOf(EISDIR);  // a folder of that name is never put aside for a file
    }
    if (replacing && !mode.replace) {
        return Error{EEXIST, QStringLiteral("A file of that name is in the target folder")};
    }

    const QString temporary = temporaryNameBeside(destination);
    const QByteArray copy = encodeFileName(temporary);
    // A source written to during its copy is copied once more; changing again, it is left
    // as it is, with no copy under the final name.
    Result<void> written = writeCopy(from, info, copy, progress);
    if (!written && written.error() == changedWhileCopied()) {
        ::unlink(copy.constData());
        written = writeCopy(from, info, copy, progress);
    }
    if (!written) {
        ::unlink(copy.constData());
        return written.error();
    }
    TrashPlace replaced;
    if (replacing) {
        const Result<TrashPlace> trashed = trash(destination);
        if (!trashed) {
            ::unlink(copy.constData());
            return trashed.error();
        }
        replaced = *trashed;
    }
    if (const Result<void> named = tidewick::renameNoReplace(copy, to); !named) {
        ::unlink(copy.constData());
        return named.error();
    }
    return replaced;
}

Result<void> FileOperations::renameNoReplace(const QString& from, const QString& to) {
    return tidewick::renameNoReplace(encodeFileName(from), encodeFileName(to));
}

Result<void> FileOperations::removeFile(const QString& path) {
    return ::unlink(encodeFileName(path).constData()) == 0 ? Result<void>() : lastError();
}

Result<void> FileOperations::flushToDisk(const QString& path) {
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
    return {};
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

Result<qint64> FileOperations::entrySize(const QString& path) const {
    const QFileInfo info(path);
    if (!info.exists() && !info.isSymLink()) {
        return errorOf(ENOENT);
    }
    return info.size();
}

std::optional<FileStamp> FileOperations::entryStamp(const QString& path) const {
    return fileStamp(path);
}

Result<void> FileOperations::writable(const QString& folder) const {
    return QFileInfo(folder).isWritable() ? Result<void>() : errorOf(EACCES);
}

Result<void> FileOperations::createFolder(const QString& path) {
    return QDir().mkdir(path) ? Result<void>() : errorOf(EACCES);
}

Result<TrashPlace> FileOperations::copyFile(const QString& source, const QString& destination,
                                            CopyMode mode, const Progress& progress) {
    if (QFileInfo::exists(destination) && !mode.replace) {
        return Error{EEXIST, QStringLiteral("A file of that name is in the target folder")};
    }
    const QString temporary = temporaryNameBeside(destination);
    QFile file(source);
    if (!file.copy(temporary)) {
        return Error{int(file.error()), file.errorString()};
    }
    if (QFileInfo(temporary).size() != QFileInfo(source).size()) {
        QFile::remove(temporary);
        return Error{EIO, QStringLiteral("The copy's size differs from the file's")};
    }
    if (QFileInfo(destination).isDir()) {
        QFile::remove(temporary);
        return Error{EISDIR, QStringLiteral("Is a directory")};
    }
    TrashPlace replaced;
    if (QFileInfo::exists(destination)) {
        const Result<TrashPlace> trashed = trash(destination);
        if (!trashed) {
            QFile::remove(temporary);
            return trashed.error();
        }
        replaced = *trashed;
    }
    QFile copy(temporary);
    if (!copy.rename(destination)) {
        QFile::remove(temporary);
        return Error{int(copy.error()), copy.errorString()};
    }
    if (progress) {
        progress(QFileInfo(destination).size());
    }
    return replaced;
}

Result<void> FileOperations::renameNoReplace(const QString& from, const QString& to) {
    QFile file(from);
    return file.rename(to) ? Result<void>() : Error{int(file.error()), file.errorString()};
}

Result<void> FileOperations::removeFile(const QString& path) {
    QFile file(path);
    return file.remove() ? Result<void>() : Error{int(file.error()), file.errorString()};
}

Result<void> FileOperations::flushToDisk(const QString& path) {
    Q_UNUSED(path);
    return {};
}

void FileOperations::removeLeftovers(const QString& folder) {
    Q_UNUSED(folder);
}

#endif

Result<TrashPlace> FileOperations::trash(const QString& path) {
    return Trash().put(path);
}

Result<TrashPlace> FileOperations::trashInPlaceOf(const TrashPlace& freed, const QString& path) {
    return Trash().putInPlaceOf(freed, path);
}

}  // namespace tidewick
