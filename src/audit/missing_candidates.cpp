#include "audit/missing_candidates.h"

#include <QHash>
#include <algorithm>

#include "sweep/sweep.h"
#include "text/path_text.h"

namespace tidewick {

namespace {

// The candidates kept for one missing file at the most: the nearest ones.
constexpr qsizetype kMostCandidates = 8;

// A file of the library with a missing file's name, and the steps of its folder.
struct Found {
    Candidate candidate;
    QStringList steps;
};

// How far apart two folders are, given as their steps: the steps up from one to the folder
// they share, and down.
int distance(const QStringList& a, const QStringList& b) {
    qsizetype shared = 0;
    while (shared < a.size() && shared < b.size() && a[shared] == b[shared]) {
        ++shared;
    }
    return int(a.size() + b.size() - 2 * shared);
}

QStringList steps(const QString& folder) {
    return folder.split(u'/', Qt::SkipEmptyParts);
}

// The key of the name of the file a used line names, whichever separators it was written with.
QString nameKey(const QString& text) {
    return usedKey(text.mid(std::max(text.lastIndexOf(u'/'), text.lastIndexOf(u'\\')) + 1));
}

// The nearest of `found` to `folder`, nearest first (then by path), at most kMostCandidates:
// one pass over them, so that a name found all over a large library costs no more than that.
QList<Candidate> nearest(const QList<Found>& found, const QString& folder) {
    const QStringList here = steps(folder);
    std::vector<std::pair<int, const Found*>> ranked;
    ranked.reserve(size_t(found.size()));
    for (const Found& each : found) {
        ranked.emplace_back(distance(here, each.steps), &each);
    }
    const auto nearer = [](const auto& a, const auto& b) {
        return a.first != b.first ? a.first < b.first
                                  : a.second->candidate.path < b.second->candidate.path;
    };
    const auto kept =
        ranked.begin() + std::min<qsizetype>(kMostCandidates, qsizetype(ranked.size()));
    std::partial_sort(ranked.begin(), kept, ranked.end(), nearer);
    QList<Candidate> candidates;
    for (auto it = ranked.begin(); it != kept; ++it) {
        candidates.append(it->second->candidate);
    }
    return candidates;
}

}  // namespace

void findCandidates(QList<FolderReport>& folders, const QStringList& walked,
                    const FileSystem& disk) {
    QHash<QString, QList<Found>> byName;
    for (const FolderReport& folder : folders) {
        for (const MissingMedia& missing : folder.missing) {
            byName.insert(nameKey(missing.text), {});
        }
    }
    if (byName.isEmpty()) {
        return;
    }
    for (const QString& folder : walked) {
        QStringList folderSteps;
        for (const FolderEntry& entry : disk.listFiles(folder, true)) {
            if (const auto it = byName.find(usedKey(entry.name)); it != byName.end()) {
                if (folderSteps.isEmpty()) {
                    folderSteps = steps(folder);
                }
                it->append({{folder + entry.name, entry.size}, folderSteps});
            }
        }
    }
    for (FolderReport& folder : folders) {
        for (MissingMedia& missing : folder.missing) {
            missing.candidates = nearest(byName.value(nameKey(missing.text)), folder.folder);
        }
    }
}

}  // namespace tidewick
