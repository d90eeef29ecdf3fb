#pragma once

#include <QByteArrayView>
#include <QString>

#include "readers/reader_contract.h"

// The REAPER project (".rpp"): a text file whose first non-blank line is the "<REAPER_PROJECT"
// header. The reader takes the media files of its sources and derives the project's record
// folder from its RECORD_PATH line.
namespace tidewick {

/// Reads the media paths of a REAPER project into MediaPaths and sets RecordFolder from its
/// record path. Rejected (after the "Processing RPP File" message) when the first non-blank line
/// is not the project header; Failed (after the "File Error" message) when the file cannot be
/// read.
ReaderOutcome ImportRppFile(const QString& fileName, ReaderContext& context);

/// The same, over the file's bytes.
ReaderOutcome ImportRppBytes(QByteArrayView bytes, ReaderContext& context);

}  // namespace tidewick
