#include "readers/import_xml.h"

#include "readers/session_bytes.h"

namespace tidewick {

ReaderOutcome ImportXmlFile(const QString& fileName, ReaderContext& context) {
    QByteArray bytes;
    QString error;
    if (!readSessionBytes(fileName, bytes, error)) {
        reportFileError(context.ui, QStringLiteral("XML"), error);
        return ReaderOutcome::Failed;
    }
    return ImportXmlBytes(bytes, context);
}

ReaderOutcome ImportXmlBytes(QByteArrayView, ReaderContext& context) {
    showOk(context.ui, QStringLiteral("Reading XML sessions is not yet supported."),
           QStringLiteral("Processing XML File"), MessageIcon::Information);
    return ReaderOutcome::Failed;
}

}  // namespace tidewick
