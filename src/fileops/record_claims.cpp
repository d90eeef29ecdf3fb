#include "fileops/record_claims.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QStorageInfo>
#include <QVarLengthArray>
#include <cerrno>
#include <functional>
#include <mutex>

#include "platform/file_system.h"
#include "text/path_text.h"

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "fileops/file_copy.h"
#endif

namespace tidewick {

namespace {

constexpr qint64 kInfoLimit = 64 * 1024;  // a ".trashinfo" is a few lines

bool isStep(QStringView name) {
    return name.isEmpty() || name == u"." || name == u"..";
}

// `path` resolved whole, its last name too (a folder given as a link is where it leads).
std::optional<QString> resolvedFolder(const QString& path) {
    const std::optional<QString> inner = resolvedEntry(path + QStringLiteral("/x"));
    return inner ? std::optional<QString>(inner->chopped(2)) : std::nullopt;
}

// The bytes of the small ordinary file `path`; none for anything else (a pipe, a device, a
// link, a file too large).
std::optional<QByteArray> smallFileBytes(const QString& path) {
#ifdef Q_OS_UNIX
    // A device is never opened (an opening alone may act on it); nor is a link followed
    // (O_NOFOLLOW), nor a pipe waited on (O_NONBLOCK), should the entry change meanwhile. The
    // file's time of reading is left as it was where the file is ours (O_NOATIME), which spares
    // its inode a write to the journal.
    const QByteArray name = encodeFileName(path);
    struct stat entry {};
    if (::lstat(name.constData(), &entry) != 0 || !S_ISREG(entry.st_mode)) {
        return std::nullopt;
    }
    constexpr int kFlags = O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC;
#ifdef O_NOATIME
    int opening = ::open(name.constData(), kFlags | O_NOATIME);
    if (opening < 0 && errno == EPERM) {
        opening = ::open(name.constData(), kFlags);
    }
#else
    const int opening = ::open(name.constData(), kFlags);
#endif
    Descriptor file(opening);
    struct stat opened {};
    if (file.fd < 0 || ::fstat(file.fd, &opened) != 0 || !S_ISREG(opened.st_mode) ||
        opened.st_size > kInfoLimit) {
        return std::nullopt;
    }
    QByteArray bytes(qsizetype(opened.st_size), Qt::Uninitialized);
    const ssize_t got = ::read(file.fd, bytes.data(), size_t(bytes.size()));
    if (got != ssize_t(bytes.size())) {
        return std::nullopt;
    }
    return bytes;
#else
    QFile file(path);
    if (!QFileInfo(path).isFile() || file.size() > kInfoLimit || !file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    return file.readAll();
#endif
}

// A few seconds' memory of answers about folders: a restore asks about the same few folders for
// every line of its record.
template <typename Answer>
Answer remembered(QHash<QString, Answer>& known, QElapsedTimer& age, std::mutex& mutex,
                  const QString& folder, const std::function<Answer()>& ask) {
    const std::lock_guard lock(mutex);
    if (!age.isValid() || age.hasExpired(5000)) {
        known.clear();
        age.start();
    }
    const auto it = known.constFind(folder);
    if (it != known.constEnd()) {
        return *it;
    }
    const Answer answer = ask();
    known.insert(folder, answer);
    return answer;
}

// The folder `folder` as the kernel resolves it (links and "..", as QFileInfo::canonicalFilePath
// gives it), or empty text when it does not exist.
QString canonicalFolder(const QString& folder) {
    static std::mutex mutex;
    static QHash<QString, QString> known;
    static QElapsedTimer age;
    return remembered<QString>(known, age, mutex, folder,
                               [&folder] { return QFileInfo(folder).canonicalFilePath(); });
}

// Whether `folder` is the top directory of a volume. The mount table is read once for a run of
// questions (a restore asks for every line): an answer is kept for a few seconds.
bool isVolumeRoot(const QString& folder) {
    static std::mutex mutex;
    static QHash<QString, bool> known;
    static QElapsedTimer age;
    return remembered<bool>(known, age, mutex, folder,
                            [&folder] { return QStorageInfo(folder).rootPath() == folder; });
}

// The folder whose trash `trash` is: the user's own, or a volume's top directory.
std::optional<QString> trashTop(const QString& trash, const QString& homeTrash) {
    const std::optional<QString> home = resolvedFolder(homeTrash);
    if (home && trash == *home) {
        return QString();
    }
#ifdef Q_OS_UNIX
    const QString uid = QString::number(::getuid());
#else
    const QString uid;
#endif
    const QFileInfo folder(trash);
    QString top;
    if (folder.fileName() == QLatin1String(".Trash-") + uid) {
        top = folder.path();
    } else if (folder.fileName() == uid &&
               QFileInfo(folder.path()).fileName() == QLatin1String(".Trash")) {
        top = QFileInfo(folder.path()).path();
    } else {
        return std::nullopt;
    }
    // Only the top directory of a volume keeps a trash of its own.
    return isVolumeRoot(top) ? std::optional<QString>(top) : std::nullopt;
}

}  // namespace

std::optional<QString> resolvedEntry(const QString& path) {
    if (!QDir::isAbsolutePath(path)) {
        return std::nullopt;
    }
    const QString slashed = QDir::fromNativeSeparators(path);
    QVarLengthArray<QStringView, 32> names;  // no empty ones
    for (qsizetype from = 0, at = 0; at <= slashed.size(); ++at) {
        if (at == slashed.size() || slashed[at] == u'/') {
            if (at > from) {
                names.append(QStringView(slashed).sliced(from, at - from));
            }
            from = at + 1;
        }
    }
    if (names.isEmpty() || isStep(names.last())) {
        return std::nullopt;
    }
    // The nearest folder that exists, resolved as the kernel resolves it.
    qsizetype known = names.size() - 1;
    QString base;
    for (; known >= 0; --known) {
        QString folder = QStringLiteral("/");
        for (qsizetype at = 0; at < known; ++at) {
            folder.append(at > 0 ? QStringView(u"/") : QStringView()).append(names[at]);
        }
        base = canonicalFolder(folder);
        if (!base.isEmpty()) {
            break;
        }
    }
    if (base.isEmpty()) {
        return std::nullopt;
    }
    for (qsizetype at = known; at < names.size(); ++at) {
        if (isStep(names[at])) {
            return std::nullopt;
        }
        base = withSeparator(std::move(base)).append(names[at]);
    }
    return base;
}

bool liesInside(const QString& path, const QString& folder) {
    const std::optional<QString> entry = resolvedEntry(path);
    const std::optional<QString> within = resolvedFolder(folder);
    return entry && within && entry->startsWith(withSeparator(*within));
}

std::optional<QString> trashInfoPath(const QString& info) {
    const std::optional<QByteArray> bytes = smallFileBytes(info);
    if (!bytes) {
        return std::nullopt;
    }
    const QList<QByteArray> lines = bytes->split('\n');
    if (lines.value(0).trimmed() != "[Trash Info]") {
        return std::nullopt;
    }
    std::optional<QString> path;
    bool dated = false;
    for (const QByteArray& line : lines) {
        if (line.startsWith("Path=") && !path) {
            path = decodeFileName(QByteArray::fromPercentEncoding(line.mid(5).trimmed()));
        }
        dated = dated || line.startsWith("DeletionDate=");
    }
    return dated ? path : std::nullopt;
}

std::optional<QString> trashEntryDoubt(const TrashPlace& place, const QString& original,
                                       const QString& homeTrash, const QString& alsoNamed) {
    if (homeTrash.isEmpty()) {
        return std::nullopt;  // the system's own trash, which keeps no records of this kind
    }
    const std::optional<QString> file = resolvedEntry(place.file);
    const std::optional<QString> info = resolvedEntry(place.info);
    const QFileInfo files(file.value_or(QString()));
    const QString trash = QFileInfo(files.path()).path();
    const std::optional<QString> top = trashTop(trash, homeTrash);
    if (!file || !info || QFileInfo(files.path()).fileName() != QLatin1String("files") || !top ||
        *info !=
            trash + QStringLiteral("/info/") + files.fileName() + QStringLiteral(".trashinfo")) {
        return place.file + QStringLiteral(" is no entry of a trash");
    }
    const std::optional<QString> was = trashInfoPath(*info);
    if (!was) {
        const bool present = QFileInfo(*file).exists() || QFileInfo(*file).isSymLink();
        if (!present && !QFileInfo(*info).exists()) {
            return std::nullopt;  // an emptied trash: nothing there to take
        }
        return place.info + QStringLiteral(" is no record of the trash");
    }
    const QString full =
        QDir::isAbsolutePath(*was) || top->isEmpty() ? *was : withSeparator(*top) + *was;
    for (const QString& named : {original, alsoNamed}) {
        if (!named.isEmpty() && (QDir::cleanPath(full) == QDir::cleanPath(named) ||
                                 resolvedEntry(full) == resolvedEntry(named))) {
            return std::nullopt;
        }
    }
    return place.info + QStringLiteral(" names another file");
}

}  // namespace tidewick
