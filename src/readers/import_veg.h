#pragma once

#include <QByteArrayView>
#include <QString>

#include "readers/reader_contract.h"

namespace tidewick {

/// Reads the media paths of a VEG session into MediaPaths.
ReaderOutcome ImportVegFile(const QString& fileName, ReaderContext& context);

/// The same, over the file's bytes.
ReaderOutcome ImportVegBytes(QByteArrayView bytes, ReaderContext& context);

}  // namespace tidewick
