#pragma once

#include <QByteArrayView>

#include "readers/reader_contract.h"

// The Adobe Audition CS5.5 session (".sesx"). It is not parsed as XML: the reader scans lines
// for file elements ("<file ") and cuts the value of their absolutePath attribute out of the line.
namespace tidewick {

/// Reads the media paths of a SESX session. There is no test of the file's kind, so every file
/// is Read.
SessionRead readSesxSession(QByteArrayView bytes, const SessionPlace& place);

}  // namespace tidewick
