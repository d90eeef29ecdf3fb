#pragma once

#include <QByteArray>
#include <QString>

#include "audit/library_audit.h"

// What `audit` prints: one line a folder and the totals, the same as CSV, or one JSON document.
namespace tidewick::cli {

/// A line a folder, largest reclaimable first, then the totals line; with `missing`, each
/// missing file of a folder under its line, with the files of the library that may be it.
QString auditText(const LibraryReport& report, bool missing);

/// The same as CSV, with a header row.
QString auditCsv(const LibraryReport& report);

/// One document: the root, each folder (its sessions by kind, used and missing counts, the
/// reclaimable files and bytes, the files kept for sessions of other folders and who keeps them,
/// whether it stopped and why, each missing file with its candidates), and the totals.
QString auditJson(const LibraryReport& report);

}  // namespace tidewick::cli
