#pragma once

#include <QByteArrayView>
#include <QString>

#include "readers/reader_contract.h"

namespace tidewick {

/// Reads the media paths of a XML session into MediaPaths.
ReaderOutcome ImportXmlFile(const QString& fileName, ReaderContext& context);

/// The same, over the file's bytes.
ReaderOutcome ImportXmlBytes(QByteArrayView bytes, ReaderContext& context);

}  // namespace tidewick
