#pragma once

#include <QByteArray>
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

/// How a read of a binary session ended.
enum class SesReadResult {
    NotASession,         ///< the file does not begin with "COOLNESS"; nothing was said
    ReadError,           ///< the read failed and the "File Error" box has said why
    UnsupportedVersion,  ///< a full read met a version it cannot read, and said so
    VersionFound,        ///< a probe found the version
    Complete,            ///< the chunk walk ended
};

/// Reads a binary session: SesMediaRecords gets its file entries, SesVersion and `version` its
/// version text. With `versionOnly` it stops at the version. Returns true when the file is no
/// binary session or could not be read, false otherwise.
bool ImportSesFile(const QString& fileName, QString& version, bool versionOnly,
                   ReaderContext& context);

/// The same over the file's bytes, with the detailed result.
SesReadResult ImportSesBytes(QByteArrayView bytes, QString& version, bool versionOnly,
                             ReaderContext& context);

/// Probes a binary session and, when it is one, reads it in full: the reader of the "SESFiles"
/// kind as the session kinds table calls it.
ReaderOutcome ImportSesSession(const QString& fileName, ReaderContext& context);

/// True when the version text names a version whose sessions can be read.
bool isSupportedSesVersion(const QString& version);

}  // namespace tidewick
