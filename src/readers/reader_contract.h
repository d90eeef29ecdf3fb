#pragma once

#include <QByteArrayView>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <optional>

#include "platform/file_system.h"
#include "readers/path_texts.h"

// What every session reader hands back. A reader is a function of the file's bytes (and, for
// REAPER's record path, of the project folder on disk): it asks and tells the user nothing and
// leaves no state behind; the session load reports its problem and uses its paths.
namespace tidewick {

/// The kinds of session file, in the order of the kinds table: the five of their own tabs, then
/// the project kinds (Ableton Live sets, Audacity projects, Ardour sessions, FL Studio projects,
/// MLT projects of Kdenlive and Shotcut), which share one.
enum class SessionKindId { Ses, Sesx, Xml, Rpp, Veg, Als, Aup, Ardour, Flp, Mlt };

/// A 4-byte identifier of a binary session ("FILE", "LIST", "vers"), held without allocating.
struct FourCC {
    char bytes[4] = {0, 0, 0, 0};

    static FourCC from(QByteArrayView text) {
        FourCC id;
        for (qsizetype i = 0; i < 4 && i < text.size(); ++i) {
            id.bytes[i] = text[i];
        }
        return id;
    }
    QByteArrayView view() const { return QByteArrayView(bytes, 4); }
    bool operator==(const FourCC&) const = default;
    bool operator==(QByteArrayView text) const { return view() == text; }
};

/// One file entry of a binary session, in file order; duplicates stay. Its file name, cut to 255
/// characters and trimmed of blanks, is the read's path of the same place.
struct SesMediaRecord {
    qint32 EntryValue = 0;  ///< the value that follows the entry's header
    FourCC ChunkID;         ///< the entry's identifier

    bool operator==(const SesMediaRecord&) const = default;
};

/// How a read ended.
enum class ReaderOutcome {
    Read,      ///< the file was read, with or without media
    Rejected,  ///< the file is not a session of this kind (or of a version that can be read)
    Failed,    ///< the file could not be read, or not to its end (cut short, damaged)
};

/// What kept a file from being read as a session of its kind.
enum class ReadFailure {
    NotThisKind,         ///< the file is no session of the kind
    UnsupportedVersion,  ///< a session of the kind, of a version that cannot be read
    CutShort,            ///< a text session that ends before its closing
    Damaged,             ///< a binary session whose chunks break off or lead astray
    Unreadable,          ///< the disk would not give the file's bytes
    Fault,               ///< the read itself failed, such as for want of memory
};

/// How heavily a problem weighs when it is reported: a notice, or an error.
enum class ReadSeverity { Notice, Error };

/// A problem met while reading a session file, to be reported to the user.
struct ReadProblem {
    ReadFailure failure = ReadFailure::Unreadable;
    SessionKindId kind = SessionKindId::Ses;
    ReadSeverity severity = ReadSeverity::Error;
    /// What the report needs besides: the quoted first line of a text file of another kind, the
    /// version that cannot be read, the closing that a cut file lacks (as a report names it:
    /// `</sesx>`, or `">"` for REAPER), where a damaged file broke off, or the system's reason.
    QString detail;
    /// The session file's path; empty where only bytes were read.
    QString file;

    bool operator==(const ReadProblem&) const = default;
};

/// One RECORD_PATH line of a REAPER project, with what the disk said about its value. The
/// session load folds the lines of every project it reads into the record folder.
struct RecordPathLine {
    /// False for a line too short to hold a value (14 characters or fewer).
    bool hasValue = false;
    /// The first value: quotes removed, blanks trimmed, separators in the host's form.
    QString value;
    /// The value names an existing folder by itself.
    bool existsAsIs = false;
    /// The value is an absolute path.
    bool absolute = false;
    /// The project folder followed by the value names an existing folder (never for an empty
    /// value).
    bool existsInProject = false;

    bool operator==(const RecordPathLine&) const = default;
};

/// What a binary session holds besides its paths.
struct SesFacts {
    /// The file entries, in file order.
    QList<SesMediaRecord> records;
    /// The version text, and whether the "vers" chunk was reached at all: a file that fails
    /// before that point is no session the load can use.
    QString version;
    bool versionFound = false;

    bool operator==(const SesFacts&) const = default;
};

/// What a REAPER project holds besides its paths.
struct ReaperFacts {
    /// The record path lines, in file order.
    QList<RecordPathLine> recordPaths;

    bool operator==(const ReaperFacts&) const = default;
};

/// One file that a session of the project kinds names, with every way it names it: a reference
/// keeps each file it could name.
struct FileReference {
    /// What `relative` is relative to.
    enum class Base : quint8 {
        None,           ///< no relative path
        SessionFolder,  ///< the session file's folder
        ProjectFolder,  ///< the kind's project folder (an Ableton project)
        DataFolder,     ///< the session's own data folder (Audacity's "<name>_data")
        Library,        ///< an editor's library or pack: outside the project, keeps nothing there
        /// Ardour's media folders, `interchange/<any folder>/` of the session's folder:
        /// "audiofiles/take.wav", "midifiles/take.mid".
        Interchange,
    };
    Base base = Base::None;
    /// The path from `base`, "/" between its parts; ".." steps stay as written.
    QString relative;
    /// The absolute paths the session holds for the file, in the form written ("C:/x.wav",
    /// "D:\x.wav", "/Users/x.wav").
    QStringList absolute;
    /// The file name of `relative` and `absolute` is a wildcard pattern (wildcardMatch) of a
    /// sequence, such as the frames of an image sequence: the reference keeps every file of its
    /// folder that matches.
    bool pattern = false;

    bool operator==(const FileReference&) const = default;
};

/// Everything one read of one session file found.
struct SessionRead {
    ReaderOutcome outcome = ReaderOutcome::Read;
    /// The media paths in the order the session names them. Every kind but the binary one
    /// drops repeats; the binary kind gives one path per record (its trimmed file name).
    PathTexts paths;
    /// The binary kind's own part, for a file that begins as a binary session does.
    std::optional<SesFacts> ses;
    /// REAPER's own part, for a file that begins with a project's header.
    std::optional<ReaperFacts> reaper;
    /// What went wrong, when anything did (a file of another kind may be rejected without one).
    std::optional<ReadProblem> problem;
    /// The project kinds' references, one a file, in the order first met; `paths` then holds one
    /// text for each, as the session writes it.
    QList<FileReference> references;

    bool operator==(const SessionRead&) const = default;
};

/// Whether a binary session's "vers" chunk was reached in `read`.
inline bool versionFound(const SessionRead& read) {
    return read.ses && read.ses->versionFound;
}

/// Whether `read` found a file of another kind altogether: no session, which uses nothing. A
/// session of the kind that could not be read (damaged, cut short, of a version that cannot be
/// read) is no foreign file: its media are unknown.
inline bool isForeignFile(const SessionRead& read) {
    return read.outcome == ReaderOutcome::Rejected && !versionFound(read);
}

/// Where a session file lives, for the reader that needs to look around it.
struct SessionPlace {
    /// The session's folder, with or without a trailing separator.
    QString folder;
    /// The disk; only REAPER's record path asks it anything.
    const FileSystem* fs = nullptr;
};

}  // namespace tidewick

// Lists of references grow by moving their memory, not each element.
Q_DECLARE_TYPEINFO(tidewick::FileReference, Q_RELOCATABLE_TYPE);
