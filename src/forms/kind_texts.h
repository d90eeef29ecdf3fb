#pragma once

#include <QString>

#include "readers/session_kinds.h"

// What the window shows of each session kind: its tab and the captions that name the kind. The
// project kinds (Ableton Live sets, Audacity projects, Ardour sessions, FL Studio and MLT
// projects) share one tab, "More".
namespace tidewick {

struct KindTexts {
    SessionKindId id;
    QString tabCaption;        ///< "SES"
    QString tabKey;            ///< "SESFiles", also the key the settings keep the active tab by
    QString tabTooltip;        ///< "Audition/CEP Session Files"
    QString scanAllCaption;    ///< caption of ScanAll, "&" before the access key
    QString keepPeaksCaption;  ///< caption of KeepPKCheck
};

/// The texts of the kind `id`; the project kinds share those of the "More" tab.
const KindTexts& kindTexts(SessionKindId id);

/// The kinds that the window's tabs stand for, in the tabs' order: the five of their own tabs,
/// then the first project kind, standing for the "More" tab that all of them share.
const QList<const SessionKind*>& tabKinds();

/// The kind of a tab key ("SESFiles"); nullptr for an unknown key.
const SessionKind* sessionKindByKey(const QString& key);

}  // namespace tidewick
