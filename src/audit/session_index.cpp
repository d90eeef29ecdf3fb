#include "audit/session_index.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QVariant>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include "audit/index_packing.h"
#include "platform/on_cores.h"
#include "readers/import_rpp.h"
#include "text/path_text.h"

namespace tidewick {

namespace {

// Written into every index, so that a file of another program, or of a later layout, is known.
const QString kFormat = QStringLiteral("tidewick-index-2");

// The form of a kept audit: the questions it asked of the disk, the bytes their answers are
// hashed from, and its report's packing. Audits kept in an earlier form are dropped: before "2"
// they did not ask about the trees of project kinds (and would pass for current after a change
// there), before "3" their listings were hashed in other bytes (and would never pass), and
// before "4" and "5" their reports' names and sizes were packed otherwise.
const QString kAuditQuestions = QStringLiteral("5");

bool noteAuditQuestions(const QSqlDatabase& db) {
    QSqlQuery note(db);
    note.prepare(QStringLiteral("INSERT OR REPLACE INTO meta VALUES ('audit-questions', ?)"));
    note.addBindValue(kAuditQuestions);
    return note.exec();
}

const char* const kSchema[] = {
    "CREATE TABLE meta (key TEXT PRIMARY KEY, value TEXT)",
    ("CREATE TABLE sessions (path TEXT PRIMARY KEY, size INTEGER NOT NULL, "
     "modified INTEGER NOT NULL, kind INTEGER NOT NULL, read BLOB NOT NULL, "
     "inode INTEGER NOT NULL DEFAULT 0)"),
    "CREATE TABLE media (session TEXT NOT NULL, folder TEXT NOT NULL, file TEXT NOT NULL)",
    "CREATE INDEX media_folder ON media (folder)",
    "CREATE INDEX media_session ON media (session)",
    "CREATE TABLE roots (path TEXT PRIMARY KEY, audited INTEGER NOT NULL)",
    ("CREATE TABLE audits (folder TEXT PRIMARY KEY, questions BLOB NOT NULL, "
     "signature BLOB NOT NULL, report BLOB NOT NULL)"),
};

// The failure of `error`, its number SQLite's own (5 and 6: the file is held by another
// connection), its cause never empty.
Error failureOf(const QSqlError& error) {
    const QString cause = error.text().trimmed();
    return {error.nativeErrorCode().toInt(),
            cause.isEmpty() ? QStringLiteral("the database gave no reason") : cause};
}

// Whether the file is only held by another program or audit, and not damaged.
bool isHeld(const Error& error) {
    return error.code == 5 || error.code == 6;
}

// Begins a transaction that holds the file for writing from the start: another program's or
// audit's hold is told there, by SQLite's own error, rather than by whichever statement meets it.
Result<void> beginWriting(const QSqlDatabase& db) {
    QSqlQuery begin(db);
    if (begin.exec(QStringLiteral("BEGIN IMMEDIATE"))) {
        return {};
    }
    return failureOf(begin.lastError());
}

// A query that reads its rows once, in order: nothing is kept behind it.
QSqlQuery reading(const QSqlDatabase& db) {
    QSqlQuery query(db);
    query.setForwardOnly(true);
    return query;
}

// The bounds of the paths under `root`: from "root/" up to "root0", '0' following '/'.
std::pair<QString, QString> under(const QString& root) {
    const QString from = withSeparator(root);
    return {from, from.chopped(1) + QChar(from.back().unicode() + 1)};
}

}  // namespace

SessionIndex::SessionIndex(const QString& file, std::chrono::milliseconds wait)
    : file_(file),
      connection_(QStringLiteral("tidewick-index-") + QString::number(quintptr(this), 16)),
      options_(QStringLiteral("QSQLITE_BUSY_TIMEOUT=") + QString::number(wait.count())) {}

void SessionIndex::ready() {
    if (!opened_) {
        opened_ = true;
        if (const Result<void> opened = open(file_); !opened) {
            rebuild(opened.error());
        }
    }
}

const std::optional<QString>& SessionIndex::setAside() {
    ready();
    return setAside_;
}

SessionIndex::~SessionIndex() {
    if (opened_) {
        database().close();
        QSqlDatabase::removeDatabase(connection_);
    }
}

QString SessionIndex::defaultFile() {
    const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    return cache.isEmpty() ? QString() : cache + QStringLiteral("/Tidewick/index.sqlite");
}

Result<void> SessionIndex::open(const QString& file) {
    if (file != QLatin1String(":memory:") && !QDir().mkpath(hostParentFolder(file))) {
        return Error{0, QStringLiteral("its folder cannot be made")};
    }
    QSqlDatabase db = QSqlDatabase::contains(connection_)
                          ? QSqlDatabase::database(connection_, false)
                          : QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection_);
    db.close();
    db.setDatabaseName(file);
    db.setConnectOptions(options_);
    if (!db.open()) {
        return failureOf(db.lastError());
    }
    QSqlQuery query(db);
    const bool read = query.exec(QStringLiteral("SELECT value FROM meta WHERE key = 'format'"));
    if (!read && isHeld(failureOf(query.lastError()))) {
        return failureOf(query.lastError());  // sound, as far as anyone can tell: it stays
    }
    if (read) {
        if (!query.next() || query.value(0).toString() != kFormat) {
            return Error{0, QStringLiteral("it is no index of this version of Tidewick")};
        }
        if (query.exec(QStringLiteral("SELECT value FROM meta WHERE key = 'audit-questions'")) &&
            query.next() && query.value(0).toString() == kAuditQuestions) {
            return {};
        }
        return write([&db] {
            QSqlQuery forget(db);
            return forget.exec(QStringLiteral("DELETE FROM audits")) && noteAuditQuestions(db);
        });
    }
    // No index yet: an empty database gets the tables; one with tables of its own is another
    // program's, and a file that is no database says so here.
    if (!query.exec(QStringLiteral("SELECT count(*) FROM sqlite_master")) || !query.next() ||
        query.value(0).toInt() != 0) {
        return query.lastError().isValid()
                   ? failureOf(query.lastError())
                   : Error{0, QStringLiteral("it is another program's database")};
    }
    // A new index holds nothing to lose: its tables are made without waiting for the disk. A
    // crash meanwhile leaves a file that is no index, which the next run sets aside.
    query.exec(QStringLiteral("PRAGMA synchronous = OFF"));
    const Result<void> made = write([&db] {
        QSqlQuery make(db);
        for (const char* statement : kSchema) {
            if (!make.exec(QString::fromLatin1(statement))) {
                return false;
            }
        }
        make.prepare(QStringLiteral("INSERT INTO meta VALUES ('format', ?)"));
        make.addBindValue(kFormat);
        return make.exec() && noteAuditQuestions(db);
    });
    query.exec(QStringLiteral("PRAGMA synchronous = FULL"));  // what the index learns is kept
    return made;
}

