#include "text/path_text.h"

#include <QDir>
#include <algorithm>

namespace tidewick {

namespace {

QString hex(int value, int digits) {
    return QStringLiteral("%1").arg(value, digits, 16, QLatin1Char('0')).toUpper();
}

}  // namespace

QChar hostSeparator() {
#ifdef Q_OS_WIN
    return u'\\';
#else
    return u'/';
#endif
}

QString withSeparator(QString folder) {
    AddBackslash(folder);
    return folder;
}

bool isHostRooted(const QString& path) {
    if (path.isEmpty()) {
        return false;
    }
#ifdef Q_OS_WIN
    if (path.size() >= 2 && path[1] == u':' && path[0].isLetter()) {
        return true;
    }
    return isPathSeparator(path.front());
#else
    return path.front() == u'/';
#endif
}

QString cleanHostPath(const QString& path) {
#ifndef Q_OS_WIN
    // Without "//", without a "." or ".." part (each would follow a "/" or begin the path) and
    // without a trailing "/", a path is clean already: most paths, kept as they are.
    const bool clean = !path.isEmpty() && path.front() != u'.' &&
                       (path.size() == 1 || path.back() != u'/') &&
                       std::adjacent_find(path.cbegin(), path.cend(), [](QChar c, QChar next) {
                           return c == u'/' && (next == u'/' || next == u'.');
                       }) == path.cend();
    if (clean) {
        return path;
    }
#endif
    return QDir::toNativeSeparators(QDir::cleanPath(path));
}

QString AddBackslash(QString& path) {
    if (path.isEmpty() || !isPathSeparator(path.back())) {
        path.append(hostSeparator());
    }
    return path;
}

QString ReplaceAll(const QString& findText, QString& text, const QString& replaceText) {
    if (findText.isEmpty()) {
        return text;
    }
    if (replaceText.contains(findText)) {
        // Replacing again and again from the start would never end; one pass is the only
        // answer that does.
        text.replace(findText, replaceText);
        return text;
    }
    // Restarting at the position of the last hit finds the same occurrences as restarting at
    // the first character: nothing before it can have changed into a match, except a match
    // that ends inside the replacement, and that starts at most |findText| - 1 characters back.
    qsizetype from = 0;
    for (;;) {
        const qsizetype hit = text.indexOf(findText, from);
        if (hit < 0) {
            return text;
        }
        text.replace(hit, findText.size(), replaceText);
        from = qMax<qsizetype>(0, hit - findText.size() + 1);
    }
}

namespace {

// The end of the path once trailing separators are dropped, though never the root's own.
qsizetype endWithoutTrailingSeparators(QStringView path) {
    qsizetype end = path.size();
    while (end > 1 && isPathSeparator(path[end - 1])) {
        --end;
    }
    return end;
}

qsizetype lastSeparator(QStringView path, qsizetype end) {
    for (qsizetype i = end - 1; i >= 0; --i) {
        if (isPathSeparator(path[i])) {
            return i;
        }
    }
    return -1;
}

bool isDriveName(QStringView text) {
    return text.size() == 2 && text[1] == u':' && text[0].isLetter();
}

}  // namespace

QStringView parentFolderView(QStringView path, QString& storage) {
    const qsizetype end = endWithoutTrailingSeparators(path);
    const qsizetype sep = lastSeparator(path, end);
    if (sep < 0) {
        return {};
    }
    if (sep == end - 1 && end == 1) {
        return {};  // the root itself has no parent
    }
    qsizetype parentEnd = sep;
    while (parentEnd > 0 && isPathSeparator(path[parentEnd - 1])) {
        --parentEnd;
    }
    if (parentEnd == 0) {
        return path.first(1);  // "/a.wav" -> "/"
    }
    const QStringView parent = path.first(parentEnd);
    if (!isDriveName(parent)) {
        return parent;
    }
    if (path[parentEnd] == path[sep]) {
        return path.first(parentEnd + 1);  // "C:\a.wav" -> "C:\"
    }
    storage = parent.toString() + path[sep];
    return storage;
}

QString GetParentFolderName(const QString& path) {
    QString storage;
    const QStringView parent = parentFolderView(path, storage);
    return storage.isEmpty() ? parent.toString() : storage;
}

qsizetype nameStart(QStringView path) {
    return lastSeparator(path, path.size()) + 1;
}

std::pair<QString, QString> folderAndName(const QString& path) {
    const qsizetype cut = nameStart(path);
    return {path.left(cut), path.mid(cut)};
}

QStringView fileNameView(QStringView path) {
    const qsizetype end = endWithoutTrailingSeparators(path);
    const qsizetype sep = lastSeparator(path, end);
    const QStringView name = path.sliced(sep + 1, end - sep - 1);
    if (name.size() == 1 && isPathSeparator(name[0])) {
        return {};
    }
    if (sep < 0 && isDriveName(name)) {
        return {};
    }
    return name;
}

QString GetFileName(const QString& path) {
    const QStringView name = fileNameView(path);
    return name.size() == path.size() ? path : name.toString();
}

QString GetBaseName(const QString& path) {
    const QString name = GetFileName(path);
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot < 0 ? name : name.left(dot);
}

QString GetExtensionName(const QString& path) {
    const QString name = GetFileName(path);
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot < 0 ? QString() : name.mid(dot + 1);
}

QString hostFileName(const QString& path) {
#ifdef Q_OS_WIN
    return GetFileName(path);
#else
    qsizetype end = path.size();
    while (end > 1 && path[end - 1] == u'/') {
        --end;
    }
    const qsizetype sep = end > 0 ? path.lastIndexOf(u'/', end - 1) : -1;
    const QString name = path.mid(sep + 1, end - sep - 1);
    return name == QLatin1String("/") ? QString() : name;
#endif
}

QString hostParentFolder(const QString& path) {
#ifdef Q_OS_WIN
    return GetParentFolderName(path);
#else
    qsizetype end = path.size();
    while (end > 1 && path[end - 1] == u'/') {
        --end;
    }
    qsizetype sep = end > 1 ? path.lastIndexOf(u'/', end - 1) : -1;
    if (sep < 0) {
        return {};
    }
    while (sep > 0 && path[sep - 1] == u'/') {
        --sep;
    }
    return sep == 0 ? QStringLiteral("/") : path.left(sep);
#endif
}

QString hostBaseName(const QString& path) {
    const QString name = hostFileName(path);
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot < 0 ? name : name.left(dot);
}

QString trimBlanks(const QString& text) {
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && text[begin] == u' ') {
        ++begin;
    }
    while (end > begin && text[end - 1] == u' ') {
        --end;
    }
    return text.mid(begin, end - begin);
}

