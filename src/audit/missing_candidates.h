#pragma once

#include <QList>
#include <QStringList>

#include "audit/audit_report.h"
#include "platform/file_system.h"

// The files of a library that may be a missing medium: those with its name, so that it can be
// relinked in the editor.
namespace tidewick {

/// For each missing file of `folders`, the files of the `walked` folders (each with its
/// separator) with its name (ignoring case and Unicode form), the nearest to its folder first.
/// The library is looked through once, and only when a file is missing.
void findCandidates(QList<FolderReport>& folders, const QStringList& walked,
                    const FileSystem& disk);

}  // namespace tidewick
