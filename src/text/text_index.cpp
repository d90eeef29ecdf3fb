#include "text/text_index.h"

#include <algorithm>
#include <functional>
#include <string_view>
#include <utility>

namespace tidewick {

quint32 TextIndex::hashOf(QStringView text) {
    const size_t hash =
        std::hash<std::u16string_view>()(std::u16string_view(text.utf16(), size_t(text.size())));
    return quint32(hash ^ (hash >> 32));
}

void TextIndex::reserve(qsizetype count) {
    size_t size = std::max<size_t>(16, slots_.size());
    while (qsizetype(size) < 2 * count) {
        size *= 2;
    }
    if (2 * count > qsizetype(slots_.size())) {
        rehash(size);
    }
}

void TextIndex::grow() {
    rehash(std::max<size_t>(16, 2 * slots_.size()));
}

void TextIndex::rehash(size_t size) {
    std::vector<quint64> old = std::exchange(slots_, std::vector<quint64>(size));
    const size_t mask = slots_.size() - 1;
    for (const quint64 slot : old) {
        if (slot != 0) {
            size_t at = (slot >> 32) & mask;
            while (slots_[at] != 0) {
                at = (at + 1) & mask;
            }
            slots_[at] = slot;
        }
    }
}

void TextIndex::insert(quint32 hash, qsizetype position) {
    if (2 * (count_ + 1) > qsizetype(slots_.size())) {
        grow();
    }
    ++count_;
    const size_t mask = slots_.size() - 1;
    size_t at = hash & mask;
    while (slots_[at] != 0) {
        at = (at + 1) & mask;
    }
    slots_[at] = quint64(hash) << 32 | quint64(position + 1);
}

}  // namespace tidewick
