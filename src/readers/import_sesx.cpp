#include "readers/import_sesx.h"

#include "readers/session_bytes.h"

namespace tidewick {

ReaderOutcome ImportSesxFile(const QString& fileName, ReaderContext& context) {
    QByteArray bytes;
    QString error;
    if (!readSessionBytes(fileName, bytes, error)) {
        reportFileError(context.ui, QStringLiteral("SESX"), error);
        return ReaderOutcome::Failed;
    }
    return ImportSesxBytes(bytes, context);
}

ReaderOutcome ImportSesxBytes(QByteArrayView, ReaderContext& context) {
    showOk(context.ui, QStringLiteral("Reading SESX sessions is not yet supported."),
           QStringLiteral("Processing SESX File"), MessageIcon::Information);
    return ReaderOutcome::Failed;
}

}  // namespace tidewick
