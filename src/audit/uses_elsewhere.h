#pragma once

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

#include "audit/audit_report.h"
#include "readers/reader_contract.h"
#include "readers/session_kinds.h"

// The files that sessions use outside their own folders (an absolute path into another folder,
// a shared sample folder): uses that the loads of the folder that holds such a file cannot see,
// and which keep it all the same.
namespace tidewick {

/// The files the session `session` of `kind`, as `read`, uses outside its own folder, as every
/// reading of its paths resolves them: the uses that another folder's loads cannot see.
QStringList usedElsewhere(const QString& session, const SessionKind& kind, const SessionRead& read);

/// The files that sessions use outside their own folders, by the key of their path (usedKey),
/// each with the session that keeps it; and the keys of their folders, so that a folder none of
/// them lies in is passed over at once.
struct Keepers {
    QHash<QString, QString> files;
    QSet<QString> folders;
};

/// The keepers of the files of `elsewhere` (usedElsewhere, by session); of two sessions that use
/// one file, the first by path, whatever order they came in.
Keepers keepersOf(const QHash<QString, QStringList>& elsewhere);

/// Moves the files of `report` that a session of another folder uses from what it could free to
/// its kept list, with that session's name: such a file is no space to free.
void keepWhatOthersUse(FolderReport& report, const Keepers& keepers);

}  // namespace tidewick
