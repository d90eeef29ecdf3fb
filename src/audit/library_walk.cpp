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

// The folders under `root`, each read once, side by side on the cores at hand (the disk's
// answers to many small questions come faster so), sorted by path. `stop` is asked from this
// thread alone, which also tells the progress.
QList<std::pair<QString, QList<FolderEntry>>> readTree(const QString& root, const FileSystem& disk,
                                                       const AuditEvents& events,
                                                       AuditProgress& progress,
                                                       QStringList& unread) {
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
            // An empty listing may be a folder that could not be read at all.
            const bool readable = !contents.files.isEmpty() || !contents.folders.isEmpty() ||
                                  disk.folderReadable(folder);
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
            if (!readable) {
                unread.append(folder);
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
              [](const auto& a, const auto& b) { return a.first < b.first; });
    return read;
}

}  // namespace

Walk walkLibrary(const QString& root, const FileSystem& disk, ListedDisk& listed,
                 const AuditEvents& events, AuditProgress& progress) {
    Walk walk;
    QSet<QString> sessionFolders;
    for (auto& [folder, entries] : readTree(root, disk, events, progress, walk.unread)) {
        FolderSessions sessions;
        // Beside an Ardour session, its state files are its own, not sessions of other kinds.
        const bool ardour = std::any_of(entries.cbegin(), entries.cend(), [](const FolderEntry& e) {
            const SessionKind* kind = sessionKindForName(e.name);
            return kind != nullptr && kind->id == SessionKindId::Ardour;
        });
        for (const FolderEntry& entry : entries) {
            bool backup = false;
            if (ardour && isArdourStateFile(entry.name)) {
                continue;
            }
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
