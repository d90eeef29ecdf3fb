#include "readers/session_kinds.h"

#include "platform/path_text.h"
#include "readers/import_rpp.h"
#include "readers/import_ses.h"
#include "readers/import_sesx.h"
#include "readers/import_veg.h"
#include "readers/import_xml.h"

namespace tidewick {

const QList<SessionKind>& sessionKinds() {
    static const QList<SessionKind> kinds = {
        {SessionKindId::Ses, 1, QStringLiteral("SES"), QStringLiteral("SESFiles"),
         QStringLiteral("Audition/CEP Session Files"), QStringLiteral("*.ses"),
         QStringLiteral("Check All &SES files"), QStringLiteral("&Keep Used PK Files"),
         QStringLiteral("pk"), &ImportSesSession, "ImportSesFile"},
        {SessionKindId::Sesx, 2, QStringLiteral("SESX"), QStringLiteral("SESXFiles"),
         QStringLiteral("Audition CS5.5 Session Files"), QStringLiteral("*.sesx"),
         QStringLiteral("Check All &SESX files"), QStringLiteral("&Keep Used PKF Files"),
         QStringLiteral("pkf"), &ImportSesxFile, "ImportSesxFile"},
        {SessionKindId::Xml, 3, QStringLiteral("XML"), QStringLiteral("XMLFiles"),
         QStringLiteral("Audition v3 XML Session Files"), QStringLiteral("*.xml"),
         QStringLiteral("Check All &XML files"), QStringLiteral("&Keep Used PK Files"),
         QStringLiteral("pk"), &ImportXmlFile, "ImportXmlFile"},
        {SessionKindId::Rpp, 4, QStringLiteral("RPP"), QStringLiteral("RPPFiles"),
         QStringLiteral("Reaper Session Files"), QStringLiteral("*.rpp"),
         QStringLiteral("Check All &RPP files"), QStringLiteral("&Keep Used Reapeaks Files"),
         QStringLiteral("reapeaks"), &ImportRppFile, "ImportRppFile"},
        {SessionKindId::Veg, 5, QStringLiteral("VEG"), QStringLiteral("VEGFiles"),
         QStringLiteral("Vegas Session Files"), QStringLiteral("*.veg"),
         QStringLiteral("Check All &VEG files"), QStringLiteral("&Keep Used sfk Files"),
         QStringLiteral("sfk"), &ImportVegFile, "ImportVegFile"},
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

QStringList readerMediaPaths(const SessionKind& kind, const ProgramState& state) {
    if (kind.id != SessionKindId::Ses) {
        return state.MediaPaths.paths();
    }
    QStringList paths;
    paths.reserve(state.SesMediaRecords.size());
    for (const SesMediaRecord& record : state.SesMediaRecords) {
        paths.append(trimBlanks(record.FileName));
    }
    return paths;
}

}  // namespace tidewick
