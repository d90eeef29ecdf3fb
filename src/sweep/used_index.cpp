#include "platform/path_text.h"
#include "sweep/sweep.h"

// The used test: the lines of a load as hash sets, so that the other-files computation asks a
// set per file instead of scanning the list.
namespace tidewick {

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
        // "x/../take.wav" names the same file as "take.wav", and is compared as such.
        files_.insert(usedKey(cleanHostPath(usedLineFile(text, folder, trimmed))));
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

}  // namespace tidewick