void SessionIndex::rebuild(const Error& why) {
    database().close();
    if (isHeld(why)) {
        // Held by another program or audit, it is sound: it stays, and this run keeps what it
        // reads to itself.
        (void)open(QStringLiteral(":memory:"));
        return;
    }
    if (QFile::exists(file_)) {
        const QString stamp =
            file_ + QStringLiteral(".set-aside-") +
            QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
        QString aside = stamp;
        for (int n = 2; QFile::exists(aside); ++n) {
            aside = stamp + u'-' + QString::number(n);
        }
        if (QFile::rename(file_, aside)) {
            QFile::rename(file_ + QStringLiteral("-journal"), aside + QStringLiteral("-journal"));
            setAside_ = aside + QStringLiteral(" (") + why.cause + u')';
        }
    }
    if (!open(file_)) {
        (void)open(QStringLiteral(":memory:"));  // this run alone keeps what it read
    }
}

Result<void> SessionIndex::write(const std::function<bool()>& work) {
    QSqlDatabase db = database();
    if (const Result<void> begun = beginWriting(db); !begun) {
        return begun;
    }
    if (work() && db.commit()) {
        return {};
    }
    const Error failed = failureOf(db.lastError());
    db.rollback();
    return failed;
}

void SessionIndex::loadInto(const QString& root, SessionCache& cache, const FileSystem& disk) {
    QSqlQuery query = reading(database());
    query.prepare(
        QStringLiteral("SELECT path, size, modified, kind, read, inode FROM sessions WHERE path >= "
                       "? AND path < ?"));
    const auto [from, to] = under(root);
    query.addBindValue(from);
    query.addBindValue(to);
    if (!query.exec()) {
        rebuild(failureOf(query.lastError()));
        return;
    }
    while (query.next()) {
        const QString path = query.value(0).toString();
        const FileStamp held{query.value(1).toLongLong(), query.value(2).toLongLong(),
                             query.value(5).toULongLong()};
        const int kind = query.value(3).toInt();
        if (disk.fileStamp(path) != held || kind < 0 || kind >= sessionKinds().size()) {
            continue;  // changed since: read again
        }
        if (const Result<SessionRead> read = unpackRead(query.value(4).toByteArray())) {
            cache.remember(path, {held, SessionKindId(kind), *read});
        }
    }
}

