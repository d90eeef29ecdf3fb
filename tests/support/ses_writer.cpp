#include "support/ses_writer.h"

#include <QtEndian>

namespace tidewick::test {

QByteArray SesWriter::i32(qint64 value) {
    QByteArray out(4, '\0');
    qToLittleEndian(quint32(value), out.data());
    return out;
}

QByteArray SesWriter::entryBytes(const SesEntry& entry, bool oldLayout) {
    // The name, its zero, and in the new layout 8 bytes more: the reader finds the next entry
    // right after them.
    const QByteArray buffer = entry.name + QByteArray(oldLayout ? 1 : 9, '\0');
    return entry.id.leftJustified(4, '\0', true) + i32(buffer.size() + (oldLayout ? 8 : 16)) +
           i32(entry.value) + i32(0) + buffer;
}

SesWriter& SesWriter::chunk(const QByteArray& id, const QByteArray& data,
                            std::optional<qint64> length) {
    body_ += id.leftJustified(4, ' ', true) + i32(length.value_or(data.size())) + data;
    return *this;
}

SesWriter& SesWriter::list(const QList<SesEntry>& entries, const QByteArray& version) {
    if (entries.isEmpty()) {
        return *this;
    }
    QByteArray data;
    for (const SesEntry& entry : entries) {
        data += entryBytes(entry, version.startsWith("Cool Edit Pro 1."));
    }
    // The walk resumes at the list data + its size S + 4, the 4 bytes of S itself.
    return chunk("LIST", i32(data.size()) + data);
}

QByteArray SesWriter::bytes(std::optional<qint64> storedLength) const {
    return "COOLNESS" + i32(storedLength.value_or(12 + body_.size())) + body_;
}

}  // namespace tidewick::test
