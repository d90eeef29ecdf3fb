#pragma once

#include <QDateTime>
#include <QFile>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <optional>

#include "fileops/move_run.h"

// Every move keeps a record, so that it can be undone: what each file was, where it went and
// where its source went. A record is JSON, one object a line: the move, then each file as it is
// done, then the end; a run cut short leaves a true record of what it did so far. Each line
// carries a checksum of itself ("check"), so that a line changed or damaged since is known.
namespace tidewick {

/// The folder of the records: "Tidewick/moves" in the user's data folder
/// (~/.local/share/Tidewick/moves on Linux).
QString moveRecordsFolder();

/// A record as read back.
struct MoveRecord {
    QString path;
    QDateTime started;
    bool finished = false;  ///< false for a run cut short
    QString sessionFolder;
    QString session;
    QString target;
    /// The folders beyond the session folder that the move took files from (whole-path items).
    QStringList addedFolders;
    QList<MovedFile> files;
    /// Its lines carry checksums; a record of an older Tidewick has none and cannot be verified.
    bool checked = false;
    /// The lines (numbered from 1) that are damaged or fail their checksum, left out of `files`.
    QList<qsizetype> damagedLines;

    /// The files moved (their source gone or kept), and their bytes.
    qint64 filesMoved() const;
    qint64 bytesMoved() const;
};

/// Writes one move's record as the run goes.
class MoveRecordWriter {
public:
    /// Starts a new record in `folder` for `request`, whose whole-path items come from
    /// `addedFolders`; fails, saying why, when it cannot be written. The name is the run's own
    /// (the time to the nanosecond, the process, a random part) and never replaces a file.
    Result<void> open(const QString& folder, const MoveRequest& request,
                      const QStringList& addedFolders = {});
    /// Adds a file that is done with; the line is on its way to the disk when this returns.
    Result<void> add(const MovedFile& file);
    /// Ends the record with the run's totals and writes it through to the disk.
    Result<void> finish(const MoveOutcome& outcome);
    QString path() const { return file_.fileName(); }

private:
    Result<void> writeLine(QJsonObject json);
    QFile file_;
};

/// Reads the record `path`; fails, saying why, when it is no record, not an ordinary file,
/// larger than a record can be (kMoveRecordLimit), or its first line is damaged. Other damaged
/// lines are named in `damagedLines`; only a last line without its line end (a run that died
/// while writing it) is passed over.
Result<MoveRecord> readMoveRecord(const QString& path);

/// The most bytes a record is read of.
constexpr qint64 kMoveRecordLimit = 64 * 1024 * 1024;

/// The path of the newest record in `folder` by its name, readable or not; empty when none.
QString newestMoveRecord(const QString& folder);

/// The records of `folder`, newest first, at most `limit` of them (all when negative); those
/// that cannot be read are left out.
QList<MoveRecord> moveRecords(const QString& folder, qsizetype limit = -1);

/// A move run with its record.
struct RecordedMove {
    MoveOutcome outcome;
    /// The record's path; empty when the run moved nothing. A record that cannot be written is
    /// a failure of the move: it does not start, or stops after the file in hand, and the log
    /// says why.
    QString record;
};

/// Runs the move of `request` (runMove) and keeps its record in `folder`.
RecordedMove runRecordedMove(const MoveRequest& request, FileOperations& disk, MoveEvents events,
                             const QString& folder);

}  // namespace tidewick
