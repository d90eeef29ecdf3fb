#pragma once

#include <QByteArrayView>
#include <QString>

#include "readers/reader_contract.h"

// The Vegas project (".veg"). Its binary layout is not read as a whole: a scan finds the media
// records by a few marks (runs of four 0xFF bytes, a type value of 1 or 2 after such a run, and
// the tag "list" that ends the scan).
namespace tidewick {

/// Reads the media paths of a Vegas project. There is no test of the file's kind: a file without
/// the marks is Read and names nothing.
SessionRead readVegSession(QByteArrayView bytes, const SessionPlace& place);

/// The text of a media path's bytes as the scan read them (zero bytes included, the stopping
/// zero not). Vegas stores paths as UTF-16LE: bytes that read as such give that text, so a name
/// such as "Apresentação1.mp4" or a Cyrillic one comes out right. Any other bytes lose their
/// zero bytes and are decoded as session text (UTF-8 when valid, else Windows-1252). For a path
/// of characters below 128 both readings give the same text.
QString vegPathText(QByteArrayView raw);

}  // namespace tidewick
