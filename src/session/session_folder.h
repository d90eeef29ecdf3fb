#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>

#include "fileops/copy_used.h"
#include "fileops/move_run.h"
#include "sweep/sweep.h"

// One session folder as the user works with it: its sessions read, the media they use, the other
// files that no session uses, and the move or copy made of them. The window, the command line and
// the audit all drive this one object, so that a load means the same everywhere.
namespace tidewick {

/// What a load of a session folder is asked for, whether the window's controls or the command
/// line's arguments give it.
struct SessionOptions {
    const SessionKind* kind = nullptr;
    /// The session folder, with or without a trailing separator.
    QString folder;
    /// The folder's session files as listed, the selected one's position (−1 for none), and
    /// whether every listed session is read ("Check All ... files").
    QStringList sessions;
    int selected = -1;
    bool wholeFolder = false;
    /// "Ignore Leading Folder names".
    bool trimFolders = false;
    /// The entry of the media types (0 is all files), and whether the peak files of used media
    /// are kept back.
    int mediaType = 0;
    bool keepPeaks = false;
    /// The sub-folder row switched on, with the folder it names; it counts only for the kinds
    /// that have the row.
    bool rowOn = false;
    QString rowFolder;
    /// The record folder as it stands before the load.
    QString recordFolder;
    /// The exclusion list switched on, with its wildcard patterns: what a move leaves in place.
    bool excludeOn = false;
    QStringList excluded;

    /// The selected session's file name; empty when none is selected.
    QString selectedSession() const { return sessions.value(selected); }
};

/// `options` pointed at `folder` as a switch to the tab of their kind leaves them: the folder's
/// sessions listed, none selected, the sub-folder row's folder and the record folder at the
/// kind's starting value; the user's choices (trim, media type, peaks, row, exclusions) stay.
SessionOptions atFolder(SessionOptions options, const QString& folder, const FileSystem& disk);

/// The options of a first load of `kind` in `folder` (atFolder).
inline SessionOptions startingOptions(const SessionKind& kind, const QString& folder,
                                      const FileSystem& disk) {
    SessionOptions options;
    options.kind = &kind;
    return atFolder(std::move(options), folder, disk);
}

/// `options` with every session selected ("Check All ... files"): a REAPER load then settles its
/// record folder afresh from the projects it reads.
SessionOptions withWholeFolder(SessionOptions options);

/// The sweep that `options` ask for: the media type's patterns, peak files listed only with "All
/// Files" (the only entry that lets them in), the sub-folder row on only where the kind has one.
SweepRequest sweepRequest(const SessionOptions& options);

/// The record folder a load starts from after a switch to the tab of `kind` with `folder`
/// shown and, with `wholeFolder`, a click on "Check All": for REAPER, whose projects settle
/// their record folder as they are read, that click empties it.
QString startingRecordFolder(const SessionKind& kind, const QString& folder, bool wholeFolder);

/// What "Cop&y Files" or `copy-used` copies: the used files on disk, each with its line, and the
/// files that no copy may replace.
struct CopyRequest {
    QList<CopyItem> items;
    UsedFileOwners usedFiles;
};

/// The sessions of other folders that use files of `folders` (each with its separator), as an
/// audited library's index knows them; they guard a load like its own sessions.
using SessionsElsewhere =
    std::function<Result<QList<SessionElsewhere>>(const QStringList& folders)>;

class SessionFolder {
public:
    /// A folder whose sessions are read from `disk`, kept in a cache of its own.
    explicit SessionFolder(const FileSystem& disk);
    /// A folder whose sessions are kept in `cache`, shared with other folders (an audit reads
    /// each session once for every kind's load).
    SessionFolder(const FileSystem& disk, SessionCache& cache);
    SessionFolder(const SessionFolder&) = delete;
    SessionFolder& operator=(const SessionFolder&) = delete;

    /// Where the sessions of other folders come from; none unless set.
    void setSessionsElsewhere(SessionsElsewhere elsewhere) { elsewhere_ = std::move(elsewhere); }
    /// The cache of the sessions read, which guard their media at every load.
    SessionCache& cache() { return *cache_; }

