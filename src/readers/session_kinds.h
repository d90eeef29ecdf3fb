#pragma once

#include <QList>
#include <QString>

#include "readers/reader_contract.h"

// The kinds of session file Tidewick reads, with each format's facts and its reader. The
// session load, the unused-file computation, the audit and the command line all read this one
// table; the window's texts for each kind are the forms' own.
namespace tidewick {

/// Reads the bytes of one session file of a kind.
using SessionReader = SessionRead (*)(QByteArrayView bytes, const SessionPlace& place);
/// Reads a session file by its path where its bytes alone are not the way (a database); nothing
/// for a file its bytes tell.
using SessionFileReader = std::optional<SessionRead> (*)(const QString& fileName);

struct SessionKind {
    SessionKindId id;
    QString idText;  ///< "ses": the kind as a command or a script names it
    /// "*.ses", the pattern of a folder's session files; "*.aup;*.aup3" for a kind of two.
    QString sessionPattern;
    QString peakExtension;  ///< "pk", lower case, without the dot
    SessionReader reader;   ///< reads the bytes of one file of this kind
    /// A load may gather one more folder, where projects of the kind often keep media of their
    /// own (REAPER, Vegas): the window's sub-folder row, the command line's --add-folder.
    bool subFolderRow = false;
    /// The record folder a load starts from: the suffix of each session's recordings folder
    /// ("_Recorded": mix_Recorded for mix.ses), gathered with the session folder; empty for the
    /// kinds whose record folder is the session folder itself.
    QString recordingsSuffix;
    /// A peak file is named after the whole media name ("song.wav.reapeaks"), and so belongs to
    /// media of any of the audio extensions, not to a ".wav" alone.
    bool peakNamesWholeMedia = false;
    /// The session names its own record folder (REAPER's RECORD_PATH), which the load settles.
    bool namesRecordFolder = false;
    /// The pattern of the backups the editor writes beside a session ("*.rpp-bak"); empty for
    /// the kinds that keep theirs in a folder of their own.
    QString backupPattern;
    /// Each file is named by its whole path as saved (the binary session): a path is taken as
    /// written, never joined to the session folder.
    bool namesWholePaths = false;
    /// The file gives its version before its media (the binary session): one whose reading
    /// failed before the version is no session of the kind at all.
    bool versionFirst = false;
    /// A file is read only when its extension is exactly the kind's: "a.xmlx" listed under
    /// "*.xml" is passed over unread, and with nothing read no file of the folder is offered.
    bool exactExtension = false;
    /// The session names its files by references (FileReference) that a load resolves against
    /// the kind's project, whose whole tree it lists; the window shows the kind on its "More" tab.
    bool projectScope = false;
    /// Reads a file by its path before its bytes are read (an Audacity 3 database); may be null.
    SessionFileReader fileReader = nullptr;

    /// The peak files' pattern: "*.pk".
    QString peakPattern() const { return QStringLiteral("*.") + peakExtension; }
    /// The length of a session file's extension: 4 for "sesx", 3 for the others.
    qsizetype extensionLength() const { return sessionPattern.size() - 2; }
    /// The record folder a load starts from, for the session folder `folder`.
    QString startingRecordFolder(const QString& folder) const {
        return recordingsSuffix.isEmpty() ? folder : recordingsSuffix;
    }
};

/// All kinds: the five of their own tabs, in the order the window shows them, then the project
/// kinds of the "More" tab.
const QList<SessionKind>& sessionKinds();

/// The pattern of the session files that the tab of `kind` lists: the kind's own, or for the
/// project kinds, which share a tab, all of theirs ("*.als;*.aup;*.aup3").
QString tabSessionPattern(const SessionKind& kind);

/// The kind whose session-file pattern matches the extension of `fileName`, ignoring case;
/// nullptr when none does.
const SessionKind* sessionKindForFile(const QString& fileName);

/// The kind whose session or backup pattern a file's name matches, ignoring case, and whether
/// it is a backup (of that pattern, or any session in a folder of backups); nullptr for none.
const SessionKind* sessionKindForName(const QString& name, bool* backup = nullptr);

/// The folders, relative to a session folder, where the editors keep their backups: REAPER's
/// "Backups" and Audition's "Backup".
const QStringList& backupFolders();

/// The kinds' id texts as a sentence lists them: "ses, sesx, xml, rpp, veg, als or aup"; with
/// `separator` "|", as a usage line does: "ses|sesx|...|aup".
QString sessionKindIdTexts(const QString& separator = {});

/// The kind with the given id.
const SessionKind& sessionKind(SessionKindId id);

/// The kind whose id text is `text`, ignoring case ("ses", "RPP"); nullptr for none.
const SessionKind* sessionKindByIdText(const QString& text);

/// Reads the session file `fileName` with the reader of `kind`: one read of the whole file,
/// then the reader over its bytes. A file that cannot be read fails as unreadable, with the
/// system's reason; any problem names the file.
SessionRead readSessionFile(const SessionKind& kind, const QString& fileName,
                            const SessionPlace& place);

}  // namespace tidewick
