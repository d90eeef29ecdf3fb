#pragma once

#include <QByteArrayView>
#include <QString>

#include "readers/reader_contract.h"

// The Adobe Audition CS5.5 session (".sesx"). It is not parsed as XML: the reader scans lines
// for file elements ("<file ") and cuts the value of their absolutePath attribute out of the line.
namespace tidewick {

/// Reads the media paths of a SESX session into MediaPaths (appending; the caller empties it
/// first). There is no test of the file's kind, so a file it can open is always Read; Failed
/// when the file cannot be read.
ReaderOutcome ImportSesxFile(const QString& fileName, ReaderContext& context);

/// The same, over the file's bytes.
ReaderOutcome ImportSesxBytes(QByteArrayView bytes, ReaderContext& context);

}  // namespace tidewick