    /// Reads the sessions `options` name, resolves their media and lists the other files; a
    /// session that cannot be read stops the load (stopped()).
    void load(const SessionOptions& options, const SweepEvents& events = {});
    /// Lists the other files afresh for `options` (another media type, peak option or row
    /// folder) against the used lines of the last load; nothing after a stopped load.
    void relist(const SessionOptions& options, const SweepEvents& events = {});
    /// With the sub-folder row of `options` on and its folder there, the files of that folder
    /// that no line of otherFiles() leads to yet: appended to otherFiles() and returned.
    QList<OtherFile> addFolder(const SessionOptions& options);
    /// The folder `rowFolder` picked for the sub-folder row after the load: its sessions guard
    /// their media, then the other files are listed afresh with it (`options` name it); false,
    /// and the load stopped, when one of its sessions cannot be read. It becomes the record
    /// folder afterwards.
    bool pickRowFolder(SessionOptions options, const QString& rowFolder,
                       const SweepEvents& events = {});
    /// Forgets the last load: nothing is listed, nothing stopped.
    void clear();

    /// The options of the last load.
    const SessionOptions& options() const { return options_; }
    /// What the sessions of the last load use, and whether and where the load stopped.
    const UsedMedia& used() const { return used_; }
    const QList<UsedLine>& usedLines() const { return used_.lines; }
    bool stopped() const { return used_.stopped; }
    /// The other files ("Files to be Moved") of the last listing.
    const QList<OtherFile>& otherFiles() const { return others_; }
    /// The files the listings passed over because a session keeps them, with who keeps them.
    const QList<KeptFile>& keptFiles() const { return kept_; }
    /// The folders whose files the load looked at (with their separators).
    const QStringList& folders() const { return folders_; }
    /// The folder the lines of otherFiles() start from: the session folder, or the project folder
    /// of a project kind (a Live set's project may lie above it).
    QString root() const { return root_.isEmpty() ? options_.folder : root_; }
    /// The record folder: the one the last load settled on, or set since.
    const QString& recordFolder() const { return recordFolder_; }
    void setRecordFolder(const QString& folder) { recordFolder_ = folder; }
    /// The sub-folder row's text a load of a kind that names its record folder leaves, when it read
    /// a session to the end: the folder that record folder names (reaperSubFolder); else empty.
    QString rowFolderAfterLoad() const;

    /// The move of `items` (the lines of "Files to be Moved" with their check marks) to
    /// `target`, into a sub-folder named after the session with `storeInSubFolder`, for the
    /// session folder, the selected session and the exclusion list of `options` as they stand
    /// now; no file the last load keeps is replaced.
    MoveRequest moveRequest(const SessionOptions& options, const QList<MoveItem>& items,
                            const QString& target, bool storeInSubFolder) const;
    /// The copy of the used lines at `rows` ("Cop&y Files" copies the checked ones, `copy-used`
    /// those on disk), each as the file it stands for.
    CopyRequest copyRequest(const QList<int>& rows) const;
    /// The rows of the used lines whose files exist.
    QList<int> rowsOnDisk() const;
    /// How many sessions the last load read or meant to read.
    qsizetype scannedCount() const;
    /// The disk the folder is read from.
    const FileSystem& disk() const { return disk_; }

private:
    const FileSystem& disk_;
    std::unique_ptr<SessionCache> ownCache_;
    SessionCache* cache_;
    SessionsElsewhere elsewhere_;
    SessionOptions options_;
    UsedMedia used_;
    QList<OtherFile> others_;
    QList<KeptFile> kept_;
    QStringList folders_;
    QString root_;
    QString recordFolder_;
    std::shared_ptr<UsedIndex> index_;

    SweepRequest requestFor(const SessionOptions& options) const;
    /// The last load read a project of a kind that names its record folder: the row follows it.
    bool rowSettles() const;
    /// The used test of the last load, made from its lines when the load made none.
    UsedIndex& index();
    /// Lets the sessions of `folder` guard their media; false (the load stopped) when one
    /// cannot be read.
    bool guardFolder(const QString& folder, const SweepEvents& events);
};

}  // namespace tidewick
