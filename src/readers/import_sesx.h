#pragma once

#include <QByteArrayView>

#include "readers/reader_contract.h"

// The Adobe Audition CS5.5 session (".sesx"). The reader scans lines for file elements ("<file ")
// and cuts the value of their absolutePath attribute out of the line, as Audition writes them;
// where the file holds elements that the lines miss (XML laid out otherwise), it reads the XML
// as XML too.
namespace tidewick {

/// Reads the media paths of a SESX session: those the lines give, then any more that the XML
/// gives. Rejected, with a problem, when the file holds no "<sesx" root; Failed as cut short when
/// it ends before its closing "</sesx>".
SessionRead readSesxSession(QByteArrayView bytes, const SessionPlace& place);

/// The paths that the reading by lines alone gives (the first line skipped, or the pieces of a
/// file whose lines end in a line feed alone), in file order, each once.
QStringList readSesxLines(QByteArrayView bytes);

}  // namespace tidewick
