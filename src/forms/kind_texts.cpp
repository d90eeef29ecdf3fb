#include "forms/kind_texts.h"

#include <QList>

namespace tidewick {

namespace {

const QList<KindTexts>& allKindTexts() {
    static const QList<KindTexts> texts = [] {
        struct Row {
            SessionKindId id;
            const char *caption, *key, *tooltip, *scanAll, *keepPeaks;
        };
        constexpr Row kRows[] = {
            {SessionKindId::Ses, "SES", "SESFiles", "Audition/CEP Session Files",
             "Check All &SES files", "&Keep Used PK Files"},
            {SessionKindId::Sesx, "SESX", "SESXFiles", "Audition CS5.5 Session Files",
             "Check All &SESX files", "&Keep Used PKF Files"},
            {SessionKindId::Xml, "XML", "XMLFiles", "Audition v3 XML Session Files",
             "Check All &XML files", "&Keep Used PK Files"},
            {SessionKindId::Rpp, "RPP", "RPPFiles", "Reaper Session Files", "Check All &RPP files",
             "&Keep Used Reapeaks Files"},
            {SessionKindId::Veg, "VEG", "VEGFiles", "Vegas Session Files", "Check All &VEG files",
             "&Keep Used sfk Files"},
            {SessionKindId::Als, "More", "MoreFiles",
             "Ableton Live Sets, Audacity Projects, Ardour Sessions, FL Studio Projects, "
             "Kdenlive and Shotcut Projects",
             "Check All &More files", "&Keep Used asd and peak Files"},
        };
        QList<KindTexts> list;
        for (const Row& row : kRows) {
            const auto text = [](const char* latin1) { return QString::fromLatin1(latin1); };
            list.append({row.id, text(row.caption), text(row.key), text(row.tooltip),
                         text(row.scanAll), text(row.keepPeaks)});
        }
        return list;
    }();
    return texts;
}

}  // namespace

const KindTexts& kindTexts(SessionKindId id) {
    if (sessionKind(id).projectScope) {
        id = tabKinds().constLast()->id;  // the tab they share
    }
    for (const KindTexts& texts : allKindTexts()) {
        if (texts.id == id) {
            return texts;
        }
    }
    Q_UNREACHABLE();
}

const SessionKind* sessionKindByKey(const QString& key) {
    for (const KindTexts& texts : allKindTexts()) {
        if (texts.tabKey == key) {
            return &sessionKind(texts.id);
        }
    }
    return nullptr;
}

}  // namespace tidewick

namespace tidewick {

const QList<const SessionKind*>& tabKinds() {
    static const QList<const SessionKind*> kinds = [] {
        QList<const SessionKind*> list;
        for (const SessionKind& kind : sessionKinds()) {
            if (!kind.projectScope) {
                list.append(&kind);
            }
        }
        for (const SessionKind& kind : sessionKinds()) {
            if (kind.projectScope) {
                list.append(&kind);
                break;
            }
        }
        return list;
    }();
    return kinds;
}

}  // namespace tidewick
