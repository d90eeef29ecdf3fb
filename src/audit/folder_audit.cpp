#include "audit/folder_audit.h"

#include <algorithm>

#include "session/session_folder.h"
#include "text/path_text.h"
#include "text/text_index.h"

namespace tidewick {

namespace {

// The load of all the sessions of `kind`, as "Check All" makes it with "All Files", the peak files
// of used media kept and REAPER's record folder gathered by the sub-folder row.
SessionOptions wholeLoad(const SessionKind& kind, const QString& folder, const QStringList& names) {
    SessionOptions options;
    options.kind = &kind;
    options.folder = folder;
    options.sessions = names;
    options.wholeFolder = true;
    options.keepPeaks = true;
    options.rowOn = kind.namesRecordFolder;
    options.recordFolder = startingRecordFolder(kind, folder, true);
    return options;
}

// One folder's loads taken together: a file can be freed when some load offers it and no load
// that looks at it keeps it (a peak file of another kind's media is an ordinary file to one load
// and a kept peak file to its own).
class FolderLoads {
public:
    // `alone`: the folder holds sessions of one kind, whose one load says all.
    FolderLoads(const FileSystem& disk, bool alone) : disk_(disk), alone_(alone) {}

    // False when the load stopped at a session it could not read. A load names each used file
    // on one line and offers each other file once: a folder's only load is taken as it is.
    bool add(const SessionFolder& load, FolderReport& report) {
        for (const UsedLine& line : load.usedLines()) {
            if (!alone_) {
                if (lines_.contains(line.path)) {
                    continue;
                }
                lines_.insert(line.path);
            }
            if (line.exists || !line.keptFile.isEmpty()) {
                ++report.used;
            } else if (!line.outside) {  // an editor's library is not the folder's to relink
                report.missing.append({line.text, line.path, line.sessions, {}});
            }
        }
        if (load.stopped()) {
            return false;
        }
        // The listings join a clean folder and a name: each path is clean as it stands.
        const QString root = withSeparator(load.root());
        if (alone_) {
            // A load of the folder names its files from there, as the report does.
            const bool fromFolder = root == withSeparator(report.folder);
            report.reclaimable.reserve(load.otherFiles().size());
            for (const OtherFile& other : load.otherFiles()) {
                report.reclaimable.append(
                    {fromFolder ? other.text : otherFilePath(root, other.text), other.size});
                report.reclaimableBytes += other.size;
            }
            return true;
        }
        TextSet offeredHere;
        for (const OtherFile& other : load.otherFiles()) {
            const QString path = otherFilePath(root, other.text);
            offered_[path] = other.size;
            offeredHere.insert(path);
        }
        for (const QString& listed : load.folders()) {
            for (const FolderEntry& entry : disk_.listFiles(listed)) {
                if (const QString path = listed + entry.name; !offeredHere.contains(path)) {
                    kept_.insert(path);
                }
            }
        }
        return true;
    }

    void finish(FolderReport& report) const {
        const QString folder = withSeparator(report.folder);
        for (qsizetype i = 0; i < offered_.size(); ++i) {
            if (const QString& path = offered_.texts()[i]; !kept_.contains(path)) {
                report.reclaimable.append(
                    {path.startsWith(folder) ? path.sliced(folder.size()) : path,
                     offered_.values()[i]});
                report.reclaimableBytes += offered_.values()[i];
            }
        }
        if (!std::is_sorted(report.reclaimable.cbegin(), report.reclaimable.cend())) {
            std::sort(report.reclaimable.begin(), report.reclaimable.end());
        }
    }

private:
    const FileSystem& disk_;
    const bool alone_;
    TextSet lines_;
    TextMap<qint64> offered_;
    TextSet kept_;
};

}  // namespace

FolderReport auditFolder(const QString& folder,
                         const QList<std::pair<const SessionKind*, QStringList>>& sessions,
                         const FileSystem& disk, SessionCache& cache,
                         const std::function<QString(const ReadProblem&)>& describe) {
    FolderReport report;
    report.folder = cleanHostPath(folder);
    FolderLoads loads(disk, sessions.size() == 1);
    for (const auto& [kind, names] : sessions) {
        report.sessions.append({kind->id, names});
    }
    for (const auto& [kind, names] : sessions) {
        QString told;
        SweepEvents events;
        events.tell = [&told, &describe](const ReadProblem& problem) {
            if (told.isEmpty() && describe) {
                told = describe(problem).simplified();
            }
        };
        SessionFolder load(disk, cache);
        load.load(wholeLoad(*kind, folder, names), events);
        if (!loads.add(load, report)) {
            report.stopped = true;
            report.reason = QStringLiteral("Reading stopped at \"") + load.used().stoppedAt + u'"' +
                            (told.isEmpty() ? QString() : QStringLiteral(": ") + told);
            return report;
        }
    }
    loads.finish(report);
    return report;
}

}  // namespace tidewick
