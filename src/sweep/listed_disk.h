#pragma once

#include <QHash>
#include <QSet>

#include "platform/file_system.h"

// The disk as one sweep sees it: each folder is read once, and a file that a listing holds is
// known to exist without asking the disk again. A name the listing lacks (a file of another
// folder, a pipe) is asked of the disk itself.
namespace tidewick {

class ListedDisk : public FileSystem {
public:
    explicit ListedDisk(const FileSystem& disk) : disk_(disk) {}

    bool FileExists(const QString& path) const override;
    bool FolderExists(const QString& path) const override { return disk_.FolderExists(path); }
    qint64 fileSize(const QString& path) const override { return disk_.fileSize(path); }
    QList<FolderEntry> listFiles(const QString& folder, bool withHidden = false,
                                 const NameTest& wanted = {}) const override;
    QString currentDirectory() const override { return disk_.currentDirectory(); }
    std::optional<FileStamp> fileStamp(const QString& path) const override {
        return disk_.fileStamp(path);
    }
    /// From the listing for a file of a listed folder that is no link (and nothing for a name
    /// that the listing lacks); asked of the disk for any other.
    QList<FileId> fileIds(const QString& path) const override;

private:
    struct Listing {
        QList<FolderEntry> entries;  // hidden ones too
        QList<FolderEntry> visible;
        QHash<QString, qsizetype> names;  // the position of each name in `entries`
    };
    const Listing& listing(const QString& folder) const;

    const FileSystem& disk_;
    mutable QHash<QString, Listing> listings_;  // by folder, with its separator
};

}  // namespace tidewick
