#include "platform/path_text.h"
#include "platform/wildcard.h"
#include "sweep/pattern_list.h"
#include "sweep/sweep.h"

// The other files of the session folder that no scanned session uses: "Files to be Moved".
namespace tidewick {

namespace {

bool isAuditionKind(SessionKindId id) {
    return id == SessionKindId::Ses || id == SessionKindId::Xml || id == SessionKindId::Sesx;
}

// REAPER and Vegas name their peak files after the whole media name (song.wav.reapeaks).
bool isProjectKind(SessionKindId id) {
    return id == SessionKindId::Rpp || id == SessionKindId::Veg;
}

// One computation of the other files: the folders are listed one after another into one list,
// in which no text stands twice.
class OtherFilesListing {
public:
    OtherFilesListing(const SweepRequest& request, const UsedIndex& used,
                      const QString& recordFolder, const FileSystem& fs, const SweepEvents& events)
        : request_(request),
          kind_(*request.kind),
          used_(used),
          recordFolder_(recordFolder),
          fs_(fs),
          events_(events),
          sessionFolder_(withSeparator(request.folder)),
          wanted_(request.typePattern),
          peakSuffix_(QLatin1Char('.') + kind_.peakExtension) {}

    QList<OtherFile> run() {
        const QString selected = request_.sessions.value(request_.selected);
        const bool whole = request_.wholeFolder;
        if (kind_.id == SessionKindId::Rpp) {
            const QString ignore = whole ? QStringLiteral("*.rpp") : selected;
            addFolder({}, ignore);
            const QString subFolder = trimBlanks(request_.subFolder);
            if (request_.subFolderOn && fs_.FolderExists(subFolder)) {
                idle();
                addFolder(subFolder, ignore);
            }
        } else {
            addFolder({}, whole ? kind_.sessionPattern : selected);
        }
        if (isAuditionKind(kind_.id)) {
            // Each scanned session's recordings folder: mix_Recorded for mix.ses.
            const ScanRange range = scanRange(request_);
            for (int i = range.first; i <= range.last; ++i) {
                const QString recorded =
                    GetBaseName(request_.sessions.at(i)) + recordFolder_ + hostSeparator();
                addFolder(recorded, whole ? QString() : selected);
            }
        }
        if (request_.subFolderOn) {
            addFolder(request_.subFolder,
                      whole ? QStringLiteral("*.") + kind_.tabCaption.toLower() : selected);
        }
        return std::move(files_);
    }

private:
    // Adds the files of the session folder's sub-folder `subFolder` (the session folder itself
    // when empty) that no session uses, leaving out names that match `sessionToIgnore`. In
    // REAPER's sub-folder mode `subFolder` is a folder of its own, listed as it stands.
    void addFolder(QString subFolder, const QString& sessionToIgnore) {
        const bool reaperFolder = kind_.id == SessionKindId::Rpp && request_.subFolderOn &&
                                  fs_.FolderExists(trimBlanks(withoutQuotes(recordFolder_)));
        QString folder;
        if (reaperFolder) {
            // The folder's own path, with its separator, stands before each of its files.
            if (!subFolder.isEmpty()) {
                subFolder = withSeparator(subFolder);
            }
            folder = subFolder.isEmpty() ? sessionFolder_ : subFolder;
        } else {
            folder = sessionFolder_ + subFolder;
            if (!fs_.FolderExists(folder)) {
                return;  // a session without a recordings folder
            }
        }
        const QList<FolderEntry> entries = fs_.listFiles(folder);
        // Where the listed folder is the one a line's text names under the session folder, the
        // listing's size is the line's size and needs no second look at the disk.
        const bool listedSizesHold = sessionFolder_ + subFolder == folder;
        const QString ignoreUpper = sessionToIgnore.toUpper();
        const QString folderKey = usedKey(candidatePath(subFolder, reaperFolder, {}));

        QList<const FolderEntry*> peakFiles;
        for (const FolderEntry& entry : entries) {
            // A name ending in the peak extension is exactly one that the peak pattern selects:
            // such files have their own pass below.
            if (entry.name.endsWith(peakSuffix_, Qt::CaseInsensitive)) {
                if (request_.peaksListed) {
                    peakFiles.append(&entry);
                }
                continue;
            }
            if (!wanted_.matchesEveryName() && !wanted_.matches(entry.name)) {
                continue;
            }
            const QString nameKey = usedKey(entry.name);
            if (!ignoreUpper.isEmpty() && wildcardMatch(entry.name.toUpper(), ignoreUpper)) {
                continue;
            }
            if (!used_.names(folderKey, entry.name, nameKey, recordFolder_)) {
                add(subFolder + entry.name, entry, listedSizesHold);
            }
        }
        if (request_.peaksListed) {
            addPeakFiles(subFolder, peakFiles, listedSizesHold);
        }
    }

