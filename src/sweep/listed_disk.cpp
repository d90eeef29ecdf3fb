#include "sweep/listed_disk.h"

#include <algorithm>
#include <iterator>

#include "text/path_text.h"

namespace tidewick {

ListedDisk::Held ListedDisk::listing(const QString& folder) const {
    const QString key = withSeparator(folder);
    {
        const std::lock_guard lock(mutex_);
        if (const Held* known = listings_.find(key)) {
            return *known;
        }
    }
    Held read = listingOf(disk_.listFiles(folder, true));
    const std::lock_guard lock(mutex_);
    Held& held = listings_[key];
    if (!held) {
        held = std::move(read);  // else a thread that came first won
    }
    return held;
}

std::pair<ListedDisk::Held, qsizetype> ListedDisk::entryOf(const QString& path) const {
    const qsizetype cut = nameStart(path);
    Held listed;
    {
        const std::lock_guard lock(mutex_);
        if (const Held* known = listings_.find(QStringView(path).first(cut))) {
            listed = *known;
        }
    }
    const qsizetype at = listed ? listed->positionOf(QStringView(path).sliced(cut)) : -1;
    return {at >= 0 ? std::move(listed) : nullptr, at};
}

ListedDisk::Held ListedDisk::listingOf(QList<FolderEntry> entries) {
    auto listing = std::make_shared<Listing>();
    listing->entries = std::move(entries);
    return listing;
}

void ListedDisk::Listing::index() const {
    // One reading with the hidden files, which the session lists want, and the view without
    // them, which the other lists want: the reading itself where it holds none.
    std::call_once(indexed_, [this] {
        names_.insertEachNew(0, entries.size(),
                             [this](qsizetype at) -> const QString& { return entries[at].name; });
        const auto hidden = [](const FolderEntry& entry) { return entry.name.startsWith(u'.'); };
        if (std::any_of(entries.cbegin(), entries.cend(), hidden)) {
            std::remove_copy_if(entries.cbegin(), entries.cend(), std::back_inserter(visible_),
                                hidden);
        } else {
            visible_ = entries;  // shared, not copied
        }
    });
}

const QList<FolderEntry>& ListedDisk::Listing::visible() const {
    index();
    return visible_;
}

qsizetype ListedDisk::Listing::positionOf(QStringView name) const {
    index();
    return names_.find(name, TextIndex::hashOf(name),
                       [this](qsizetype at) -> const QString& { return entries[at].name; });
}

void ListedDisk::keep(const QString& folder, QList<FolderEntry> entries) {
    Held listing = listingOf(std::move(entries));
    const std::lock_guard lock(mutex_);
    listings_[withSeparator(folder)] = std::move(listing);
}

QList<FolderEntry> ListedDisk::listFiles(const QString& folder, bool withHidden,
                                         const NameTest& wanted) const {
    const Held listed = listing(folder);
    const QList<FolderEntry>& entries = withHidden ? listed->entries : listed->visible();
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

bool ListedDisk::listedWithFiles(const QString& folder) const {
    const std::lock_guard lock(mutex_);
    const Held* listed = listings_.find(withSeparator(folder));
    return listed != nullptr && *listed && !(*listed)->entries.isEmpty();
}

bool ListedDisk::FolderExists(const QString& path) const {
    if (path.isEmpty()) {
        return disk_.FolderExists(path);
    }
    const QString folder = withSeparator(path);
    if (listedWithFiles(folder)) {
        return true;
    }
    {
        const std::lock_guard lock(mutex_);
        if (const bool* there = folderThere_.find(folder)) {
            return *there;
        }
        // A folder within a folder known to be missing is missing too.
        for (QStringView above = QStringView(folder).chopped(1); !above.isEmpty();
             above = above.first(std::max<qsizetype>(nameStart(above) - 1, 0))) {
            if (const bool* there = folderThere_.find(above.first(nameStart(above)));
                there != nullptr && !*there) {
                return false;
            }
        }
    }
    const bool there = disk_.FolderExists(path);
    const std::lock_guard lock(mutex_);
    folderThere_[folder] = there;
    return there;
}

std::optional<FileStamp> ListedDisk::fileStamp(const QString& path) const {
    {
        const std::lock_guard lock(mutex_);
        if (const std::optional<FileStamp>* known = stamps_.find(path)) {
            return *known;
        }
    }
    const std::optional<FileStamp> stamp =
        inMissingFolder(path) ? std::nullopt : disk_.fileStamp(path);
    const std::lock_guard lock(mutex_);
    stamps_[path] = stamp;
    return stamp;
}

bool ListedDisk::inMissingFolder(const QString& path) const {
    const qsizetype cut = nameStart(path);
    if (cut == 0) {
        return false;  // a name in the current folder, which is there
    }
    const QStringView folder = QStringView(path).first(cut);
    {
        const std::lock_guard lock(mutex_);
        if (const Held* listed = listings_.find(folder); listed != nullptr && *listed) {
            return false;
        }
        if (const bool* there = folderThere_.find(folder)) {
            return !*there;
        }
    }
    const bool there = disk_.FolderExists(folder.toString());
    const std::lock_guard lock(mutex_);
    folderThere_[folder.toString()] = there;
    return !there;
}

FileIds ListedDisk::fileIds(const QString& path) const {
    if (const auto [listed, at] = entryOf(path);
        listed && !listed->entries[at].isLink && listed->entries[at].id.isKnown()) {
        return {listed->entries[at].id};
    }
    return inMissingFolder(path) ? FileIds() : disk_.fileIds(path);
}

bool ListedDisk::FileExists(const QString& path) const {
    return entryOf(path).first != nullptr || (!inMissingFolder(path) && disk_.FileExists(path));
}

}  // namespace tidewick
