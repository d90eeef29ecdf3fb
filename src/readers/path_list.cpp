#include "readers/path_list.h"

#include <functional>
#include <string_view>
#include <utility>

namespace tidewick {

quint32 MediaPathList::hashOf(QStringView text) {
    const size_t hash =
        std::hash<std::u16string_view>()(std::u16string_view(text.utf16(), size_t(text.size())));
    return quint32(hash ^ (hash >> 32));
}

qsizetype MediaPathList::slotOf(QStringView text, quint32 hash) const {
    if (slots_.empty()) {
        return -1;
    }
    const size_t mask = slots_.size() - 1;
    for (size_t at = hash & mask;; at = (at + 1) & mask) {
        const quint64 slot = slots_[at];
        if (slot == 0) {
            return -1;
        }
        if (quint32(slot >> 32) == hash && paths_[qsizetype(quint32(slot)) - 1] == text) {
            return qsizetype(at);
        }
    }
}

void MediaPathList::reserve(qsizetype count) {
    paths_.reserve(count);
    while (qsizetype(slots_.size()) < 2 * count) {
        grow();
    }
}

void MediaPathList::grow() {
    std::vector<quint64> old =
        std::exchange(slots_, std::vector<quint64>(std::max<size_t>(16, 2 * slots_.size())));
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

bool MediaPathList::appendUnique(const QString& path) {
    return insert(path, hashOf(path));
}

bool MediaPathList::insert(const QString& path, quint32 hash) {
    if (slotOf(path, hash) >= 0) {
        return false;
    }
    if (2 * (paths_.size() + 1) > qsizetype(slots_.size())) {
        grow();
    }
    paths_.append(path);
    place(hash, paths_.size());
    return true;
}

void MediaPathList::place(quint32 hash, qsizetype number) {
    const size_t mask = slots_.size() - 1;
    size_t at = hash & mask;
    while (slots_[at] != 0) {
        at = (at + 1) & mask;
    }
    slots_[at] = quint64(hash) << 32 | quint64(number);
}

std::vector<bool> MediaPathList::appendEachUnique(QStringList paths) {
    std::vector<quint32> hashes(size_t(paths.size()));
    for (qsizetype i = 0; i < paths.size(); ++i) {
        hashes[size_t(i)] = hashOf(paths[i]);
    }
    reserve(paths_.size() + paths.size());  // the table grows no more while they go in
    // The paths join the list, which is then closed up over the repeats, in place.
    const qsizetype from = paths_.size();
    if (from == 0) {
        paths_ = std::move(paths);  // no second list of the same paths
    } else {
        paths_.append(std::move(paths));
    }
    // A large table's slot is far away in memory: each test asks for a later one's in advance.
    constexpr size_t kAhead = 16;
    const size_t mask = slots_.size() - 1;
    std::vector<bool> appended(hashes.size());
    qsizetype kept = from;
    for (size_t i = 0; i < hashes.size(); ++i) {
#if defined(__GNUC__) || defined(__clang__)
        if (i + kAhead < hashes.size()) {
            __builtin_prefetch(&slots_[hashes[i + kAhead] & mask]);
        }
#endif
        const QString& path = paths_[from + qsizetype(i)];
        if (slotOf(path, hashes[i]) < 0) {
            paths_[kept] = std::move(paths_[from + qsizetype(i)]);
            ++kept;
            place(hashes[i], kept);
            appended[i] = true;
        }
    }
    paths_.resize(kept);
    return appended;
}

QStringList MediaPathList::takePaths() {
    slots_.clear();
    return std::move(paths_);
}

}  // namespace tidewick