QHash<QString, FileStamp> SessionIndex::stamps(const QString& root) {
    QSqlQuery held = reading(database());
    held.prepare(
        QStringLiteral("SELECT path, size, modified, inode FROM sessions WHERE path >= ? AND "
                       "path < ?"));
    const auto [from, to] = under(root);
    held.addBindValue(from);
    held.addBindValue(to);
    QHash<QString, FileStamp> stamps;
    if (held.exec()) {
        while (held.next()) {
            stamps.insert(held.value(0).toString(),
                          {held.value(1).toLongLong(), held.value(2).toLongLong(),
                           held.value(3).toULongLong()});
        }
    }
    return stamps;
}

struct SessionIndex::Statements {
    explicit Statements(const QSqlDatabase& db)
        : forgetSession(db), forgetMedia(db), insertSession(db), insertMedia(db) {
        // A statement that cannot be made fails when it runs, and so does its transaction.
        forgetSession.prepare(QStringLiteral("DELETE FROM sessions WHERE path = ?"));
        forgetMedia.prepare(QStringLiteral("DELETE FROM media WHERE session = ?"));
        insertSession.prepare(
            QStringLiteral("INSERT OR REPLACE INTO sessions VALUES (?, ?, ?, ?, ?, ?)"));
        insertMedia.prepare(QStringLiteral("INSERT INTO media VALUES (?, ?, ?)"));
    }
    QSqlQuery forgetSession, forgetMedia, insertSession, insertMedia;
};

struct SessionIndex::Keeping {
    QString root;
    QList<std::pair<QString, SessionCache::Entry>> changed;  // the sessions to keep, by path
    QHash<QString, QStringList> elsewhere;                   // their uses outside their folders
    QStringList gone;                                        // the sessions to forget
    std::mutex mutex;                                        // over what follows
    std::condition_variable given;
    QList<std::pair<QString, AuditToKeep>> audits;  // given, and not yet written
    bool finished = false;
    std::optional<QSet<QString>> present;  // the folders whose audits stay, when told
    std::optional<Error> failed;           // set by the thread, read once it is done
    std::thread thread;                    // none where the index lasts for this run only
};

bool SessionIndex::keepSessions(const QSqlDatabase& db, const Keeping& keeping) {
    Statements sql(db);
    for (const auto& [path, entry] : keeping.changed) {
        if (!keep(sql, path, entry, keeping.elsewhere.value(path))) {
            return false;
        }
    }
    for (const QString& path : keeping.gone) {
        if (!forget(sql, path)) {
            return false;
        }
    }
    QSqlQuery audited(db);
    audited.prepare(QStringLiteral("INSERT OR REPLACE INTO roots VALUES (?, ?)"));
    audited.addBindValue(cleanHostPath(keeping.root));
    audited.addBindValue(QDateTime::currentSecsSinceEpoch());
    return audited.exec();
}

