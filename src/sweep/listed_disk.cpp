#include "sweep/listed_disk.h"

#include "platform/path_text.h"

namespace tidewick {

const ListedDisk::Listing& ListedDisk::listing(const QString& folder) const {
    const QString key = withSeparator(folder);
    auto it = listings_.find(key);
    if (it == listings_.end()) {
        // One reading with the hidden files, which the session lists want, and the view without
        // them, which the other lists want.
        Listing listing;
        listing.entries = disk_.listFiles(folder, true);
        listing.names.reserve(listing.entries.size());
        for (qsizetype i = 0; i < listing.entries.size(); ++i) {
            listing.names.insert(listing.entries[i].name, i);
            if (!listing.entries[i].name.startsWith(u'.')) {
                listing.visible.append(listing.entries[i]);
            }
        }
        it = listings_.insert(key, std::move(listing));
    }
    return *it;
}

QList<FolderEntry> ListedDisk::listFiles(const QString& folder, bool withHidden,
                                         const NameTest& wanted) const {
    const Listing& listed = listing(folder);
    const QList<FolderEntry>& entries = withHidden ? listed.entries : listed.visible;
    if (!wanted) {
        return entries;
    }
    QList<FolderEntry> picked;
    for (const FolderEntry& entry : entries) {
        if (wanted(entry.name)) {
            picked.append(entry);
        }
    }
    return picked;
}

QList<FileId> ListedDisk::fileIds(const QString& path) const {
    qsizetype cut = path.size();
    while (cut > 0 && !isPathSeparator(path[cut - 1])) {
        --cut;
    }
    const auto it = listings_.constFind(path.left(cut));
    if (it != listings_.constEnd()) {
        const auto at = it->names.constFind(path.mid(cut));
        if (at != it->names.constEnd() && !it->entries[*at].isLink &&
            it->entries[*at].id.isKnown()) {
            return {it->entries[*at].id};
        }
    }
    return disk_.fileIds(path);
}

bool ListedDisk::FileExists(const QString& path) const {
    qsizetype cut = path.size();
    while (cut > 0 && !isPathSeparator(path[cut - 1])) {
        --cut;
    }
    const auto it = listings_.constFind(path.left(cut));
    if (it != listings_.constEnd() && it->names.contains(path.mid(cut))) {
        return true;
    }
    return disk_.FileExists(path);
}

}  // namespace tidewick
