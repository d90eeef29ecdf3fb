#include <QDir>
#include <QFileInfo>

#include "readers/import_rpp.h"
#include "sweep/sweep.h"
#include "text/letter_case.h"
#include "text/path_text.h"

// Reading the sessions of a load: each session file of the scan range goes to the reader of its
// kind, and every media path it names is resolved against the session folder and the disk into
// one used line, checked when the file exists.
namespace tidewick {

namespace {

// Whether the root that a path's first character stands for exists. On Windows that is the
// drive letter's root. Elsewhere only "/" is a root: a drive letter or a leading "\" comes from
// a session saved on Windows, and its path is listed unchecked without a look at the disk.
bool driveRootExists(QChar first) {
#ifdef Q_OS_WIN
    return first.isLetter() && QDir(QString(first) + QStringLiteral(":/")).exists();
#else
    return first == u'/';
#endif
}

QChar firstChar(const QString& text) {
    return text.isEmpty() ? QChar() : text.front();
}

// A media path in host form: on a host whose separator is "/", the "\" of a path saved on
// Windows becomes "/", so a relative "Audio\take.wav" resolves inside the session folder.
QString toHostPath(QString path) {
    if (hostSeparator() == u'/') {
        path.replace(u'\\', u'/');
    }
    return path;
}

// One media path as the used list shows it, and the file whose existence checks it.
struct Resolved {
    QString shown;
    QString tested;
    QChar drive;  // the first character of the root that must exist before the file is tested
};

Resolved resolvePath(const QString& readPath, const SessionKind& kind, const QString& sessionFolder,
                     bool trim, const QString& recordFolder) {
    const QString path = toHostPath(readPath);
    const QChar sessionDrive = firstChar(sessionFolder);
    if (trim) {
        const QString shown = trimFolders(path, recordFolder);
        return {shown, sessionFolder + shown, sessionDrive};
    }
    if (kind.namesWholePaths) {
        return {path, path, firstChar(readPath)};
    }
    if (QString storage; parentFolderView(path, storage).isEmpty()) {
        // A bare name lives in the session folder.
        return {path, sessionFolder + path, sessionDrive};
    }
    if (!path.contains(u':') && !isPathSeparator(firstChar(path))) {
        return {sessionFolder + path, sessionFolder + path, sessionDrive};
    }
    // A drive path, a rooted one or a network one is taken as it stands; its drive is the one
    // it names, as saved.
    return {path, path, firstChar(readPath)};
}

// One load in progress: the lines so far and the set that keeps them distinct.
class UsedMediaLoad {
public:
    UsedMediaLoad(const SweepRequest& request, const FileSystem& fs, const SweepEvents& events,
                  SessionCache* cache)
        : cache_(request.reuseReads ? cache : nullptr),
          fresh_(cache),
          request_(request),
          kind_(*request.kind),
          fs_(fs),
          events_(events),
          sessionFolder_(withSeparator(request.folder)) {
        media_.recordFolder = request.recordFolder;
    }

    UsedMedia run() {
        const ScanRange range = scanRange(request_);
        for (int index = range.first; index <= range.last && !media_.stopped; ++index) {
            readSession(request_.sessions.at(index));
            if (media_.stopped) {
                media_.stoppedAt = request_.sessions.at(index);
                media_.unread = range.last - index + 1;
            }
        }
        if (request_.wholeFolder) {
            media_.version.clear();
        }
        return std::move(media_);
    }

private:
    void readSession(const QString& name) {
        const QString fullName = sessionFolder_ + name;
        if (kind_.exactExtension) {
            media_.lastExtension = GetExtensionName(fullName);
            if (media_.lastExtension.size() != kind_.extensionLength()) {
                return;  // "take.sesx2" under SESX, "a.xmlx" under XML: not read, not said
            }
        }
        if (events_.reading) {
            events_.reading(fullName);
        }
        const SessionRead read = cache_ ? cache_->read(kind_, fullName, fs_) : readAfresh(fullName);
        if (read.problem) {
            tell(*read.problem);
        }
        if (kind_.versionFirst && read.outcome != ReaderOutcome::Read && !versionFound(read)) {
            // Never reached its version: whatever else was said, it is no session to read.
            tell({ReadFailure::NotThisKind, kind_.id, ReadSeverity::Error, {}, fullName});
        }
        media_.version =
            read.outcome == ReaderOutcome::Failed || !read.ses ? QString() : read.ses->version;
        if (read.reaper) {
            for (const RecordPathLine& line : read.reaper->recordPaths) {
                media_.recordFolder =
                    foldRecordPath(media_.recordFolder, line, sessionFolder_, request_.wholeFolder);
            }
        }
        addLines(read.paths, name);
        if (read.outcome != ReaderOutcome::Read) {
            // A session that could not be read, or not as a session of its kind, may use any
            // file of the folder: the load stops rather than offer them for moving.
            media_.stopped = true;
        } else if (media_.lines.isEmpty() && !request_.wholeFolder) {
            media_.noMedia = true;
        }
    }

    // A read the user asked for is made anew; the guard that follows takes it from the cache
    // rather than read the same file again, while the file stays as it was before this read.
    SessionRead readAfresh(const QString& fullName) {
        const std::optional<FileStamp> stamp = fresh_ ? fs_.fileStamp(fullName) : std::nullopt;
        SessionRead read = readSessionFile(kind_, fullName, {request_.folder, &fs_});
        if (stamp) {
            fresh_->remember(fullName, {*stamp, kind_.id, read});
        }
        return read;
    }

