#include "session/session_folder.h"

#include "sweep/media_types.h"
#include "text/path_text.h"

namespace tidewick {

SessionOptions atFolder(SessionOptions options, const QString& folder, const FileSystem& disk) {
    const SessionKind& kind = *options.kind;
    options.folder = folder;
    options.sessions = sessionFiles(disk, folder, kind.sessionPattern);
    options.selected = -1;
    options.wholeFolder = false;
    options.rowFolder = kind.startingRecordFolder(folder);
    options.recordFolder = kind.startingRecordFolder(folder);
    return options;
}

SessionOptions withWholeFolder(SessionOptions options) {
    options.wholeFolder = true;
    options.selected = options.sessions.isEmpty() ? -1 : 0;
    options.recordFolder = startingRecordFolder(*options.kind, options.folder, true);
    return options;
}

SweepRequest sweepRequest(const SessionOptions& options) {
    SweepRequest request;
    request.kind = options.kind;
    request.folder = options.folder;
    request.sessions = options.sessions;
    request.selected = options.selected;
    request.wholeFolder = options.wholeFolder;
    request.trimFolders = options.trimFolders;
    request.recordFolder = options.recordFolder;
    request.typePattern = mediaTypeTable().FileTypePatterns.value(options.mediaType);
    request.peaksListed = options.mediaType == 0;
    request.keepPeaks = options.keepPeaks;
    request.subFolderOn = options.kind->subFolderRow && options.rowOn;
    request.subFolder = options.rowFolder;
    return request;
}

QString startingRecordFolder(const SessionKind& kind, const QString& folder, bool wholeFolder) {
    if (wholeFolder && kind.namesRecordFolder) {
        return {};
    }
    return kind.startingRecordFolder(folder);
}

SessionFolder::SessionFolder(const FileSystem& disk)
    : disk_(disk), ownCache_(std::make_unique<SessionCache>()), cache_(ownCache_.get()) {}

SessionFolder::SessionFolder(const FileSystem& disk, SessionCache& cache)
    : disk_(disk), cache_(&cache) {}

SweepRequest SessionFolder::requestFor(const SessionOptions& options) const {
    SweepRequest request = sweepRequest(options);
    // A cache shared between folders is an audit's: it reads each session once for all loads,
    // and its folders are loaded side by side on the cores.
    request.reuseReads = !ownCache_;
    request.coresShared = !ownCache_;
    request.sessionsElsewhere = elsewhere_;
    return request;
}

void SessionFolder::load(const SessionOptions& options, const SweepEvents& events) {
    options_ = options;
    Sweep sweep = sweepFolder(requestFor(options), disk_, events, cache_);
    used_ = std::move(sweep.used);
    others_ = std::move(sweep.others);
    kept_ = std::move(sweep.kept);
    folders_ = std::move(sweep.folders);
    root_ = std::move(sweep.root);
    index_ = std::move(sweep.index);
    recordFolder_ = used_.recordFolder;
    if (rowSettles()) {
        recordFolder_.remove(u'"');  // the folder the row gathers is named without them
    }
}

void SessionFolder::relist(const SessionOptions& options, const SweepEvents& events) {
    if (used_.stopped) {
        return;  // the media of a session read only in part are unknown: nothing is offered
    }
    kept_.clear();
    others_ = listOtherFiles(requestFor(options), index(), recordFolder_, disk_, events, &kept_);
}

QList<OtherFile> SessionFolder::addFolder(const SessionOptions& options) {
    if (!options.kind->subFolderRow || !options.rowOn || used_.stopped || options.selected < 0 ||
        subFolderPath(options.folder, options.rowFolder, disk_).isEmpty()) {
        return {};  // no such folder: nothing to gather, nothing to say
    }
    QStringList listed;
    listed.reserve(others_.size());
    for (const OtherFile& file : others_) {
        listed.append(file.text);
    }
    const QList<OtherFile> fresh = otherFilesNotListed(
        listed, listSubFolder(requestFor(options), index(), recordFolder_, disk_, &kept_),
        withSeparator(options.folder));
    others_.append(fresh);
    return fresh;
}

bool SessionFolder::pickRowFolder(SessionOptions options, const QString& rowFolder,
                                  const SweepEvents& events) {
    options.rowFolder = rowFolder;
    // The listing compares with the record folder the used lines were shortened for; the picked
    // folder becomes the record folder only afterwards. Its sessions guard their media too.
    const QString folder = subFolderPath(options.folder, rowFolder, disk_);
    const bool guarded = folder.isEmpty() || guardFolder(folder, events);
    if (guarded) {
        relist(options, events);
    }
    recordFolder_ = rowFolder;
    return guarded;
}

void SessionFolder::clear() {
    used_ = {};
    others_.clear();
    kept_.clear();
    folders_.clear();
    root_.clear();
    index_.reset();
}

bool SessionFolder::rowSettles() const {
    return options_.kind && options_.kind->namesRecordFolder && !used_.stopped &&
           scanRange(sweepRequest(options_)).last >= 0;
}

QString SessionFolder::rowFolderAfterLoad() const {
    return rowSettles() ? reaperSubFolder(recordFolder_, options_.folder, disk_) : QString();
}

UsedIndex& SessionFolder::index() {
    if (!index_) {
        index_ =
            std::make_shared<UsedIndex>(used_.lines, options_.folder, options_.trimFolders, disk_);
    }
    return *index_;
}

bool SessionFolder::guardFolder(const QString& folder, const SweepEvents& events) {
    QString stoppedAt;
    const Result<QList<SessionElsewhere>> elsewhere =
        elsewhere_ ? elsewhere_({folder}) : QList<SessionElsewhere>();
    auto guard = elsewhere ? sessionGuard({folder}, options_.folder, disk_, cache_, events,
                                          &stoppedAt, *elsewhere)
                           : nullptr;
    if (!elsewhere) {
        stoppedAt = elsewhere.error().cause;
    }
    if (guard) {
        index().addGuard(std::move(guard));
        return true;
    }
    used_.stopped = true;
    used_.stoppedAt = stoppedAt;
    used_.unread = 0;
    others_.clear();
    kept_.clear();
    return false;
}

MoveRequest SessionFolder::moveRequest(const SessionOptions& options, const QList<MoveItem>& items,
                                       const QString& target, bool storeInSubFolder) const {
    MoveRequest request;
    // The lines start from the root: a Live project's folder, which may lie above the set's.
    request.sessionFolder = options.kind && options.kind->projectScope ? root() : options.folder;
    request.sessionFile = options.selectedSession();
    request.targetText = trimBlanks(target);
    request.storeInSubFolder = storeInSubFolder;
    request.itemsMayBePaths = options.kind && options.kind->subFolderRow;
    request.excludeOn = options.excludeOn;
    request.excluded = options.excluded;
    request.items = items;
    request.usedFiles = usedFileOwners(used_.lines, kept_);
    return request;
}

CopyRequest SessionFolder::copyRequest(const QList<int>& rows) const {
    const QString folder = withSeparator(options_.folder);
    CopyRequest request;
    for (const int row : rows) {
        if (row < 0 || row >= used_.lines.size()) {
            continue;  // no used line: the placeholder of a session without media
        }
        const QString& text = used_.lines.at(row).text;
        request.items.append({text, usedLineFile(text, folder, options_.trimFolders)});
    }
    request.usedFiles = usedFileOwners(used_.lines, kept_);
    return request;
}

QList<int> SessionFolder::rowsOnDisk() const {
    QList<int> rows;
    for (int row = 0; row < used_.lines.size(); ++row) {
        if (used_.lines[row].exists) {
            rows.append(row);
        }
    }
    return rows;
}

qsizetype SessionFolder::scannedCount() const {
    if (!options_.kind) {
        return 0;
    }
    const ScanRange range = scanRange(sweepRequest(options_));
    return range.last - range.first + 1;
}

}  // namespace tidewick
