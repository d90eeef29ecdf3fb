#pragma once

#include <QString>
#include <utility>

// Path-text operations of the file-system object. They read both "\" and "/" as separators, so
// a path written on Windows and one written on Linux or macOS take the same road.
namespace tidewick {

/// The host's path separator: "\" on Windows, "/" elsewhere.
QChar hostSeparator();

/// True for "\" and "/".
inline bool isPathSeparator(QChar c) {
    return c == u'\\' || c == u'/';
}

/// Appends the host separator to `path` itself when its last character is no separator, and
/// returns the result. Callers rely on both effects; empty text becomes the separator alone.
QString AddBackslash(QString& path);

/// `folder` with the host separator appended when its last character is no separator: the
/// form to which a file name is joined ("Song/" + "take.wav").
QString withSeparator(QString folder);

/// Replaces the first occurrence of `findText` in `text` again and again, from the start each
/// time, until none is left; changes `text` itself and returns it. So "&amp;amp;" with "&amp;"
/// and "&" becomes "&".
QString ReplaceAll(const QString& findText, QString& text, const QString& replaceText);

/// The path without its last component: empty for a bare name, and a root keeps its separator
/// ("C:\" for "C:\a.wav", "/" for "/a.wav").
QString GetParentFolderName(const QString& path);
/// The same as a view into `path`, or into `storage` for a drive's root that `path` writes with
/// another separator than the one it is cut at ("C:/\a.wav"): no copy for any other path.
QStringView parentFolderView(QStringView path, QString& storage);

/// The last component of a path ("take.wav" for "C:\x\take.wav").
QString GetFileName(const QString& path);
/// The same, as a view into `path`.
QStringView fileNameView(QStringView path);

/// `path` cut after its last separator, as it stands: the folder with that separator, and the
/// name ("/x/" and "take.wav" for "/x/take.wav"; "" and the whole for a bare name).
std::pair<QString, QString> folderAndName(const QString& path);
/// Where the name of `path` begins: past its last separator (0 for a bare name).
qsizetype nameStart(QStringView path);

/// The last component without its extension ("take" for "C:\x\take.wav").
QString GetBaseName(const QString& path);

/// The text after the last dot of the last component, without the dot; empty when there is none.
QString GetExtensionName(const QString& path);

/// The last component of a path that names a file on this machine: the separators split it
/// only where the host has them, so on Linux and macOS "x\take.wav" is one name.
QString hostFileName(const QString& path);

/// The folder of such a path: empty for a bare name, "/" for a file at the root.
QString hostParentFolder(const QString& path);

/// The last component of such a path without its extension.
QString hostBaseName(const QString& path);

/// `text` as one line for the eye, in a list or a terminal: control characters are written as
/// escapes ("\n", "\x1B"), and so is a byte of a file name that was no UTF-8 ("\xFF"), so
/// that a name can neither break a line nor drive a terminal.
QString visibleText(const QString& text);

/// Whether `path` begins at a root of this machine: "/" (on Windows also "C:" and "\\").
/// Anything else is a name to be taken in some folder.
bool isHostRooted(const QString& path);

/// `path` in one spelling, with the host's separators and without "." and ".." steps or
/// doubled separators: "/s/x/../Audio/a" and "/s/./Audio/a" are both "/s/Audio/a".
QString cleanHostPath(const QString& path);

/// Removes leading and trailing blanks (code 32) only; tabs and other white space stay.
QString trimBlanks(const QString& text);

}  // namespace tidewick
