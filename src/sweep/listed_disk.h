#pragma once

#include <QHash>
#include <QSet>
#include <memory>
#include <mutex>

#include "platform/file_system.h"
#include "text/text_index.h"

// The disk as one sweep sees it: each folder is read once, and a file that a listing holds is
// known to exist without asking the disk again. A name the listing lacks (a file of another
// folder, a pipe) is asked of the disk itself, unless its folder is missing: that is asked once
// for all its files (a session may name thousands on a drive long gone). A folder whose listing
// holds files is there and readable; what the disk said of any other folder, and of a file's
// stamp, holds for the sweep, which sees the disk as of one moment. Threads may ask it side by
// side.
namespace tidewick {

class ListedDisk : public FileSystem {
public:
    explicit ListedDisk(const FileSystem& disk) : disk_(disk) {}

    bool FileExists(const QString& path) const override;
    bool FolderExists(const QString& path) const override;
    qint64 fileSize(const QString& path) const override {
        return inMissingFolder(path) ? -1 : disk_.fileSize(path);
    }
    QList<FolderEntry> listFiles(const QString& folder, bool withHidden = false,
                                 const NameTest& wanted = {}) const override;
    QList<SubFolder> listFolders(const QString& folder) const override {
        return disk_.listFolders(folder);
    }
    Contents listContents(const QString& folder) const override {
        return disk_.listContents(folder);
    }
    QString currentDirectory() const override { return disk_.currentDirectory(); }
    bool folderReadable(const QString& folder) const override {
        return listedWithFiles(folder) || disk_.folderReadable(folder);
    }
    std::optional<FileStamp> fileStamp(const QString& path) const override;
    /// Takes in the listing of `folder` (with the hidden files) made elsewhere, as its own
    /// reading would have made it.
    void keep(const QString& folder, QList<FolderEntry> entries);

    /// From the listing for a file of a listed folder that is no link (and nothing for a name
    /// that the listing lacks); asked of the disk for any other.
    FileIds fileIds(const QString& path) const override;

private:
    struct Listing {
        QList<FolderEntry> entries;  // hidden ones too
        // The view without hidden files and the position of each name in `entries`, made when
        // first asked for: a walk of a library keeps many listings that no one looks into.
        const QList<FolderEntry>& visible() const;
        /// The position of the file `name` in `entries`, or -1.
        qsizetype positionOf(QStringView name) const;

    private:
        void index() const;
        mutable std::once_flag indexed_;
        mutable QList<FolderEntry> visible_;
        mutable TextIndex names_;
    };
    using Held = std::shared_ptr<const Listing>;
    // The listing of `folder`, read now when it was not yet.
    Held listing(const QString& folder) const;
    // The listing of the folder of `path` and the position of its name there, when held.
    std::pair<Held, qsizetype> entryOf(const QString& path) const;
    static Held listingOf(QList<FolderEntry> entries);
    // Whether the folder of `path` is missing (or no folder), so that no file of that path can
    // be there; a relative folder is taken where the path is, in the current folder.
    bool inMissingFolder(const QString& path) const;
    // Whether a listing of `folder` is held and holds files.
    bool listedWithFiles(const QString& folder) const;

    const FileSystem& disk_;
    mutable std::mutex mutex_;
    mutable TextMap<Held> listings_;     // by folder, with its separator
    mutable TextMap<bool> folderThere_;  // the folders asked of the disk, with their separators
    mutable TextMap<std::optional<FileStamp>> stamps_;  // by path
};

}  // namespace tidewick
