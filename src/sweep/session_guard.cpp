#include <algorithm>
#include <atomic>
#include <vector>

#include "platform/on_cores.h"
#include "readers/import_rpp.h"
#include "sweep/sweep.h"
#include "text/path_text.h"

// The folder's other sessions, of every kind, guard the files they use: a file that any session
// the load can see uses is never offered for moving.
namespace tidewick {

namespace {

// A session that may guard the load: its file, kind, the folders its relative paths are read
// against (its own; for a backup in a folder of backups, the session folder above it too) and
// whether it is a backup.
struct Guard {
    QString path;
    const SessionKind* kind;
    QStringList folders;  // with their separators
    bool backup;
    const QStringList* lastKnown = nullptr;  // for a session of another folder: what it used
};

// The sessions of `folder` and of its backup folders, the load's own among them. A folder that
// is there but cannot be listed may hide sessions: the first such is named in `unreadable`.
void findSessions(const QString& folder, const FileSystem& fs, QList<Guard>& found,
                  QSet<QString>& seen, QString& unreadable) {
    QStringList places = {withSeparator(folder)};
    for (const QString& backups : backupFolders()) {
        places.append(withSeparator(withSeparator(folder) + backups));
    }
    for (qsizetype i = 0; i < places.size(); ++i) {
        const QString place = withSeparator(cleanHostPath(places[i]));
        if (seen.contains(place) || !fs.FolderExists(place)) {
            continue;
        }
        seen.insert(place);
        if (!fs.folderReadable(place)) {
            unreadable = unreadable.isEmpty() ? place : unreadable;
            continue;
        }
        const auto isSession = [](const QString& name) {
            return sessionKindForName(name) != nullptr;
        };
        for (const FolderEntry& entry : fs.listFiles(place, true, isSession)) {
            const QString path = place + entry.name;
            bool backup = false;
            const SessionKind* kind = sessionKindForName(entry.name, &backup);
            const QStringList folders =
                i > 0 ? QStringList{place, withSeparator(folder)} : QStringList{place};
            found.append({path, kind, folders, backup || i > 0});
        }
    }
}

// How the session folder names a file: by its path from there, or whole when it lies elsewhere.
QString namedFrom(const QString& sessionFolder, const QString& path) {
    return path.startsWith(sessionFolder) ? path.mid(sessionFolder.size()) : path;
}

// A path a session names, in host form: the "\" of a session saved on Windows becomes "/".
QString hostForm(QString path) {
    if (hostSeparator() == u'/') {
        path.replace(u'\\', u'/');
    }
    return path;
}

// Whether `text` is `folder` followed by `tail`, without joining them.
bool isJoined(QStringView text, QStringView folder, QStringView tail) {
    return text.size() == folder.size() + tail.size() && text.startsWith(folder) &&
           text.sliced(folder.size()) == tail;
}

}  // namespace

void appendFilesNamedBy(const QString& written, const QString& folder, const QString& recordFolder,
                        QStringList& files) {
    const QString path = hostForm(written);
    const bool rooted = path.contains(u':') || (!path.isEmpty() && isPathSeparator(path[0]));
    const qsizetype first = files.size();
    files.append(rooted ? path : folder + path);
    const auto addShortened = [&](QStringView shortened) {
        if (shortened.isEmpty()) {
            return;
        }
        for (qsizetype i = first; i < files.size(); ++i) {
            if (isJoined(files[i], folder, shortened)) {
                return;  // most paths name one file all three ways
            }
        }
        QString file;
        file.reserve(folder.size() + shortened.size());
        files.append(file.append(folder).append(shortened));
    };
    addShortened(QStringView(path).sliced(trimmedStart(path, recordFolder)));
    addShortened(fileNameView(path));
}

QList<SessionRead> SessionCache::readAll(const QList<std::pair<const SessionKind*, QString>>& files,
                                         const FileSystem& fs) {
    QList<SessionRead> reads(files.size());
    QList<std::optional<FileStamp>> stamps(files.size());
    std::vector<qsizetype> missing;
    for (qsizetype i = 0; i < files.size(); ++i) {
        const auto& [kind, path] = files[i];
        stamps[i] = fs.fileStamp(path);
        const auto known = entries_.constFind(path);
        if (stamps[i] && known != entries_.constEnd() && known->stamp == *stamps[i] &&
            known->kind == kind->id) {
            reads[i] = known->read;
            // What the disk said of a record path then may no longer hold: it is asked again.
            if (reads[i].reaper) {
                for (RecordPathLine& line : reads[i].reaper->recordPaths) {
                    if (line.hasValue) {
                        checkRecordPath(line, {hostParentFolder(path), &fs});
                    }
                }
            }
        } else {
            missing.push_back(i);
        }
    }
    // Each reader is a function of its file's bytes: the files are read side by side, one a
    // core, and the disk's answers (REAPER's record folder) come from `fs` itself.
    std::atomic<size_t> next{0};
    onCores(std::min<qsizetype>(8, qsizetype(missing.size())), [&](bool) {
        for (size_t at = next++; at < missing.size(); at = next++) {
            const qsizetype i = missing[at];
            reads[i] = readSessionFile(*files[i].first, files[i].second,
                                       {hostParentFolder(files[i].second), &fs});
        }
    });
    for (const qsizetype i : missing) {
        if (stamps[i]) {
            entries_.insert(files[i].second, {*stamps[i], files[i].first->id, reads[i]});
        }
    }
    return reads;
}

std::shared_ptr<const UsedIndex> SessionCache::guard(
    const QString& folders, const QList<std::pair<QString, FileStamp>>& stamps) const {
    const auto known = guards_.constFind(folders);
    return known != guards_.constEnd() && known->stamps == stamps ? known->table : nullptr;
}

void SessionCache::setGuard(const QString& folders,
                            const QList<std::pair<QString, FileStamp>>& stamps,
                            std::shared_ptr<const UsedIndex> table) {
    guards_.insert(folders, {stamps, std::move(table)});
}

namespace {

// The files that the paths of each session read, `read`, name (filesNamedBy), worked out on the
// cores at hand: a function of the paths alone.
std::vector<QStringList> filesNamedByEach(const QList<Guard>& guards,
                                          const QList<SessionRead>& read) {
    std::vector<QStringList> named(size_t(guards.size()));
    std::atomic<qsizetype> next{0};
    onCores(std::min<qsizetype>(8, guards.size()), [&](bool) {
        for (qsizetype i = next++; i < guards.size(); i = next++) {
            if (read[i].outcome != ReaderOutcome::Read || guards[i].kind->projectScope) {
                continue;  // a project kind keeps by its references
            }
            for (const QString& from : guards[i].folders) {
                const QString recordFolder = guards[i].kind->startingRecordFolder(from);
                for (const QString& path : read[i].paths) {
                    appendFilesNamedBy(path, from, recordFolder, named[size_t(i)]);
                }
            }
        }
    });
    return named;
}

// What the sessions `guards`, read as `read`, keep, named as the session folder names them; nothing
// when one of them could not be read (its name in `stoppedAt`, its problem told).
std::shared_ptr<UsedIndex> keptBy(const QList<Guard>& guards, const QList<SessionRead>& read,
                                  const QString& sessionFolder, const FileSystem& fs,
                                  const SweepEvents& events, QString* stoppedAt) {
    auto table = std::make_shared<UsedIndex>(QList<UsedLine>(), sessionFolder, false, fs);
    const std::vector<QStringList> named = filesNamedByEach(guards, read);
    const QString folder = withSeparator(sessionFolder);
    QHash<QString, ProjectTree> trees;        // the project kinds' trees, each walked once
    QList<std::pair<QString, QString>> kept;  // each file and the session that keeps it
    for (qsizetype i = 0; i < guards.size(); ++i) {
        const Guard& guard = guards[i];
        if (isForeignFile(read[i])) {
            continue;  // no session: a file like any other
        }
        const QString name = namedFrom(folder, guard.path);
        if (read[i].outcome != ReaderOutcome::Read && guard.lastKnown != nullptr) {
            for (const QString& file : *guard.lastKnown) {
                kept.append({file, name});
            }
            continue;
        }
        if (read[i].outcome != ReaderOutcome::Read) {
            if (read[i].problem && events.tell) {
                events.tell(*read[i].problem);
            }
            *stoppedAt = name;
            return nullptr;
        }
        if (guard.kind->projectScope) {
            // References, each keeping every file it could name; an Audacity 3 project's
            // database companions and Ardour's state beside a session are part of it.
            for (const QString& file :
                 filesKeptByReferences(read[i], guard.path, guard.folders, fs, trees)) {
                kept.append({file, name});
            }
            for (const QString& own : sessionOwnFiles(guard.path, fs)) {
                table->hide(own, fs);
            }
        } else {
            for (const QString& file : named[size_t(i)]) {
                kept.append({file, name});
            }
        }
        if (!guard.backup || guard.kind->projectScope) {
            table->hide(guard.path, fs);
        }
    }
    table->keepEach(kept, fs);
    return table;
}

}  // namespace

std::shared_ptr<const UsedIndex> sessionGuard(const QStringList& folders,
                                              const QString& sessionFolder, const FileSystem& fs,
                                              SessionCache* cache, const SweepEvents& events,
                                              QString* stoppedAt,
                                              const QList<SessionElsewhere>& elsewhere) {
    QList<Guard> guards;
    QSet<QString> seen;
    QString unreadable;
    for (const QString& folder : folders) {
        findSessions(folder, fs, guards, seen, unreadable);
    }
    if (!unreadable.isEmpty()) {
        // Read as empty, it would guard nothing; like a session that cannot be read, it stops.
        *stoppedAt = namedFrom(withSeparator(sessionFolder), unreadable);
        return nullptr;
    }
    for (const SessionElsewhere& session : elsewhere) {
        guards.append({session.path,
                       session.kind,
                       {withSeparator(hostParentFolder(session.path))},
                       true,
                       &session.files});
    }
    // Worked out once for the sessions as they are: a load after a change of media type, peak
    // option or sub-folder row asks the disk only whether any of them changed.
    QList<std::pair<QString, FileStamp>> stamps;
    for (const Guard& guard : guards) {
        stamps.append({guard.path, fs.fileStamp(guard.path).value_or(FileStamp{-1, -1})});
    }
    const QString key = folders.join(u'\n');
    SessionCache once;
    SessionCache& reads = cache ? *cache : once;
    if (auto known = reads.guard(key, stamps)) {
        return known;
    }
    QList<std::pair<const SessionKind*, QString>> files;
    for (const Guard& guard : guards) {
        files.append({guard.kind, guard.path});
    }
    const QList<SessionRead> read = reads.readAll(files, fs);
    auto table = keptBy(guards, read, sessionFolder, fs, events, stoppedAt);
    if (!table) {
        return nullptr;
    }
    reads.setGuard(key, stamps, table);
    return table;
}

}  // namespace tidewick
