#pragma once

#include <QByteArrayView>
#include <QStringList>

#include "readers/reader_contract.h"

// The FL Studio project (".flp", FL 8 to 25): a binary "FLhd" header chunk, then an "FLdt" chunk
// of events. An event is an id byte and its data: one byte for ids below 64, two below 128, four
// below 192, and from 192 on a length (seven bits a byte, low bits first) and that many bytes.
// Event 199 holds the version, event 196 a channel's sample path: 8-bit text up to FL 11,
// UTF-16LE from FL 12 on. Plugin state (events 212 and 213) holds more paths, in a FilePath="..."
// attribute or as a string after its length. A path that starts with a macro
// ("%FLStudioFactoryData%\...") or with one "\" (FL 8's install-relative form) lies in the
// editor's install.
namespace tidewick {

/// Reads the references of an FL Studio project. Rejected when the bytes do not begin as a
/// project ("FLhd"); Failed as damaged when its chunks or events run past the end of the file,
/// however their lengths lie.
SessionRead readFlpSession(QByteArrayView bytes, const SessionPlace& place);

/// The paths that plugin state `data` holds: FilePath="..." attributes and strings after their
/// length, 8-bit or UTF-16LE, each read no further than its length and the data allow.
QStringList pathsInPluginState(QByteArrayView data);

}  // namespace tidewick
