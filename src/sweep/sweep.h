#pragma once

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

#include "platform/file_system.h"
#include "platform/result.h"
#include "readers/session_kinds.h"
#include "sweep/project_files.h"
#include "text/text_index.h"

// The sweep of one session folder as plain values: which media its sessions use, and which
// other files of the folder no session uses ("Files to be Moved"). The main window adapts its
// controls to this, and the command line calls it directly.
namespace tidewick {

/// A session of another folder that uses files of a load's folders, as an index of the library
/// holds it: its file, its kind, and the files it used when it was read.
struct SessionElsewhere {
    QString path;
    const SessionKind* kind = nullptr;
    QStringList files;
};

/// What to sweep, with the options the window's check boxes and lists give.
struct SweepRequest {
    const SessionKind* kind = nullptr;
    /// The session folder, with or without a trailing separator.
    QString folder;
    /// The folder's session files, as the session-file list shows them.
    QStringList sessions;
    /// The selected session's position in `sessions`; −1 for none.
    int selected = -1;
    /// Every listed session is read ("Check All ... files").
    bool wholeFolder = false;
    /// "Ignore Leading Folder names": media paths are shortened to their file name, or to the
    /// record folder level and the file name.
    bool trimFolders = false;
    /// The session's record folder before the load: "_Recorded" for the Audition kinds, the
    /// session folder for Vegas, the project's record path for REAPER.
    QString recordFolder;
    /// The patterns of the chosen "File Types" entry ("*.wav; *.aif").
    QString typePattern = QStringLiteral("*.*");
    /// Peak files can be listed at all (only "All Files" lets them in).
    bool peaksListed = true;
    /// The peak files of used media are kept back.
    bool keepPeaks = false;
    /// The sub-folder row is switched on, with the folder it names: one of its own, or a folder
    /// of the session folder when relative. A REAPER load replaces it with the project's record
    /// folder (reaperSubFolder).
    bool subFolderOn = false;
    QString subFolder;
    /// The folder's other sessions guard their media (sessionGuard); off only where a load is
    /// measured without them.
    bool guarded = true;
    /// The sessions are taken from the load's SessionCache when their files are as they were
    /// then (an audit, which reads each session once for every kind's load); a load the user
    /// asks for reads them afresh.
    bool reuseReads = false;
    /// The load is one of many that share the cores already (an audit's folders): its own index
    /// is made in its thread, not beside the guard on another.
    bool coresShared = false;
    /// The sessions of other folders that use files of the load's folders (each with its
    /// separator); they guard the load like its own, named by their paths.
    /// When they cannot be known (the library's index cannot say), the load stops at what the
    /// error names.
    std::function<Result<QList<SessionElsewhere>>(const QStringList& folders)> sessionsElsewhere;
};

/// One line of the used-media list.
struct UsedLine {
    QString text;  ///< the media path as listed
    bool exists = false;
    QString path;          ///< the file that was looked for on disk
    QStringList sessions;  ///< the session files that name it, the first to name it first
    /// For a line not found as written: the file that a reading without its folders finds (a
    /// session saved on Windows), as the session folder names it ("take1.wav"); kept.
    QString keptFile;
    /// A project kind's reference into an editor's library or pack: outside the project, it
    /// keeps nothing there.
    bool outside = false;
    bool operator==(const UsedLine&) const = default;
};

/// A file that a listing passes over because a session uses it, though it is none of the used
/// lines as they are written (a session names it another way, or another session does).
struct KeptFile {
    QString text;        ///< as a line of "Files to be Moved" would name it
    QString path;        ///< the file itself
    qint64 size = 0;     ///< its length in bytes
    QStringList usedBy;  ///< the sessions that use it, as the session folder names them
    bool operator==(const KeptFile&) const = default;
};

/// One line of "Files to be Moved".
struct OtherFile {
    QString text;     ///< the name, after the sub-folder it was found in
    qint64 size = 0;  ///< its length in bytes when listed
    bool operator==(const OtherFile&) const = default;
};

/// What the sessions of one load use.
struct UsedMedia {
    QList<UsedLine> lines;
    /// A single session was read and names no media: there are no lines, and the used list
    /// says so.
    bool noMedia = false;
    /// A read failed: the lines read before it stay, but the other files must not be computed
    /// from a session read only in part.
    bool stopped = false;
    /// The session file at which reading stopped, and how many of the scanned ones, from it on,
    /// were not read.
    QString stoppedAt;
    int unread = 0;
    /// The version text of the binary session read last; empty in whole-folder mode.
    QString version;
    /// The record folder once every REAPER project read has had its say.
    QString recordFolder;
    /// The extension of the last session file looked at (the text kinds only).
    QString lastExtension;
};

/// Things a sweep reports while it runs. Each may be left empty.
struct SweepEvents {
    /// A session file is about to be read.
    std::function<void(const QString& fullName)> reading;
    /// A session could not be read, or not as one of its kind: the user is to be told.
    std::function<void(const ReadProblem& problem)> tell;
    /// Pending window events may run now.
    std::function<void()> idle;
};

/// The used-media lines of a load as hash sets, so that the other-files computation never scans
/// the list per file. Names compare ignoring letter case and the form in which Unicode writes
/// an accented letter (macOS writes "é" as "e" and an accent, most other systems as one
/// character).
class UsedIndex {
public:
    /// `lines` as the used list shows them for the session folder `sessionFolder`, shortened by
    /// "Ignore Leading Folder names" when `trimmed`. A line whose file exists names that file
    /// however it is reached (another path to it, a link to it), and each link it passes
    /// through: `fs` tells which files they are.
    UsedIndex(const QList<UsedLine>& lines, const QString& sessionFolder, bool trimmed,
              const FileSystem& fs);

