#include "audit/library_audit.h"

#include <QDir>
#include <atomic>
#include <optional>
#include <vector>

#include "audit/folder_audit.h"
#include "audit/index_packing.h"
#include "audit/library_walk.h"
#include "audit/missing_candidates.h"
#include "audit/recording_disk.h"
#include "audit/session_index.h"
#include "audit/uses_elsewhere.h"
#include "platform/on_cores.h"
#include "sweep/listed_disk.h"
#include "text/path_text.h"

namespace tidewick {

namespace {

// Audits the folders `again`, side by side on the cores at hand, on the one listing of the
// library; each thread has its own copy of the sessions read. Each audit, with what it asked of
// the disk and the hash of the answers, goes to `keep` as it is done, where one is given. The
// folders not reached when a stop is asked for have no report. `stop` is asked from this thread
// alone, which also tells the progress, and runs `alongside` first while the others begin.
std::vector<std::optional<FolderReport>> auditFolders(
    const QList<const WalkedFolder*>& again, const ListedDisk& listed, const SessionCache& cache,
    const AuditEvents& events, AuditProgress& progress, const std::function<void()>& alongside,
    const std::function<void(const QString&, SessionIndex::AuditToKeep)>& keep) {
    std::vector<std::optional<FolderReport>> audited(size_t(again.size()));
    std::atomic<qsizetype> next = 0;
    std::atomic<bool> cancelled = false;
    std::atomic<int> done = 0;
    const auto work = [&](bool reporter) {
        if (reporter) {
            alongside();
        }
        SessionCache own = cache;
        for (qsizetype at = next++; at < again.size() && !cancelled; at = next++) {
            const RecordingDisk asked(listed);
            FolderReport report =
                auditFolder(again[at]->path, again[at]->sessions, asked, own, events.describe);
            if (keep) {
                keep(again[at]->path, {asked.questions(), asked.signature(), packReport(report)});
            }
            audited[size_t(at)] = std::move(report);
            own.forgetGuards();  // a folder's guard is no other folder's
            ++done;
            if (reporter) {
                progress.folders = done;
                if (events.progress) {
                    events.progress(progress);
                }
                cancelled = cancelled || stopAsked(events);
            }
        }
    };
    onCores(std::min(kAuditThreads, again.size()), work);
    progress.folders = done;
    return audited;
}

// Whether the disk answers the questions of the kept audit `kept` as it did then.
bool answersAsBefore(const SessionIndex::KeptAudit& kept, const FileSystem& disk) {
    const Result<QByteArray> now = replaySignature(kept.questions, disk);
    return now && *now == kept.signature;
}

void addTotals(LibraryReport& report) {
    for (const FolderReport& folder : report.folders) {
        report.sessions += folder.sessionCount();
        report.used += folder.used;
        report.missing += folder.missing.size();
        report.reclaimableFiles += folder.reclaimable.size();
        report.reclaimableBytes += folder.reclaimableBytes;
        report.stopped += folder.stopped ? 1 : 0;
    }
    std::stable_sort(report.folders.begin(), report.folders.end(),
                     [](const FolderReport& a, const FolderReport& b) {
                         return a.reclaimableBytes != b.reclaimableBytes
                                    ? a.reclaimableBytes > b.reclaimableBytes
                                    : a.folder < b.folder;
                     });
}

// One audit of a library, step by step.
class LibraryAudit {
public:
    LibraryAudit(const QString& root, const FileSystem& disk, SessionIndex* index,
                 const AuditEvents& events)
        : disk_(disk), listed_(disk), index_(index), events_(events) {
        report_.root = cleanHostPath(QDir(root).absolutePath());
    }

    LibraryReport run() {
        walk();
        const QList<const WalkedFolder*> again = takeKeptAudits();
        readSessions(!again.isEmpty());
        const QHash<QString, QStringList> elsewhere = usesElsewhere();
        // The index keeps what this audit learns while the folders are audited, and who keeps
        // what elsewhere (the sessions not read too) is worked out meanwhile.
        const QHash<QString, QStringList> uses = keepLearning(elsewhere);
        Keepers keepers;
        auditAgain(again, [&] { keepers = keepersOf(uses); });
        if (index_ != nullptr) {
            QSet<QString> present;
            for (const WalkedFolder& folder : walk_.folders) {
                present.insert(folder.path);
            }
            index_->finishKeeping(present);  // written while the report is finished
        }
        finishReport(keepers);
        return report_;
    }

private:
    void walk();
    QList<const WalkedFolder*> takeKeptAudits();
    void readSessions(bool auditingAgain);
    QHash<QString, QStringList> usesElsewhere();
    QHash<QString, QStringList> keepLearning(const QHash<QString, QStringList>& elsewhere);
    void auditAgain(const QList<const WalkedFolder*>& again,
                    const std::function<void()>& alongside);
    /// The report's last steps: what other folders' sessions use, the candidates of missing
    /// files, the folders not read and the totals.
    void finishReport(const Keepers& keepers) {
        for (FolderReport& folder : report_.folders) {
            keepWhatOthersUse(folder, keepers);
        }
        findCandidates(report_.folders, walk_.walked, listed_);
        reportUnread();
        addTotals(report_);
    }
    /// The folders the walk could not read, each reported as stopped: what they hold is unknown.
    void reportUnread() {
        for (const QString& folder : walk_.unread) {
            FolderReport unread;
            unread.folder = cleanHostPath(folder);
            unread.stopped = true;
            unread.reason = QStringLiteral(
                "This folder could not be read (no permission, or its path is too long): what it "
                "holds is unknown");
            report_.folders.append(unread);
        }
    }

