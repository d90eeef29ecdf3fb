#include "audit/missing_candidates.h"

#include <QHash>
#include <algorithm>

#include "sweep/sweep.h"
#include "text/path_text.h"

namespace tidewick {

namespace {

// How far apart two folders are: the steps up from one to the folder they share, and down.
int distance(const QString& from, const QString& to) {
    const QStringList a = from.split(u'/', Qt::SkipEmptyParts);
    const QStringList b = to.split(u'/', Qt::SkipEmptyParts);
    qsizetype shared = 0;
    while (shared < a.size() && shared < b.size() && a[shared] == b[shared]) {
        ++shared;
    }
    return int(a.size() + b.size() - 2 * shared);
}

// The key of the name of the file a used line names, whichever separators it was written with.
QString nameKey(const QString& text) {
    return usedKey(text.mid(std::max(text.lastIndexOf(u'/'), text.lastIndexOf(u'\\')) + 1));
}

}  // namespace

void findCandidates(QList<FolderReport>& folders, const QStringList& walked,
                    const FileSystem& disk) {
    QHash<QString, QList<Candidate>> byName;
    for (const FolderReport& folder : folders) {
        for (const MissingMedia& missing : folder.missing) {
            byName.insert(nameKey(missing.text), {});
        }
    }
    if (byName.isEmpty()) {
        return;
    }
    for (const QString& folder : walked) {
        for (const FolderEntry& entry : disk.listFiles(folder, true)) {
            if (const auto it = byName.find(usedKey(entry.name)); it != byName.end()) {
                it->append({folder + entry.name, entry.size});
            }
        }
    }
    for (FolderReport& folder : folders) {
        for (MissingMedia& missing : folder.missing) {
            missing.candidates = byName.value(nameKey(missing.text));
            const auto nearer = [&folder](const Candidate& a, const Candidate& b) {
                const int nearA = distance(folder.folder, hostParentFolder(a.path));
                const int nearB = distance(folder.folder, hostParentFolder(b.path));
                return nearA != nearB ? nearA < nearB : a.path < b.path;
            };
            std::stable_sort(missing.candidates.begin(), missing.candidates.end(), nearer);
        }
    }
}

}  // namespace tidewick
