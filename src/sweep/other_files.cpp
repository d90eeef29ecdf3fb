#include <algorithm>
#include <atomic>
#include <vector>

#include "platform/on_cores.h"

#include "sweep/sweep.h"
#include "text/letter_case.h"
#include "text/path_text.h"
#include "text/pattern_list.h"
#include "text/wildcard.h"

// The other files of the session folder that no scanned session uses: "Files to be Moved".
namespace tidewick {

namespace {

// One computation of the other files: the folders are listed one after another into one list,
// in which no text stands twice.
class OtherFilesListing {
public:
    OtherFilesListing(const SweepRequest& request, const UsedIndex& used,
                      const QString& recordFolder, const FileSystem& fs, const SweepEvents& events,
                      QList<KeptFile>* kept)
        : kept_(kept),
          request_(request),
          kind_(*request.kind),
          used_(used),
          recordFolder_(recordFolder),
          fs_(fs),
          events_(events),
          sessionFolder_(withSeparator(request.folder)),
          wanted_(request.typePattern),
          peakSuffixes_(peakSuffixesOf(kind_)) {}

    QList<OtherFile> run() {
        const bool whole = request_.wholeFolder;
        const QString selected = request_.sessions.value(request_.selected);
        // The selected session, or with "Check All" every session of the kind ("*.rpp").
        const QString sessionsToIgnore = whole ? kind_.sessionPattern : selected;
        addFolder(sessionFolder_, {}, sessionsToIgnore);
        if (!kind_.recordingsSuffix.isEmpty()) {
            // Each scanned session's recordings folder: mix_Recorded for mix.ses.
            const ScanRange range = scanRange(request_);
            for (int i = range.first; i <= range.last; ++i) {
                const QString recorded =
                    GetBaseName(request_.sessions.at(i)) + recordFolder_ + hostSeparator();
                addFolder(sessionFolder_ + recorded, recorded, whole ? QString() : selected);
            }
        }
        addSubFolder(sessionsToIgnore);
        return std::move(files_);
    }

    // The folders of a project tree, each line by its path from the tree's root.
    QList<OtherFile> runProject(const ProjectTree& tree) {
        for (const auto& [folder, relative] : tree.folders) {
            idle();
            addFolder(folder, relative, {});
        }
        return std::move(files_);
    }

    // The sub-folder row's folder, when the row is on; the lines begin with the folder as the
    // row names it, so that each leads back to its file.
    QList<OtherFile> runSubFolder() {
        addSubFolder(request_.wholeFolder ? kind_.sessionPattern
                                          : request_.sessions.value(request_.selected));
        return std::move(files_);
    }

private:
    void addSubFolder(const QString& sessionsToIgnore) {
        if (!request_.subFolderOn) {
            return;
        }
        const QString folder = subFolderPath(sessionFolder_, request_.subFolder, fs_);
        if (!folder.isEmpty()) {
            idle();
            addFolder(folder, withSeparator(trimBlanks(request_.subFolder)), sessionsToIgnore);
        }
    }

    // Adds the files of the folder `named` (with its separator) that no session uses, leaving out
    // names that match `sessionToIgnore`; each line is `prefix` and the name, a text that leads
    // back to the file from the session folder. A folder listed already adds nothing: the
    // sub-folder row may name the session folder itself, or REAPER's record folder may be the
    // project's.
    void addFolder(const QString& named, const QString& prefix, const QString& sessionToIgnore) {
        const QString folder = withSeparator(cleanHostPath(named));
        if (listedFolders_.contains(folder) || !fs_.FolderExists(folder)) {
            return;  // a folder gathered already, or a session without a recordings folder
        }
        listedFolders_.insert(folder);
        const QList<FolderEntry> entries = fs_.listFiles(folder);
        const Verdicts verdicts = judge(entries, folder, sessionToIgnore);
        QList<const FolderEntry*> peakFiles;
        for (qsizetype i = 0; i < entries.size(); ++i) {
            const FolderEntry& entry = entries[i];
            switch (verdicts.each[size_t(i)]) {
                case Verdict::Peak:
                    peakFiles.append(&entry);
                    break;
                case Verdict::Kept:
                    noteKept(folder, prefix, entry, *verdicts.keepers[size_t(i)]);
                    break;
                case Verdict::Other:
                    add(prefix.isEmpty() ? entry.name : prefix + entry.name, entry);
                    break;
                case Verdict::Passed:
                    break;
            }
        }
        if (request_.peaksListed) {
            addPeakFiles(folder, prefix, peakFiles);
        }
    }

    // What becomes of each file of a folder: passed over, a peak file for the peaks' own pass,
    // used, kept by a session (and by which), or another file.
    enum class Verdict : quint8 { Passed, Peak, Kept, Other };
    struct Verdicts {
        std::vector<Verdict> each;
        std::vector<const QStringList*> keepers;
    };

