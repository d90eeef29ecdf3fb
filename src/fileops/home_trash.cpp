#include "fileops/home_trash.h"

#include <QDateTime>

#include "platform/path_text.h"

#ifdef Q_OS_LINUX
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#endif

namespace tidewick {

#ifdef Q_OS_LINUX

namespace {

// The n-th name a trashed file may take: "take.wav", then "take 2.wav", "take 3.wav", ...
QByteArray nameInTrash(const QByteArray& name, int attempt) {
    if (attempt == 1) {
        return name;
    }
    const qsizetype dot = name.lastIndexOf('.');
    const qsizetype cut = dot > 0 ? dot : name.size();
    return name.left(cut) + ' ' + QByteArray::number(attempt) + name.mid(cut);
}

// The record of where a file was and when it went; the path in URL escapes, byte by byte.
QByteArray trashInfo(const QByteArray& path) {
    return "[Trash Info]\nPath=" + path.toPercentEncoding("/") + "\nDeletionDate=" +
           QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-ddThh:mm:ss")).toUtf8() +
           '\n';
}

// Writes `info` as a new file `infoPath`; false with errno when the name is taken or the write
// fails (a half-written record is removed).
bool writeNew(const QByteArray& infoPath, const QByteArray& info) {
    const int fd = ::open(infoPath.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (fd < 0) {
        return false;
    }
    const bool written = ::write(fd, info.constData(), size_t(info.size())) == info.size();
    const int saved = errno;
    if (::close(fd) != 0 || !written) {
        ::unlink(infoPath.constData());
        errno = written ? errno : saved;
        return false;
    }
    return true;
}

constexpr int kMaxAttempts = 10000;

}  // namespace

std::optional<FileResult> moveToHomeTrash(const QString& path, const QString& trash) {
    const QByteArray source = encodeFileName(path);
    const QByteArray files = encodeFileName(trash + QStringLiteral("/files/"));
    const QByteArray infos = encodeFileName(trash + QStringLiteral("/info/"));
    struct stat file {};
    struct stat place {};
    if (::lstat(source.constData(), &file) != 0) {
        return FileError{errno, qt_error_string(errno)};
    }
    if (::stat(files.constData(), &place) != 0 || place.st_dev != file.st_dev) {
        return std::nullopt;
    }
    const QByteArray name = encodeFileName(GetFileName(path));
    const QByteArray info = trashInfo(source);
    for (int attempt = 1; attempt <= kMaxAttempts; ++attempt) {
        const QByteArray candidate = nameInTrash(name, attempt);
        const QByteArray infoPath = infos + candidate + ".trashinfo";
        if (!writeNew(infoPath, info)) {
            if (errno == EEXIST) {
                continue;
            }
            return FileError{errno, qt_error_string(errno)};
        }
        if (::renameat2(AT_FDCWD, source.constData(), AT_FDCWD, (files + candidate).constData(),
                        RENAME_NOREPLACE) == 0) {
            return FileResult();
        }
        const int failed = errno;
        ::unlink(infoPath.constData());
        if (failed == EINVAL || failed == ENOSYS) {
            return std::nullopt;
        }
        if (failed != EEXIST) {
            return FileError{failed, qt_error_string(failed)};
        }
    }
    return FileError{EEXIST, qt_error_string(EEXIST)};
}

#else

std::optional<FileResult> moveToHomeTrash(const QString& path, const QString& trash) {
    Q_UNUSED(path);
    Q_UNUSED(trash);
    return std::nullopt;
}

#endif

}  // namespace tidewick
