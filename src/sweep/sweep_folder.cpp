#include "platform/path_text.h"
#include "sweep/listed_disk.h"
#include "sweep/pattern_list.h"
#include "sweep/sweep.h"

// A whole load of a session folder: the used media, then the other files.
namespace tidewick {

Sweep sweepFolder(const SweepRequest& request, const FileSystem& fs, const SweepEvents& events) {
    const SessionKind& kind = *request.kind;
    const bool nothingSelected = !request.wholeFolder && request.selected < 0;
    // The session folder is listed for the other files anyway; listed first, it also tells
    // which of the used files there exist, without a question to the disk for each.
    const ListedDisk disk(fs);
    if (!nothingSelected) {
        disk.listFiles(request.folder);
    }
    Sweep sweep;
    sweep.used = readUsedMedia(request, disk, events);
    // A session file whose extension is longer than its kind's ("a.xmlx") was not read: with
    // nothing read, every file would look unused.
    const bool longExtension =
        !request.wholeFolder && sweep.used.lastExtension.size() > kind.extensionLength();
    if (sweep.used.stopped || nothingSelected || (kind.id != SessionKindId::Ses && longExtension)) {
        return sweep;
    }
    SweepRequest listed = request;
    if (kind.namesRecordFolder) {
        // The record folder the projects settled on is what the sub-folder row gathers.
        sweep.used.recordFolder.remove(u'"');
        listed.subFolder = reaperSubFolder(sweep.used.recordFolder, request.folder, disk);
    }
    auto index =
        std::make_shared<UsedIndex>(sweep.used.lines, request.folder, request.trimFolders, disk);
    const QString folder = withSeparator(request.folder);
    for (const UsedLine& line : sweep.used.lines) {
        if (!line.keptFile.isEmpty()) {
            index->keep(otherFilePath(folder, line.keptFile), line.session, disk);
        }
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
