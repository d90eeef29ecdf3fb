#include "forms/size_cache.h"

#include "sweep/sweep.h"

namespace tidewick {

SizeCache::SizeCache(CheckListModel& unused, const FileSystem& fs) : unused_(unused), fs_(fs) {
    // The sizes follow the other-files lines row for row; a line added by anyone but the
    // listing starts as not known.
    sizes_.assign(static_cast<size_t>(unused_.count()), -1);
    QObject::connect(&unused_, &QAbstractItemModel::rowsInserted, &context_,
                     [this](const QModelIndex&, int first, int last) {
                         sizes_.insert(sizes_.begin() + first,
                                       static_cast<size_t>(last - first + 1), -1);
                     });
    QObject::connect(&unused_, &QAbstractItemModel::rowsRemoved, &context_,
                     [this](const QModelIndex&, int first, int last) {
                         sizes_.erase(sizes_.begin() + first, sizes_.begin() + last + 1);
                     });
    QObject::connect(&unused_, &QAbstractItemModel::modelReset, &context_,
                     [this] { sizes_.assign(static_cast<size_t>(unused_.count()), -1); });
}

void SizeCache::useSessionFolder(const QString& sessionFolder) {
    if (sessionFolder != sizesFolder_) {
        // Every line resolves against the session folder: another folder, other files.
        sizesFolder_ = sessionFolder;
        std::fill(sizes_.begin(), sizes_.end(), -1);
    }
}

void SizeCache::appendedSizes(const QString& sessionFolder, const std::vector<qint64>& sizes) {
    useSessionFolder(sessionFolder);
    Q_ASSERT(sizes.size() <= sizes_.size());
    std::copy(sizes.begin(), sizes.end(), sizes_.end() - static_cast<qsizetype>(sizes.size()));
}

void SizeCache::forgetSize(int row) {
    if (row >= 0 && static_cast<size_t>(row) < sizes_.size()) {
        sizes_[static_cast<size_t>(row)] = -1;
    }
}

SizeCache::Totals SizeCache::totals(const QString& sessionFolder) {
    useSessionFolder(sessionFolder);
    Totals totals;
    for (int row = 0; row < unused_.count(); ++row) {
        qint64& size = sizes_[static_cast<size_t>(row)];
        if (size < 0) {
            size = qMax<qint64>(fs_.fileSize(otherFilePath(sessionFolder, unused_.text(row))), 0);
        }
        totals.listed += size;
        if (unused_.isChecked(row)) {
            totals.checked += size;
        }
    }
    return totals;
}

}  // namespace tidewick
