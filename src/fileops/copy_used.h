#pragma once

#include <QList>
#include <QString>
#include <functional>

#include "fileops/file_operations.h"

// Copying the media a session uses into one folder, for the window's "Cop&y Files" and the
// command line's copy-used: the same engine as the move, so each copy is whole before it takes
// its name, and a file it replaces goes to the trash.
namespace tidewick {

/// One file to copy: the line of the used list, and the file on disk it leads to.
struct CopyItem {
    QString text;
    QString source;
};

/// What comes after a file that could not be copied.
enum class CopyFailureAnswer { Abort, Retry, Ignore };

struct CopyEvents {
    /// File `number` of `count` is next; the number counts the files copied so far, so the file
    /// after a failed one shows the same number.
    std::function<void(int number, int count, const CopyItem& item)> starting;
    /// `done` of `total` bytes are copied.
    std::function<void(qint64 done, qint64 total)> progress;
    /// Copying `item` failed. Without an answer the file is left out and the run goes on.
    std::function<CopyFailureAnswer(const CopyItem& item, const Error& error)> failed;
    /// Asked before each file: true stops the run there, as "Abort" does (an interrupt).
    std::function<bool()> stopRequested;
    /// A file of the item's name is in the folder: true leaves that one and skips the item (the
    /// command line's "--overwrite no"); without an answer the copy replaces it, the old one to
    /// the trash.
    std::function<bool(const CopyItem& item, const QString& destination)> keepExisting;
    /// The item is done with: copied to `destination` (`size` bytes), or skipped.
    std::function<void(const CopyItem& item, const QString& destination, qint64 size)> copied;
    std::function<void(const CopyItem& item, const QString& destination)> skipped;
};

struct CopyOutcome {
    int copied = 0;
    int failed = 0;        ///< files left out after a failure
    int skipped = 0;       ///< files left out because one of their name was kept in the folder
    qint64 bytes = 0;      ///< the bytes of the files copied
    bool aborted = false;  ///< the user stopped the run at a failure
};

/// Copies each item into `folder` (which ends in a separator) under its file's name, in list
/// order: a later file of the same name replaces an earlier one, but never a file that a loaded
/// session uses (`used`). A link is copied as the file it leads to. Leftovers of a run that died
/// in `folder` are removed first.
CopyOutcome copyUsedFiles(const QList<CopyItem>& items, const QString& folder, FileOperations& disk,
                          const CopyEvents& events, const UsedFileOwners& used = {});

/// "Error 2 (No such file or directory) has occurreed while attempting to copy take.wav."
QString copyFailureText(const Error& error, const QString& text);

/// "2 File(s) successfully copied to /home/me/Collect/."
QString copiedFilesLine(int count, const QString& folder);

}  // namespace tidewick
