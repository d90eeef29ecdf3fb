#include "fileops/move_run.h"

#include <QDateTime>
#include <QDir>
#include <QLocale>
#include <cerrno>

#include "text/number_text.h"
#include "text/path_text.h"
#include "text/wildcard.h"

namespace tidewick {

namespace {

const QString kDashes = QString(50, QLatin1Char('-'));

// The file an item stands for. On the REAPER tab an item may be a file of the record folder
// given by its whole path; any other item lies in the session folder. Only a whole path counts
// as one: a bare name is never looked for in the program's current directory.
QString sourcePath(const MoveRequest& request, const QString& item, const FileSystem& disk) {
    if (request.itemsMayBePaths && QDir::isAbsolutePath(item) && disk.FileExists(item)) {
        return item;
    }
    return withSeparator(request.sessionFolder) + item;
}

// One run: the per-item state and the bytes done.
class MoveRun {
public:
    MoveRun(const MoveRequest& request, FileOperations& disk, const MoveEvents& events)
        : request_(request), disk_(disk), events_(events) {
        outcome_.moved.resize(request.items.size());
        outcome_.results.resize(request.items.size());
        plans_.resize(request.items.size());
        sizes_.resize(request.items.size());
        for (qsizetype index = 0; index < request.items.size(); ++index) {
            if (request.items[index].checked) {
                plans_[index] = planMove(request, request.items[index].text, disk);
                sizes_[index] = disk.entrySize(plans_[index].source).valueOr(0);
                total_ += sizes_[index];
            }
        }
    }

    MoveOutcome run();

private:
    const MoveRequest& request_;
    FileOperations& disk_;
    const MoveEvents& events_;
    MoveOutcome outcome_;
    QList<PlannedMove> plans_;  // of the checked files, as the run begins
    QList<qint64> sizes_;
    qint64 total_ = 0;
    qint64 done_ = 0;

