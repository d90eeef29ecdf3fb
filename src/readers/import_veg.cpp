#include "readers/import_veg.h"

#include "readers/session_bytes.h"

namespace tidewick {

ReaderOutcome ImportVegFile(const QString& fileName, ReaderContext& context) {
    QByteArray bytes;
    QString error;
    if (!readSessionBytes(fileName, bytes, error)) {
        reportFileError(context.ui, QStringLiteral("VEG"), error);
        return ReaderOutcome::Failed;
    }
    return ImportVegBytes(bytes, context);
}

ReaderOutcome ImportVegBytes(QByteArrayView, ReaderContext& context) {
    showOk(context.ui, QStringLiteral("Reading VEG sessions is not yet supported."),
           QStringLiteral("Processing VEG File"), MessageIcon::Information);
    return ReaderOutcome::Failed;
}

}  // namespace tidewick
