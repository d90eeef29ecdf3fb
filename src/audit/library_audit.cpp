#include "audit/library_audit.h"

#include <QDir>
#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <vector>

#include "audit/folder_audit.h"
#include "audit/recording_disk.h"
#include "audit/session_index.h"
#include "platform/on_cores.h"
#include "platform/path_text.h"
#include "sweep/listed_disk.h"

namespace tidewick {

namespace {

using Sessions = QList<std::pair<const SessionKind*, QStringList>>;

// A folder of the library that holds sessions, as the walk found it.
struct WalkedFolder {
    QString path;  // with its separator
    Sessions sessions;
};

// What a walk of the library found.
struct Walk {
    QList<WalkedFolder> folders;
    /// Every session file and backup, with its kind: what the index holds.
    QList<std::pair<const SessionKind*, QString>> sessionFiles;
    /// Every folder walked, with its separator: where a missing file may be.
    QStringList walked;
};

// The threads of a walk and of the folders' audits at the most: beyond four, the disk and the
// shared listing gain little from more.
constexpr qsizetype kAuditThreads = 4;

bool stopped(const AuditEvents& events) {
    return events.stopRequested && events.stopRequested();
}

// Adds the session `name` of `kind` to `sessions`, which keeps the order of the kinds table.
void addSession(Sessions& sessions, const SessionKind* kind, const QString& name) {
    auto at = sessions.begin();
    while (at != sessions.end() && int(at->first->id) < int(kind->id)) {
        ++at;
    }
    if (at == sessions.end() || at->first != kind) {
        at = sessions.insert(at, {kind, {}});
    }
    at->second.append(name);
}

// The folders under `root`, each read once, side by side on the cores at hand (the disk's
// answers to many small questions come faster so), sorted by path. `stop` is asked from this
// thread alone, which also tells the progress.
QList<std::pair<QString, QList<FolderEntry>>> readTree(const QString& root, const FileSystem& disk,
                                                       const AuditEvents& events,
                                                       AuditProgress& progress) {
    std::mutex mutex;
    std::condition_variable wake;
    QStringList pending = {withSeparator(root)};
    int busy = 0;
    bool cancelled = false;
    QList<std::pair<QString, QList<FolderEntry>>> read;
    const auto work = [&](bool reporter) {
        std::unique_lock lock(mutex);
        for (;;) {
            wake.wait(lock, [&] { return !pending.isEmpty() || busy == 0 || cancelled; });
            if (pending.isEmpty() || cancelled) {
                return;  // with nothing pending and none busy, nothing more will come
            }
            const QString folder = pending.takeLast();
            ++busy;
            lock.unlock();
            FileSystem::Contents contents = disk.listContents(folder);
            qint64 bytes = 0;
            for (const FolderEntry& entry : contents.files) {
                bytes += entry.size;
            }
            lock.lock();
            for (auto name = contents.folders.crbegin(); name != contents.folders.crend(); ++name) {
                if (walkedFolder(folder, *name)) {
                    pending.append(folder + *name + u'/');
                }
            }
            progress.files += contents.files.size();
            progress.bytes += bytes;
            ++progress.folders;
            read.append({folder, std::move(contents.files)});
            --busy;
            wake.notify_all();
            if (reporter) {
                const AuditProgress now = progress;
                lock.unlock();
                if (events.progress) {
                    events.progress(now);
                }
                const bool stop = stopped(events);
                lock.lock();
                if (stop) {
                    cancelled = true;
                    wake.notify_all();  // the helpers stop with the reporter
                }
            }
        }
    };
    onCores(kAuditThreads, work);
    std::sort(read.begin(), read.end(),
              [](const auto& a, const auto& b) { return a.first < b.first; });
    return read;
}

// Walks the library under `root`: its listings go into `listed`, which the loads then use.
Walk walkLibrary(const QString& root, const FileSystem& disk, ListedDisk& listed,
                 const AuditEvents& events, AuditProgress& progress) {
    Walk walk;
    QSet<QString> sessionFolders;
    for (auto& [folder, entries] : readTree(root, disk, events, progress)) {
        Sessions sessions;
        for (const FolderEntry& entry : entries) {
            bool backup = false;
            if (const SessionKind* kind = sessionKindForName(entry.name, &backup)) {
                walk.sessionFiles.append({kind, folder + entry.name});
                if (!backup) {
                    addSession(sessions, kind, entry.name);
                }
            }
        }
        walk.walked.append(folder);
        if (!sessions.isEmpty()) {
            walk.folders.append({folder, std::move(sessions)});
            sessionFolders.insert(folder);
        }
        listed.keep(folder, std::move(entries));
    }
    // A folder of backups belongs to the session folder above it, whose loads it guards.
    walk.folders.removeIf([&sessionFolders](const WalkedFolder& folder) {
        const QString path = folder.path.chopped(1);
        return backupFolders().contains(GetFileName(path)) &&
               sessionFolders.contains(withSeparator(hostParentFolder(path)));
    });
    return walk;
}

// How far apart two folders are: the steps up from one to the folder they share, and down.
int distance(const QString& from, const QString& to) {
    const QStringList a = from.split(u'/', Qt::SkipEmptyParts);
    const QStringList b = to.split(u'/', Qt::SkipEmptyParts);
    qsizetype shared = 0;
    while (shared < a.size() && shared < b.size() && a[shared] == b[shared]) {
        ++shared;
    }
    return int(a.size() + b.size() - 2 * shared);
}

// The key of the name of the file a used line names, whichever separators it was written with.
QString nameKey(const QString& text) {
    return usedKey(text.mid(std::max(text.lastIndexOf(u'/'), text.lastIndexOf(u'\\')) + 1));
}

// For each missing file of `folders`, the files of the library with its name (ignoring case and
// Unicode form), the nearest to its folder first. The library is looked through once, and only
// when a file is missing.
void findCandidates(QList<FolderReport>& folders, const Walk& walk, const FileSystem& disk) {
    QHash<QString, QList<Candidate>> byName;
    for (const FolderReport& folder : folders) {
        for (const MissingMedia& missing : folder.missing) {
            byName.insert(nameKey(missing.text), {});
        }
    }
    if (byName.isEmpty()) {
        return;
    }
    for (const QString& walked : walk.walked) {
        for (const FolderEntry& entry : disk.listFiles(walked, true)) {
            if (const auto it = byName.find(usedKey(entry.name)); it != byName.end()) {
                it->append({walked + entry.name, entry.size});
            }
        }
    }
    for (FolderReport& folder : folders) {
        for (MissingMedia& missing : folder.missing) {
            missing.candidates = byName.value(nameKey(missing.text));
            const auto nearer = [&folder](const Candidate& a, const Candidate& b) {
                const int nearA = distance(folder.folder, hostParentFolder(a.path));
                const int nearB = distance(folder.folder, hostParentFolder(b.path));
                return nearA != nearB ? nearA < nearB : a.path < b.path;
            };
            std::stable_sort(missing.candidates.begin(), missing.candidates.end(), nearer);
        }
    }
}

// The files that sessions use outside their own folders, by the key of their path (usedKey),
// each with the session that keeps it; and the keys of their folders, so that a folder none of
// them lies in is passed over at once.
struct Keepers {
    QHash<QString, QString> files;
    QSet<QString> folders;
};

Keepers keepersOf(const QHash<QString, QStringList>& elsewhere) {
    Keepers keepers;
    for (auto it = elsewhere.cbegin(); it != elsewhere.cend(); ++it) {
        for (const QString& file : it.value()) {
            keepers.folders.insert(usedKey(withSeparator(hostParentFolder(file))));
            QString& keeper = keepers.files[usedKey(file)];
            if (keeper.isEmpty() || it.key() < keeper) {
                keeper = it.key();  // the same one, whatever order the sessions came in
            }
        }
    }
    return keepers;
}

// A file that a session of another folder uses is no space to free: it moves to the folder's
// kept list, with that session's name.
void keepWhatOthersUse(FolderReport& report, const Keepers& keepers) {
    const QString own = withSeparator(report.folder);
    qsizetype kept = 0;
    QString folder;
    bool folderKept = false;
    for (qsizetype i = 0; i < report.reclaimable.size(); ++i) {
        const auto& [path, size] = report.reclaimable[i];
        if (!path.startsWith(folder) || path.indexOf(u'/', folder.size()) >= 0) {
            folder = path.left(path.lastIndexOf(u'/') + 1);  // the files come folder by folder
            folderKept = keepers.folders.contains(usedKey(folder));
        }
        const QString keeper = folderKept ? keepers.files.value(usedKey(path)) : QString();
        if (!keeper.isEmpty() && withSeparator(hostParentFolder(keeper)) != own) {
            report.keptElsewhere.append({path, size, keeper});
            report.reclaimableBytes -= size;
            ++kept;
        } else if (kept > 0) {
            report.reclaimable[i - kept] = report.reclaimable[i];
        }
    }
    report.reclaimable.resize(report.reclaimable.size() - kept);
}

// A folder audited now, with what its audit asked of the disk and the hash of the answers.
struct Audited {
    FolderReport report;
    QByteArray questions;
    QByteArray signature;
};

// Audits the folders `again`, side by side on the cores at hand, on the one listing of the
// library; each thread has its own copy of the sessions read. The folders not reached when a
// stop is asked for have no report. `stop` is asked from this thread alone, which also tells
// the progress.
std::vector<std::optional<Audited>> auditFolders(const QList<const WalkedFolder*>& again,
                                                 const ListedDisk& listed,
                                                 const SessionCache& cache,
                                                 const AuditEvents& events,
                                                 AuditProgress& progress) {
    std::vector<std::optional<Audited>> audited(size_t(again.size()));
    std::atomic<qsizetype> next = 0;
    std::atomic<bool> cancelled = false;
    std::atomic<int> done = 0;
    const auto work = [&](bool reporter) {
        SessionCache own = cache;
        for (qsizetype at = next++; at < again.size() && !cancelled; at = next++) {
            const RecordingDisk asked(listed);
            FolderReport report =
                auditFolder(again[at]->path, again[at]->sessions, asked, own, events.describe);
            audited[size_t(at)] = Audited{std::move(report), asked.questions(), asked.signature()};
            ++done;
            if (reporter) {
                progress.folders = done;
                if (events.progress) {
                    events.progress(progress);
                }
                cancelled = cancelled || stopped(events);
            }
        }
    };
    onCores(std::min(kAuditThreads, again.size()), work);
    progress.folders = done;
    return audited;
}

void addTotals(LibraryReport& report) {
    for (const FolderReport& folder : report.folders) {
        report.sessions += folder.sessionCount();
        report.used += folder.used;
        report.missing += folder.missing.size();
        report.reclaimableFiles += folder.reclaimable.size();
        report.reclaimableBytes += folder.reclaimableBytes;
        report.stopped += folder.stopped ? 1 : 0;
    }
    std::stable_sort(report.folders.begin(), report.folders.end(),
                     [](const FolderReport& a, const FolderReport& b) {
                         return a.reclaimableBytes != b.reclaimableBytes
                                    ? a.reclaimableBytes > b.reclaimableBytes
                                    : a.folder < b.folder;
                     });
}

}  // namespace

QStringList usedElsewhere(const QString& session, const SessionKind& kind,
                          const SessionRead& read) {
    const QString folder = withSeparator(hostParentFolder(session));
    QStringList files;
    for (const QString& written : read.paths) {
        for (const QString& named : filesNamedBy(written, folder, kind)) {
            const QString file = cleanHostPath(named);
            if (withSeparator(hostParentFolder(file)) != folder && !files.contains(file)) {
                files.append(file);
            }
        }
    }
    return files;
}

bool walkedFolder(const QString& parent, const QString& name) {
    if (name.startsWith(u'.')) {
        return false;
    }
    const bool inTrash = GetFileName(QString(parent).chopped(parent.endsWith(u'/') ? 1 : 0)) ==
                         QLatin1String("Trash");
    return !(inTrash && (name == QLatin1String("files") || name == QLatin1String("info")));
}

LibraryReport auditLibrary(const QString& root, const FileSystem& disk, SessionIndex* index,
                           const AuditEvents& events) {
    LibraryReport report;
    report.root = cleanHostPath(QDir(root).absolutePath());
    ListedDisk listed(disk);
    AuditProgress progress;
    const Walk walk = walkLibrary(report.root, disk, listed, events, progress);
    report.filesSeen = progress.files;
    report.bytesSeen = progress.bytes;
    progress.walking = false;
    progress.sessionFolders = walk.folders.size();
    progress.folders = 0;

    // A folder whose kept audit asked questions that the disk still answers the same way comes
    // out the same: its report is taken as it was. The others are audited again.
    const QHash<QString, SessionIndex::KeptAudit> kept =
        index != nullptr ? index->audits(report.root) : QHash<QString, SessionIndex::KeptAudit>();
    QList<const WalkedFolder*> again;
    QSet<QString> presentFolders;
    for (const WalkedFolder& folder : walk.folders) {
        presentFolders.insert(folder.path);
        const auto it = kept.constFind(folder.path);
        if (it != kept.constEnd() && replaySignature(it->questions, listed) == it->signature) {
            report.folders.append(it->report);
        } else {
            again.append(&folder);
        }
    }

    // The sessions that changed since the index had them are read, side by side on the cores at
    // hand; for folders audited again, the others come from the index. With no folder to audit
    // again, the stamps the index holds say which to read.
    SessionCache cache;
    QHash<QString, FileStamp> held;
    if (index != nullptr && !again.isEmpty()) {
        index->loadInto(report.root, cache, listed);
    } else if (index != nullptr) {
        held = index->stamps(report.root);
    }
    const qsizetype known = cache.entries().size();
    QList<std::pair<const SessionKind*, QString>> toRead;
    QSet<QString> present;
    for (const auto& [kind, path] : walk.sessionFiles) {
        present.insert(path);
        const auto stamp = held.constFind(path);
        if (!again.isEmpty() || stamp == held.constEnd() || listed.fileStamp(path) != *stamp) {
            toRead.append({kind, path});
        }
    }
    cache.readAll(toRead, listed);
    report.sessionsRead = cache.entries().size() - known;

    // Every use of a file outside its session's folder, from the sessions read now and from the
    // index for the others.
    QHash<QString, QStringList> elsewhere;
    for (auto it = cache.entries().cbegin(); it != cache.entries().cend(); ++it) {
        if (it->read.outcome == ReaderOutcome::Read) {
            elsewhere.insert(it.key(), usedElsewhere(it.key(), sessionKind(it->kind), it->read));
        }
    }
    if (index != nullptr) {
        index->store(report.root, cache, elsewhere, present);
        elsewhere = index->elsewhereUnder(report.root);
    }

    QHash<QString, SessionIndex::KeptAudit> fresh;
    std::vector<std::optional<Audited>> audits =
        auditFolders(again, listed, cache, events, progress);
    for (qsizetype at = 0; at < again.size(); ++at) {
        if (std::optional<Audited>& audited = audits[size_t(at)]) {
            fresh.insert(again[at]->path,
                         {audited->questions, audited->signature, audited->report});
            ++report.foldersAudited;
            report.folders.append(std::move(audited->report));
        }
    }
    report.cancelled = stopped(events);
    if (index != nullptr) {
        index->storeAudits(report.root, fresh, presentFolders);
    }

    const Keepers keepers = keepersOf(elsewhere);
    for (FolderReport& folder : report.folders) {
        keepWhatOthersUse(folder, keepers);
    }
    findCandidates(report.folders, walk, listed);
    addTotals(report);
    return report;
}

}  // namespace tidewick
