#include <algorithm>
#include <array>
#include <atomic>
#include <vector>

#include "platform/on_cores.h"

#include "sweep/sweep.h"
#include "text/letter_case.h"
#include "text/path_text.h"

// The used test: the lines of a load as hash sets, so that the other-files computation asks a
// set per file instead of scanning the list.
namespace tidewick {

QString usedKey(const QString& name) {
    if (!isAscii(name)) {
        return name.normalized(QString::NormalizationForm_C).toUpper();
    }
    return upperCase(name);
}

UsedIndex::UsedIndex(const QList<UsedLine>& lines, const QString& sessionFolder, bool trimmed,
                     const FileSystem& fs)
    : trimmed_(trimmed) {
    const QString folder = withSeparator(sessionFolder);
    files_.reserve(lines.size());
    peakSources_.reserve(lines.size());
    for (const UsedLine& line : lines) {
        const QString& text = line.text;
        const QString file = usedLineFile(text, folder, trimmed);
        // "x/../take.wav" names the same file as "take.wav", and is compared as such.
        files_.insert(usedKey(cleanHostPath(file)));
        if (trimmed) {
            lines_.insert(usedKey(text));
        }
        // The same file by another path (a folder reached through a link), and a link's target.
        if (line.exists) {
            for (const FileId& id : fs.fileIds(file)) {
                ids_.insert(id);
            }
        }
        notePeakSource(text);
    }
}

std::optional<UsedIndex::PeakOwner> UsedIndex::peakOwnerOf(const QString& path) {
    static constexpr std::array<QLatin1StringView, 7> kMediaExtensions = {
        QLatin1StringView("wav"), QLatin1StringView("wv"),   QLatin1StringView("ape"),
        QLatin1StringView("aif"), QLatin1StringView("flac"), QLatin1StringView("mp3"),
        QLatin1StringView("ogg")};
    // The name's base and extension, as GetBaseName and GetExtensionName give them. Only an
    // ASCII extension can be one of the media's.
    const QStringView name = fileNameView(path);
    const qsizetype dot = name.lastIndexOf(u'.');
    if (dot < 0) {
        return std::nullopt;  // no extension, no media
    }
    const QStringView extension = name.sliced(dot + 1);
    if (extension.size() > 4 || !isAscii(extension)) {
        return std::nullopt;
    }
    const auto media = std::find_if(kMediaExtensions.begin(), kMediaExtensions.end(), [&](auto e) {
        return extension.compare(e, Qt::CaseInsensitive) == 0;
    });
    if (media == kMediaExtensions.end()) {
        return std::nullopt;
    }
    return PeakOwner{upperCase(name.first(dot)), media == kMediaExtensions.begin()};
}

void UsedIndex::notePeakSource(const QString& path) {
    peakSources_.append(path);
    ownersMade_ = false;  // taken in when a peak file next asks
}

void UsedIndex::makeMediaOwners() const {
    const std::lock_guard lock(ownersMutex_);
    if (ownersMade_) {
        return;
    }
    for (const QString& path : std::as_const(peakSources_)) {
        if (const std::optional<PeakOwner> owner = peakOwnerOf(path)) {
            bool& ownedByWav = mediaOwners_[owner->base];
            ownedByWav = ownedByWav || owner->wav;
        }
    }
    peakSources_.clear();
    ownersMade_ = true;
}

bool UsedIndex::ownsPeak(const QString& base, bool anyMedia) const {
    makeMediaOwners();
    const bool* owned = mediaOwners_.find(base);
    return (owned != nullptr && (anyMedia || *owned)) ||
           std::any_of(guards_.cbegin(), guards_.cend(),
                       [&](const auto& guard) { return guard->ownsPeak(base, anyMedia); });
}

bool UsedIndex::names(const QString& path, const QString& recordFolder) const {
    return files_.contains(usedKey(path)) ||
           (trimmed_ && lines_.contains(usedKey(trimFolders(path, recordFolder))));
}

bool UsedIndex::names(const HashedText& key, const QString& folderKey, const QString& name,
                      const QString& recordFolder, FileId id) const {
    // Keys join where the folder ends in its separator: letter case and the form of accented
    // letters change nothing across it.
    if (files_.contains(key) || (id.isKnown() && ids_.contains(id))) {
        return true;
    }
    if (trimmed_ && names(folderKey + name, recordFolder)) {
        return true;
    }
    return std::any_of(guards_.cbegin(), guards_.cend(), [&](const auto& guard) {
        return guard->names(key, folderKey, name, recordFolder, id);
    });
}

UsedIndex::Keeping UsedIndex::keepingOf(const QString& path, const FileSystem& fs) {
    return {usedKey(cleanHostPath(path)), fs.fileIds(path)};
}

void UsedIndex::keep(const QString& path, const QString& session, const FileSystem& fs) {
    apply(keepingOf(path, fs), path, session);
}

void UsedIndex::keepEach(const QList<std::pair<QString, QString>>& files, const FileSystem& fs) {
    // What keeping each file asks (its key, the disk's word on it) is worked out on the cores;
    // the answers go in one after the other, in order.
    std::vector<Keeping> keepings(size_t(files.size()));
    constexpr qsizetype kShare = 512;  // files a core takes at a time
    std::atomic<qsizetype> next{0};
    onCores(files.size() / kShare + 1, [&](bool) {
        for (qsizetype from = next.fetch_add(kShare); from < files.size();
             from = next.fetch_add(kShare)) {
            for (qsizetype i = from; i < std::min(from + kShare, files.size()); ++i) {
                keepings[size_t(i)] = keepingOf(files[i].first, fs);
            }
        }
    });
    peakSources_.reserve(peakSources_.size() + files.size());
    for (qsizetype i = 0; i < files.size(); ++i) {
        apply(keepings[size_t(i)], files[i].first, files[i].second);
    }
}

void UsedIndex::apply(const Keeping& keeping, const QString& path, const QString& session) {
    notePeakSource(path);  // its peak files are kept with "Keep Used ... Files" too
    auto [keptAt, added] = keptKeys_.tryEmplace(keeping.key);  // its place, found or made
    qsizetype at = added ? -1 : keptAt;
    for (const FileId& id : keeping.ids) {
        if (at < 0) {
            at = keptIds_.value(id, -1);
        }
    }
    if (at < 0) {
        // Most kept files have one keeper, and files come session by session: they share the
        // one list until another keeper joins one of them.
        if (soleKeeper_.constFirst() != session) {
            soleKeeper_ = QStringList{session};
        }
        at = keepers_.size();
        keepers_.append(soleKeeper_);
    } else if (!keepers_[at].contains(session)) {
        keepers_[at].append(session);
    }
    keptAt = at;
    for (const FileId& id : keeping.ids) {
        keptIds_.insert(id, at);
    }
}

void UsedIndex::hide(const QString& path, const FileSystem& fs) {
    files_.insert(usedKey(cleanHostPath(path)));
    for (const FileId& id : fs.fileIds(path)) {
        ids_.insert(id);
    }
}

const QStringList* UsedIndex::keptBy(const HashedText& key, FileId id) const {
    const qsizetype* known = keptKeys_.find(key);
    qsizetype at = known ? *known : -1;
    if (at < 0 && id.isKnown()) {
        at = keptIds_.value(id, -1);
    }
    if (at >= 0) {
        return &keepers_[at];
    }
    for (const auto& guard : guards_) {
        if (const QStringList* keepers = guard->keptBy(key, id)) {
            return keepers;
        }
    }
    return nullptr;
}

}  // namespace tidewick
