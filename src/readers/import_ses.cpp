#include "readers/import_ses.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "readers/session_bytes.h"
#include "readers/session_text.h"
#include "text/path_text.h"

namespace tidewick {

namespace {

constexpr QByteArrayView kMagic = "COOLNESS";
constexpr qint32 kMaxTextBytes = 32767;  // the longest "vers" data or name buffer read
constexpr qsizetype kFileNameLength = 255;

bool versionStartsWith(const QString& version, const char* prefix) {
    return version.startsWith(QLatin1StringView(prefix));
}

// Cool Edit Pro 1.0 and 1.2 wrote file entries 8 bytes shorter than every later version.
bool usesOldEntryLayout(const QString& version) {
    return versionStartsWith(version, "Cool Edit Pro 1.2") ||
           versionStartsWith(version, "Cool Edit Pro 1.0");
}

// How far past the list size S the next chunk header lies, by version. The later versions put
// a trailer after the entries whose length the list size does not count.
qint32 listTrailerLength(const QString& version) {
    for (const char* prefix : {"Cool Edit Pro 1.2a", "Cool Edit Pro 1.2", "Cool Edit Pro 1.0",
                               "Audition 1.5", "Audition 2.0", "Audition 3.0"}) {
        if (versionStartsWith(version, prefix)) {
            return 4;
        }
    }
    if (versionStartsWith(version, "Audition 1.0") ||
        versionStartsWith(version, "Cool Edit Pro 2.1")) {
        return 16;
    }
    return 28;
}

// One walk over a binary session held in memory. Positions are 0-based and 32-bit, as the file
// stores them; every step that would leave the file, overflow or stand still fails with a
// description instead.
class SesWalk {
public:
    SesWalk(QByteArrayView bytes, SesFacts& facts) : bytes_(bytes), facts_(facts) {}

    QString error;
    /// The path of each record read so far: its name, cut to 255 characters, blanks trimmed.
    PathTexts paths;

    bool fail(const char* description) {
        error = QString::fromLatin1(description);
        return false;
    }

    bool readI32(qint32 pos, qint32& value) {
        const std::optional<qint32> read = readI32LE(bytes_, pos);
        if (!read) {
            return fail("Input past end of file");
        }
        value = *read;
        return true;
    }

    bool add(qint32 a, qint64 b, qint32& sum) {
        const qint64 wide = qint64(a) + b;
        if (wide < std::numeric_limits<qint32>::min() ||
            wide > std::numeric_limits<qint32>::max()) {
            return fail("Overflow");
        }
        sum = qint32(wide);
        return true;
    }

    bool readBytes(qint32 pos, qint32 length, QByteArrayView& out) {
        if (length < 0 || length > kMaxTextBytes) {
            return fail("A text field of the file is longer than 32767 bytes");
        }
        if (pos < 0 || qint64(pos) + length > bytes_.size()) {
            return fail("Input past end of file");
        }
        out = bytes_.sliced(pos, length);
        return true;
    }

    bool readHeader(qint32 pos, SesChunkHeader& header) {
        QByteArrayView id;
        if (!readBytes(pos, 4, id) || !readI32(pos + 4, header.ChunkLength)) {
            return false;
        }
        header.ChunkID = FourCC::from(id);
        return true;
    }

    // The stored length L at offset 8.
    bool readStoredLength(qint32& length) { return readI32(8, length); }

    // The data of a "vers" chunk with its zero bytes dropped.
    bool readVersion(qint32 pos, qint32 length, QString& version) {
        QByteArrayView data;
        if (!readBytes(pos, length, data)) {
            return false;
        }
        QByteArray scratch;
        version = decodeSessionText(nonZeroBytes(data, scratch));
        return true;
    }

    // Reads the file entries of one LIST chunk whose data starts at `position` into the
    // records, and moves `position` to the next chunk header.
    bool ImportSesFileList(qint32& position, qint32& listLength) {
        if (listLength <= 0) {
            return add(position, 28, position);
        }
        qint32 listSize = 0;
        if (!readI32(position, listSize)) {
            return false;
        }
        listLength = listSize;
        const QString& version = facts_.version;
        const bool oldLayout = usesOldEntryLayout(version);
        qint32 entry = 0;
        if (!add(position, 4, entry)) {
            return false;
        }
        // The names take at most the list's bytes, and each entry at least 17 of them.
        const auto room = qsizetype(std::clamp<qint64>(listSize, 0, bytes_.size() - entry));
        paths.reserveBlock(room / 17, room);
        facts_.records.reserve(facts_.records.size() + room / 17);
        qint64 consumed = 0;
        for (;;) {
            SesChunkHeader header;
            if (!readHeader(entry, header)) {
                return false;
            }
            if (header.ChunkID == "LIST" && bytes_.sliced(entry + 4, 4) == "FILE") {
                break;
            }
            if (header.ChunkLength <= 16) {
                return fail("A file entry of the file is too short");
            }
            qint32 value = 0;
            QByteArrayView buffer;
            const qint32 bufferLength = header.ChunkLength - (oldLayout ? 8 : 16);
            if (!readI32(entry + 8, value) || !readBytes(entry + 16, bufferLength, buffer)) {
                return false;
            }
            // The name is every non-zero byte of the buffer, in order, even those after a zero.
            QByteArray scratch;
            const QByteArrayView nameBytes = nonZeroBytes(buffer, scratch);
            appendPath(nameBytes);
            facts_.records.append({value, header.ChunkID});

            // The next entry starts right after the name and its terminating zero, not at the
            // end of the buffer; the later layout keeps 8 more bytes before it.
            const qint32 step = (oldLayout ? 17 : 25) + qint32(nameBytes.size());
            if (!add(entry, step, entry)) {
                return false;
            }
            consumed += step;
            if (consumed >= listSize) {
                break;
            }
        }
        return add(position, qint64(listSize) + listTrailerLength(version), position);
    }

private:
    // Nearly every name is ASCII, which is cut and trimmed as it stands; any other is decoded.
    void appendPath(QByteArrayView nameBytes) {
        if (isAscii(nameBytes)) {
            paths.appendUtf8(
                trimmedLine(nameBytes.first(std::min(nameBytes.size(), kFileNameLength))));
            return;
        }
        QString name = decodeSessionText(nameBytes);
        name.truncate(kFileNameLength);
        paths.append(trimBlanks(name));
    }

