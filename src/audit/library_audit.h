#pragma once

#include <QString>
#include <QStringList>

#include "audit/audit_report.h"
#include "platform/file_system.h"
#include "readers/reader_contract.h"
#include "readers/session_kinds.h"

// The audit of a library: every folder under a root that holds sessions, what each uses, what a
// load of all its sessions would offer for moving (the space it could free) and which of its
// media are missing, with the files elsewhere in the library that may be them.
namespace tidewick {

class SessionIndex;

/// The folders under `root` that the audit looks into: no link to a folder, no hidden folder (a
/// session's hidden recordings or record folder is read with its session's folder), no trash
/// ("Trash/files", "Trash/info").
bool walkedFolder(const QString& parent, const QString& name);

/// The files the session `session` of `kind`, as `read`, uses outside its own folder, as every
/// reading of its paths resolves them: the uses that another folder's loads cannot see.
QStringList usedElsewhere(const QString& session, const SessionKind& kind, const SessionRead& read);

/// Audits the library under `root` on `disk`. Sessions come from `index`, when given, where their
/// files are as the index holds them; those read afresh go into it, with the root.
LibraryReport auditLibrary(const QString& root, const FileSystem& disk, SessionIndex* index,
                           const AuditEvents& events = {});

}  // namespace tidewick
