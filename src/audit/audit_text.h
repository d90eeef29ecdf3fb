#pragma once

#include <QString>

#include "audit/audit_report.h"

// The texts of an audit that the command line and the window both show.
namespace tidewick {

/// "305,152 bytes (0.29Mb)".
QString bytesText(qint64 bytes);
/// A folder's sessions by kind, each kind by its id text in capitals: "SESX 1, RPP 2".
QString sessionsText(const FolderReport& folder);
/// What a folder could free: "149 file(s) 305,152 bytes (0.29Mb)".
QString reclaimableText(const FolderReport& folder);
/// "Totals: 200 folder(s), 200 session(s), 20,000 used, 0 missing, reclaimable ...".
QString totalsLine(const LibraryReport& report);
/// "walking 12 folder(s), 3,000 file(s), 5.86Mb, 1 s", or "auditing 3 of 40 session
/// folder(s), ..." once the walk is over.
QString progressText(const AuditProgress& progress, qint64 elapsedMs);

}  // namespace tidewick
