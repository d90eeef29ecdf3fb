#include "sweep/project_files.h"

#include <QSet>

#include "sweep/listed_disk.h"
#include "sweep/sweep.h"
#include "text/path_text.h"
#include "text/wildcard.h"

namespace tidewick {

namespace {

const QString kProjectInfo = QStringLiteral("Ableton Project Info");

// A path a session names, in host form: the "\" of a session saved on Windows becomes "/".
QString hostForm(QString path) {
    if (hostSeparator() == u'/') {
        path.replace(u'\\', u'/');
    }
    return path;
}

// The folders at the top of the tree that a load walks, for the sessions of `root`.
struct Scope {
    bool whole = false;     // every folder of the root
    QSet<QString> entered;  // else these folders of it
};

Scope scopeOf(const QStringList& sessions, const QString& root, const FileSystem& fs) {
    Scope scope;
    for (const QString& session : sessions) {
        const SessionKind* kind = sessionKindForFile(session);
        if (kind && kind->id == SessionKindId::Als) {
            scope.whole = scope.whole || fs.FolderExists(root + kProjectInfo);
            scope.entered.insert(QStringLiteral("Samples"));
        } else if (kind && kind->id == SessionKindId::Aup) {
            const QString data = dataFolderOf(session);
            if (data.startsWith(root)) {
                scope.entered.insert(data.mid(root.size()).chopped(1));
            }
        } else if (kind && kind->projectScope) {
            scope.whole = true;  // Ardour, FL Studio, MLT: the project folder's whole tree
        }
    }
    return scope;
}

}  // namespace

QStringList ProjectTree::folderPaths() const {
    QStringList paths;
    for (const auto& [path, relative] : folders) {
        paths.append(path);
    }
    return paths;
}

QString projectFolderOf(const SessionKind& kind, const QString& sessionFolder,
                        const FileSystem& fs) {
    const QString own = withSeparator(cleanHostPath(sessionFolder));
    if (kind.id != SessionKindId::Als) {
        return own;
    }
    for (QString folder = own; !folder.isEmpty();) {
        if (fs.FolderExists(folder + kProjectInfo)) {
            return folder;
        }
        const QString parent = hostParentFolder(folder.chopped(1));
        if (parent.isEmpty() || withSeparator(parent) == folder) {
            break;
        }
        folder = withSeparator(parent);
    }
    return own;
}

QString dataFolderOf(const QString& sessionPath) {
    return withSeparator(hostParentFolder(sessionPath)) + GetBaseName(hostFileName(sessionPath)) +
           QStringLiteral("_data") + hostSeparator();
}

ProjectTree projectTree(const QStringList& sessions, const FileSystem& fs, ListedDisk* listed) {
    ProjectTree tree;
    // A Live set decides the root: its project folder lies at or above every other session's.
    QString root;
    for (const QString& session : sessions) {
        const SessionKind* kind = sessionKindForFile(session);
        if (kind && (root.isEmpty() || kind->id == SessionKindId::Als)) {
            root = projectFolderOf(*kind, hostParentFolder(session), fs);
        }
    }
    if (root.isEmpty()) {
        return tree;
    }
    tree.root = root;
    const Scope scope = scopeOf(sessions, root, fs);
    tree.folders.append({root, QString()});
    for (qsizetype i = 0; i < tree.folders.size(); ++i) {
        const auto [folder, relative] = tree.folders[i];
        FileSystem::Contents contents = fs.listContents(folder);
        for (const FolderEntry& file : contents.files) {
            tree.byName[usedKey(file.name)].append(folder + file.name);
        }
        if (listed) {
            listed->keep(folder, std::move(contents.files));
        }
        for (const QString& name : contents.folders) {
            const bool top = i == 0;
            if (name.startsWith(u'.') || (top && name == kProjectInfo) ||
                (top && !scope.whole && !scope.entered.contains(name))) {
                continue;
            }
            tree.folders.append(
                {folder + name + hostSeparator(), relative + name + hostSeparator()});
        }
    }
    return tree;
}

QStringList sessionOwnFiles(const QString& sessionPath, const FileSystem& fs) {
    const SessionKind* kind = sessionKindForFile(sessionPath);
    if (kind && kind->id == SessionKindId::Aup) {
        return {sessionPath + QStringLiteral("-wal"), sessionPath + QStringLiteral("-shm")};
    }
    if (!kind || kind->id != SessionKindId::Ardour) {
        return {};
    }
    const QString folder = withSeparator(hostParentFolder(sessionPath));
    QStringList files;
    for (const FolderEntry& entry : fs.listFiles(folder, true, isArdourStateFile)) {
        files.append(folder + entry.name);
    }
    return files;
}

bool isArdourStateFile(const QString& name) {
    return name == u"instant.xml" || name.endsWith(QLatin1String(".bak")) ||
           name.endsWith(QLatin1String(".pending")) || name.endsWith(QLatin1String(".history"));
}

bool partOfProjectSession(const QString& name) {
    const SessionKind* kind = sessionKindForName(name);
    return (kind && kind->projectScope) ||
           name.endsWith(QLatin1String(".aup3-wal"), Qt::CaseInsensitive) ||
           name.endsWith(QLatin1String(".aup3-shm"), Qt::CaseInsensitive);
}

namespace {

// The folders "interchange/<any folder>/" of an Ardour session's folder that the tree holds, where
// Ardour keeps the session's "audiofiles/" and "midifiles/".
QStringList interchangeFolders(const QString& sessionPath, const ProjectTree& tree) {
    const QString interchange = withSeparator(hostParentFolder(sessionPath)) +
                                QStringLiteral("interchange") + hostSeparator();
    QStringList folders;
    for (const auto& [folder, relative] : tree.folders) {
        if (folder.startsWith(interchange) && folder.size() > interchange.size() &&
            folder.indexOf(hostSeparator(), interchange.size()) == folder.size() - 1) {
            folders.append(folder);
        }
    }
    return folders;
}

// The files a sequence's pattern names: every file of a candidate's folder that its name
// pattern matches, and, where none does, every file of the tree whose name matches it.
ReferenceFiles filesOfPattern(const QStringList& candidates, const ProjectTree& tree,
                              const FileSystem& fs) {
    ReferenceFiles files;
    files.shown = candidates.value(0);
    for (const QString& candidate : candidates) {
        const QString folder = hostParentFolder(candidate);
        if (!isHostRooted(candidate) || !fs.FolderExists(folder)) {
            continue;
        }
        const QString pattern = usedKey(hostFileName(candidate));
        for (const FolderEntry& entry : fs.listFiles(folder)) {
            if (wildcardMatch(usedKey(entry.name), pattern)) {
                files.kept.append(withSeparator(folder) + entry.name);
            }
        }
    }
    if (files.kept.isEmpty() && !candidates.isEmpty()) {
        const QString pattern = usedKey(hostFileName(candidates.constFirst()));
        for (qsizetype i = 0; i < tree.byName.size(); ++i) {
            if (wildcardMatch(tree.byName.texts()[i], pattern)) {
                files.kept += tree.byName.values()[i];
            }
        }
    } else if (!files.kept.isEmpty()) {
        files.shown = files.kept.takeFirst();
        files.exists = true;
    }
    return files;
}

// The files a reference could name, as texts of this host, the likeliest first.
QStringList candidatesOf(const FileReference& reference, const QString& sessionPath,
                         const QStringList& folders, const ProjectTree& tree) {
    const QString& root = tree.root;
    using Base = FileReference::Base;
    QStringList candidates;
    const auto add = [&candidates](const QString& path) {
        const QString clean = cleanHostPath(path);
        if (!path.isEmpty() && !candidates.contains(clean)) {
            candidates.append(clean);
        }
    };
    const QString relative = hostForm(reference.relative);
    if (reference.base == Base::DataFolder) {
        add(dataFolderOf(sessionPath) + relative);
    } else if (reference.base == Base::Interchange) {
        for (const QString& folder : interchangeFolders(sessionPath, tree)) {
            add(folder + relative);
        }
    } else if (!relative.isEmpty() && !isHostRooted(relative) && !relative.contains(u':')) {
        QStringList from = folders;
        from.insert(reference.base == Base::ProjectFolder ? 0 : from.size(), root);
        for (const QString& folder : from) {
            add(withSeparator(folder) + relative);
        }
    }
    for (const QString& absolute : reference.absolute) {
        add(hostForm(absolute));
    }
    return candidates;
}

}  // namespace

ReferenceFiles filesOfReference(const FileReference& reference, const QString& sessionPath,
                                const QStringList& folders, const ProjectTree& tree,
                                const FileSystem& fs) {
    ReferenceFiles files;
    if (reference.base == FileReference::Base::Library) {
        // Inside an editor's library or pack: nothing of the project is this file.
        files.outside = true;
        files.shown = hostForm(reference.absolute.value(0, reference.relative));
        files.exists = isHostRooted(files.shown) && fs.FileExists(files.shown);
        return files;
    }
    if (reference.pattern) {
        return filesOfPattern(candidatesOf(reference, sessionPath, folders, tree), tree, fs);
    }
    const QStringList candidates = candidatesOf(reference, sessionPath, folders, tree);
    for (const QString& candidate : candidates) {
        // Only a path rooted here can be there: "C:/x.wav" on Linux names no file of this disk.
        if (!isHostRooted(candidate) || !fs.FileExists(candidate)) {
            continue;
        }
        if (files.exists) {
            files.kept.append(candidate);
        } else {
            files.shown = candidate;
            files.exists = true;
        }
    }
    if (files.exists) {
        return files;
    }
    files.shown = candidates.value(0);
    // Saved on another machine: a file of its name anywhere in the project is kept.
    const QString name = GetFileName(
        hostForm(reference.relative.isEmpty() ? reference.absolute.value(0) : reference.relative));
    if (!name.isEmpty()) {
        const QStringList* named = tree.byName.find(usedKey(name));
        files.kept = named ? *named : QStringList();
    }
    return files;
}

}  // namespace tidewick
