#pragma once

#include <QList>
#include <QString>

#include "readers/reader_contract.h"

// The five kinds of session file Tidewick reads, in the order of the tabs. The window, the
// session load and the unused-file computation all read this one table.
namespace tidewick {

enum class SessionKindId { Ses, Sesx, Xml, Rpp, Veg };

/// Reads one session file of a kind: the binary reader leaves SesMediaRecords, the others
/// MediaPaths.
using SessionReader = ReaderOutcome (*)(const QString& fileName, ReaderContext& context);

struct SessionKind {
    SessionKindId id;
    int tabIndex;              ///< the tab's position, from 1
    QString tabCaption;        ///< "SES"
    QString tabKey;            ///< "SESFiles"
    QString tabTooltip;        ///< "Audition/CEP Session Files"
    QString sessionPattern;    ///< "*.ses", the pattern of the session-file list
    QString scanAllCaption;    ///< caption of ScanAll, "&" before the access key
    QString keepPeaksCaption;  ///< caption of KeepPKCheck
    QString peakExtension;     ///< "pk", lower case, without the dot
    SessionReader reader;      ///< reads one file of this kind
    const char* readerName;    ///< the reader routine, for messages and the command line
};

/// All five kinds, in tab order.
const QList<SessionKind>& sessionKinds();

/// The kind of a tab key ("SESFiles"); nullptr for an unknown key.
const SessionKind* sessionKindByKey(const QString& key);

/// The kind whose session-file pattern matches the extension of `fileName`, ignoring case;
/// nullptr when none does.
const SessionKind* sessionKindForFile(const QString& fileName);

/// The kind with the given id.
const SessionKind& sessionKind(SessionKindId id);

/// The media paths that the last read of `kind` left: the trimmed file names of the binary
/// session's records, or MediaPaths.
QStringList readerMediaPaths(const SessionKind& kind, const ProgramState& state);

}  // namespace tidewick
