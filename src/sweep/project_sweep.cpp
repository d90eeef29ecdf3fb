#include "sweep/listed_disk.h"
#include "sweep/sweep.h"
#include "text/path_text.h"

// A load of the project kinds: Ableton Live sets, Audacity projects, Ardour sessions, FL Studio
// and MLT projects name their files by references read against the session, its project folder
// and its data folder, and the files of the whole project tree are listed.
namespace tidewick {

namespace {

// The sessions of the load, by full path, with their kinds: on the "More" tab a folder's sets
// and projects are read together, each by the reader of its own kind.
QList<std::pair<const SessionKind*, QString>> scannedSessions(const SweepRequest& request) {
    QList<std::pair<const SessionKind*, QString>> sessions;
    const ScanRange range = scanRange(request);
    for (int i = range.first; i <= range.last; ++i) {
        const QString path = withSeparator(request.folder) + request.sessions.at(i);
        const SessionKind* kind = sessionKindForFile(path);
        sessions.append({kind && kind->projectScope ? kind : request.kind, path});
    }
    return sessions;
}

// The used lines of the sessions read, and the files their references keep besides.
class ProjectLoad {
public:
    ProjectLoad(const ProjectTree& tree, const FileSystem& fs) : tree_(tree), fs_(fs) {}

    void add(const SessionRead& read, const QString& path, const QString& name) {
        const QStringList folders = {withSeparator(hostParentFolder(path))};
        for (const FileReference& reference : read.references) {
            const ReferenceFiles files = filesOfReference(reference, path, folders, tree_, fs_);
            for (const QString& file : files.kept) {
                kept.append({file, name});
            }
            if (shown_.joined(media.lines, files.shown, name)) {
                continue;
            }
            UsedLine line{files.shown, files.exists, files.shown, {name}, {}, files.outside};
            if (!files.exists && !files.kept.isEmpty()) {
                line.keptFile = files.kept.constFirst();  // found by its name: says why it stays
            }
            shown_.append(media.lines, std::move(line));
        }
    }

    UsedMedia media;
    QList<std::pair<QString, QString>> kept;  // each file with the session that keeps it

private:
    const ProjectTree& tree_;
    const FileSystem& fs_;
    ShownLines shown_;
};

// Reads the sessions into `load`; false, with the load stopped, at one that cannot be read.
bool readSessions(const QList<std::pair<const SessionKind*, QString>>& sessions,
                  const SweepRequest& request, const FileSystem& fs, const SweepEvents& events,
                  SessionCache* cache, ProjectLoad& load) {
    SessionCache own;
    SessionCache& reads = request.reuseReads && cache ? *cache : own;
    for (qsizetype i = 0; i < sessions.size(); ++i) {
        const auto& [kind, path] = sessions[i];
        if (events.reading) {
            events.reading(path);
        }
        const SessionRead read = reads.read(*kind, path, fs);
        if (read.problem && events.tell) {
            events.tell(*read.problem);
        }
        if (read.outcome != ReaderOutcome::Read) {
            // Its references are unknown: any file of the project may be one of them.
            load.media.stopped = true;
            load.media.stoppedAt = hostFileName(path);
            load.media.unread = int(sessions.size() - i);
            return false;
        }
        load.add(read, path, hostFileName(path));
    }
    load.media.noMedia = load.media.lines.isEmpty() && !request.wholeFolder;
    return true;
}

}  // namespace

Sweep sweepProject(const SweepRequest& request, const FileSystem& fs, const SweepEvents& events,
                   SessionCache* cache) {
    Sweep sweep;
    const auto sessions = scannedSessions(request);
    if (sessions.isEmpty()) {
        return sweep;
    }
    ListedDisk disk(fs);
    QStringList paths;
    for (const auto& [kind, path] : sessions) {
        paths.append(path);
    }
    const ProjectTree tree = projectTree(paths, disk, &disk);
    ProjectLoad load(tree, disk);
    const bool read = readSessions(sessions, request, disk, events, cache, load);
    sweep.used = std::move(load.media);
    sweep.root = tree.root;
    if (!read) {
        return sweep;
    }
    // A library's file keeps nothing of the project, so its line is no used line of the test.
    QList<UsedLine> inProject;
    for (const UsedLine& line : sweep.used.lines) {
        if (!line.outside) {
            inProject.append(line);
        }
    }
    auto index = std::make_shared<UsedIndex>(inProject, tree.root, false, disk);
    index->keepEach(load.kept, disk);
    for (const QString& path : paths) {
        for (const QString& own : sessionOwnFiles(path, disk)) {
            index->hide(own, disk);
        }
    }
    sweep.folders = tree.folderPaths();
    if (request.guarded) {
        QString stoppedAt;
        const Result<QList<SessionElsewhere>> elsewhere =
            request.sessionsElsewhere ? request.sessionsElsewhere(sweep.folders)
                                      : QList<SessionElsewhere>();
        auto guard = elsewhere ? sessionGuard(sweep.folders, tree.root, disk, cache, events,
                                              &stoppedAt, *elsewhere)
                               : nullptr;
        if (!guard) {
            sweep.used.stopped = true;
            sweep.used.stoppedAt = elsewhere ? stoppedAt : elsewhere.error().cause;
            return sweep;
        }
        index->addGuard(std::move(guard));
    }
    sweep.index = index;
    sweep.others = listProjectFiles(request, *index, tree, disk, events, &sweep.kept);
    return sweep;
}

QStringList filesKeptByReferences(const SessionRead& read, const QString& sessionPath,
                                  const QStringList& folders, const FileSystem& fs,
                                  QHash<QString, ProjectTree>& trees) {
    const SessionKind* kind = sessionKindForFile(sessionPath);
    if (!kind || read.references.isEmpty()) {
        return {};
    }
    // The sessions of one project folder share its tree; an Audacity project's tree holds its
    // own data folder.
    const QString key = kind->id != SessionKindId::Aup
                            ? projectFolderOf(*kind, hostParentFolder(sessionPath), fs)
                            : sessionPath;
    auto tree = trees.find(key);
    if (tree == trees.end()) {
        tree = trees.insert(key, projectTree({sessionPath}, fs, nullptr));
    }
    QStringList files;
    for (const FileReference& reference : read.references) {
        const ReferenceFiles named = filesOfReference(reference, sessionPath, folders, *tree, fs);
        if (named.outside) {
            continue;
        }
        if (named.exists) {
            files.append(named.shown);
        }
        files.append(named.kept);
    }
    return files;
}

}  // namespace tidewick
