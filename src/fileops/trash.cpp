#include "fileops/trash.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMutex>
#include <QSet>
#include <cerrno>

#include "platform/file_system.h"
#include "platform/process_setup.h"
#include "text/path_text.h"

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

#ifdef Q_OS_LINUX
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#endif

namespace tidewick {

namespace {

#ifdef Q_OS_LINUX

constexpr qsizetype kNameMax = 255;  // bytes of one name, on every Linux file system
const QByteArray kInfoSuffix = ".trashinfo";

// The n-th name a trashed file may take: "take.wav", then "take 2.wav", "take 3.wav", ... A name
// whose record ("take.wav.trashinfo") would be longer than a name may be is shortened before
// its extension, at a whole character: the record keeps the file's real name.
QByteArray nameInTrash(const QByteArray& name, int attempt) {
    const qsizetype dot = name.lastIndexOf('.');
    const qsizetype cut = dot > 0 && name.size() - dot <= 32 ? dot : name.size();
    QByteArray base = name.left(cut);
    const QByteArray tail =
        (attempt == 1 ? QByteArray() : ' ' + QByteArray::number(attempt)) + name.mid(cut);
    const qsizetype room = kNameMax - kInfoSuffix.size() - tail.size();
    if (base.size() > room) {
        qsizetype end = room;
        while (end > 0 && (static_cast<unsigned char>(base[end]) & 0xC0) == 0x80) {
            --end;  // not inside a UTF-8 character
        }
        base.truncate(end);
    }
    return base + tail;
}

// Removes the records of "info" whose file is not in "files" and that are older than a minute:
// what a run left that died between writing a record and moving its file (a run under way
// writes its record a moment before its file arrives). Once a process and trash.
void removeOrphanRecords(const QByteArray& files, const QByteArray& infos) {
    static QMutex mutex;
    static QSet<QByteArray> done;
    const QMutexLocker locker(&mutex);
    if (done.contains(infos)) {
        return;
    }
    done.insert(infos);
    const qint64 minuteAgo = QDateTime::currentSecsSinceEpoch() - 60;
    const QStringList records =
        QDir(decodeFileName(infos))
            .entryList({QStringLiteral("*.trashinfo")}, QDir::Files | QDir::Hidden);
    for (const QString& record : records) {
        const QByteArray name = encodeFileName(record);
        const QByteArray file = files + name.left(name.size() - kInfoSuffix.size());
        struct stat info {};
        struct stat entry {};
        if (::lstat(file.constData(), &entry) != 0 && errno == ENOENT &&
            ::lstat((infos + name).constData(), &info) == 0 && info.st_mtime < minuteAgo) {
            ::unlink((infos + name).constData());
        }
    }
}

// The time of a deletion in local time, as the records give it; worked out once a second, for a
// run that trashes a thousand files in one.
QByteArray deletionDate() {
    thread_local qint64 second = -1;
    thread_local QByteArray text;
    if (const qint64 now = QDateTime::currentSecsSinceEpoch(); now != second) {
        second = now;
        text = QDateTime::fromSecsSinceEpoch(now)
                   .toString(QStringLiteral("yyyy-MM-ddThh:mm:ss"))
                   .toUtf8();
    }
    return text;
}

// The record of where a file was and when it went; the path in URL escapes, byte by byte.
QByteArray trashInfo(const QByteArray& path) {
    return "[Trash Info]\nPath=" + path.toPercentEncoding("/") +
           "\nDeletionDate=" + deletionDate() + '\n';
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

// Writes `info` over the record `infoPath` without freeing its storage first: a record a few
// bytes longer or shorter keeps its block, where a record deleted and made anew costs the disk
// two changes of its allocation.
bool rewrite(const QByteArray& infoPath, const QByteArray& info) {
    const int fd = ::open(infoPath.constData(), O_WRONLY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    const bool written = ::pwrite(fd, info.constData(), size_t(info.size()), 0) == info.size() &&
                         ::ftruncate(fd, info.size()) == 0;
    return ::close(fd) == 0 && written;
}

#endif

#if defined(Q_OS_UNIX) && !defined(Q_OS_DARWIN)
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
#endif

// Whether there is an entry `path` (a link counts as one).
bool entryExists(const QString& path) {
#ifdef Q_OS_UNIX
    struct stat entry {};
    return ::lstat(encodeFileName(path).constData(), &entry) == 0;
#else
    return QFileInfo(path).isFile();
#endif
}

// The answer of a route that cannot take a file: the next route is tried.
Error anotherRoute() {
    return errorOf(EXDEV);
}

}  // namespace

Trash::Trash() {
#if defined(Q_OS_UNIX) && !defined(Q_OS_DARWIN)
    const QString data = userDataFolder();
    home_ = data.isEmpty() ? QString() : data + QStringLiteral("/Trash");
#endif
}

Result<TrashPlace> Trash::put(const QString& path) const {
#if defined(Q_OS_UNIX) && !defined(Q_OS_DARWIN)
    if (home_.isEmpty()) {
        // A relative home would put a trash under the current folder, wherever that is.
        return Error{ENOENT, QStringLiteral("There is no trash: HOME is not a full path")};
    }
    if (QDir().mkpath(home_ + QStringLiteral("/files")) &&
        QDir().mkpath(home_ + QStringLiteral("/info"))) {
        if (Result<TrashPlace> done = putInHome(path); done || done.error().code != EXDEV) {
            return done;
        }
    } else if (onDiskOf(path, home_)) {
        // A home trash that cannot be made (its place holds a file, the disk refuses) takes no
        // file of its disk; asked anyway, Qt would make one in the current folder.
        return Error{ENOTDIR, QStringLiteral("Cannot make the trash folder ") + home_};
    }
#endif
    return putByQt(path);
}

Result<TrashPlace> Trash::putInPlaceOf(const TrashPlace& freed, const QString& path) const {
    if (reuse(freed, path)) {
        return freed;
    }
    if (!freed.info.isEmpty() && !entryExists(freed.file)) {
        QFile::remove(freed.info);  // the record of the file that left
    }
    return put(path);
}

Result<TrashPlace> Trash::putByQt(const QString& path) const {
    errno = 0;
    QString placeInTrash;
    if (!QFile::moveToTrash(path, &placeInTrash)) {
        return errorOf(errno != 0 ? errno : EIO);
    }
#if defined(Q_OS_UNIX) && !defined(Q_OS_DARWIN)
    if (!isFilesFolder(QFileInfo(placeInTrash).path())) {
        // Put back what went astray, and say that the trash did not take it.
        QFile::rename(placeInTrash, path);
        return Error{EIO, QStringLiteral("The trash put the file outside the trash")};
    }
#endif
    const QFileInfo file(placeInTrash);
    return TrashPlace{
        placeInTrash,
        QDir::cleanPath(file.dir().filePath(QStringLiteral("../info/") + file.fileName() +
                                            QStringLiteral(".trashinfo")))};
}

bool Trash::isFilesFolder(const QString& folder) const {
    const QFileInfo files(folder);
    if (files.fileName() != QLatin1String("files")) {
        return false;
    }
    const QFileInfo trash(files.path());
    return (!home_.isEmpty() && trash.absoluteFilePath() == QFileInfo(home_).absoluteFilePath()) ||
           trash.fileName().startsWith(QLatin1String(".Trash-")) ||
           QFileInfo(trash.path()).fileName() == QLatin1String(".Trash");
}

#ifdef Q_OS_LINUX

Result<TrashPlace> Trash::putInHome(const QString& path) const {
    const QByteArray source = encodeFileName(path);
    const QByteArray files = encodeFileName(home_ + QStringLiteral("/files/"));
    const QByteArray infos = encodeFileName(home_ + QStringLiteral("/info/"));
    struct stat file {};
    struct stat trashFiles {};
    if (::lstat(source.constData(), &file) != 0) {
        return lastError();
    }
    if (::stat(files.constData(), &trashFiles) != 0 || trashFiles.st_dev != file.st_dev) {
        return anotherRoute();
    }
    removeOrphanRecords(files, infos);
    const QByteArray name = encodeFileName(hostFileName(path));
    const QByteArray info = trashInfo(source);
    for (int attempt = 1; attempt <= kMaxAttempts; ++attempt) {
        const QByteArray candidate = nameInTrash(name, attempt);
        const QByteArray infoPath = infos + candidate + kInfoSuffix;
        if (!writeNew(infoPath, info)) {
            if (errno == EEXIST) {
                continue;
            }
            return lastError();
        }
        if (::renameat2(AT_FDCWD, source.constData(), AT_FDCWD, (files + candidate).constData(),
                        RENAME_NOREPLACE) == 0) {
            return TrashPlace{decodeFileName(files + candidate), decodeFileName(infoPath)};
        }
        const int failed = errno;
        ::unlink(infoPath.constData());
        // No such rename here, or the same device reached by another mount (a bind mount):
        // the general route finds the volume's own trash.
        if (failed == EINVAL || failed == ENOSYS || failed == EXDEV) {
            return anotherRoute();
        }
        if (failed != EEXIST) {
            return errorOf(failed);
        }
    }
    return errorOf(EEXIST);
}

bool Trash::reuse(const TrashPlace& freed, const QString& path) const {
    const QByteArray source = encodeFileName(path);
    const QByteArray place = encodeFileName(freed.file);
    const QByteArray infoPath = encodeFileName(freed.info);
    // The name first, which no other file may have taken meanwhile; on another disk (EXDEV)
    // the file takes the general route.
    if (freed.info.isEmpty() || ::renameat2(AT_FDCWD, source.constData(), AT_FDCWD,
                                            place.constData(), RENAME_NOREPLACE) != 0) {
        return false;
    }
    rewrite(infoPath, trashInfo(source));  // failing, it names where the same bytes were
    return true;
}

#else

Result<TrashPlace> Trash::putInHome(const QString& path) const {
    Q_UNUSED(path);
    return anotherRoute();
}

bool Trash::reuse(const TrashPlace& freed, const QString& path) const {
    Q_UNUSED(freed);
    Q_UNUSED(path);
    return false;
}

#endif

}  // namespace tidewick
