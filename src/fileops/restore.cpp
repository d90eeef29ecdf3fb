#include "fileops/restore.h"

#include <QFile>
#include <cerrno>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>
#include <tuple>
#include <vector>

#include "fileops/record_claims.h"
#include "fileops/trash.h"
#include "text/number_text.h"
#include "text/path_text.h"

namespace tidewick {

namespace {

// A change time may come back a little coarser from a file system that keeps whole seconds.
constexpr qint64 kTimeSlack = 2'000'000'000;

// Whether `path` holds the file of `file` as the move found it: its size and time of change.
bool holdsMovedFile(const FileOperations& disk, const QString& path, const MovedFile& file) {
    const std::optional<FileStamp> stamp = path.isEmpty() ? std::nullopt : disk.entryStamp(path);
    return stamp && stamp->size == file.size &&
           std::abs(stamp->modified - file.modified) <= kTimeSlack;
}

// Runs the steps handed to it on a thread of its own, in the order given, until it is
// destroyed: the copies of restored files go to the trash there while the next files come
// back, the two renames of a file being in different folders. It is woken for a batch of steps
// at a time: woken for each, it would cost both threads a switch a file.
class Follower {
public:
    Follower() : thread_([this] { work(); }) {}
    ~Follower() {
        {
            const std::lock_guard lock(mutex_);
            ended_ = true;
        }
        wake_.notify_one();
        thread_.join();
    }
    Follower(const Follower&) = delete;
    Follower& operator=(const Follower&) = delete;

    void add(std::function<void()> step) {
        bool full = false;
        {
            const std::lock_guard lock(mutex_);
            steps_.push_back(std::move(step));
            full = steps_.size() >= kBatch;
        }
        if (full) {
            wake_.notify_one();
        }
    }

private:
    void work() {
        std::vector<std::function<void()>> batch;
        for (;;) {
            {
                std::unique_lock lock(mutex_);
                wake_.wait(lock, [this] { return steps_.size() >= kBatch || ended_; });
                if (steps_.empty()) {
                    return;
                }
                batch.swap(steps_);
            }
            for (const std::function<void()>& step : batch) {
                step();
            }
            batch.clear();
        }
    }

    static constexpr size_t kBatch = 32;

    std::mutex mutex_;
    std::condition_variable wake_;
    std::vector<std::function<void()>> steps_;
    bool ended_ = false;
    std::thread thread_;
};

class Restore {
public:
    Restore(const MoveRecord& record, FileOperations& disk, bool dryRun,
            const RestoreEvents& events)
        : record_(record), disk_(disk), dryRun_(dryRun), events_(events) {
        for (const MovedFile& file : record.files) {
            total_ += restorable(file) ? file.size : 0;
        }
    }

    RestoreOutcome run() {
        std::optional<Follower> follower;
        if (!dryRun_) {
            follower_ = &follower.emplace();
        }
        for (const MovedFile& file : record_.files) {
            if (!restorable(file)) {
                continue;
            }
            if (events_.stopRequested && events_.stopRequested()) {
                outcome_.cancelled = true;
                log(QStringLiteral("Restoring...") + visibleText(file.source) +
                    QStringLiteral("Operation cancelled.") + kLogLineEnd);
                break;
            }
            const std::optional<QString> refused = refusal(file);
            const QString result = refused ? refuse(file, *refused)
                                   : file.outcome == MovedFile::Outcome::Moved ? putBack(file)
                                                                               : takeCopyAway(file);
            log(QStringLiteral("Restoring...") + visibleText(file.source) + result + kLogLineEnd);
            done_ += file.size;
            if (events_.progress) {
                events_.progress(done_, total_);
            }
        }
        follower.reset();  // every copy in the trash before the totals
        if (outcome_.restored == 0 && outcome_.left == 0 && outcome_.refused == 0 &&
            !outcome_.cancelled) {
            log(kLogLineEnd +
                QStringLiteral("Nothing to restore: the files of this move are where "
                               "they were.") +
                kLogLineEnd);
        } else {
            log(kLogLineEnd + restoreTotalsLine(outcome_.restored, outcome_.bytes, dryRun_) +
                kLogLineEnd);
        }
        return outcome_;
    }

private:
    static bool restorable(const MovedFile& file) {
        return file.outcome == MovedFile::Outcome::Moved ||
               file.outcome == MovedFile::Outcome::CopiedSourceKept;
    }

