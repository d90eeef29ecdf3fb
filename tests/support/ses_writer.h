#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <limits>

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
    /// Stands for "the data's own size" where a length may be given.
    static constexpr qint64 kOwnSize = std::numeric_limits<qint64>::min();

    /// Appends a chunk with the given identifier and data; `length` overrides the stored length.
    SesWriter& chunk(const QByteArray& id, const QByteArray& data, qint64 length = kOwnSize);

    /// Appends a "vers" chunk holding `version` and a terminating zero.
    SesWriter& version(const QByteArray& version);

    /// Appends a LIST chunk whose entries are laid out for `version`: the old, shorter layout
    /// for Cool Edit Pro 1.0 and 1.2, the new one otherwise, followed by the trailer the
    /// version's position rule skips.
    SesWriter& list(const QList<SesEntry>& entries, const QByteArray& version);

    /// Appends raw bytes.
    SesWriter& raw(const QByteArray& bytes);

    /// The finished file: "COOLNESS", the stored length (the file's size unless given) and
    /// the chunks.
    QByteArray bytes(qint64 storedLength = kOwnSize) const;

    /// The number of bytes written so far after the 12-byte file header.
    qsizetype size() const { return body_.size(); }

    static QByteArray i32(qint64 value);
    /// The bytes of one entry in the given layout.
    static QByteArray entryBytes(const SesEntry& entry, bool oldLayout);
    static bool isOldLayout(const QByteArray& version);
    static qint32 trailerLength(const QByteArray& version);

private:
    QByteArray body_;
};

}  // namespace tidewick::test
