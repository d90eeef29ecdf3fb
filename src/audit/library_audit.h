#pragma once

#include <QString>

#include "audit/audit_report.h"
#include "platform/file_system.h"

// The audit of a library: every folder under a root that holds sessions, what each uses, what a
// load of all its sessions would offer for moving (the space it could free) and which of its
// media are missing, with the files elsewhere in the library that may be them.
namespace tidewick {

class SessionIndex;

/// Audits the library under `root` on `disk`. Sessions come from `index`, when given, where their
/// files are as the index holds them; those read afresh go into it, with the root.
LibraryReport auditLibrary(const QString& root, const FileSystem& disk, SessionIndex* index,
                           const AuditEvents& events = {});

}  // namespace tidewick
