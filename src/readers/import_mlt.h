#pragma once

#include <QByteArrayView>
#include <QString>

#include "readers/reader_contract.h"

// The MLT project of Kdenlive (".kdenlive") and Shotcut (".mlt"): XML whose root is mlt. Every
// producer and chain names its media by its "resource" property (after a speed prefix such as
// "3:" or "0,7:"; an image sequence, "frame_%04d.png" or Kdenlive's ".all.png", names all its
// frames), and Kdenlive's "kdenlive:originalurl" and "kdenlive:proxy" name files too. A relative
// path is read against the root attribute of mlt, else against the project file's folder.
namespace tidewick {

/// Reads the references of an MLT project. Rejected when the bytes are no project (no mlt root);
/// Failed as cut short when they end before "</mlt>", as damaged when the XML breaks.
SessionRead readMltSession(QByteArrayView bytes, const SessionPlace& place);

/// A resource as a file's path: `resource` without its speed prefix ("3:clip.mp4" gives
/// "clip.mp4"); an image sequence's frames as a wildcard pattern ("frame_%04d.png" gives
/// "frame_*.png", ".all.png" gives "*.png", with `pattern` set); empty for a resource that
/// names no file (a colour, "-").
QString mltResourcePath(const QString& resource, bool* pattern);

}  // namespace tidewick