    // The non-zero bytes of `data`, in order. Almost always they are a text followed by zeros
    // only, and then they are a view into `data`; otherwise they are gathered in `scratch`.
    static QByteArrayView nonZeroBytes(QByteArrayView data, QByteArray& scratch) {
        const char* begin = data.data();
        const char* end = begin + data.size();
        const auto* zero = static_cast<const char*>(std::memchr(begin, 0, data.size()));
        if (zero == nullptr) {
            return data;
        }
        const char* rest = zero;
        while (rest < end && *rest == 0) {
            ++rest;
        }
        if (rest == end) {
            return QByteArrayView(begin, zero - begin);
        }
        scratch.reserve(data.size());
        for (char c : data) {
            if (c != 0) {
                scratch.append(c);
            }
        }
        return scratch;
    }

    QByteArrayView bytes_;
    SesFacts& facts_;
};

// Walks the chunks up to the stored length. Returns false on a read error, with its description
// in `walk.error`; `read` has then what was read before it. A version that cannot be read ends
// the walk as a rejection.
bool walkChunks(SesWalk& walk, SessionRead& read) {
    SesFacts& facts = *read.ses;
    qint32 storedLength = 0;
    if (!walk.readStoredLength(storedLength)) {
        return false;
    }
    qint32 position = 12;
    // The stored length counts from a 1-based position: the walk goes on while the next
    // header's 0-based offset is below L - 1.
    while (qint64(position) + 1 < storedLength) {
        const qint32 headerStart = position;
        SesChunkHeader header;
        if (!walk.readHeader(position, header)) {
            return false;
        }
        position += 8;  // readHeader proved these 8 bytes lie inside the file
        if (header.ChunkID == "LIST") {
            // Entries are laid out by version, so a list before any version has no layout; the
            // file is refused rather than read with a guess.
            if (!facts.versionFound) {
                return walk.fail("The file lists its media before naming its version");
            }
            qint32 listLength = header.ChunkLength;
            if (!walk.ImportSesFileList(position, listLength)) {
                return false;
            }
        } else {
            if (header.ChunkID == "vers") {
                if (!walk.readVersion(position, header.ChunkLength, facts.version)) {
                    return false;
                }
                facts.versionFound = true;
                if (!isSupportedSesVersion(facts.version)) {
                    read.outcome = ReaderOutcome::Rejected;
                    read.problem = ReadProblem{ReadFailure::UnsupportedVersion,
                                               SessionKindId::Ses,
                                               ReadSeverity::Notice,
                                               facts.version,
                                               {}};
                    facts.records.clear();
                    walk.paths.clear();
                    return true;
                }
            }
            // "hdr ", "vers", "WLST" and every other chunk are passed over whole.
            if (header.ChunkLength < 0) {
                return walk.fail("A chunk of the file has a negative length");
            }
            if (!walk.add(position, header.ChunkLength, position)) {
                return false;
            }
        }
        // Each chunk must move the walk on, or a hostile file could hold it in place forever.
        if (position <= headerStart) {
            return walk.fail("A chunk of the file points backwards");
        }
    }
    return true;
}

}  // namespace

bool isSupportedSesVersion(const QString& version) {
    for (const char* prefix : {"Audition 3.0", "Audition 2.0", "Audition 1.5", "Cool Edit Pro 2.00",
                               "Cool Edit Pro 1.2a", "Cool Edit Pro 2.1", "Cool Edit Pro 1.2",
                               "Cool Edit Pro 1.0", "Audition 1.0"}) {
        if (versionStartsWith(version, prefix)) {
            return true;
        }
    }
    return false;
}

SessionRead readSesSession(QByteArrayView bytes, const SessionPlace& place) {
    Q_UNUSED(place);
    SessionRead read;
    if (bytes.size() < kMagic.size() || bytes.first(kMagic.size()) != kMagic) {
        read.outcome = ReaderOutcome::Rejected;
        return read;
    }
    SesWalk walk(bytes, read.ses.emplace());
    if (!walkChunks(walk, read)) {
        read.outcome = ReaderOutcome::Failed;
        read.problem = ReadProblem{
            ReadFailure::Damaged, SessionKindId::Ses, ReadSeverity::Error, walk.error, {}};
    }
    read.paths = std::move(walk.paths);
    return read;
}

}  // namespace tidewick
