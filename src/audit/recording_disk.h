#pragma once

#include <QByteArray>
#include <QCryptographicHash>
#include <QHash>
#include <QSet>
#include <mutex>

#include "platform/file_system.h"
#include "platform/result.h"
#include "text/text_index.h"

// The disk as one folder's audit asked it, over the listings of the library (ListedDisk). Each
// question is noted once, and its answer goes into a hash; a later audit asks the same questions
// again and knows from the hash alone whether the folder's audit would come out the same. The
// audit is a function of these answers (a session's bytes are vouched for by its size and time
// of change, which it asks), so nothing it depends on can change unseen. A question that a
// listing asked answers (a file of a listed folder that is there, and no link) is not kept: the
// listing's answer holds it. Threads may ask it side by side, as a load's do.
namespace tidewick {

class RecordingDisk : public FileSystem {
public:
    explicit RecordingDisk(const FileSystem& disk) : disk_(disk) {}

    bool FileExists(const QString& path) const override;
    bool FolderExists(const QString& path) const override;
    qint64 fileSize(const QString& path) const override;
    QList<FolderEntry> listFiles(const QString& folder, bool withHidden = false,
                                 const NameTest& wanted = {}) const override;
    QList<SubFolder> listFolders(const QString& folder) const override;
    Contents listContents(const QString& folder) const override;
    std::optional<FileStamp> fileStamp(const QString& path) const override;
    FileIds fileIds(const QString& path) const override;
    QString currentDirectory() const override;
    bool folderReadable(const QString& folder) const override;

    /// The questions asked, in order, each once.
    QByteArray questions() const;
    /// The hash of their answers.
    QByteArray signature() const;

private:
    struct Noted {
        QByteArray question;
        QByteArray answer;
        bool byListing = false;  // a question that a listing may answer
    };
    // Notes the question (`kind`, `path`) and its answer `value` unless it was asked before;
    // gives back `value`.
    template <typename T>
    T noted(char kind, const QString& path, T value) const;
    // Whether a listing asked holds the file `path` and no link to it; under the lock.
    bool listed(const QString& path) const;

    const FileSystem& disk_;
    mutable std::mutex mutex_;  // over what is noted
    mutable QList<Noted> noted_;
    mutable QSet<QByteArray> seen_;
    mutable QHash<QString, QList<FolderEntry>> listings_;  // by folder, with its separator
    // By folder: its listed files that are no links, made when first asked (most audits ask
    // no question that a listing answers).
    mutable QHash<QString, TextSet> listedNames_;
};

/// The hash of the answers that `disk` gives now to `questions` (RecordingDisk::questions):
/// equal to the recorded signature exactly when every answer is as it was. Questions that are
/// not whole (a damaged record) fail.
Result<QByteArray> replaySignature(const QByteArray& questions, const FileSystem& disk);

}  // namespace tidewick
