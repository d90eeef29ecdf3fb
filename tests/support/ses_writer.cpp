#include "support/ses_writer.h"

namespace tidewick::test {

QByteArray SesWriter::i32(qint64 value) {
    const auto v = static_cast<quint32>(value);
    QByteArray out(4, '\0');
    for (int i = 0; i < 4; ++i) {
        out[i] = char((v >> (8 * i)) & 0xFF);
    }
    return out;
}

bool SesWriter::isOldLayout(const QByteArray& version) {
    return version.startsWith("Cool Edit Pro 1.2") || version.startsWith("Cool Edit Pro 1.0");
}

qint32 SesWriter::trailerLength(const QByteArray& version) {
    for (const char* prefix : {"Cool Edit Pro 1.2", "Cool Edit Pro 1.0", "Audition 1.5",
                               "Audition 2.0", "Audition 3.0"}) {
        if (version.startsWith(prefix)) {
            return 4;
        }
    }
    if (version.startsWith("Audition 1.0") || version.startsWith("Cool Edit Pro 2.1")) {
        return 16;
    }
    return 28;
}

QByteArray SesWriter::entryBytes(const SesEntry& entry, bool oldLayout) {
    // The name, its zero, and in the new layout 8 bytes more: the reader finds the next entry
    // right after them.
    QByteArray buffer = entry.name + QByteArray(oldLayout ? 1 : 9, '\0');
    const qint64 length = buffer.size() + (oldLayout ? 8 : 16);
    return entry.id.leftJustified(4, '\0', true) + i32(length) + i32(entry.value) + i32(0) + buffer;
}

SesWriter& SesWriter::chunk(const QByteArray& id, const QByteArray& data, qint64 length) {
    body_ += id.leftJustified(4, ' ', true) + i32(length == kOwnSize ? data.size() : length) + data;
    return *this;
}

SesWriter& SesWriter::version(const QByteArray& version) {
    return chunk("vers", version + QByteArray(1, '\0'));
}

SesWriter& SesWriter::list(const QList<SesEntry>& entries, const QByteArray& version) {
    const bool oldLayout = isOldLayout(version);
    QByteArray entryData;
    for (const SesEntry& entry : entries) {
        entryData += entryBytes(entry, oldLayout);
    }
    const qint32 trailer = trailerLength(version);
    // The walk resumes at the list data + S + trailer, where the 4-byte S itself is part of
    // the trailer count.
    const QByteArray data = i32(entryData.size()) + entryData + QByteArray(trailer - 4, '\0');
    return chunk("LIST", data);
}

SesWriter& SesWriter::raw(const QByteArray& bytes) {
    body_ += bytes;
    return *this;
}

QByteArray SesWriter::bytes(qint64 storedLength) const {
    const qint64 size = 12 + body_.size();
    return QByteArray("COOLNESS") + i32(storedLength == kOwnSize ? size : storedLength) + body_;
}

}  // namespace tidewick::test
