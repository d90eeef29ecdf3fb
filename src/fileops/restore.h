#pragma once

#include <QString>
#include <functional>
#include <optional>

#include "fileops/file_operations.h"
#include "fileops/move_record.h"

// Undoing a move from its record: each moved file back where it was, from its trash entry or
// from its copy in the target, then the copy to the trash and the file it replaced back.
// Nothing is ever overwritten, no file but a ".trashinfo" of an entry taken back is deleted,
// and a file that is not as the record says stays where it is. A record is a claim, never an
// order: a line whose paths its own move could not have touched (record_claims.h) is refused
// whole, and the log names it.
namespace tidewick {

struct RestoreEvents {
    /// Text to append to the log, line ends included.
    std::function<void(const QString& text)> log;
    /// A file that did not come back, and where it is: "/Song/take2.wav: ...".
    std::function<void(const QString& text)> left;
    /// Bytes done of the bytes to restore.
    std::function<void(qint64 done, qint64 total)> progress;
    /// Asked before each file: true stops the run there (an interrupt); the file in hand is
    /// finished first.
    std::function<bool()> stopRequested;
};

struct RestoreOutcome {
    qint64 restored = 0;  ///< files put back
    qint64 bytes = 0;
    qint64 inPlace = 0;  ///< files that were back already
    qint64 left = 0;     ///< files that could not come back (nothing lost: named where they are)
    qint64 refused = 0;  ///< lines of the record refused, their files untouched
    bool cancelled = false;
};

/// What keeps `record` from being trusted whole: its damaged lines, or its having no checksums
/// (a record of an older Tidewick); nothing when every line checks out.
std::optional<QString> recordDoubt(const MoveRecord& record);

/// Restores the move of `record` on `disk`, or with `dryRun` says what it would do and changes
/// nothing. One log line a file ("Restoring.../Song/take2.wav...OK - 2,000 bytes restored."),
/// then the totals. A record with a doubt (recordDoubt) is refused whole, but with `force`,
/// which restores its sound lines.
RestoreOutcome restoreMove(const MoveRecord& record, FileOperations& disk, bool dryRun,
                           const RestoreEvents& events, bool force = false);

/// How many of the files the move of `record` took away are back at their sources as the move
/// found them (restored, by a restore or by hand).
qint64 filesBack(const MoveRecord& record, const FileOperations& disk);

/// The totals line: "Files Restored: 3 - Bytes Restored:  3,000 (0.00Mb)", or of a dry run
/// "Files to Restore: 3 - Bytes to Restore:  3,000 (0.00Mb)".
QString restoreTotalsLine(qint64 files, qint64 bytes, bool dryRun = false);

}  // namespace tidewick
