#pragma once

#include <QByteArrayView>
#include <QString>

#include "readers/reader_contract.h"

namespace tidewick {

/// Reads the media paths of a RPP session into MediaPaths.
ReaderOutcome ImportRppFile(const QString& fileName, ReaderContext& context);

/// The same, over the file's bytes.
ReaderOutcome ImportRppBytes(QByteArrayView bytes, ReaderContext& context);

}  // namespace tidewick
