#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// The drive list: the drive letters on Windows; on Linux and macOS the places where a user keeps
// files, which is what a drive is to someone who opens sessions there.
namespace tidewick {

/// A mounted file system: the folder it is mounted on and its type ("ext4", "tmpfs").
struct Mount {
    QString root;
    QString type;
};

/// The user's places in the drive list's order: `home` first, then "/", then the mounts of
/// removable and external disks (right inside /media/`user`, /run/media/`user`, /mnt and
/// /Volumes), sorted by path. Pseudo and system file systems (proc, tmpfs, squashfs, …) are left
/// out even there, and every other mount (/boot, /run/user/…, /snap/…) is part of "/" for the user.
QStringList userPlaces(const QList<Mount>& mounts, const QString& home, const QString& user);

/// This machine's drive list: its drive roots on Windows, its user's places elsewhere.
QStringList drivePlaces();

/// True when `folder` is `place` or lies below it.
bool placeHolds(const QString& place, const QString& folder);

/// The deepest place of `places` that holds `folder`, or empty text when none does.
QString placeOf(const QStringList& places, const QString& folder);

}  // namespace tidewick
