#pragma once

#include <QByteArray>
#include <optional>

#include "audit/library_audit.h"
#include "readers/reader_contract.h"

// What the index keeps of a session's read and of a folder's report, as bytes; an unpacking
// that does not come out whole gives nothing.
namespace tidewick {

QByteArray packRead(const SessionRead& read);
std::optional<SessionRead> unpackRead(const QByteArray& bytes);

QByteArray packReport(const FolderReport& report);
std::optional<FolderReport> unpackReport(const QByteArray& bytes);

}  // namespace tidewick
