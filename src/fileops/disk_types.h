#pragma once

#include <QHash>
#include <QString>
#include <functional>

// The values that the disk's changes take and give: how a copy treats what it meets, where the
// trash put a file, and which files the loaded sessions keep from being replaced.
namespace tidewick {

/// How a copy treats what it meets.
struct CopyMode {
    /// A file already under the destination name goes to the trash and the copy takes its
    /// place; without this, such a file makes the copy fail and stays as it is.
    bool replace = false;
    /// A symbolic link is copied as the file it points at (collecting a session's media);
    /// without this it is copied as a link, and what it points at is never opened.
    bool followLinks = false;
};

/// Called as a copy goes on, with the bytes written since the last call.
using CopyProgress = std::function<void(qint64 bytes)>;

/// Where the trash put a file: the file under its name in the trash, and the record of where it
/// was (".trashinfo"); either may be empty where the trash keeps no such thing.
struct TrashPlace {
    QString file;
    QString info;
    bool operator==(const TrashPlace&) const = default;
};

/// The files that the loaded sessions use, by canonical path, each with the session that uses
/// it as the session folder names it ("mix.sesx"): a move or a copy never replaces one.
using UsedFileOwners = QHash<QString, QString>;

/// The session that uses the file at `path` (the same file, however reached), or empty text.
QString usedBy(const UsedFileOwners& owners, const QString& path);

}  // namespace tidewick