    /// Whether a used line names the file `path`: the file itself, or, for a line without a
    /// folder part or a shortened one, the file of that name under the session folder. With
    /// shortened lines, also a file whose path shortened for `recordFolder` is such a line: the
    /// session named it before its folders were dropped.
    bool names(const QString& path, const QString& recordFolder) const;
    /// The same for the file `name` of the folder whose key (usedKey of its path with its
    /// separator) is `folderKey`; the file's own key (`folderKey` and the name's usedKey) is
    /// given too, as the caller has it, and the file's identity where the listing knows it.
    bool names(const HashedText& key, const QString& folderKey, const QString& name,
               const QString& recordFolder, FileId id = {}) const;
    /// Whether a line (or a file kept for a session) of the base name `base` (upper case) has
    /// the extension "wav", or with `anyMedia` one of "wav", "wv", "ape", "aif", "flac", "mp3",
    /// "ogg": the media a peak file of that base name belongs to.
    bool ownsPeak(const QString& base, bool anyMedia) const;

    /// Keeps the file `path` (however it is reached) out of every listing: `session` uses it.
    void keep(const QString& path, const QString& session, const FileSystem& fs);
    /// Keeps each file (a path and the session that uses it), as keep does one after the other.
    void keepEach(const QList<std::pair<QString, QString>>& files, const FileSystem& fs);
    /// Keeps the file `path` out of every listing without a word: a session file.
    void hide(const QString& path, const FileSystem& fs);
    /// Takes in what the sessions of `guard` (sessionGuard) keep and hide.
    void addGuard(std::shared_ptr<const UsedIndex> guard) { guards_.append(std::move(guard)); }
    /// The sessions that keep the file whose key (as for names()) is `key`, or nullptr when
    /// none does.
    const QStringList* keptBy(const HashedText& key, FileId id) const;

private:
    bool trimmed_;
    TextSet files_, lines_;
    // The paths of the lines and kept files, whose base names are worked out when a peak file
    // first asks (most folders' loads judge none), into `mediaOwners_`: the base names of
    // media, each whether a "wav" has it.
    mutable QStringList peakSources_;
    mutable TextMap<bool> mediaOwners_;
    mutable bool ownersMade_ = false;
    mutable std::mutex ownersMutex_;  // over the three above once the index is asked
    QSet<FileId> ids_;
    QList<QStringList> keepers_;         // by kept file
    QStringList soleKeeper_{QString()};  // the last list of one keeper, which the next may share
    TextMap<qsizetype> keptKeys_;
    QHash<FileId, qsizetype> keptIds_;
    QList<std::shared_ptr<const UsedIndex>> guards_;

