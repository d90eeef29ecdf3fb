#include "sweep/media_types.h"
#include "sweep/sweep.h"

namespace tidewick {

SweepRequest sweepRequest(const SweepOptions& options) {
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
    request.subFolderOn = options.kind->subFolderRow && options.subFolderChecked;
    request.subFolder = options.subFolder;
    return request;
}

QString startingRecordFolder(const SessionKind& kind, const QString& folder, bool wholeFolder) {
    if (wholeFolder && kind.namesRecordFolder) {
        return {};
    }
    return kind.startingRecordFolder(folder);
}

}  // namespace tidewick
