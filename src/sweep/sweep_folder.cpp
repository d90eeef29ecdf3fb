#include <future>

#include "sweep/listed_disk.h"
#include "sweep/sweep.h"
#include "text/path_text.h"
#include "text/pattern_list.h"

// A whole load of a session folder: the used media, then the other files.
namespace tidewick {

namespace {

// The folders a load of `request` lists files from: the session folder, each scanned session's
// recordings folder, and the sub-folder row's folder.
QStringList listedFolders(const SweepRequest& request, const QString& subFolder,
                          const FileSystem& fs) {
    const QString folder = withSeparator(request.folder);
    QStringList folders = {folder};
    if (!request.kind->recordingsSuffix.isEmpty()) {
        const ScanRange range = scanRange(request);
        for (int i = range.first; i <= range.last; ++i) {
            folders.append(folder + GetBaseName(request.sessions.at(i)) +
                           request.kind->recordingsSuffix);
        }
    }
    if (request.subFolderOn) {
        const QString sub = subFolderPath(folder, subFolder, fs);
        if (!sub.isEmpty()) {
            folders.append(sub);
        }
    }
    return folders;
}

}  // namespace

Sweep sweepFolder(const SweepRequest& request, const FileSystem& fs, const SweepEvents& events,
                  SessionCache* cache) {
    const SessionKind& kind = *request.kind;
    if (kind.projectScope) {
        return sweepProject(request, fs, events, cache);
    }
    const bool nothingSelected = !request.wholeFolder && request.selected < 0;
    // The session folder is listed for the other files anyway; listed first, it also tells
    // which of the used files there exist, without a question to the disk for each.
    const ListedDisk disk(fs);
    if (!nothingSelected) {
        disk.listFiles(request.folder);
    }
    Sweep sweep;
    sweep.used = readUsedMedia(request, disk, events, cache);
    // A session file whose extension is longer than its kind's ("a.xmlx") was not read: with
    // nothing read, every file would look unused.
    const bool longExtension =
        !request.wholeFolder && sweep.used.lastExtension.size() > kind.extensionLength();
    if (sweep.used.stopped || nothingSelected || (kind.exactExtension && longExtension)) {
        return sweep;
    }
    SweepRequest listed = request;
    if (kind.namesRecordFolder) {
        // The record folder the projects settled on is what the sub-folder row gathers.
        sweep.used.recordFolder.remove(u'"');
        listed.subFolder = reaperSubFolder(sweep.used.recordFolder, request.folder, disk);
    }
    // The load's own index is made beside the guard, on another core: both ask only the listed
    // disk, which answers threads side by side.
    const bool beside = request.guarded && !request.coresShared;
    auto indexed = std::async(beside ? std::launch::async : std::launch::deferred, [&] {
        auto index = std::make_shared<UsedIndex>(sweep.used.lines, request.folder,
                                                 request.trimFolders, disk);
        const QString folder = withSeparator(request.folder);
        for (const UsedLine& line : sweep.used.lines) {
            if (!line.keptFile.isEmpty()) {
                index->keep(otherFilePath(folder, line.keptFile), line.sessions.value(0), disk);
            }
        }
        return index;
    });
    sweep.folders = listedFolders(request, listed.subFolder, disk);
    std::shared_ptr<const UsedIndex> guard;
    if (request.guarded) {
        const QStringList& folders = sweep.folders;
        for (const QString& each : folders) {
            disk.listFiles(each);  // listed now, the guard's questions are answered from memory
        }
        QString stoppedAt;
        const Result<QList<SessionElsewhere>> elsewhere = request.sessionsElsewhere
                                                              ? request.sessionsElsewhere(folders)
                                                              : QList<SessionElsewhere>();
        guard = elsewhere ? sessionGuard(folders, request.folder, disk, cache, events, &stoppedAt,
                                         *elsewhere)
                          : nullptr;
        if (!elsewhere) {
            stoppedAt = elsewhere.error().cause;
        }
        if (!guard) {
            indexed.wait();  // it reads the lines that change now
            sweep.used.stopped = true;
            sweep.used.stoppedAt = stoppedAt;
            sweep.used.unread = 0;
            return sweep;
        }
    }
    const std::shared_ptr<UsedIndex> index = indexed.get();
    if (guard) {
        index->addGuard(std::move(guard));
    }
    sweep.index = index;
    sweep.others =
        listOtherFiles(listed, *index, sweep.used.recordFolder, disk, events, &sweep.kept);
    return sweep;
}

QStringList sessionFiles(const FileSystem& fs, const QString& folder, const QString& pattern) {
    // Hidden sessions are listed too, but only ordinary files: a pipe or device named like a
    // session is no session, and reading one would block or never end.
    const PatternList sessions(pattern);
    QStringList names;
    const auto wanted = [&sessions](const QString& name) { return sessions.matches(name); };
    for (const FolderEntry& entry : fs.listFiles(folder, true, wanted)) {
        names.append(entry.name);
    }
    return names;
}

}  // namespace tidewick
