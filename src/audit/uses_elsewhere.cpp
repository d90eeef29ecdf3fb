#include "audit/uses_elsewhere.h"

#include "sweep/sweep.h"
#include "text/path_text.h"
#include "text/text_index.h"

namespace tidewick {

namespace {

// Whether the clean path `file` names a file right in `folder` (with its separator).
bool liesIn(const QString& file, const QString& folder) {
    if (file.startsWith(u'/')) {  // a rooted path, quickly
        return file.size() > folder.size() && file.startsWith(folder) &&
               file.indexOf(u'/', folder.size()) < 0;
    }
    return withSeparator(hostParentFolder(file)) == folder;
}

}  // namespace

QStringList usedElsewhere(const QString& session, const SessionKind& kind,
                          const SessionRead& read) {
    const QString folder = withSeparator(hostParentFolder(session));
    QStringList files;
    TextSet seen;  // a session may name hundreds of thousands of files elsewhere
    const auto note = [&](const QString& named) {
        const QString file = cleanHostPath(named);
        if (!liesIn(file, folder) && !seen.contains(file)) {
            seen.insert(file);
            files.append(file);
        }
    };
    if (kind.projectScope) {
        QHash<QString, ProjectTree> trees;
        for (const QString& named :
             filesKeptByReferences(read, session, {folder}, FileSystem(), trees)) {
            note(named);
        }
        return files;
    }
    const QString recordFolder = kind.startingRecordFolder(folder);
    QStringList named;
    for (const QString& written : read.paths) {
        named.clear();
        appendFilesNamedBy(written, folder, recordFolder, named);
        for (const QString& file : named) {
            note(file);
        }
    }
    return files;
}

Keepers keepersOf(const QHash<QString, QStringList>& elsewhere) {
    Keepers keepers;
    for (auto it = elsewhere.cbegin(); it != elsewhere.cend(); ++it) {
        for (const QString& file : it.value()) {
            keepers.folders.insert(usedKey(withSeparator(hostParentFolder(file))));
            QString& keeper = keepers.files[usedKey(file)];
            if (keeper.isEmpty() || it.key() < keeper) {
                keeper = it.key();  // the same one, whatever order the sessions came in
            }
        }
    }
    return keepers;
}

void keepWhatOthersUse(FolderReport& report, const Keepers& keepers) {
    const QString own = withSeparator(report.folder);
    qsizetype kept = 0;
    QString folder;  // of the file before, as the report names it
    bool folderKept = false;
    for (qsizetype i = 0; i < report.reclaimable.size(); ++i) {
        const auto& [text, size] = report.reclaimable[i];
        // The files come folder by folder, and most folders hold no file that others use.
        if (const QStringView named = QStringView(text).first(text.lastIndexOf(u'/') + 1);
            i == 0 || named != folder) {
            folder = named.toString();
            folderKept = keepers.folders.contains(usedKey(report.reclaimablePath(folder)));
        }
        const QString path = folderKept ? report.reclaimablePath(text) : QString();
        const QString keeper = folderKept ? keepers.files.value(usedKey(path)) : QString();
        if (!keeper.isEmpty() && withSeparator(hostParentFolder(keeper)) != own) {
            report.keptElsewhere.append({path, size, keeper});
            report.reclaimableBytes -= size;
            ++kept;
        } else if (kept > 0) {
            report.reclaimable[i - kept] = report.reclaimable[i];
        }
    }
    report.reclaimable.resize(report.reclaimable.size() - kept);
}

}  // namespace tidewick
