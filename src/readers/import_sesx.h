#pragma once

#include <QByteArrayView>
#include <QString>

#include "readers/reader_contract.h"

namespace tidewick {

/// Reads the media paths of a SESX session into MediaPaths.
ReaderOutcome ImportSesxFile(const QString& fileName, ReaderContext& context);

/// The same, over the file's bytes.
ReaderOutcome ImportSesxBytes(QByteArrayView bytes, ReaderContext& context);

}  // namespace tidewick
