#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

#include "fileops/file_operations.h"
#include "fileops/overwrite_answer.h"

// One move as plain values: the files checked in "Files to be Moved" go to the target folder,
// one by one in list order, each copied whole before its source goes to the trash, with a log
// line for every file. The results window and the command line run it alike.
namespace tidewick {

/// One line of "Files to be Moved": the file's name after the sub-folder it was found in, or an
/// absolute path, and whether it is checked.
struct MoveItem {
    QString text;
    bool checked = false;
};

/// What to move, and where to.
struct MoveRequest {
    /// The session's folder, which holds the listed files.
    QString sessionFolder;
    /// The selected session's file name; its base name names the sub-folder of the target.
    QString sessionFile;
    /// The target folder, as the target folder box gives it, trimmed of blanks where it enters.
    QString targetText;
    /// The files go into a sub-folder named after the session ("Store files in ...").
    bool storeInSubFolder = false;
    /// An item that is a whole path naming an existing file is that file (the tabs with a
    /// sub-folder row, whose folder may lie anywhere).
    bool itemsMayBePaths = false;
    /// The exclusion list applies, with these wildcard patterns.
    bool excludeOn = false;
    QStringList excluded;
    QList<MoveItem> items;
    /// The files the loaded sessions use: one in the target is never replaced.
    UsedFileOwners usedFiles;
};

/// The folder the files go to: the target, or its sub-folder named after the session. The run,
/// the confirmation, the log and Explore all name this one folder.
QString moveDestination(const MoveRequest& request);

/// Whether `folder` can take files: a folder that can be written, or one that can be made (its
/// parent exists). The failure's cause says what keeps it from taking them, once for the user
/// ("The target folder's parent /x does not exist.").
Result<void> targetFolderTakesFiles(const QString& folder, const FileOperations& disk);

/// Whether the move of `request` can start; the failure's cause says what keeps it: a session
/// name that gives no sub-folder ("..."), or the destination's (targetFolderTakesFiles).
Result<void> moveCanStart(const MoveRequest& request, const FileOperations& disk);

/// Where one item of a move comes from and goes to, and whether the exclusion list keeps it.
struct PlannedMove {
    QString source;
    QString destination;
    bool excluded = false;
};
PlannedMove planMove(const MoveRequest& request, const QString& item, const FileSystem& disk);

/// What became of one file of a move: what its record keeps, so that the move can be undone.
struct MovedFile {
    enum class Outcome { Moved, Skipped, Excluded, Failed, CopiedSourceKept };
    QString text;         ///< the line of "Files to be Moved"
    QString source;       ///< where it was
    QString destination;  ///< where its copy went
    qint64 size = 0;      ///< its length, and
    qint64 modified = 0;  ///< its time of change (ns since 1970), as the run found it
    Outcome outcome = Outcome::Skipped;
    TrashPlace sourceTrash;      ///< where the trash put the source
    bool sourceDeleted = false;  ///< the trash refused the source, which was deleted
    TrashPlace replaced;         ///< where the file it replaced in the target went
    FileStamp replacedStamp;     ///< that file's length and time of change, as it went
};

/// What a run reports while it goes on. Each may be left empty.
struct MoveEvents {
    /// Text to append to the log, line ends included.
    std::function<void(const QString& text)> log;
    /// A file of the same name is in the target: the question's text in, the answer out.
    std::function<OverwriteAnswer(const QString& question)> askOverwrite;
    /// Bytes done of the bytes to move.
    std::function<void(qint64 done, qint64 total)> progress;
    /// Asked before each file: true stops the run there, as "&Cancel" does (an interrupt).
    std::function<bool()> stopRequested;
    /// A checked file is done with, whatever became of it.
    std::function<void(const MovedFile& file)> fileDone;
    /// A line the log shows after its heading, before the files (a warning).
    QString notice;
    /// The log explains itself to a reader who did not watch the run (the command line): a
    /// skipped file says why ("...Skipped - a file of that name is in the target"), the file at
    /// which the run stopped says "...Cancelled", a count of one is singular ("1 byte moved."),
    /// and the totals count the skipped files. The results window keeps its terse words.
    bool explained = false;
};

/// How a run ended.
struct MoveOutcome {
    /// Per item: copied, and its source gone.
    QList<bool> moved;
    /// Per item: what the log says of it after its name; empty for an item not checked.
    QStringList results;
    qint64 filesMoved = 0;
    /// Checked files left where they were without a failure: excluded, or skipped at the
    /// overwrite question or because a session uses the file of their name in the target.
    qint64 filesSkipped = 0;
    /// The sizes of the files copied, also of those whose source could not be removed.
    qint64 bytesMoved = 0;
    bool cancelled = false;
    /// A copy or a removal failed (skipped and excluded files are no failures).
    bool failed = false;
    /// Sources deleted after their copy because the trash refused them.
    qint64 sourcesDeleted = 0;
};

/// Runs the move of `request` on `disk`: the whole log from "Moving selected files to..." to
/// "Finished ", told through `events`.
MoveOutcome runMove(const MoveRequest& request, FileOperations& disk, const MoveEvents& events);

/// The log's line ends.
inline const QString kLogLineEnd = QStringLiteral("\r\n");

/// The overwrite question for `destination`.
QString overwriteQuestion(const QString& destination);

/// The totals line: "Files Moved: 3 - Bytes Moved:  3,000 (0.00Mb)"; with the skipped files
/// counted where the log is explained: "Files Moved: 3 - Files Skipped: 1 - Bytes Moved: ...".
QString moveTotalsLine(qint64 filesMoved, qint64 bytesMoved,
                       std::optional<qint64> filesSkipped = std::nullopt);

/// The line after the totals when the trash refused sources, which were deleted after their
/// copies: "Sources Deleted (the trash refused them): 2".
QString deletedSourcesLine(qint64 count);

/// The date and time as the log's "Commenced" and "Finished" lines write them.
QString logTimestamp();

}  // namespace tidewick
