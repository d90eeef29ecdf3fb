#pragma once

#include <QByteArrayView>
#include <QString>

#include "readers/reader_contract.h"

// The XML session that Adobe Audition 3 exports (".xml"). It is read by its fixed line layout,
// not parsed as XML: a declaration, "<AuditionSession>" on the very next line, and wave blocks
// whose entries each hold their media path on the 18th line after the entry's opening line.
namespace tidewick {

/// Reads the media paths of an Audition XML session into MediaPaths (appending; the caller
/// empties it first). Rejected, after saying so, when the file's second line is not
/// "<AuditionSession>"; Failed when the file cannot be read.
ReaderOutcome ImportXmlFile(const QString& fileName, ReaderContext& context);

/// The same, over the file's bytes.
ReaderOutcome ImportXmlBytes(QByteArrayView bytes, ReaderContext& context);

}  // namespace tidewick
