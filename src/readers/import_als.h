#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QStringList>

#include "readers/reader_contract.h"

// The Ableton Live set (".als"): XML, packed with gzip as Live saves it (an unpacked one is read
// too). Every FileRef names a file: Live 11 and later by RelativePath and Path values, Live 8 to 10
// by a list of RelativePathElement folders and a Name, beside a Data blob holding the absolute
// path (UTF-16LE text on Windows, an alias record on macOS). RelativePathType says what the
// relative path starts from: 1 the set's folder, 3 the project folder, 2 and 5 to 7 a library or
// pack outside the project.
namespace tidewick {

/// Reads the references of a Live set. Rejected when the bytes are no set (no Ableton root);
/// Failed as damaged for a Git LFS pointer, a cut or damaged gzip stream or broken XML, and as cut
/// short when the XML ends before its root closes.
SessionRead readAlsSession(QByteArrayView bytes, const SessionPlace& place);

/// The absolute paths that a FileRef's Data blob holds: the UTF-16LE path of a Windows set, or
/// the volume's mount point and POSIX path of a macOS alias record; none for any other bytes.
QStringList pathsInLiveData(QByteArrayView data);

}  // namespace tidewick