    // Why the line of `file` claims what its move could not have done: a source outside the
    // folders it took files from, a copy outside its target, a trash entry that is none or
    // that names another file.
    std::optional<QString> refusal(const MovedFile& file) const {
        const bool fromSession =
            liesInside(file.source, record_.sessionFolder) ||
            std::any_of(record_.addedFolders.cbegin(), record_.addedFolders.cend(),
                        [&file](const QString& folder) { return liesInside(file.source, folder); });
        if (!fromSession) {
            return QStringLiteral(
                "the record places it outside the folders its move took "
                "files from");
        }
        if (!liesInside(file.destination, record_.target)) {
            return QStringLiteral("the record places its copy at ") +
                   visibleText(file.destination) + QStringLiteral(", outside the move's target");
        }
        const QString home = Trash().home();
        // A restore puts the copy of a file it took back into the file's trash entry, whose
        // record then names the copy.
        for (const auto& [place, original, copy] :
             {std::tuple(file.sourceTrash, file.source, file.destination),
              std::tuple(file.replaced, file.destination, QString())}) {
            if (place.file.isEmpty() && place.info.isEmpty()) {
                continue;
            }
            if (const std::optional<QString> doubt = trashEntryDoubt(place, original, home, copy)) {
                return QStringLiteral("the record claims a trash entry where ") +
                       visibleText(*doubt);
            }
        }
        return std::nullopt;
    }

    QString refuse(const MovedFile& file, const QString& why) {
        ++outcome_.refused;
        if (events_.left) {
            events_.left(file.source + QStringLiteral(": refused: ") + why);
        }
        return QStringLiteral("...Refused - ") + why + QStringLiteral("; nothing of it touched");
    }

    // Whether `path` holds the file as the move found it: its size and time of change.
    bool matches(const QString& path, const MovedFile& file) const {
        return holdsMovedFile(disk_, path, file);
    }

    // What a file at the source path of `file` means, as the log says it: the file back
    // already, or another that took its name; nothing when there is none.
    std::optional<QString> atSource(const MovedFile& file) {
        if (!disk_.entryStamp(file.source)) {
            return std::nullopt;
        }
        if (matches(file.source, file)) {
            ++outcome_.inPlace;
            return QStringLiteral("...Already in place");
        }
        return leave(file, QStringLiteral("another file now has its name"));
    }

    // A moved file: back from the trash, else from its copy in the target. The rename that
    // brings it back never replaces a file, and tells when one has the name.
    QString putBack(const MovedFile& file) {
        const bool inTrash = matches(file.sourceTrash.file, file);
        const bool inTarget = matches(file.destination, file);
        if (dryRun_ || (!inTrash && !inTarget)) {
            if (std::optional<QString> there = atSource(file)) {
                return *there;
            }
        }
        if (!inTrash && !inTarget) {
            return leave(file, QStringLiteral("neither the trash nor the target holds it as it "
                                              "was moved"));
        }
        if (dryRun_) {
            return planned(file, inTrash ? QStringLiteral("...would come back from the trash")
                                         : QStringLiteral("...would come back from its copy in "
                                                          "the target"));
        }
        const QString from = inTrash ? file.sourceTrash.file : file.destination;
        Result<void> back = disk_.renameNoReplace(from, file.source);
        if (!back && back.error().code == EXDEV) {  // another disk: a whole copy, as the move did
            const Result<TrashPlace> copied = disk_.copyFile(from, file.source, {false, false});
            back = copied ? Result<void>() : Result<void>(copied.error());
            if (back && !inTrash) {
                (void)disk_.trash(from);  // a copy left in the target loses nothing
            }
        }
        if (!back && back.error().code == EEXIST) {
            if (std::optional<QString> there = atSource(file)) {
                return *there;
            }
        }
        if (!back) {
            return leave(file, QStringLiteral("Error ") + errorText(back.error()));
        }
        if (inTrash && inTarget) {
            follower_->add([this, &file] {
                // Where the source was; a copy left in the target loses nothing.
                (void)disk_.trashInPlaceOf(file.sourceTrash, file.destination);
                replacedBack(file);
            });
        } else {
            if (inTrash) {
                QFile::remove(file.sourceTrash.info);
            }
            replacedBack(file);
        }
        return restored(file);
    }

    // A file whose source stayed: only its copy in the target goes, to the trash.
    QString takeCopyAway(const MovedFile& file) {
        if (!matches(file.destination, file)) {
            ++outcome_.inPlace;
            return QStringLiteral("...Already in place");
        }
        if (dryRun_) {
            return planned(file, QStringLiteral("...its copy in the target would go to the trash"));
        }
        if (const Result<TrashPlace> trashed = disk_.trash(file.destination); !trashed) {
            return leave(file, QStringLiteral("Error ") + errorText(trashed.error()));
        }
        replacedBack(file);
        return restored(file);
    }