    const FileSystem& disk_;
    ListedDisk listed_;  // the one listing of the library, which every step asks
    SessionIndex* const index_;
    const AuditEvents& events_;
    LibraryReport report_;
    AuditProgress progress_;
    Walk walk_;
    SessionCache cache_;  // the sessions read
};

// Every folder under the root, read once; then the folders are audited.
void LibraryAudit::walk() {
    // The index is opened while another core begins the walk.
    walk_ = walkLibrary(report_.root, disk_, listed_, events_, progress_, [this] {
        if (index_ != nullptr) {
            index_->ready();
        }
    });
    report_.filesSeen = progress_.files;
    report_.bytesSeen = progress_.bytes;
    progress_.walking = false;
    progress_.sessionFolders = walk_.folders.size();
    progress_.folders = 0;
}

// A folder whose kept audit asked questions that the disk still answers the same way comes out
// the same: its report is taken as it was. The others are audited again.
QList<const WalkedFolder*> LibraryAudit::takeKeptAudits() {
    const QHash<QString, SessionIndex::KeptAudit> kept =
        index_ != nullptr ? index_->audits(report_.root)
                          : QHash<QString, SessionIndex::KeptAudit>();
    // Each folder's questions are asked again on the cores at hand.
    std::vector<char> asBefore(size_t(walk_.folders.size()));
    std::atomic<qsizetype> next = 0;
    onCores(std::min(kAuditThreads, walk_.folders.size()), [&](bool) {
        for (qsizetype at = next++; at < walk_.folders.size(); at = next++) {
            const auto it = kept.constFind(walk_.folders[at].path);
            asBefore[size_t(at)] = it != kept.constEnd() && answersAsBefore(*it, listed_);
        }
    });
    QList<const WalkedFolder*> again;
    for (qsizetype at = 0; at < walk_.folders.size(); ++at) {
        if (asBefore[size_t(at)]) {
            report_.folders.append(kept.value(walk_.folders[at].path).report);
        } else {
            again.append(&walk_.folders[at]);
        }
    }
    return again;
}

// The sessions that changed since the index had them are read, side by side on the cores at
// hand; for folders audited again, the others come from the index. With no folder to audit
// again, the stamps the index holds say which to read.
void LibraryAudit::readSessions(bool auditingAgain) {
    QHash<QString, FileStamp> held;
    if (index_ != nullptr && auditingAgain) {
        index_->loadInto(report_.root, cache_, listed_);
    } else if (index_ != nullptr) {
        held = index_->stamps(report_.root);
    }
    const qsizetype known = cache_.entries().size();
    QList<std::pair<const SessionKind*, QString>> toRead;
    for (const auto& [kind, path] : walk_.sessionFiles) {
        const auto stamp = held.constFind(path);
        if (auditingAgain || stamp == held.constEnd() || listed_.fileStamp(path) != *stamp) {
            toRead.append({kind, path});
        }
    }
    cache_.readAll(toRead, listed_);
    report_.sessionsRead = cache_.entries().size() - known;
}

// Every use of a file outside its session's folder, by session read now.
QHash<QString, QStringList> LibraryAudit::usesElsewhere() {
    // Each session's uses are a function of its read alone: they are worked out on the cores.
    std::vector<QHash<QString, SessionCache::Entry>::const_iterator> read;
    for (auto it = cache_.entries().cbegin(); it != cache_.entries().cend(); ++it) {
        if (it->read.outcome == ReaderOutcome::Read) {
            read.push_back(it);
        }
    }
    std::vector<QStringList> uses(read.size());
    std::atomic<size_t> next = 0;
    onCores(qsizetype(read.size()), [&](bool) {
        for (size_t at = next++; at < read.size(); at = next++) {
            uses[at] = usedElsewhere(read[at].key(), sessionKind(read[at]->kind), read[at]->read);
        }
    });
    QHash<QString, QStringList> elsewhere;
    for (size_t at = 0; at < read.size(); ++at) {
        elsewhere.insert(read[at].key(), std::move(uses[at]));
    }
    return elsewhere;
}

// The index begins to keep the sessions read, with their uses `elsewhere`, and to forget those
// gone; the uses elsewhere of every session under the root, as the index will hold them.
QHash<QString, QStringList> LibraryAudit::keepLearning(
    const QHash<QString, QStringList>& elsewhere) {
    if (index_ == nullptr) {
        return elsewhere;
    }
    QSet<QString> present;
    for (const auto& [kind, path] : walk_.sessionFiles) {
        present.insert(path);
    }
    return index_->beginKeeping(report_.root, cache_, elsewhere, present);
}

// The folders whose kept audits no longer hold are audited, `alongside` run in this thread
// meanwhile; the index is given each audit as it is done.
void LibraryAudit::auditAgain(const QList<const WalkedFolder*>& again,
                              const std::function<void()>& alongside) {
    std::function<void(const QString&, SessionIndex::AuditToKeep)> keep;
    if (index_ != nullptr) {
        keep = [this](const QString& folder, SessionIndex::AuditToKeep audit) {
            index_->keepAudit(folder, std::move(audit));
        };
    }
    std::vector<std::optional<FolderReport>> audits =
        auditFolders(again, listed_, cache_, events_, progress_, alongside, keep);
    for (std::optional<FolderReport>& audited : audits) {
        if (audited) {
            ++report_.foldersAudited;
            report_.folders.append(std::move(*audited));
        }
    }
    report_.cancelled = stopAsked(events_);
}

}  // namespace

LibraryReport auditLibrary(const QString& root, const FileSystem& disk, SessionIndex* index,
                           const AuditEvents& events) {
    return LibraryAudit(root, disk, index, events).run();
}

}  // namespace tidewick