namespace {

bool insertAudits(QSqlQuery& insert,
                  const QList<std::pair<QString, SessionIndex::AuditToKeep>>& audits) {
    for (const auto& [folder, audit] : audits) {
        insert.addBindValue(folder);
        insert.addBindValue(audit.questions);
        insert.addBindValue(audit.signature);
        insert.addBindValue(audit.report);
        if (!insert.exec()) {
            return false;
        }
    }
    return true;
}

// Forgets the audits of the folders under `root` that are not `present`.
bool forgetAudits(const QSqlDatabase& db, const QString& root, const QSet<QString>& present) {
    QSqlQuery query(db);
    query.prepare(QStringLiteral("SELECT folder FROM audits WHERE folder >= ? AND folder < ?"));
    const auto [from, to] = under(root);
    query.addBindValue(from);
    query.addBindValue(to);
    QStringList gone;
    if (!query.exec()) {
        return false;
    }
    while (query.next()) {
        if (!present.contains(query.value(0).toString())) {
            gone.append(query.value(0).toString());
        }
    }
    query.prepare(QStringLiteral("DELETE FROM audits WHERE folder = ?"));
    for (const QString& folder : gone) {
        query.addBindValue(folder);
        if (!query.exec()) {
            return false;
        }
    }
    return true;
}

const QString kInsertAudit = QStringLiteral("INSERT OR REPLACE INTO audits VALUES (?, ?, ?, ?)");

}  // namespace

bool SessionIndex::keepAudits(const QSqlDatabase& db, QSqlQuery& insert, const Keeping& keeping,
                              const QList<std::pair<QString, AuditToKeep>>& audits, bool last) {
    return insertAudits(insert, audits) &&
           (!last || !keeping.present || forgetAudits(db, keeping.root, *keeping.present));
}

QHash<QString, QStringList> SessionIndex::beginKeeping(const QString& root,
                                                       const SessionCache& cache,
                                                       const QHash<QString, QStringList>& elsewhere,
                                                       const QSet<QString>& present) {
    settle();
    auto keeping = std::make_unique<Keeping>();
    keeping->root = root;
    keeping->elsewhere = elsewhere;
    // The uses as they will stand: the index's, those of the sessions kept anew in their place.
    QHash<QString, QStringList> uses = elsewhereUnder(root);
    const QHash<QString, FileStamp> held = stamps(root);
    const QString from = under(root).first;
    for (auto it = cache.entries().cbegin(); it != cache.entries().cend(); ++it) {
        if (it.key().startsWith(from) && held.value(it.key(), {-1, -1}) != it->stamp) {
            keeping->changed.append({it.key(), *it});
            uses.remove(it.key());
            if (const QStringList files = elsewhere.value(it.key()); !files.isEmpty()) {
                uses.insert(it.key(), files);
            }
        }
    }
    for (auto it = held.cbegin(); it != held.cend(); ++it) {
        if (!present.contains(it.key())) {
            keeping->gone.append(it.key());
            uses.remove(it.key());
        }
    }
    const QSqlDatabase db = database();
    if (db.databaseName() == QLatin1String(":memory:")) {
        // No other connection sees this one's tables: the sessions go in now, the audits when
        // they are all done.
        (void)write([&] { return keepSessions(db, *keeping); });
    } else {
        keeping->thread = std::thread(writeKept, std::ref(*keeping), db.databaseName(),
                                      connection_ + QStringLiteral("-keeping"), options_);
    }
    keeping_ = std::move(keeping);
    return uses;
}

void SessionIndex::keepAudit(const QString& folder, AuditToKeep audit) {
    {
        const std::lock_guard lock(keeping_->mutex);
        keeping_->audits.append({folder, std::move(audit)});
    }
    keeping_->given.notify_one();
}