    void addLines(const PathTexts& paths, const QString& session) {
        for (const QString& readPath : paths) {
            Resolved line = resolvePath(readPath, kind_, sessionFolder_, request_.trimFolders,
                                        media_.recordFolder);
            if (shown_.joined(media_.lines, line.shown, session)) {
                continue;
            }
            const bool exists = driveRootExists(line.drive) && fs_.FileExists(line.tested);
            const QString kept = exists ? QString() : keptInstead(toHostPath(readPath));
            shown_.append(media_.lines,
                          {std::move(line.shown), exists, std::move(line.tested), {session}, kept});
        }
    }

    // A line not found as written (a session saved on Windows, moved from another disk) still
    // names the file that a reading without its folders finds: its name in the session folder,
    // its last folder and name there (a recordings folder), or its name in the record folder.
    // That file is kept, whatever "Ignore Leading Folder names" says. As the session folder
    // names it, or its whole path when it lies elsewhere; empty when there is none.
    QString keptInstead(const QString& path) const {
        if (request_.trimFolders) {
            return {};  // the line itself is that reading
        }
        const QString name = GetFileName(path);
        for (const QString& text : {trimFolders(path, media_.recordFolder), name}) {
            if (!text.isEmpty() && fs_.FileExists(sessionFolder_ + text)) {
                return text;
            }
        }
        const QString recordFolder = trimBlanks(QString(media_.recordFolder).remove(u'"'));
        if (isHostRooted(recordFolder) && !name.isEmpty() &&
            fs_.FileExists(withSeparator(recordFolder) + name)) {
            return withSeparator(recordFolder) + name;
        }
        return {};
    }

    void tell(const ReadProblem& problem) {
        if (events_.tell) {
            events_.tell(problem);
        }
    }

    SessionCache* cache_;  // where reads are taken from
    SessionCache* fresh_;  // where fresh reads are kept
    const SweepRequest& request_;
    const SessionKind& kind_;
    const FileSystem& fs_;
    const SweepEvents& events_;
    const QString sessionFolder_;  // S: the session folder with its separator
    UsedMedia media_;
    ShownLines shown_;
};

}  // namespace

bool ShownLines::joined(QList<UsedLine>& lines, const QString& text, const QString& session) {
    const qsizetype* seen = shown_.find(text);
    if (seen == nullptr) {
        return false;
    }
    QStringList& sessions = lines[*seen].sessions;
    if (!sessions.contains(session)) {
        sessions.append(session);
    }
    return true;
}

void ShownLines::append(QList<UsedLine>& lines, UsedLine line) {
    shown_[line.text] = lines.size();
    lines.append(std::move(line));
}

ScanRange scanRange(const SweepRequest& request) {
    // Every listed session counts, however many there are: a session past any limit would have
    // its media offered for moving.
    const int count = int(request.sessions.size());
    if (request.wholeFolder) {
        return {0, count - 1};
    }
    if (request.selected < 0 || request.selected >= count) {
        return {0, -1};
    }
    return {request.selected, request.selected};
}

QString trimFolders(const QString& path, const QString& recordFolder) {
    return path.mid(trimmedStart(path, recordFolder));
}

qsizetype trimmedStart(const QString& path, const QString& recordFolder) {
    QString storage, aboveStorage;
    QStringView folder = parentFolderView(path, storage);
    // A folder named after the recordings ("Song_Recorded") stays part of the result; with no
    // record folder the test always holds, so one folder level always stays.
    if (sameUpperCase(folder.right(recordFolder.size()), recordFolder)) {
        folder = parentFolderView(folder, aboveStorage);
    }
    // The folder and the separator after it go; that separator may be "\" or "/", whichever
    // the path was written with.
    qsizetype cut = folder.size();
    if (folder.isEmpty() || !isPathSeparator(folder.back())) {
        if (cut >= path.size() || !isPathSeparator(path[cut])) {
            return 0;
        }
        ++cut;
    }
    return path.startsWith(folder) ? cut : 0;
}

QHash<QString, QString> usedFileOwners(const QList<UsedLine>& lines, const QList<KeptFile>& kept) {
    QHash<QString, QString> owners;
    const auto own = [&owners](const QString& path, const QStringList& sessions) {
        const QString canonical = QFileInfo(path).canonicalFilePath();
        if (!canonical.isEmpty() && !owners.contains(canonical)) {
            owners.insert(canonical, sessions.value(0));
        }
    };
    for (const UsedLine& line : lines) {
        if (line.exists) {
            own(line.path, line.sessions);
        }
    }
    for (const KeptFile& file : kept) {
        own(file.path, file.usedBy);
    }
    return owners;
}

UsedMedia readUsedMedia(const SweepRequest& request, const FileSystem& fs,
                        const SweepEvents& events, SessionCache* cache) {
    return UsedMediaLoad(request, fs, events, cache).run();
}

QString usedLineFile(const QString& text, const QString& sessionFolder, bool trimmed) {
    QString storage;
    return trimmed || parentFolderView(text, storage).isEmpty() ? sessionFolder + text : text;
}

}  // namespace tidewick