    // The verdicts on `entries`, the files of `folder`, leaving out names that match
    // `sessionToIgnore`. Each is a question to the used index alone, so a large folder's are
    // shared among the cores.
    Verdicts judge(const QList<FolderEntry>& entries, const QString& folder,
                   const QString& sessionToIgnore) const {
        const QString ignoreUpper = upperCase(sessionToIgnore);
        const QString usedFolderKey = usedKey(folder);
        Verdicts verdicts{std::vector<Verdict>(size_t(entries.size())),
                          std::vector<const QStringList*>(size_t(entries.size()))};
        constexpr qsizetype kShare = 4096;  // files a core takes at a time
        std::atomic<qsizetype> next{0};
        onCores(entries.size() / kShare + 1, [&](bool) {
            QString key = usedFolderKey;  // each file's key, made in place
            for (qsizetype from = next.fetch_add(kShare); from < entries.size();
                 from = next.fetch_add(kShare)) {
                for (qsizetype i = from; i < std::min(from + kShare, entries.size()); ++i) {
                    verdicts.each[size_t(i)] = verdictOn(entries[i], usedFolderKey, ignoreUpper,
                                                         key, verdicts.keepers[size_t(i)]);
                }
            }
        });
        return verdicts;
    }

    Verdict verdictOn(const FolderEntry& entry, const QString& usedFolderKey,
                      const QString& ignoreUpper, QString& key, const QStringList*& keepers) const {
        // A name ending in the peak extension is exactly one that the peak pattern selects:
        // such files have their own pass.
        if (kind_.projectScope && partOfProjectSession(entry.name)) {
            return Verdict::Passed;  // a set, a project or its database's companions: never offered
        }
        if (isPeakFile(entry.name)) {
            return request_.peaksListed ? Verdict::Peak : Verdict::Passed;
        }
        if (!wanted_.matchesEveryName() && !wanted_.matches(entry.name)) {
            return Verdict::Passed;
        }
        // The key ends in an ASCII name upper-cased, as the sessions' pattern wants it.
        const bool ascii = keyInPlace(key, usedFolderKey.size(), entry.name);
        if (!ignoreUpper.isEmpty() &&
            wildcardMatch(ascii ? QStringView(key).sliced(usedFolderKey.size())
                                : UpperCased(entry.name).view(),
                          ignoreUpper)) {
            return Verdict::Passed;
        }
        const HashedText hashed(key);  // asked of each table, own and guards'
        if (used_.names(hashed, usedFolderKey, entry.name, recordFolder_, entry.id)) {
            return Verdict::Passed;
        }
        keepers = used_.keptBy(hashed, entry.id);
        return keepers ? Verdict::Kept : Verdict::Other;
    }

    // The peak files' endings: the kind's own, or on the project kinds' shared tab those of
    // every project kind, since one load lists their trees together.
    static QStringList peakSuffixesOf(const SessionKind& kind) {
        QStringList suffixes;
        for (const SessionKind& each : sessionKinds()) {
            const bool listed = kind.projectScope ? each.projectScope : &each == &kind;
            if (listed && !each.peakExtension.isEmpty()) {
                suffixes.append(QLatin1Char('.') + each.peakExtension);
            }
        }
        return suffixes;
    }

    bool isPeakFile(const QString& name) const {
        return std::any_of(
            peakSuffixes_.cbegin(), peakSuffixes_.cend(),
            [&name](const QString& suffix) { return endsWithIgnoringCase(name, suffix); });
    }

    // Whether a session keeps the file (another way of naming it, or another session); such a
    // file is noted with the sessions that keep it.
    bool kept(const QString& folder, const QString& prefix, const FolderEntry& entry,
              const QString& key) {
        const QStringList* keepers = used_.keptBy(HashedText(key), entry.id);
        if (keepers != nullptr) {
            noteKept(folder, prefix, entry, *keepers);
        }
        return keepers != nullptr;
    }

    void noteKept(const QString& folder, const QString& prefix, const FolderEntry& entry,
                  const QStringList& keepers) {
        // A folder is listed once, so no file is noted twice.
        if (kept_ != nullptr) {
            kept_->append({prefix + entry.name, folder + entry.name, entry.size, keepers});
        }
    }

    // A peak file belongs to the used media of the same base name: song.pk to song.wav, and
    // for REAPER and Vegas song.wav.reapeaks to song.flac as well as to song.wav. Kept back
    // with "Keep Used ... Files", listed otherwise.
    void addPeakFiles(const QString& folder, const QString& prefix,
                      const QList<const FolderEntry*>& peakFiles) {
        const QString folderKey = usedKey(folder);
        // The project kinds' peak files (".asd", ".peak") are all named after the whole media.
        const bool secondTrim = kind_.peakNamesWholeMedia || kind_.projectScope;
        if (secondTrim) {
            idle();
        }
        for (const FolderEntry* entry : peakFiles) {
            QString base = GetBaseName(entry->name);
            if (secondTrim) {
                base = GetBaseName(base);
            }
            if (request_.keepPeaks && used_.ownsPeak(upperCase(base), secondTrim)) {
                continue;
            }
            if (!kept(folder, prefix, *entry, folderKey + usedKey(entry->name))) {
                add(prefix.isEmpty() ? entry->name : prefix + entry->name, *entry);
            }
        }
    }

