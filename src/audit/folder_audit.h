#pragma once

#include "audit/audit_report.h"
#include "sweep/sweep.h"

// The audit of one session folder, before the library has its say.
namespace tidewick {

/// Loads every session of `folder` (with its separator), kind by kind, as "Check All" does with
/// "All Files", used peak files kept, the recordings folders and REAPER's record folder included,
/// each load guarded by every session of the folder: the used files, the missing ones (without
/// candidates yet), and the files that no load keeps, which could be freed. A session that cannot
/// be read stops the folder, with its reason: where it stopped, and the first problem told in
/// the words of `describe`.
FolderReport auditFolder(const QString& folder,
                         const QList<std::pair<const SessionKind*, QStringList>>& sessions,
                         const FileSystem& disk, SessionCache& cache,
                         const std::function<QString(const ReadProblem&)>& describe = {});

}  // namespace tidewick