    // The base name (upper case) of a media file, and whether its extension is "wav".
    struct PeakOwner {
        QString base;
        bool wav = false;
    };
    // What keeping a file takes in: its key and its identities.
    struct Keeping {
        QString key;
        FileIds ids;
    };
    static std::optional<PeakOwner> peakOwnerOf(const QString& path);
    static Keeping keepingOf(const QString& path, const FileSystem& fs);
    // Notes that `path` may own peak files, as a line or a kept file.
    void notePeakSource(const QString& path);
    // Works out the media base names of the paths noted, once.
    void makeMediaOwners() const;
    void apply(const Keeping& keeping, const QString& path, const QString& session);
};

/// The texts of a load's used lines as they are gathered, each with its line's position: a text
/// that another session names again adds that session to its line, never a line of its own.
class ShownLines {
public:
    /// Whether `lines` show `text` already; if so, `session` is now among that line's sessions.
    bool joined(QList<UsedLine>& lines, const QString& text, const QString& session);
    /// Appends `line`, whose text `lines` do not show yet.
    void append(QList<UsedLine>& lines, UsedLine line);

private:
    TextMap<qsizetype> shown_;
};

/// The file a used line stands for: a line without a folder part, or any line shortened by
/// "Ignore Leading Folder names", names the file of that name under the session folder
/// `sessionFolder` (with its separator); any other line is the path itself.
QString usedLineFile(const QString& text, const QString& sessionFolder, bool trimmed);

/// The file a line of "Files to be Moved" names: a line that begins at a root ("/rec/take.wav",
/// gathered by the sub-folder row from a folder of its own) is that file; any other line lies in
/// the session folder `sessionFolder` (with its separator).
QString otherFilePath(const QString& sessionFolder, const QString& text);

/// The folder, with its separator, that the sub-folder row names with `text` (blanks trimmed; a
/// relative name is a folder of the session folder); empty when no such folder exists.
QString subFolderPath(const QString& sessionFolder, const QString& text, const FileSystem& fs);

/// The sub-folder text after a REAPER load: the record folder (double quotes removed) where it is
/// an existing folder, else the project folder's existing sub-folder of that name, else the
/// project folder (with its separator).
QString reaperSubFolder(const QString& recordFolder, const QString& projectFolder,
                        const FileSystem& fs);

/// A name as the used test compares it: upper-cased, accented letters in one form.
QString usedKey(const QString& name);

/// The files that `lines` name and that exist, and the files kept for sessions (`kept`), by
/// canonical path, each with the session that uses it: what a move or a copy must never replace.
QHash<QString, QString> usedFileOwners(const QList<UsedLine>& lines,
                                       const QList<KeptFile>& kept = {});

/// The sessions `request` names, first and last position in its list.
struct ScanRange {
    int first = 0;
    int last = -1;
};
ScanRange scanRange(const SweepRequest& request);

/// `path` reduced to its file name, or to the `recordFolder` level and the file name:
/// D:\Audio\Song_Recorded\Take 1.wav gives Song_Recorded\Take 1.wav with "_Recorded".
QString trimFolders(const QString& path, const QString& recordFolder);
/// Where that result begins in `path` (0: the whole path).
qsizetype trimmedStart(const QString& path, const QString& recordFolder);

class SessionCache;

/// Reads the sessions of the request and resolves every media path they name against the
/// session folder and the disk; with `request.reuseReads`, from `cache` where it can.
UsedMedia readUsedMedia(const SweepRequest& request, const FileSystem& fs,
                        const SweepEvents& events = {}, SessionCache* cache = nullptr);

/// The files of the session folder (and of its recordings and sub-folder) that no line of
/// `used` names, for the record folder `recordFolder`; those that `used` keeps for a session
/// are passed over and noted in `kept`, when given.
QList<OtherFile> listOtherFiles(const SweepRequest& request, const UsedIndex& used,
                                const QString& recordFolder, const FileSystem& fs,
                                const SweepEvents& events = {}, QList<KeptFile>* kept = nullptr);

/// The files of the project tree `tree` that no line of `used` names (nor keeps), each line by
/// its path from the tree's root; a project session's own files are never listed.
QList<OtherFile> listProjectFiles(const SweepRequest& request, const UsedIndex& used,
                                  const ProjectTree& tree, const FileSystem& fs,
                                  const SweepEvents& events = {}, QList<KeptFile>* kept = nullptr);

/// The files of the sub-folder row's folder alone that no line of `used` names (nor keeps),
/// when the row is on and its folder exists; each line leads back to its file (otherFilePath).
QList<OtherFile> listSubFolder(const SweepRequest& request, const UsedIndex& used,
                               const QString& recordFolder, const FileSystem& fs,
                               QList<KeptFile>* kept = nullptr);

/// Those of `more` that lead to a file that no line of `listed` leads to (otherFilePath, for the
/// session folder `sessionFolder` with its separator): one folder may be named two ways.
QList<OtherFile> otherFilesNotListed(const QStringList& listed, const QList<OtherFile>& more,
                                     const QString& sessionFolder);

/// A whole load: the used media, then the other files where the kind and the load call for
/// them. A REAPER load lists its project folder and, with the sub-folder row on, the folder that
/// reaperSubFolder gives for the record folder it settled on.
struct Sweep {
    UsedMedia used;
    QList<OtherFile> others;
    /// The files that a listing passed over because a session keeps them, with who keeps them.
    QList<KeptFile> kept;
    /// The used test of the load, for listings made afterwards (another media type, the
    /// sub-folder row's folder).
    std::shared_ptr<UsedIndex> index;
    /// The folders whose files the load looked at (with their separators): the session folder,
    /// the recordings folders and the sub-folder row's folder; a project kind's whole tree.
    QStringList folders;
    /// The folder the lines of `others` start from (with its separator): the session folder, or
    /// a project kind's project folder.
    QString root;
};

/// A load of sessions of the project kinds (Sweep): each session read with the reader of its
/// own kind, each reference kept with every file it could name, and the project's whole tree
/// listed, its lines relative to the project folder.
Sweep sweepProject(const SweepRequest& request, const FileSystem& fs, const SweepEvents& events,
                   SessionCache* cache);

/// Every file that the references of the project session `sessionPath`, as `read`, keep, its
/// relative paths read from `folders` too; `trees` holds the project trees walked so far.
QStringList filesKeptByReferences(const SessionRead& read, const QString& sessionPath,
                                  const QStringList& folders, const FileSystem& fs,
                                  QHash<QString, ProjectTree>& trees);

/// Sessions read once and kept while their file stays as it was (its path, size and time of
/// change): the other sessions of a folder, which guard its media, are read once however often
/// its files are listed again, and what they keep is worked out once for as long as none of
/// them changes.
class SessionCache {
public:
    /// Reads `files` (each with its kind), those not in memory on the cores at hand; the reads in
    /// the order of `files`.
    QList<SessionRead> readAll(const QList<std::pair<const SessionKind*, QString>>& files,
                               const FileSystem& fs);
    /// Reads the one session `path` of `kind`, or takes it from memory.
    SessionRead read(const SessionKind& kind, const QString& path, const FileSystem& fs) {
        return readAll({{&kind, path}}, fs).constFirst();
    }