    // The used key (usedKey) of the file `name` of the folder whose key is the first
    // `folderKeySize` characters of `key`, written over the rest of `key`: an ASCII name is
    // upper-cased into it without a copy of its own. Gives whether the name is ASCII.
    static bool keyInPlace(QString& key, qsizetype folderKeySize, const QString& name) {
        key.truncate(folderKeySize);
        const bool ascii = isAscii(name);
        key.append(ascii ? UpperCased(name).view() : QStringView(usedKey(name)));
        return ascii;
    }

    void add(const QString& text, const FolderEntry& entry) {
        // The names of one folder differ: only a later folder may give a text listed already.
        if (listedFolders_.size() > 1) {
            if (texts_.isEmpty()) {
                for (const OtherFile& file : files_) {
                    texts_.insert(file.text);
                }
            }
            if (texts_.contains(text)) {
                return;
            }
            texts_.insert(text);
        }
        files_.append({text, entry.size});  // the listing's size is the file's
    }

    void idle() const {
        if (events_.idle) {
            events_.idle();
        }
    }

    QList<KeptFile>* kept_;
    const SweepRequest& request_;
    const SessionKind& kind_;
    const UsedIndex& used_;
    const QString& recordFolder_;
    const FileSystem& fs_;
    const SweepEvents& events_;
    const QString sessionFolder_;
    const PatternList wanted_;
    const QStringList peakSuffixes_;
    QList<OtherFile> files_;
    TextSet texts_;
    QSet<QString> listedFolders_;
};

}  // namespace

QString otherFilePath(const QString& sessionFolder, const QString& text) {
    return isHostRooted(text) ? text : sessionFolder + text;
}

QList<OtherFile> otherFilesNotListed(const QStringList& listed, const QList<OtherFile>& more,
                                     const QString& sessionFolder) {
    const auto fileOf = [&sessionFolder](const QString& text) {
        return cleanHostPath(otherFilePath(sessionFolder, text));
    };
    TextSet files;
    files.reserve(listed.size() + more.size());
    for (const QString& text : listed) {
        files.insert(fileOf(text));
    }
    QList<OtherFile> fresh;
    for (const OtherFile& file : more) {
        const QString path = fileOf(file.text);
        if (!files.contains(path)) {
            files.insert(path);
            fresh.append(file);
        }
    }
    return fresh;
}

QString subFolderPath(const QString& sessionFolder, const QString& text, const FileSystem& fs) {
    const QString name = trimBlanks(text);
    if (name.isEmpty()) {
        return {};
    }
    const QString folder = withSeparator(otherFilePath(withSeparator(sessionFolder), name));
    return fs.FolderExists(folder) ? folder : QString();
}

QString reaperSubFolder(const QString& recordFolder, const QString& projectFolder,
                        const FileSystem& fs) {
    const QString record = trimBlanks(QString(recordFolder).remove(u'"'));
    const QString project = withSeparator(projectFolder);
    // A relative record path is a folder of the project, never one of the program's current
    // folder: that could be any folder, and its files would be offered for moving.
    if (isHostRooted(record) && fs.FolderExists(record)) {
        return record;
    }
    if (!record.isEmpty() && !isHostRooted(record) && fs.FolderExists(project + record)) {
        return project + record;
    }
    return project;
}

QList<OtherFile> listOtherFiles(const SweepRequest& request, const UsedIndex& used,
                                const QString& recordFolder, const FileSystem& fs,
                                const SweepEvents& events, QList<KeptFile>* kept) {
    if (request.kind->projectScope) {
        QStringList sessions;
        const ScanRange range = scanRange(request);
        for (int i = range.first; i <= range.last; ++i) {
            sessions.append(withSeparator(request.folder) + request.sessions.at(i));
        }
        return listProjectFiles(request, used, projectTree(sessions, fs, nullptr), fs, events,
                                kept);
    }
    return OtherFilesListing(request, used, recordFolder, fs, events, kept).run();
}

QList<OtherFile> listProjectFiles(const SweepRequest& request, const UsedIndex& used,
                                  const ProjectTree& tree, const FileSystem& fs,
                                  const SweepEvents& events, QList<KeptFile>* kept) {
    return OtherFilesListing(request, used, tree.root, fs, events, kept).runProject(tree);
}

QList<OtherFile> listSubFolder(const SweepRequest& request, const UsedIndex& used,
                               const QString& recordFolder, const FileSystem& fs,
                               QList<KeptFile>* kept) {
    return OtherFilesListing(request, used, recordFolder, fs, {}, kept).runSubFolder();
}

}  // namespace tidewick
