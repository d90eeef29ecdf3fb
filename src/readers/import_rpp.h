#pragma once

#include <QByteArrayView>
#include <QString>

#include "readers/reader_contract.h"

// The REAPER project (".rpp"): a text file whose first non-blank line is the "<REAPER_PROJECT"
// header. The reader takes the media files of its sources and the values of its RECORD_PATH
// lines; the session load folds those into the record folder.
namespace tidewick {

/// Reads the media paths and the record path lines of a REAPER project. Rejected, with a
/// problem that quotes the line, when the first non-blank line is not the project header.
/// `place` gives the project folder that a relative record path is looked for in, and the disk
/// to look on; without a disk no folder exists.
SessionRead readRppSession(QByteArrayView bytes, const SessionPlace& place);

/// Asks the disk of `place` what a RECORD_PATH line's value names: a folder as it stands, a
/// folder of the project folder. A line read earlier is asked again before it is used again.
void checkRecordPath(RecordPathLine& line, const SessionPlace& place);

/// The record folder after one RECORD_PATH line of a project in `projectFolder` (which ends
/// with a separator), starting from `recordFolder`. In a single-project load a line sets the
/// folder: an absolute existing folder as it stands, an existing sub-folder of the project, else
/// the project folder. In a whole-folder scan (`wholeFolder`) the first value set stays, except
/// that the bare project folder gives way to a later project's existing sub-folder.
QString foldRecordPath(QString recordFolder, const RecordPathLine& line,
                       const QString& projectFolder, bool wholeFolder);

}  // namespace tidewick
