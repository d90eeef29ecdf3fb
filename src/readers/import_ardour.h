#pragma once

#include <QByteArrayView>

#include "readers/reader_contract.h"

// The Ardour session (".ardour", Ardour 2 to 8): XML whose root is Session. Every Source of its
// Sources names a file: a bare name lives in the session's "interchange/<any folder>/audiofiles/"
// (audio, and the sources of Ardour 2, which have no type) or ".../midifiles/" (MIDI); an absolute
// name is the file's path. A source's origin only says where it was imported from.
namespace tidewick {

/// Reads the references of an Ardour session. Rejected when the bytes are no session (no Session
/// root); Failed as cut short when they end before "</Session>", as damaged when the XML breaks.
SessionRead readArdourSession(QByteArrayView bytes, const SessionPlace& place);

}  // namespace tidewick
