#include "readers/path_list.h"

namespace tidewick {

bool MediaPathList::contains(QStringView path) const {
    return index_.find(path, TextIndex::hashOf(path), textAt()) >= 0;
}

bool MediaPathList::insert(const QString& path, quint32 hash) {
    if (index_.find(path, hash, textAt()) >= 0) {
        return false;
    }
    paths_.append(path);
    index_.insert(hash, paths_.size() - 1);
    return true;
}

std::vector<quint32> MediaPathList::hashesOf(const QStringList& paths) {
    std::vector<quint32> hashes(size_t(paths.size()));
    for (qsizetype i = 0; i < paths.size(); ++i) {
        hashes[size_t(i)] = TextIndex::hashOf(paths[i]);
    }
    return hashes;
}

std::vector<bool> MediaPathList::appendEachUnique(QStringList paths,
                                                  const std::vector<quint32>& hashes) {
    Q_ASSERT(hashes.size() == size_t(paths.size()));
    index_.reserve(paths_.size() + paths.size());  // the table grows no more while they go in
    // The paths join the list, which is then closed up over the repeats, in place.
    const qsizetype from = paths_.size();
    if (from == 0 && paths_.capacity() < paths.size()) {
        paths_ = std::move(paths);  // no second list of the same paths
    } else {
        paths_.append(std::move(paths));
    }
    // A large table's slot is far away in memory: each test asks for a later one's in advance.
    constexpr size_t kAhead = 16;
    std::vector<bool> appended(hashes.size());
    qsizetype kept = from;
    for (size_t i = 0; i < hashes.size(); ++i) {
        if (i + kAhead < hashes.size()) {
            index_.prefetch(hashes[i + kAhead]);
        }
        const qsizetype at = from + qsizetype(i);
        if (index_.find(paths_[at], hashes[i], textAt()) < 0) {  // among those kept so far
            if (kept != at) {
                paths_[kept] = std::move(paths_[at]);
            }
            index_.insert(hashes[i], kept);
            ++kept;
            appended[i] = true;
        }
    }
    paths_.resize(kept);
    return appended;
}

}  // namespace tidewick
