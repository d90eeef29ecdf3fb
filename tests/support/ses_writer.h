#pragma once

#include <QByteArray>
#include <QList>

#include <optional>

namespace tidewick::test {

/// One file entry of a LIST chunk.
struct SesEntry {
    QByteArray name;         ///< the name bytes, without the terminating zero
    qint32 value = 0;        ///< the EntryValue
    QByteArray id = "FILE";  ///< the entry identifier
};

/// Builds binary sessions in memory, chunk by chunk, laid out the way the reader walks them.
class SesWriter {
public:
    /// Appends a chunk with the given identifier and data; `length` overrides the stored length.
    SesWriter& chunk(const QByteArray& id, const QByteArray& data,
                     std::optional<qint64> length = {});

    /// Appends a "vers" chunk holding `version` and a terminating zero.
    SesWriter& version(const QByteArray& version) { return chunk("vers", version + '\0'); }

    /// Appends a LIST chunk whose entries are laid out for `version` (the shorter layout of Cool
    /// Edit Pro 1.x, the longer one otherwise). Its trailer is the 4 bytes of Cool Edit Pro 1.x
    /// and Audition 1.5 to 3.0; a version with a longer trailer needs its list built by hand.
    /// No entries write no list: the reader would look for one past the list's size.
    SesWriter& list(const QList<SesEntry>& entries, const QByteArray& version);

    /// The finished file: "COOLNESS", the stored length (the file's size unless given) and
    /// the chunks.
    QByteArray bytes(std::optional<qint64> storedLength = {}) const;

    static QByteArray i32(qint64 value);
    /// The bytes of one entry in the old (Cool Edit Pro 1.x) or the new layout.
    static QByteArray entryBytes(const SesEntry& entry, bool oldLayout);

private:
    QByteArray body_;
};

}  // namespace tidewick::test
