#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>

#include "audit/audit_report.h"
#include "platform/result.h"
#include "sweep/sweep.h"

// The sessions an audit read, kept between runs in an SQLite file, keyed by each file's path,
// size, time of change and inode, with the files each uses outside its own folder. A second
// audit reads only the sessions that changed; a load in the window learns from it which sessions
// of other folders use its files. It is a cache: a session is always checked against its file
// (its size, time of change and inode all as the row holds them) before anything it holds is
// believed; a row that disagrees in any of them is read again.
class QSqlDatabase;
class QSqlQuery;

namespace tidewick {

class SessionIndex {
public:
    /// The index `file`, opened when first asked (or made ready()), made when missing. One that
    /// cannot be used (damaged, of another program) is set aside beside it (setAside() says
    /// where) and a new one made; where none can be made, or another program or audit holds it
    /// past `wait`, the index lasts for this run only.
    explicit SessionIndex(const QString& file = defaultFile(),
                          std::chrono::milliseconds wait = std::chrono::seconds(15));
    ~SessionIndex();
    SessionIndex(const SessionIndex&) = delete;
    SessionIndex& operator=(const SessionIndex&) = delete;

    /// "Tidewick/index.sqlite" in the user's cache folder (~/.cache on Linux).
    static QString defaultFile();

    /// Opens the index now, ahead of its first question: an audit has it done beside its walk.
    void ready();

    /// Where an index that could not be used was put, and why; nothing when none was.
    const std::optional<QString>& setAside();

    /// Puts into `cache` the sessions under `root` whose files are as the index holds them.
    void loadInto(const QString& root, SessionCache& cache, const FileSystem& disk);

    /// The stamps of the sessions under `root` as the index holds them.
    QHash<QString, FileStamp> stamps(const QString& root);

    /// A folder's audit as it was kept: the questions it asked of the disk, the hash of their
    /// answers (RecordingDisk), and its report before the library had its say.
    struct KeptAudit {
        QByteArray questions;
        QByteArray signature;
        FolderReport report;
    };
    /// The audits kept of the folders under `root`, by folder.
    QHash<QString, KeptAudit> audits(const QString& root);
    /// A folder's audit to keep: as KeptAudit, its report packed already (packReport), as the
    /// audits do it side by side.
    struct AuditToKeep {
        QByteArray questions;
        QByteArray signature;
        QByteArray report;
    };
    /// Begins to keep what an audit of `root` learns while it goes on, on a connection of the
    /// index's own, in a thread of its own: first the sessions of `cache` under `root` that the
    /// index does not hold as they are (with their files' uses outside their folders,
    /// `elsewhere`, by session), those under `root` not `present` forgotten and `root` noted as
    /// audited, all in one transaction; then each folder's audit as keepAudit gives it. Returns
    /// the uses outside their folders of the sessions under `root`, by session, as the index
    /// holds them once this is kept. Whatever asks the index next waits until it is written.
    QHash<QString, QStringList> beginKeeping(const QString& root, const SessionCache& cache,
                                             const QHash<QString, QStringList>& elsewhere,
                                             const QSet<QString>& present);
    /// A folder's fresh audit, kept with what beginKeeping began; from any thread, until
    /// finishKeeping.
    void keepAudit(const QString& folder, AuditToKeep audit);
    /// Forgets the audits of folders under the root that are not `present`, and has all that
    /// began with beginKeeping written while the caller goes on. Audits that cannot be kept are
    /// worked out again by the next audit; sessions that cannot be kept in the file are kept in
    /// the index that replaces it (as when it is opened).
    void finishKeeping(const QSet<QString>& present);

    /// The roots audited so far, or why the index could not say (held by another program).
    Result<QStringList> roots();

    /// The sessions of other folders that use files of `folders` (each with its separator), each
    /// with those files, as the index holds them; or why the index could not say.
    Result<QHash<QString, QStringList>> usersOf(const QStringList& folders);

    /// The session `path` as the index holds it, if its file is still as it was.
    std::optional<SessionCache::Entry> session(const QString& path, const FileSystem& disk);

    /// Keeps one session read afresh, with its uses outside its folder.
    void update(const QString& path, const SessionCache::Entry& entry,
                const QStringList& elsewhere);

private:
    Result<void> open(const QString& file);
    /// Runs `work` in one transaction: all of its changes, or none and the database's error.
    Result<void> write(const std::function<bool()>& work);
    /// Sets the file aside, as it cannot be used for the reason `why`, and starts a new one (in
    /// memory, when no file can be made).
    void rebuild(const Error& why);
    /// The files that the sessions under `root` use outside their own folders, by session.
    QHash<QString, QStringList> elsewhereUnder(const QString& root);
    /// The statements that keep and forget sessions, made once for a transaction's many.
    struct Statements;
    static bool keep(Statements& sql, const QString& path, const SessionCache::Entry& entry,
                     const QStringList& elsewhere);
    static bool forget(Statements& sql, const QString& path);
    /// What beginKeeping began, and the thread that writes it (writeKept).
    struct Keeping;
    static bool keepSessions(const QSqlDatabase& db, const Keeping& keeping);
    /// Keeps `audits` with `insert` (made on `db`); with the `last` of them, forgets those of the
    /// folders that are not present, when the keeping was told which are.
    static bool keepAudits(const QSqlDatabase& db, QSqlQuery& insert, const Keeping& keeping,
                           const QList<std::pair<QString, AuditToKeep>>& audits, bool last);
    static void writeKept(Keeping& keeping, const QString& file, const QString& connection,
                          const QString& options);
    /// Waits for what is being kept to be written; where the file would not take the sessions,
    /// the index is made anew (rebuild) and they go into that.
    void settle();
    /// The index's connection, once what is being kept is written.
    QSqlDatabase database();

    QString file_;
    QString connection_;
    QString options_;  // the connections' own: how long they wait for another holder
    bool opened_ = false;
    std::optional<QString> setAside_;
    std::unique_ptr<Keeping> keeping_;
};

}  // namespace tidewick
