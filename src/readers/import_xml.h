#pragma once

#include <QByteArrayView>

#include "readers/reader_contract.h"

// The XML session that Adobe Audition 3 exports (".xml"). It is read by its fixed line layout,
// not parsed as XML: a declaration, "<AuditionSession>" on the very next line, and wave blocks
// whose entries each hold their media path on the 18th line after the entry's opening line.
namespace tidewick {

/// Reads the media paths of an Audition XML session. Rejected, with a problem that quotes the
/// line, when the line after the declaration does not begin with "<AuditionSession>"; an empty
/// file is read and names nothing.
SessionRead readXmlSession(QByteArrayView bytes, const SessionPlace& place);

}  // namespace tidewick
