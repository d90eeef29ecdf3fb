#include "readers/import_rpp.h"

#include "readers/session_bytes.h"

namespace tidewick {

ReaderOutcome ImportRppFile(const QString& fileName, ReaderContext& context) {
    QByteArray bytes;
    QString error;
    if (!readSessionBytes(fileName, bytes, error)) {
        reportFileError(context.ui, QStringLiteral("RPP"), error);
        return ReaderOutcome::Failed;
    }
    return ImportRppBytes(bytes, context);
}

ReaderOutcome ImportRppBytes(QByteArrayView, ReaderContext& context) {
    showOk(context.ui, QStringLiteral("Reading RPP sessions is not yet supported."),
           QStringLiteral("Processing RPP File"), MessageIcon::Information);
    return ReaderOutcome::Failed;
}

}  // namespace tidewick