    // The file that the move's copy replaced in the target comes back from the trash.
    // Only the file the record describes comes back: after the trash was emptied, a later
    // file of that name in the trash is another file. A record without its stamp brings none.
    void replacedBack(const MovedFile& file) {
        const std::optional<FileStamp> stamp =
            file.replaced.file.isEmpty() ? std::nullopt : disk_.entryStamp(file.replaced.file);
        if (stamp && file.replacedStamp.modified != 0 && stamp->size == file.replacedStamp.size &&
            std::abs(stamp->modified - file.replacedStamp.modified) <= kTimeSlack &&
            !disk_.entryStamp(file.destination) &&
            disk_.renameNoReplace(file.replaced.file, file.destination)) {
            QFile::remove(file.replaced.info);
        }
    }

    QString restored(const MovedFile& file) {
        ++outcome_.restored;
        outcome_.bytes += file.size;
        return QStringLiteral("...OK - ") + countText(file.size, "byte") +
               QStringLiteral(" restored.");
    }

    // A dry run counts what it would restore as the run would.
    QString planned(const MovedFile& file, const QString& how) {
        ++outcome_.restored;
        outcome_.bytes += file.size;
        return how;
    }

    QString leave(const MovedFile& file, const QString& why) {
        ++outcome_.left;
        const QString where = matches(file.sourceTrash.file, file) ? file.sourceTrash.file
                              : matches(file.destination, file)    ? file.destination
                                                                   : QString();
        const QString text = why + (where.isEmpty() ? QString()
                                                    : QStringLiteral("; the moved file stays at ") +
                                                          visibleText(where));
        if (events_.left) {
            events_.left(file.source + QStringLiteral(": ") + text);
        }
        return QStringLiteral("...Not restored - ") + text;
    }

    void log(const QString& text) const {
        if (events_.log) {
            events_.log(text);
        }
    }

    const MoveRecord& record_;
    FileOperations& disk_;
    const bool dryRun_;
    const RestoreEvents& events_;
    Follower* follower_ = nullptr;
    RestoreOutcome outcome_;
    qint64 total_ = 0;
    qint64 done_ = 0;
};

}  // namespace

std::optional<QString> recordDoubt(const MoveRecord& record) {
    if (!record.checked) {
        return QStringLiteral(
            "it carries no checksums (an older Tidewick wrote it), so it "
            "cannot be verified");
    }
    if (record.damagedLines.isEmpty()) {
        return std::nullopt;
    }
    QStringList lines;
    for (const qsizetype line : record.damagedLines) {
        lines.append(QString::number(line));
    }
    return QStringLiteral("its line(s) ") + lines.join(QStringLiteral(", ")) +
           QStringLiteral(" are damaged or fail their checksum");
}

RestoreOutcome restoreMove(const MoveRecord& record, FileOperations& disk, bool dryRun,
                           const RestoreEvents& events, bool force) {
    if (const std::optional<QString> doubt = recordDoubt(record); doubt && !force) {
        if (events.log) {
            events.log(QStringLiteral("The record ") + visibleText(record.path) +
                       QStringLiteral(" is refused: ") + *doubt +
                       QStringLiteral(". Nothing was restored.") + kLogLineEnd);
        }
        RestoreOutcome refused;
        refused.refused = qMax<qint64>(record.files.size(), 1);
        return refused;
    }
    return Restore(record, disk, dryRun, events).run();
}

qint64 filesBack(const MoveRecord& record, const FileOperations& disk) {
    qint64 back = 0;
    for (const MovedFile& file : record.files) {
        back +=
            file.outcome == MovedFile::Outcome::Moved && holdsMovedFile(disk, file.source, file);
    }
    return back;
}

QString restoreTotalsLine(qint64 files, qint64 bytes, bool dryRun) {
    const QString what = dryRun ? QStringLiteral(" to Restore") : QStringLiteral(" Restored");
    return QStringLiteral("Files") + what + QStringLiteral(": ") + groupedNumber(files) +
           QStringLiteral(" - Bytes") + what + QStringLiteral(":  ") + groupedNumber(bytes) +
           QStringLiteral(" (") + megabyteText(bytes) + QStringLiteral("Mb)");
}

}  // namespace tidewick
