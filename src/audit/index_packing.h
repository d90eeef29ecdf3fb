#pragma once

#include <QByteArray>

#include "audit/audit_report.h"
#include "platform/result.h"
#include "readers/reader_contract.h"

// What the index keeps of a session's read and of a folder's report, as bytes. The bytes come
// from a file that anything may have changed: an unpacking that does not come out whole fails,
// and no count in them is believed before the bytes that it counts have been read.
namespace tidewick {

QByteArray packRead(const SessionRead& read);
Result<SessionRead> unpackRead(const QByteArray& bytes);

QByteArray packReport(const FolderReport& report);
Result<FolderReport> unpackReport(const QByteArray& bytes);

}  // namespace tidewick
