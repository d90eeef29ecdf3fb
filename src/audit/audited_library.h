#pragma once

#include <QString>
#include <QStringList>
#include <memory>

#include "sweep/sweep.h"

// The sessions of an audited library that use files of a folder being loaded: what the index of
// the library's last audit says, checked against the disk.
namespace tidewick {

class SessionIndex;

class AuditedLibrary {
public:
    /// The library whose index is the file `indexFile`; by default the user's own
    /// (SessionIndex::defaultFile(), as it is when the index is opened).
    explicit AuditedLibrary(QString indexFile = {});
    ~AuditedLibrary();

    /// The sessions of other folders that the index says use files of `folders` (those under an
    /// audited root), each still there; those whose files are as the index holds them are taken
    /// into `cache` from it, the others are read again (and the index learns them).
    /// An index that exists but cannot say (damaged and set aside, held by another program past
    /// its wait) is an error: its sessions cannot guard the load, which must stop.
    Result<QList<SessionElsewhere>> sessionsUsing(const QStringList& folders,
                                                  const FileSystem& disk, SessionCache& cache);
    /// The index has news (an audit ran): it is opened afresh at the next question.
    void reopen() { index_.reset(); }

private:
    QString indexFile_;
    std::shared_ptr<SessionIndex> index_;
};

}  // namespace tidewick