    /// One session held: its file's stamp when read, its kind and what its reader gave.
    struct Entry {
        FileStamp stamp;
        SessionKindId kind;
        SessionRead read;
    };
    /// Takes in a read made elsewhere (an index of sessions) for the file `path` as `entry`
    /// says it was.
    void remember(const QString& path, Entry entry) { entries_.insert(path, std::move(entry)); }
    /// The sessions held, by path.
    const QHash<QString, Entry>& entries() const { return entries_; }

    /// What the sessions of `folders` kept when last worked out, if each of them (its path and
    /// stamp in `stamps`) is as it was then.
    std::shared_ptr<const UsedIndex> guard(
        const QString& folders, const QList<std::pair<QString, FileStamp>>& stamps) const;
    void setGuard(const QString& folders, const QList<std::pair<QString, FileStamp>>& stamps,
                  std::shared_ptr<const UsedIndex> table);
    /// Forgets every guard worked out, keeping the reads.
    void forgetGuards() { guards_.clear(); }

private:
    struct Guard {
        QList<std::pair<QString, FileStamp>> stamps;
        std::shared_ptr<const UsedIndex> table;
    };
    QHash<QString, Entry> entries_;
    QHash<QString, Guard> guards_;
};

/// Appends to `files` the files the path `written` of a session in `folder` (with its
/// separator) may name, as a load resolves it with "Ignore Leading Folder names" and without:
/// as written (a bare or relative one in the session's folder), its last folder and name there
/// (up to the kind's record folder for that session folder, `recordFolder`), its name there;
/// each once. Every use of a file by a session is judged by these.
void appendFilesNamedBy(const QString& written, const QString& folder, const QString& recordFolder,
                        QStringList& files);

/// What the sessions of every kind in `folders` (and in their "Backups" and "Backup" folders)
/// keep, as a used test of its own: the files each one uses, kept with its name as the session
/// folder `sessionFolder` names it ("mix.sesx", "Backups/song.rpp"), and the session files
/// themselves, hidden from the listings (but for backups, which stay listed). A file its
/// reader finds foreign is no session and guards nothing. Nothing when a session could not be
/// read: its name is in `stoppedAt` and its problem told, as its media are unknown; so too when
/// one of the folders or their backup folders is there but cannot be listed (named in
/// `stoppedAt`), as the sessions it may hold are unknown. The
/// sessions `elsewhere` guard too, named by their paths; one of them that cannot be read now
/// keeps the files it used when it was read.
std::shared_ptr<const UsedIndex> sessionGuard(const QStringList& folders,
                                              const QString& sessionFolder, const FileSystem& fs,
                                              SessionCache* cache, const SweepEvents& events,
                                              QString* stoppedAt,
                                              const QList<SessionElsewhere>& elsewhere = {});
Sweep sweepFolder(const SweepRequest& request, const FileSystem& fs, const SweepEvents& events = {},
                  SessionCache* cache = nullptr);

/// The session files of `folder` that the session-file list shows for `pattern` ("*.ses"),
/// sorted by name ignoring case: ordinary files and links to them, hidden ones included.
QStringList sessionFiles(const FileSystem& fs, const QString& folder, const QString& pattern);

}  // namespace tidewick
