#include "sweep/listed_disk.h"

#include "platform/path_text.h"

namespace tidewick {

const ListedDisk::Listing& ListedDisk::listing(const QString& folder) const {
    const QString key = withSeparator(folder);
    auto it = listings_.find(key);
    if (it == listings_.end()) {
        Listing listing;
        listing.entries = disk_.listFiles(folder);
        listing.names.reserve(listing.entries.size());
        for (const FolderEntry& entry : listing.entries) {
            listing.names.insert(entry.name);
        }
        it = listings_.insert(key, std::move(listing));
    }
    return *it;
}

QList<FolderEntry> ListedDisk::listFiles(const QString& folder, bool withHidden,
                                         const NameTest& wanted) const {
    if (withHidden || wanted) {
        return disk_.listFiles(folder, withHidden, wanted);
    }
    return listing(folder).entries;
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
