#pragma once

#include <QByteArrayView>
#include <QString>

#include "readers/reader_contract.h"

// The binary session of Cool Edit Pro 1.0-2.1 and Adobe Audition 1.0-3.0 (".ses"): the magic
// "COOLNESS", a stored length, then chunks; the "vers" chunk names the version and each "LIST"
// chunk holds file entries.
namespace tidewick {

/// A chunk's 8-byte header.
struct SesChunkHeader {
    FourCC ChunkID;          ///< "hdr ", "vers", "WLST", "LIST", ...
    qint32 ChunkLength = 0;  ///< length of the data that follows
};

/// Reads a binary session in one walk over its bytes: its records, their paths (each file name
/// trimmed of blanks) and its version, with `versionFound` telling whether a "vers" chunk was
/// read (the records and the version are the read's `ses` part, there for any file that begins
/// as a binary session does). Rejected without a problem when the file does not begin with
/// "COOLNESS", and with one, and no records, at a version that cannot be read; Failed as damaged,
/// with where, when a chunk or entry would leave the file, overflow or stand still, keeping what
/// was read before.
SessionRead readSesSession(QByteArrayView bytes, const SessionPlace& place);

/// True when the version text names a version whose sessions can be read.
bool isSupportedSesVersion(const QString& version);

}  // namespace tidewick
