#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <functional>
#include <utility>

#include "readers/session_kinds.h"

// What an audit of a library finds, folder by folder, and how it tells its progress: the values
// that the audit makes, the index keeps and the window and the command line show.
namespace tidewick {

/// A file that the library has where a missing one was looked for: same name.
struct Candidate {
    QString path;
    qint64 size = 0;
    bool operator==(const Candidate&) const = default;
};

/// A used file that is on no disk, as its session names it.
struct MissingMedia {
    QString text;  ///< the used line
    QString path;  ///< the file looked for
    QStringList sessions;
    /// The files of the library with its name (ignoring case and Unicode form), likeliest first.
    QList<Candidate> candidates;
};

/// A file that the folder's own loads would offer, kept because a session of another folder of
/// the library uses it.
struct KeptElsewhere {
    QString path;
    qint64 size = 0;
    QString usedBy;  ///< the session that keeps it, by its path
};

/// One session folder of the library.
struct FolderReport {
    QString folder;  ///< without a trailing separator
    /// The session files by kind, in the order of the tabs; names as the folder lists them.
    QList<std::pair<SessionKindId, QStringList>> sessions;
    qsizetype used = 0;  ///< used files on disk
    QList<MissingMedia> missing;
    /// What a load of all the sessions would offer, with sizes, each by its path from the folder
    /// or, when it lies elsewhere, its whole path (as reclaimablePath gives every one); never a
    /// file that a session of the library uses.
    QList<std::pair<QString, qint64>> reclaimable;
    qint64 reclaimableBytes = 0;
    QList<KeptElsewhere> keptElsewhere;
    /// A session could not be read: its media are unknown, nothing is reclaimable.
    bool stopped = false;
    QString reason;

    qsizetype sessionCount() const;
    /// The whole path of the file that `text`, a text of `reclaimable`, names.
    QString reclaimablePath(const QString& text) const;
};

struct LibraryReport {
    QString root;
    QList<FolderReport> folders;  ///< largest reclaimable first
    qsizetype sessions = 0, used = 0, missing = 0, reclaimableFiles = 0, stopped = 0;
    qint64 reclaimableBytes = 0;
    qint64 filesSeen = 0, bytesSeen = 0;  ///< every file under the root
    qsizetype sessionsRead = 0;           ///< sessions read from their files, not the index
    qsizetype foldersAudited = 0;         ///< folders audited afresh, not taken from the index
    bool cancelled = false;
};

/// How far an audit has come.
struct AuditProgress {
    qsizetype folders = 0;  ///< folders walked, then audited
    qint64 files = 0;
    qint64 bytes = 0;
    bool walking = true;           ///< still walking the tree; afterwards folders are audited
    qsizetype sessionFolders = 0;  ///< session folders found (the whole, once walked)
};

struct AuditEvents {
    std::function<void(const AuditProgress& progress)> progress;
    /// Asked between folders (from the audit's thread): true ends the audit early, and what is
    /// done is reported.
    std::function<bool()> stopRequested;
    /// The words for a session's problem, which the reason of a folder stopped by it quotes
    /// after the session's name; asked from the audit's threads. Without it the reason names
    /// the session alone.
    std::function<QString(const ReadProblem& problem)> describe;
};

/// Whether `events` ask the audit to stop.
inline bool stopAsked(const AuditEvents& events) {
    return events.stopRequested && events.stopRequested();
}

}  // namespace tidewick
