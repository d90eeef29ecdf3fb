#pragma once

#include <QDateTime>
#include <QFile>
#include <QList>
#include <QString>
#include <optional>

#include "fileops/move_run.h"

// Every move keeps a record, so that it can be undone: what each file was, where it went and
// where its source went. A record is JSON, one object a line: the move, then each file as it is
// done, then the end; a run cut short leaves a true record of what it did so far.
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
    QList<MovedFile> files;

    /// The files moved (their source gone or kept), and their bytes.
    qint64 filesMoved() const;
    qint64 bytesMoved() const;
};

/// Writes one move's record as the run goes.
class MoveRecordWriter {
public:
    /// Starts a new record in `folder` for `request`; fails, saying why, when it cannot be
    /// written.
    Result<void> open(const QString& folder, const MoveRequest& request);
    /// Adds a file that is done with; the line is on the disk when this returns.
    void add(const MovedFile& file);
    /// Ends the record with the run's totals.
    void finish(const MoveOutcome& outcome);
    QString path() const { return file_.fileName(); }

private:
    void writeLine(const QByteArray& json);
    QFile file_;
};

/// Reads the record `path`; fails, saying why, when it is no record or is damaged (but for a
/// last line cut short, which a run that died may leave).
Result<MoveRecord> readMoveRecord(const QString& path);

/// The records of `folder`, newest first, at most `limit` of them (all when negative); those
/// that cannot be read are left out.
QList<MoveRecord> moveRecords(const QString& folder, qsizetype limit = -1);

/// A move run with its record.
struct RecordedMove {
    MoveOutcome outcome;
    /// The record's path; empty when none could be written (which the log then says once) or
    /// the run moved nothing.
    QString record;
};

/// Runs the move of `request` (runMove) and keeps its record in `folder`.
RecordedMove runRecordedMove(const MoveRequest& request, FileOperations& disk, MoveEvents events,
                             const QString& folder);

}  // namespace tidewick
