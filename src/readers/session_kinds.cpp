#include "readers/session_kinds.h"

#include <exception>

#include "platform/path_text.h"
#include "readers/import_rpp.h"
#include "readers/import_ses.h"
#include "readers/import_sesx.h"
#include "readers/import_veg.h"
#include "readers/import_xml.h"
#include "readers/session_bytes.h"

namespace tidewick {

const QList<SessionKind>& sessionKinds() {
    // Audition keeps a session's recordings in a folder named after it: mix_Recorded.
    const QString kRecorded = QStringLiteral("_Recorded");
    static const QList<SessionKind> kinds = {
        {SessionKindId::Ses, 1, QStringLiteral("SES"), QStringLiteral("SESFiles"),
         QStringLiteral("Audition/CEP Session Files"), QStringLiteral("*.ses"),
         QStringLiteral("Check All &SES files"), QStringLiteral("&Keep Used PK Files"),
         QStringLiteral("pk"), &readSesSession, false, kRecorded, false, false},
        {SessionKindId::Sesx, 2, QStringLiteral("SESX"), QStringLiteral("SESXFiles"),
         QStringLiteral("Audition CS5.5 Session Files"), QStringLiteral("*.sesx"),
         QStringLiteral("Check All &SESX files"), QStringLiteral("&Keep Used PKF Files"),
         QStringLiteral("pkf"), &readSesxSession, false, kRecorded, false, false},
        {SessionKindId::Xml, 3, QStringLiteral("XML"), QStringLiteral("XMLFiles"),
         QStringLiteral("Audition v3 XML Session Files"), QStringLiteral("*.xml"),
         QStringLiteral("Check All &XML files"), QStringLiteral("&Keep Used PK Files"),
         QStringLiteral("pk"), &readXmlSession, false, kRecorded, false, false},
        {SessionKindId::Rpp,
         4,
         QStringLiteral("RPP"),
         QStringLiteral("RPPFiles"),
         QStringLiteral("Reaper Session Files"),
         QStringLiteral("*.rpp"),
         QStringLiteral("Check All &RPP files"),
         QStringLiteral("&Keep Used Reapeaks Files"),
         QStringLiteral("reapeaks"),
         &readRppSession,
         true,
         {},
         true,
         true},
        {SessionKindId::Veg,
         5,
         QStringLiteral("VEG"),
         QStringLiteral("VEGFiles"),
         QStringLiteral("Vegas Session Files"),
         QStringLiteral("*.veg"),
         QStringLiteral("Check All &VEG files"),
         QStringLiteral("&Keep Used sfk Files"),
         QStringLiteral("sfk"),
         &readVegSession,
         true,
         {},
         true,
         false},
    };
    return kinds;
}

const SessionKind* sessionKindByKey(const QString& key) {
    for (const SessionKind& kind : sessionKinds()) {
        if (kind.tabKey == key) {
            return &kind;
        }
    }
    return nullptr;
}

const SessionKind* sessionKindForFile(const QString& fileName) {
    const QString extension = GetExtensionName(fileName).toLower();
    for (const SessionKind& kind : sessionKinds()) {
        if (kind.sessionPattern.mid(2) == extension) {
            return &kind;
        }
    }
    return nullptr;
}

const SessionKind& sessionKind(SessionKindId id) {
    for (const SessionKind& kind : sessionKinds()) {
        if (kind.id == id) {
            return kind;
        }
    }
    Q_UNREACHABLE();
}

const SessionKind* sessionKindByCaption(const QString& caption) {
    for (const SessionKind& kind : sessionKinds()) {
        if (kind.tabCaption.compare(caption, Qt::CaseInsensitive) == 0) {
            return &kind;
        }
    }
    return nullptr;
}

SessionRead readSessionFile(const SessionKind& kind, const QString& fileName,
                            const SessionPlace& place) {
    const auto failed = [&kind](const QString& reason) {
        SessionRead read;
        read.outcome = ReaderOutcome::Failed;
        read.message = fileErrorMessage(kind.tabCaption, reason);
        return read;
    };
    // A fault while reading, such as a file too large for the memory left, ends this read with
    // the "File Error" message, never the program.
    try {
        const FileBytes file = readSessionBytes(fileName);
        if (!file.error.isEmpty()) {
            // Named, so that a failure in a whole-folder scan says which file it was.
            return failed(u'"' + GetFileName(fileName) + QStringLiteral("\": ") + file.error);
        }
        return kind.reader(file.bytes, place);
    } catch (const std::exception& error) {
        return failed(QString::fromLocal8Bit(error.what()));
    } catch (...) {
        return failed(QStringLiteral("Unknown error"));
    }
}

}  // namespace tidewick
