#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <functional>
#include <utility>

#include "audit/audit_report.h"
#include "platform/file_system.h"
#include "readers/session_kinds.h"

// The walk of a library: every folder under its root read once, side by side on the cores at
// hand, and the folders that hold sessions picked out, each with its sessions by kind.
namespace tidewick {

class ListedDisk;

/// The threads of a walk and of the folders' audits at the most: beyond four, the disk and the
/// shared listing gain little from more.
inline constexpr qsizetype kAuditThreads = 4;

/// The sessions of a folder by kind, in the order of the kinds table; names as the folder lists
/// them.
using FolderSessions = QList<std::pair<const SessionKind*, QStringList>>;

/// A folder of the library that holds sessions, as the walk found it.
struct WalkedFolder {
    QString path;  ///< with its separator
    FolderSessions sessions;
};

/// What a walk of the library found.
struct Walk {
    QList<WalkedFolder> folders;
    /// Every session file and backup, with its kind: what the index holds.
    QList<std::pair<const SessionKind*, QString>> sessionFiles;
    /// Every folder walked, with its separator: where a missing file may be.
    QStringList walked;
    /// The folders that could not be read (no permission, a path past the system's limit), with
    /// their separators: what they hold is unknown.
    QStringList unread;
};

/// The folders under `root` that the audit looks into: no link to a folder, no hidden folder (a
/// session's hidden recordings or record folder is read with its session's folder), no trash
/// ("Trash/files", "Trash/info").
bool walkedFolder(const QString& parent, const QString& name);

/// Walks the library under `root`: its listings go into `listed`, which the loads then use.
/// `progress` counts the folders, files and bytes; `events` hear of it and may stop the walk.
/// This thread runs `alongside` first, while another core begins the walk.
Walk walkLibrary(const QString& root, const FileSystem& disk, ListedDisk& listed,
                 const AuditEvents& events, AuditProgress& progress,
                 const std::function<void()>& alongside = {});

}  // namespace tidewick