    void log(const QString& text) const {
        if (events_.log) {
            events_.log(text);
        }
    }
    void progress(qint64 bytes) {
        done_ += bytes;
        if (events_.progress) {
            events_.progress(done_, total_);
        }
    }
    OverwriteAnswer ask(const QString& destination) const {
        return events_.askOverwrite ? events_.askOverwrite(overwriteQuestion(destination))
                                    : OverwriteAnswer::Cancel;
    }
    // Moves the checked files in list order, until the end, a cancel or a stop.
    void moveEach();
    // What the log says of item `index` after its name; nothing for "&Cancel".
    std::optional<QString> moveItem(qsizetype index, bool& yesToAll);
    void moveFile(qsizetype index, bool replace);
    // A name is logged as `scan` prints it: a newline or an escape sequence in it can neither
    // forge a line nor reach a terminal raw. An item is logged by the file it stands for.
    void logItem(qsizetype index, const QString& result) const {
        log(QStringLiteral("Moving...") + visibleText(plans_[index].source) + result + kLogLineEnd);
    }
    MovedFile file_;  // the file in hand
    void copyFailed(qsizetype index, const Error& error) {
        file_.outcome = MovedFile::Outcome::Failed;
        outcome_.results[index] = QStringLiteral("...Error ") + errorText(error);
        outcome_.failed = true;
    }
};

MoveOutcome MoveRun::run() {
    log(QStringLiteral("Moving selected files to...") + visibleText(moveDestination(request_)) +
        kLogLineEnd);
    log(QStringLiteral("Commenced ") + logTimestamp() + kLogLineEnd + kDashes + kLogLineEnd);
    if (!events_.notice.isEmpty()) {
        log(events_.notice + kLogLineEnd);
    }
    if (const Result<void> ready = moveCanStart(request_, disk_); !ready) {
        log(visibleText(ready.error().cause) + kLogLineEnd);  // said once, not for every file
        outcome_.failed = true;
    } else {
        if (disk_.FolderExists(moveDestination(request_))) {
            disk_.removeLeftovers(moveDestination(request_));
        }
        moveEach();
    }
    log(kLogLineEnd +
        moveTotalsLine(outcome_.filesMoved, outcome_.bytesMoved,
                       events_.explained ? std::optional(outcome_.filesSkipped) : std::nullopt) +
        kLogLineEnd);
    if (outcome_.sourcesDeleted > 0) {
        log(deletedSourcesLine(outcome_.sourcesDeleted) + kLogLineEnd);
    }
    log(kDashes + kLogLineEnd + QStringLiteral("Finished ") + logTimestamp());
    return outcome_;
}

void MoveRun::moveEach() {
    bool yesToAll = false;
    for (qsizetype index = 0; index < request_.items.size(); ++index) {
        if (!request_.items[index].checked) {
            continue;
        }
        const qint64 doneBefore = done_;
        const PlannedMove& planned = plans_[index];
        const FileStamp stamp = disk_.entryStamp(planned.source).value_or(FileStamp{});
        file_ = {request_.items[index].text,
                 planned.source,
                 planned.destination,
                 stamp.size,
                 stamp.modified,
                 MovedFile::Outcome::Skipped,
                 {},
                 false,
                 {},
                 {}};
        if (events_.stopRequested && events_.stopRequested()) {
            outcome_.cancelled = true;
        } else {
            const std::optional<QString> result = moveItem(index, yesToAll);
            if (!result) {
                outcome_.cancelled = true;  // "&Cancel" at the overwrite question
            } else {
                outcome_.results[index] = *result;
                logItem(index, *result);
                if (events_.fileDone) {
                    events_.fileDone(file_);
                }
            }
        }
        if (outcome_.cancelled) {
            logItem(index, events_.explained ? QStringLiteral("...Cancelled")
                                             : QStringLiteral("Operation cancelled."));
            return;
        }
        outcome_.filesMoved += outcome_.moved[index] ? 1 : 0;
        outcome_.filesSkipped += file_.outcome == MovedFile::Outcome::Skipped ||
                                 file_.outcome == MovedFile::Outcome::Excluded;
        // Whatever became of the file, its bytes are behind the run now.
        progress(std::max<qint64>(doneBefore + sizes_[index] - done_, 0));
    }
}

std::optional<QString> MoveRun::moveItem(qsizetype index, bool& yesToAll) {
    const PlannedMove& planned = plans_[index];
    // An excluded file stays whatever the target holds: there is nothing to ask about it.
    if (planned.excluded) {
        file_.outcome = MovedFile::Outcome::Excluded;
        return events_.explained ? QStringLiteral("...Skipped - the exclusion list keeps it")
                                 : QStringLiteral("...File Excluded");
    }
    const bool taken = disk_.entrySize(planned.destination).ok();
    if (taken) {
        if (const QString session = usedBy(request_.usedFiles, planned.destination);
            !session.isEmpty()) {
            return QStringLiteral("...Skipped - the file in the target is used by ") +
                   visibleText(session);
        }
        if (!yesToAll) {
            const OverwriteAnswer answer = ask(planned.destination);
            if (answer == OverwriteAnswer::Cancel) {
                return std::nullopt;
            }
            if (answer == OverwriteAnswer::No) {
                return events_.explained
                           ? QStringLiteral("...Skipped - a file of that name is in the target")
                           : QStringLiteral("Skipped");
            }
            yesToAll = answer == OverwriteAnswer::YesToAll;
        }
    }
    moveFile(index, taken);
    return outcome_.results[index];
}

void MoveRun::moveFile(qsizetype index, bool replace) {
    const PlannedMove& planned = plans_[index];
    const QString& sourceFile = planned.source;
    const QString& destination = planned.destination;
    const Result<qint64> size = disk_.entrySize(sourceFile);
    if (!size) {
        copyFailed(index, size.error());
        return;
    }
    const QString folder = moveDestination(request_);
    if (!disk_.FolderExists(folder)) {
        if (const Result<void> made = disk_.createFolder(folder); !made) {
            copyFailed(index, made.error());
            return;
        }
    }
    file_.replacedStamp =
        replace ? disk_.entryStamp(destination).value_or(FileStamp{}) : FileStamp{};
    const Result<TrashPlace> copied = disk_.copyFile(sourceFile, destination, {replace, false},
                                                     [this](qint64 bytes) { progress(bytes); });
    if (!copied) {
        copyFailed(index, copied.error());
        return;
    }
    file_.replaced = *copied;
    outcome_.bytesMoved += *size;
    const QString moved = QStringLiteral("...OK - ") +
                          (events_.explained ? countText(*size, "byte")
                                             : groupedNumber(*size) + QStringLiteral(" bytes")) +
                          QStringLiteral(" moved");
    // The copy is whole under its final name. When the trash will not take the source, the copy
    // is written through to the disk before the source is deleted for good, and the log says so.
    file_.outcome = MovedFile::Outcome::CopiedSourceKept;
    if (const Result<TrashPlace> trashed = disk_.trash(sourceFile)) {
        file_.sourceTrash = *trashed;
        file_.outcome = MovedFile::Outcome::Moved;
        outcome_.moved[index] = true;
        outcome_.results[index] = moved + u'.';
        return;
    }
    Result<void> removal = disk_.flushToDisk(destination);
    if (removal) {
        removal = disk_.removeFile(sourceFile);
    }
    if (!removal) {
        outcome_.results[index] =
            QStringLiteral("...File copied.  Cannot remove source file.  Error ") +
            errorText(removal.error());
        outcome_.failed = true;
        return;
    }
    outcome_.moved[index] = true;
    file_.outcome = MovedFile::Outcome::Moved;
    file_.sourceDeleted = true;
    ++outcome_.sourcesDeleted;
    outcome_.results[index] = moved + QStringLiteral(" (source deleted: the trash refused it).");
}

}  // namespace

QString moveDestination(const MoveRequest& request) {
    if (request.storeInSubFolder) {
        return withSeparator(request.targetText) + trimBlanks(hostBaseName(request.sessionFile));
    }
    return request.targetText;
}

PlannedMove planMove(const MoveRequest& request, const QString& item, const FileSystem& disk) {
    return {sourcePath(request, item, disk),
            withSeparator(moveDestination(request)) + hostFileName(item),
            request.excludeOn && wildcardMatchesAny(item, request.excluded)};
}

MoveOutcome runMove(const MoveRequest& request, FileOperations& disk, const MoveEvents& events) {
    return MoveRun(request, disk, events).run();
}

QString overwriteQuestion(const QString& destination) {
    return QStringLiteral("File '") + destination +
           QStringLiteral("' Already Exists.  Overwrite Existing File?");
}

QString deletedSourcesLine(qint64 count) {
    return QStringLiteral("Sources Deleted (the trash refused them): ") + groupedNumber(count);
}

Result<void> targetFolderTakesFiles(const QString& folder, const FileOperations& disk) {
    if (disk.FileExists(folder)) {
        return Error{ENOTDIR, QStringLiteral("The target ") + folder +
                                  QStringLiteral(" is a file, not a folder.")};
    }
    QString writable = folder;
    if (!disk.FolderExists(folder)) {
        writable = hostParentFolder(folder);
        if (!disk.FolderExists(writable)) {
            return Error{ENOENT, QStringLiteral("The target folder's parent ") + writable +
                                     QStringLiteral(" does not exist.")};
        }
    }
    if (const Result<void> takes = disk.writable(writable); !takes) {
        return Error{takes.error().code, QStringLiteral("The target folder ") + writable +
                                             QStringLiteral(" cannot be written: Error ") +
                                             errorText(takes.error()) + u'.'};
    }
    return {};
}

Result<void> moveCanStart(const MoveRequest& request, const FileOperations& disk) {
    if (request.storeInSubFolder) {
        const QString name = trimBlanks(hostBaseName(request.sessionFile));
        if (name.isEmpty() || name == QLatin1String(".") || name == QLatin1String("..")) {
            return Error{0, QStringLiteral("The session's name gives no sub-folder to store the "
                                           "files in (\"") +
                                request.sessionFile + QStringLiteral("\").")};
        }
    }
    return targetFolderTakesFiles(moveDestination(request), disk);
}

QString moveTotalsLine(qint64 filesMoved, qint64 bytesMoved, std::optional<qint64> filesSkipped) {
    return QStringLiteral("Files Moved: ") + groupedNumber(filesMoved) +
           (filesSkipped ? QStringLiteral(" - Files Skipped: ") + groupedNumber(*filesSkipped)
                         : QString()) +
           QStringLiteral(" - Bytes Moved:  ") + groupedNumber(bytesMoved) + QStringLiteral(" (") +
           megabyteText(bytesMoved) + QStringLiteral("Mb)");
}

QString logTimestamp() {
    // The locale's short date and its time with seconds, as a general date-and-time.
    const QLocale locale;
    QString time = locale.timeFormat(QLocale::LongFormat);
    time.remove(QLatin1Char('t'));
    return locale.toString(QDateTime::currentDateTime(), locale.dateFormat(QLocale::ShortFormat) +
                                                             QLatin1Char(' ') + time.trimmed());
}

}  // namespace tidewick