    // A peak file belongs to the used media of the same base name: song.pk to song.wav, and
    // for REAPER and Vegas song.wav.reapeaks to song.flac as well as to song.wav. Kept back
    // with "Keep Used ... Files", listed otherwise.
    void addPeakFiles(const QString& subFolder, const QList<const FolderEntry*>& peakFiles,
                      bool listedSizesHold) {
        const bool secondTrim = isProjectKind(kind_.id);
        if (secondTrim) {
            idle();
        }
        for (const FolderEntry* entry : peakFiles) {
            QString base = GetBaseName(entry->name);
            if (secondTrim) {
                base = GetBaseName(base);
            }
            if (request_.keepPeaks && used_.peakOwners(secondTrim).contains(base.toUpper())) {
                continue;
            }
            add(subFolder + entry->name, *entry, listedSizesHold);
        }
    }

    void add(const QString& text, const FolderEntry& entry, bool listedSizesHold) {
        if (texts_.contains(text)) {
            return;
        }
        texts_.insert(text);
        qint64 size = entry.size;
        if (!listedSizesHold) {
            size = qMax<qint64>(fs_.fileSize(sessionFolder_ + text), 0);
        }
        files_.append({text, size});
    }

    // The path of the file `name` of the folder being listed, as a used line would name it.
    QString candidatePath(const QString& subFolder, bool reaperFolder, const QString& name) const {
        if (reaperFolder && !subFolder.isEmpty()) {
            return subFolder + name;  // REAPER's own folder, listed as it stands
        }
        return sessionFolder_ + subFolder + name;
    }

    static QString withoutQuotes(QString text) { return text.remove(u'"'); }

    void idle() const {
        if (events_.idle) {
            events_.idle();
        }
    }

    const SweepRequest& request_;
    const SessionKind& kind_;
    const UsedIndex& used_;
    const QString& recordFolder_;
    const FileSystem& fs_;
    const SweepEvents& events_;
    const QString sessionFolder_;
    const PatternList wanted_;
    const QString peakSuffix_;
    QList<OtherFile> files_;
    QSet<QString> texts_;
};

}  // namespace

QString usedLineFile(const QString& text, const QString& sessionFolder, bool trimmed) {
    return trimmed || GetParentFolderName(text).isEmpty() ? sessionFolder + text : text;
}

QString usedKey(const QString& name) {
    for (const QChar c : name) {
        if (c.unicode() >= 0x80) {
            return name.normalized(QString::NormalizationForm_C).toUpper();
        }
    }
    return name.toUpper();
}

UsedIndex::UsedIndex(const QStringList& lines, const QString& sessionFolder, bool trimmed)
    : trimmed_(trimmed) {
    static const QSet<QString> kMediaExtensions = {
        QStringLiteral("wav"),  QStringLiteral("wv"),  QStringLiteral("ape"), QStringLiteral("aif"),
        QStringLiteral("flac"), QStringLiteral("mp3"), QStringLiteral("ogg")};
    const QString folder = withSeparator(sessionFolder);
    files_.reserve(lines.size());
    for (const QString& text : lines) {
        files_.insert(usedKey(usedLineFile(text, folder, trimmed)));
        if (trimmed) {
            lines_.insert(usedKey(text));
        }
        const QString extension = GetExtensionName(text).toLower();
        if (kMediaExtensions.contains(extension)) {
            const QString base = GetBaseName(text).toUpper();
            mediaOwners_.insert(base);
            if (extension == QLatin1String("wav")) {
                wavOwners_.insert(base);
            }
        }
    }
}

bool UsedIndex::names(const QString& path, const QString& recordFolder) const {
    return files_.contains(usedKey(path)) ||
           (trimmed_ && lines_.contains(usedKey(trimFolders(path, recordFolder))));
}

bool UsedIndex::names(const QString& folderKey, const QString& name, const QString& nameKey,
                      const QString& recordFolder) const {
    // Keys join where the folder ends in its separator: letter case and the form of accented
    // letters change nothing across it.
    if (files_.contains(folderKey + nameKey)) {
        return true;
    }
    return trimmed_ && names(folderKey + name, recordFolder);
}

QList<OtherFile> listOtherFiles(const SweepRequest& request, const UsedIndex& used,
                                const QString& recordFolder, const FileSystem& fs,
                                const SweepEvents& events) {
    return OtherFilesListing(request, used, recordFolder, fs, events).run();
}

}  // namespace tidewick
