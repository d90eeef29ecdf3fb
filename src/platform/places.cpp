#include "platform/places.h"

#include <algorithm>

#include <QDir>
#include <QFileInfo>
#include <QStorageInfo>

namespace tidewick {

namespace {

// File systems that hold no files of the user's, even when mounted where disks are.
bool isPseudo(const QString& type) {
    static const QStringList pseudo =
        QStringLiteral(
            "proc sysfs tmpfs devtmpfs devpts devfs overlay squashfs cgroup cgroup2 ramfs autofs "
            "securityfs debugfs tracefs configfs fusectl mqueue hugetlbfs pstore bpf efivarfs "
            "nsfs binfmt_misc rpc_pipefs fuse.snapfuse fuse.lxcfs fuse.portal fuse.gvfsd-fuse")
            .split(u' ');
    return pseudo.contains(type);
}

Qt::CaseSensitivity pathCase() {
#ifdef Q_OS_WIN
    return Qt::CaseInsensitive;
#else
    return Qt::CaseSensitive;
#endif
}

}  // namespace

QStringList userPlaces(const QList<Mount>& mounts, const QString& home, const QString& user) {
    QStringList volumes;
    QStringList folders = {QStringLiteral("/mnt/"), QStringLiteral("/Volumes/")};
    if (!user.isEmpty()) {
        folders << QStringLiteral("/media/") + user + u'/'
                << QStringLiteral("/run/media/") + user + u'/';
    }
    for (const Mount& mount : mounts) {
        const QString root = QDir::cleanPath(mount.root);
        // A disk is mounted right inside one of those folders; deeper mounts are machinery.
        const bool userVisible =
            std::any_of(folders.cbegin(), folders.cend(), [&root](const QString& folder) {
                return root.size() > folder.size() && root.startsWith(folder) &&
                       !QStringView(root).mid(folder.size()).contains(u'/');
            });
        if (userVisible && !isPseudo(mount.type)) {
            volumes.append(root);
        }
    }
    volumes.sort();

    QStringList places;
    for (const QString& place : QStringList{QDir::cleanPath(home), QStringLiteral("/")} + volumes) {
        if (!place.isEmpty() && !places.contains(place)) {
            places.append(place);
        }
    }
    return places;
}

QStringList drivePlaces() {
#ifdef Q_OS_WIN
    QStringList drives;
    for (const QStorageInfo& volume : QStorageInfo::mountedVolumes()) {
        if (volume.isValid() && volume.isReady() && !drives.contains(volume.rootPath())) {
            drives.append(volume.rootPath());
        }
    }
    drives.sort();
    return drives;
#else
    QList<Mount> mounts;
    for (const QStorageInfo& volume : QStorageInfo::mountedVolumes()) {
        if (volume.isValid() && volume.isReady()) {
            mounts.append({volume.rootPath(), QString::fromUtf8(volume.fileSystemType())});
        }
    }
    QString user = qEnvironmentVariable("USER");
    if (user.isEmpty()) {
        user = QFileInfo(QDir::homePath()).fileName();
    }
    return userPlaces(mounts, QDir::homePath(), user);
#endif
}

bool placeHolds(const QString& place, const QString& folder) {
    if (place.isEmpty()) {
        return false;
    }
    if (folder.compare(place, pathCase()) == 0) {
        return true;
    }
    const QString inside = place.endsWith(u'/') ? place : place + u'/';
    return folder.startsWith(inside, pathCase());
}

QString placeOf(const QStringList& places, const QString& folder) {
    QString deepest;
    for (const QString& place : places) {
        if (place.size() > deepest.size() && placeHolds(place, folder)) {
            deepest = place;
        }
    }
    return deepest;
}

}  // namespace tidewick
