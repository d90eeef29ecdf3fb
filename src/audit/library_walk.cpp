#include "audit/library_walk.h"

#include <QSet>
#include <algorithm>
#include <condition_variable>
#include <mutex>

#include "platform/on_cores.h"
#include "sweep/listed_disk.h"
#include "sweep/project_files.h"
#include "text/path_text.h"

namespace tidewick {

namespace {

// Adds the session `name` of `kind` to `sessions`, which keeps the order of the kinds table.
void addSession(FolderSessions& sessions, const SessionKind* kind, const QString& name) {
    auto at = sessions.begin();
    while (at != sessions.end() && int(at->first->id) < int(kind->id)) {
        ++at;
    }
    if (at == sessions.end() || at->first != kind) {
        at = sessions.insert(at, {kind, {}});
    }
    at->second.append(name);
}

// A folder as the walk read it: its files, and its sessions by kind with every session file and
// backup (its path, with its kind).
struct ReadFolder {
    QString folder;
    QList<FolderEntry> files;
    FolderSessions sessions;
    QList<std::pair<const SessionKind*, QString>> sessionFiles;
};

// Notes the sessions among the files of `read`: the thread that listed them does, their names
// still in its cache.
void noteSessions(ReadFolder& read) {
    // Beside an Ardour session, its state files are its own, not sessions of other kinds.
    const bool ardour =
        std::any_of(read.files.cbegin(), read.files.cend(), [](const FolderEntry& e) {
            const SessionKind* kind = sessionKindForName(e.name);
            return kind != nullptr && kind->id == SessionKindId::Ardour;
        });
    for (const FolderEntry& entry : read.files) {
        bool backup = false;
        if (ardour && isArdourStateFile(entry.name)) {
            continue;
        }
        if (const SessionKind* kind = sessionKindForName(entry.name, &backup)) {
            read.sessionFiles.append({kind, read.folder + entry.name});
            if (!backup) {
                addSession(read.sessions, kind, entry.name);
            }
        }
    }
}

// The folders under `root`, each read once, side by side on the cores at hand (the disk's
// answers to many small questions come faster so), sorted by path. `stop` is asked from this
// thread alone, which also tells the progress, and runs `alongside` first.
QList<ReadFolder> readTree(const QString& root, const FileSystem& disk, const AuditEvents& events,
                           AuditProgress& progress, QStringList& unread,
                           const std::function<void()>& alongside) {
    std::mutex mutex;
    std::condition_variable wake;
    QStringList pending = {withSeparator(root)};
    int busy = 0;
    bool cancelled = false;
    QList<ReadFolder> read;
    const auto work = [&](bool reporter) {
        if (reporter && alongside) {
            alongside();
        }
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
            // An empty listing may be a folder that could not be read at all.
            const bool readable = !contents.files.isEmpty() || !contents.folders.isEmpty() ||
                                  disk.folderReadable(folder);
            qint64 bytes = 0;
            for (const FolderEntry& entry : contents.files) {
                bytes += entry.size;
            }
            ReadFolder found{folder, std::move(contents.files), {}, {}};
            noteSessions(found);
            lock.lock();
            for (auto name = contents.folders.crbegin(); name != contents.folders.crend(); ++name) {
                if (walkedFolder(folder, *name)) {
                    pending.append(folder + *name + u'/');
                }
            }
            if (!readable) {
                unread.append(folder);
            }
            progress.files += found.files.size();
            progress.bytes += bytes;
            ++progress.folders;
            read.append(std::move(found));
            --busy;
            wake.notify_all();
            if (reporter) {
                const AuditProgress now = progress;
                lock.unlock();
                if (events.progress) {
                    events.progress(now);
                }
                const bool stop = stopAsked(events);
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
              [](const ReadFolder& a, const ReadFolder& b) { return a.folder < b.folder; });
    return read;
}

}  // namespace

Walk walkLibrary(const QString& root, const FileSystem& disk, ListedDisk& listed,
                 const AuditEvents& events, AuditProgress& progress,
                 const std::function<void()>& alongside) {
    Walk walk;
    QSet<QString> sessionFolders;
    for (ReadFolder& read : readTree(root, disk, events, progress, walk.unread, alongside)) {
        walk.sessionFiles.append(read.sessionFiles);
        walk.walked.append(read.folder);
        if (!read.sessions.isEmpty()) {
            walk.folders.append({read.folder, std::move(read.sessions)});
            sessionFolders.insert(read.folder);
        }
        listed.keep(read.folder, std::move(read.files));
    }
    std::sort(walk.unread.begin(), walk.unread.end());
    // A folder of backups belongs to the session folder above it, whose loads it guards.
    walk.folders.removeIf([&sessionFolders](const WalkedFolder& folder) {
        const QString path = folder.path.chopped(1);
        return backupFolders().contains(GetFileName(path)) &&
               sessionFolders.contains(withSeparator(hostParentFolder(path)));
    });
    return walk;
}

bool walkedFolder(const QString& parent, const QString& name) {
    if (name.startsWith(u'.')) {
        return false;
    }
    const bool inTrash = GetFileName(QString(parent).chopped(parent.endsWith(u'/') ? 1 : 0)) ==
                         QLatin1String("Trash");
    return !(inTrash && (name == QLatin1String("files") || name == QLatin1String("info")));
}

}  // namespace tidewick
