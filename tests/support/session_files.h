#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include "readers/session_kinds.h"

namespace tidewick::test {

/// The bytes of a small session of `kind` that names `paths` in order, laid out the way each
/// kind's program writes it (a binary session says it is "Audition 3.0").
QByteArray sessionBytes(SessionKindId kind, const QStringList& paths);

/// Writes `bytes` to `path`, creating its folders; false when that fails.
bool writeFile(const QString& path, const QByteArray& bytes = {});

}  // namespace tidewick::test
