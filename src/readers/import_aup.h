#pragma once

#include <QByteArrayView>
#include <QString>
#include <optional>

#include "readers/reader_contract.h"

// The Audacity project. A ".aup" (Audacity 1.x to 2.4) is XML whose audio lives in blockfiles of
// the project's data folder ("<name>_data", after the .aup file's own name): a blockfile
// "e0000090.au" lies at "e00/d00/e0000090.au" there, the folders taken from characters 2-3 and
// 4-5 of its name; the 1.x format (root "audacityproject") keeps its blockfiles in the data folder
// itself. An alias blockfile names an outside audio file and a summary file in the data folder.
// A ".aup3" (Audacity 3) is one SQLite database holding its own audio: it names no other file.
namespace tidewick {

/// Reads the references of a ".aup" project, each of a blockfile relative to the data folder or
/// of an outside file by its path. Rejected when the bytes are no project (no "project" or
/// "audacityproject" root); Failed as cut short or damaged when the XML ends early or breaks.
SessionRead readAupSession(QByteArrayView bytes, const SessionPlace& place);

/// Reads the project file `fileName`. A ".aup" is read a piece at a time, as readAupSession reads
/// its bytes. A ".aup3" is checked with Qt SQL, opened read-only: a database holding an Audacity
/// project reads as a session that names no file; any other file, or one that cannot be opened,
/// fails as damaged.
std::optional<SessionRead> readAupFile(const QString& fileName);

}  // namespace tidewick
