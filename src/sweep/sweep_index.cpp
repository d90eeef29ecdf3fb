#include "sweep/sweep_index.h"

#include <QFileInfo>

#include "platform/path_text.h"

namespace tidewick {

MainForm::SweepIndex::SweepIndex(CheckListModel& used, CheckListModel& unused)
    : used_(used), unused_(unused) {
    const auto invalidateUsed = [this] { usedValid_ = false; };
    QObject::connect(&used_, &QAbstractItemModel::rowsInserted, &context_, invalidateUsed);
    QObject::connect(&used_, &QAbstractItemModel::rowsRemoved, &context_, invalidateUsed);
    QObject::connect(&used_, &QAbstractItemModel::modelReset, &context_, invalidateUsed);

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

void MainForm::SweepIndex::rebuildUsed() {
    static const QSet<QString> kMediaExtensions = {
        QStringLiteral("wav"),  QStringLiteral("wv"),  QStringLiteral("ape"), QStringLiteral("aif"),
        QStringLiteral("flac"), QStringLiteral("mp3"), QStringLiteral("ogg")};
    usedLines_.clear();
    usedWithFolder_.clear();
    usedBare_.clear();
    wavOwners_.clear();
    mediaOwners_.clear();
    usedLines_.reserve(used_.count());
    for (int row = 0; row < used_.count(); ++row) {
        const QString& text = used_.text(row);
        const QString upper = text.toUpper();
        usedLines_.insert(upper);
        (GetParentFolderName(text).isEmpty() ? usedBare_ : usedWithFolder_).insert(upper);
        const QString extension = GetExtensionName(text).toLower();
        if (kMediaExtensions.contains(extension)) {
            const QString base = GetBaseName(text).toUpper();
            mediaOwners_.insert(base);
            if (extension == QLatin1String("wav")) {
                wavOwners_.insert(base);
            }
        }
    }
    usedValid_ = true;
}

const QSet<QString>& MainForm::SweepIndex::usedLines() {
    if (!usedValid_) {
        rebuildUsed();
    }
    return usedLines_;
}

const QSet<QString>& MainForm::SweepIndex::usedLinesWithFolder() {
    if (!usedValid_) {
        rebuildUsed();
    }
    return usedWithFolder_;
}

const QSet<QString>& MainForm::SweepIndex::usedBareLines() {
    if (!usedValid_) {
        rebuildUsed();
    }
    return usedBare_;
}

const QSet<QString>& MainForm::SweepIndex::peakOwners(bool anyMedia) {
    if (!usedValid_) {
        rebuildUsed();
    }
    return anyMedia ? mediaOwners_ : wavOwners_;
}

void MainForm::SweepIndex::useSessionFolder(const QString& sessionFolder) {
    if (sessionFolder != sizesFolder_) {
        // Every line resolves against the session folder: another folder, other files.
        sizesFolder_ = sessionFolder;
        std::fill(sizes_.begin(), sizes_.end(), -1);
    }
}

void MainForm::SweepIndex::appendedSizes(const QString& sessionFolder,
                                         const std::vector<qint64>& sizes) {
    useSessionFolder(sessionFolder);
    Q_ASSERT(sizes.size() <= sizes_.size());
    std::copy(sizes.begin(), sizes.end(), sizes_.end() - static_cast<qsizetype>(sizes.size()));
}

void MainForm::SweepIndex::forgetSize(int row) {
    if (row >= 0 && static_cast<size_t>(row) < sizes_.size()) {
        sizes_[static_cast<size_t>(row)] = -1;
    }
}

MainForm::SweepIndex::Totals MainForm::SweepIndex::totals(const QString& sessionFolder) {
    useSessionFolder(sessionFolder);
    Totals totals;
    for (int row = 0; row < unused_.count(); ++row) {
        qint64& size = sizes_[static_cast<size_t>(row)];
        if (size < 0) {
            const QFileInfo file(sessionFolder + unused_.text(row));
            size = file.exists() && !file.isDir() ? file.size() : 0;
        }
        totals.listed += size;
        if (unused_.isChecked(row)) {
            totals.checked += size;
        }
    }
    return totals;
}

}  // namespace tidewick
