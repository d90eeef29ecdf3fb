#pragma once

#include <QHashFunctions>
#include <QList>
#include <QString>
#include <QVarLengthArray>
#include <functional>
#include <optional>

#include "platform/result.h"

// The one file-system object of the process: every question the sweep asks the disk goes
// through it, so that tests can stand in a disk that fails where a real one seldom does.
namespace tidewick {

/// A file name as the file system holds it, as text. Names are bytes on Linux and macOS: valid
/// UTF-8 reads as such, and every other byte becomes the lone character U+DC00 + byte, which
/// no text of a session can hold and which encodeFileName turns back into that byte. So every
/// file can be listed, and its path leads back to it.
QString decodeFileName(QByteArrayView bytes);
/// The bytes that name `path` to the file system.
QByteArray encodeFileName(const QString& path);

/// The failure that the system reports by the error number `code`, with its description;
/// lastError() for the number in errno.
Error errorOf(int code);
Error lastError();

/// Which file a path reaches, whatever the path: its device and inode (a link is a file of its
/// own). Zero where the disk does not tell.
struct FileId {
    quint64 device = 0;
    quint64 inode = 0;

    bool isKnown() const { return inode != 0; }
    bool operator==(const FileId&) const = default;
};

/// The files one path reaches (FileSystem::fileIds): most paths reach one, a link two.
using FileIds = QVarLengthArray<FileId, 2>;

inline size_t qHash(const FileId& id, size_t seed = 0) {
    return qHashMulti(seed, id.device, id.inode);
}

/// A file's length, the time of its last change and its inode, which together tell whether it
/// changed or was replaced by another file.
struct FileStamp {
    qint64 size = 0;
    qint64 modified = 0;  ///< nanoseconds since 1970
    quint64 inode = 0;    ///< zero where the disk does not tell
    bool operator==(const FileStamp&) const = default;
};

/// One file of a folder listing.
struct FolderEntry {
    QString name;         ///< the file's name, without its folder
    qint64 size = 0;      ///< its length in bytes (of the target, for a link)
    bool isLink = false;  ///< a symbolic link to a file
    FileId id;            ///< the entry itself (for a link, the link)

    bool operator==(const FolderEntry&) const = default;
};

/// One sub-folder of a folder listing.
struct SubFolder {
    QString name;
    /// False only when the folder is known to hold no folders of its own.
    bool mayHaveSubFolders = true;

    bool operator==(const SubFolder&) const = default;
};

/// The disk as the core asks it. Threads may ask one disk side by side (a load builds its used
/// index beside its guard): a disk that keeps anything of the questions guards it.
class FileSystem {
public:
    virtual ~FileSystem() = default;

    /// True when `path` names an existing file (not a folder).
    virtual bool FileExists(const QString& path) const;

    /// True when `path` names an existing folder; a relative path is taken from the current
    /// directory.
    virtual bool FolderExists(const QString& path) const;

    /// The length of the file `path` in bytes; −1 when there is no such file.
    virtual qint64 fileSize(const QString& path) const;

    /// The files of `folder` that a user sees there, in one reading of the folder: ordinary
    /// files and links to them, with their sizes, sorted by name ignoring case. Hidden files (a
    /// leading dot), folders, sockets, pipes, devices and broken links are left out: what the
    /// user does not see in the folder is never offered for moving. Empty when the folder
    /// cannot be read.
    /// With `withHidden` the hidden files are listed too. A `wanted` test, when given, picks the
    /// names to list before anything else about a file is asked.
    using NameTest = std::function<bool(const QString& name)>;
    virtual QList<FolderEntry> listFiles(const QString& folder, bool withHidden = false,
                                         const NameTest& wanted = {}) const;

    /// The folders of `folder` that a user sees there (links to folders too, hidden ones not),
    /// sorted by name ignoring case; empty when the folder cannot be read.
    virtual QList<SubFolder> listFolders(const QString& folder) const;

    /// One reading of `folder`: its files as listFiles lists them with the hidden ones, and
    /// the folders it holds itself, hidden ones too, by name, sorted ignoring case: never a
    /// link to a folder, so that a walk of a tree visits each folder once and stays in it.
    struct Contents {
        QList<FolderEntry> files;
        QStringList folders;
    };
    virtual Contents listContents(const QString& folder) const;

    /// The length and modification time of the file `path` (of a link's target); nothing when
    /// there is no such file.
    virtual std::optional<FileStamp> fileStamp(const QString& path) const;

    /// The files that `path` reaches: the entry itself and, for a link, each link it passes
    /// through up to the file it ends at. Empty when there is no such entry.
    virtual FileIds fileIds(const QString& path) const;

    /// The program's current directory.
    virtual QString currentDirectory() const;

    /// False when `folder` is a folder whose files cannot be listed (no permission, a failing
    /// disk): the listings above then read it as empty, which is no answer. True for a folder
    /// that can be listed and for a path that is no folder.
    virtual bool folderReadable(const QString& folder) const;
};

}  // namespace tidewick
