#pragma once

#include <QString>

#include "readers/session_kinds.h"

// What the window shows of each session kind: its tab and the captions that name the kind.
namespace tidewick {

struct KindTexts {
    SessionKindId id;
    QString tabCaption;        ///< "SES"
    QString tabKey;            ///< "SESFiles", also the key the settings keep the active tab by
    QString tabTooltip;        ///< "Audition/CEP Session Files"
    QString scanAllCaption;    ///< caption of ScanAll, "&" before the access key
    QString keepPeaksCaption;  ///< caption of KeepPKCheck
};

/// The texts of the kind `id`.
const KindTexts& kindTexts(SessionKindId id);

/// The kind of a tab key ("SESFiles"); nullptr for an unknown key.
const SessionKind* sessionKindByKey(const QString& key);

}  // namespace tidewick