void SessionIndex::finishKeeping(const QSet<QString>& present) {
    {
        const std::lock_guard lock(keeping_->mutex);
        keeping_->finished = true;
        keeping_->present = present;
    }
    keeping_->given.notify_one();
    if (!keeping_->thread.joinable()) {
        const std::unique_ptr<Keeping> keeping = std::move(keeping_);
        QSqlDatabase db = database();
        (void)write([&] {
            QSqlQuery insert(db);
            return insert.prepare(kInsertAudit) &&
                   keepAudits(db, insert, *keeping, keeping->audits, true);
        });
    }
}

// The sessions first, written while the folders are audited; then the audits as they come, in
// one transaction, which little is left to add to when the last has come.
void SessionIndex::writeKept(Keeping& keeping, const QString& file, const QString& connection,
                             const QString& options) {
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
        db.setDatabaseName(file);
        db.setConnectOptions(options);
        {
            QSqlQuery insert(db);
            const Result<void> begun =
                db.open() ? beginWriting(db) : Result<void>(failureOf(db.lastError()));
            const bool sessionsKept = begun && keepSessions(db, keeping) && db.commit();
            if (!sessionsKept) {
                keeping.failed = begun ? failureOf(db.lastError()) : begun.error();
                db.rollback();
            }
            // Audits that cannot be kept are worked out again by the next audit.
            bool auditsKept = sessionsKept && beginWriting(db) && insert.prepare(kInsertAudit);
            for (bool last = false; !last;) {
                std::unique_lock lock(keeping.mutex);
                keeping.given.wait(lock,
                                   [&] { return !keeping.audits.isEmpty() || keeping.finished; });
                const auto audits = std::exchange(keeping.audits, {});
                last = keeping.finished;
                lock.unlock();
                auditsKept = auditsKept && keepAudits(db, insert, keeping, audits, last);
            }
            if (!(auditsKept && db.commit())) {
                db.rollback();
            }
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(connection);
}

void SessionIndex::settle() {
    if (!keeping_) {
        return;
    }
    const std::unique_ptr<Keeping> keeping = std::move(keeping_);
    {
        const std::lock_guard lock(keeping->mutex);
        keeping->finished = true;  // what was not told to go, stays
    }
    keeping->given.notify_one();
    if (keeping->thread.joinable()) {
        keeping->thread.join();
    }
    if (keeping->failed) {
        rebuild(*keeping->failed);  // a damaged or locked file: this run's reads go into a new one
        (void)write([&] { return keepSessions(database(), *keeping); });
    }
}

QSqlDatabase SessionIndex::database() {
    ready();
    settle();
    return QSqlDatabase::database(connection_, false);
}

QHash<QString, QStringList> SessionIndex::elsewhereUnder(const QString& root) {
    QSqlQuery query = reading(database());
    query.prepare(
        QStringLiteral("SELECT session, file FROM media WHERE session >= ? AND "
                       "session < ?"));
    const auto [from, to] = under(root);
    query.addBindValue(from);
    query.addBindValue(to);
    QHash<QString, QStringList> files;
    if (query.exec()) {
        while (query.next()) {
            files[query.value(0).toString()].append(query.value(1).toString());
        }
    }
    return files;
}

QHash<QString, SessionIndex::KeptAudit> SessionIndex::audits(const QString& root) {
    QSqlQuery query = reading(database());
    query.prepare(
        QStringLiteral("SELECT folder, questions, signature, report FROM audits WHERE folder >= ? "
                       "AND folder < ?"));
    const auto [from, to] = under(root);
    query.addBindValue(from);
    query.addBindValue(to);
    struct Row {
        QString folder;
        QByteArray questions, signature, report;
        std::optional<FolderReport> unpacked;
    };
    std::vector<Row> rows;
    if (query.exec()) {
        while (query.next()) {
            rows.push_back({query.value(0).toString(),
                            query.value(1).toByteArray(),
                            query.value(2).toByteArray(),
                            query.value(3).toByteArray(),
                            {}});
        }
    }
    // A report of thousands of files is unpacked on the cores at hand.
    std::atomic<size_t> next = 0;
    onCores(qsizetype(rows.size()), [&](bool) {
        for (size_t at = next++; at < rows.size(); at = next++) {
            if (Result<FolderReport> report = unpackReport(rows[at].report)) {
                rows[at].unpacked = std::move(*report);
            }
        }
    });
    QHash<QString, KeptAudit> audits;
    for (Row& row : rows) {
        if (row.unpacked) {
            audits.insert(row.folder, {row.questions, row.signature, std::move(*row.unpacked)});
        }
    }
    return audits;
}

void SessionIndex::update(const QString& path, const SessionCache::Entry& entry,
                          const QStringList& elsewhere) {
    QSqlDatabase db = database();
    // A session that cannot be kept is read again where it is used next.
    (void)write([&] {
        Statements sql(db);
        return keep(sql, path, entry, elsewhere);
    });
}

bool SessionIndex::keep(Statements& sql, const QString& path, const SessionCache::Entry& entry,
                        const QStringList& elsewhere) {
    // Its row is replaced as the new one goes in; the files it used elsewhere go first.
    sql.forgetMedia.addBindValue(path);
    if (!sql.forgetMedia.exec()) {
        return false;
    }
    QSqlQuery& insert = sql.insertSession;
    insert.addBindValue(path);
    insert.addBindValue(entry.stamp.size);
    insert.addBindValue(entry.stamp.modified);
    insert.addBindValue(int(entry.kind));
    insert.addBindValue(packRead(entry.read));
    insert.addBindValue(entry.stamp.inode);
    if (!insert.exec()) {
        return false;
    }
    for (const QString& file : elsewhere) {
        sql.insertMedia.addBindValue(path);
        sql.insertMedia.addBindValue(withSeparator(hostParentFolder(file)));
        sql.insertMedia.addBindValue(file);
        if (!sql.insertMedia.exec()) {
            return false;
        }
    }
    return true;
}

bool SessionIndex::forget(Statements& sql, const QString& path) {
    for (QSqlQuery* remove : {&sql.forgetSession, &sql.forgetMedia}) {
        remove->addBindValue(path);
        if (!remove->exec()) {
            return false;
        }
    }
    return true;
}

Result<QStringList> SessionIndex::roots() {
    QSqlQuery query = reading(database());
    QStringList roots;
    if (!query.exec(QStringLiteral("SELECT path FROM roots ORDER BY path"))) {
        return failureOf(query.lastError());
    }
    while (query.next()) {
        roots.append(query.value(0).toString());
    }
    return roots;
}

Result<QHash<QString, QStringList>> SessionIndex::usersOf(const QStringList& folders) {
    QSqlQuery query = reading(database());
    query.prepare(QStringLiteral("SELECT session, file FROM media WHERE folder = ?"));
    QHash<QString, QStringList> users;
    for (const QString& folder : folders) {
        query.addBindValue(withSeparator(cleanHostPath(folder)));
        if (!query.exec()) {
            return failureOf(query.lastError());
        }
        while (query.next()) {
            users[query.value(0).toString()].append(query.value(1).toString());
        }
    }
    return users;
}

std::optional<SessionCache::Entry> SessionIndex::session(const QString& path,
                                                         const FileSystem& disk) {
    QSqlQuery query = reading(database());
    query.prepare(
        QStringLiteral("SELECT size, modified, kind, read, inode FROM sessions WHERE path = ?"));
    query.addBindValue(path);
    if (!query.exec() || !query.next()) {
        return std::nullopt;
    }
    const FileStamp held{query.value(0).toLongLong(), query.value(1).toLongLong(),
                         query.value(4).toULongLong()};
    const int kind = query.value(2).toInt();
    if (disk.fileStamp(path) != held || kind < 0 || kind >= sessionKinds().size()) {
        return std::nullopt;
    }
    Result<SessionRead> read = unpackRead(query.value(3).toByteArray());
    if (!read) {
        return std::nullopt;
    }
    if (read->reaper) {
        for (RecordPathLine& line : read->reaper->recordPaths) {
            if (line.hasValue) {
                checkRecordPath(line, {hostParentFolder(path), &disk});
            }
        }
    }
    return SessionCache::Entry{held, SessionKindId(kind), *read};
}

}  // namespace tidewick