QString visibleText(const QString& text) {
    const auto plain = [](QChar c) {
        return c.unicode() >= 0x20 && c.unicode() != 0x7F && !c.isSurrogate();
    };
    if (std::all_of(text.begin(), text.end(), plain)) {
        return text;  // shared, not copied: nearly every name
    }
    QString out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i].unicode();
        const bool pair = QChar::isHighSurrogate(unit) && i + 1 < text.size() &&
                          QChar::isLowSurrogate(text[i + 1].unicode());
        if (pair) {
            out += text[i];
            out += text[++i];
        } else if (unit == u'\n') {
            out += QLatin1String("\\n");
        } else if (unit == u'\t') {
            out += QLatin1String("\\t");
        } else if (unit == u'\r') {
            out += QLatin1String("\\r");
        } else if (unit < 0x20 || unit == 0x7F) {
            out += QLatin1String("\\x") + hex(unit, 2);
        } else if (unit >= 0xDC80 && unit <= 0xDCFF) {
            // A byte that was no UTF-8, kept as the file system's name has it.
            out += QLatin1String("\\x") + hex(unit - 0xDC00, 2);
        } else if (QChar::isSurrogate(unit)) {
            out += QLatin1String("\\u") + hex(unit, 4);
        } else {
            out += text[i];
        }
    }
    return out;
}

}  // namespace tidewick
