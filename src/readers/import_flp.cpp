#include "readers/import_flp.h"

#include <QSet>

#include "readers/path_list.h"
#include "readers/session_bytes.h"
#include "readers/session_text.h"
#include "readers/xml_pieces.h"

namespace tidewick {

namespace {

constexpr quint8 kSamplePath = 196;
constexpr quint8 kVersion = 199;
constexpr quint8 kPluginNew = 212;
constexpr quint8 kPluginState = 213;

// The 32-bit little-endian number at `pos`, read by the caller only where `bytes` hold it.
quint32 u32LE(QByteArrayView bytes, qsizetype pos) {
    return quint32(*readI32LE(bytes, pos));
}

// Text of the file's 8-bit code page or UTF-16LE, up to its first NUL.
QString decodedText(QByteArrayView data, bool utf16) {
    if (!utf16) {
        const qsizetype nul = data.indexOf('\0');
        return decodeSessionText(nul < 0 ? data : data.first(nul));
    }
    return utf16LeText(data);
}

// Whether `text` reads as a path: no control character, and a root or a macro at its start.
bool looksLikePath(const QString& text) {
    if (text.size() < 4 || text.size() > kMaxPathBytes) {
        return false;
    }
    for (const QChar c : text) {
        if (c.unicode() < 32) {
            return false;
        }
    }
    const bool drive =
        text[0].isLetter() && text[1] == u':' && (text[2] == u'\\' || text[2] == u'/');
    return drive || text.startsWith(u'/') || text.startsWith(u'\\') || text.startsWith(u'%');
}

// A plugin's own module names no media of the project.
bool isPluginModule(const QString& path) {
    for (const char* suffix : {".dll", ".vst3", ".component", ".so", ".dylib", ".exe"}) {
        if (path.endsWith(QLatin1String(suffix), Qt::CaseInsensitive)) {
            return true;
        }
    }
    return false;
}

// The values of FilePath="..." in `data`, 8-bit or UTF-16LE (`unit` 1 or 2 bytes a character).
void addFilePathAttributes(QByteArrayView data, int unit, QStringList& paths) {
    QByteArray key;
    for (const char c : QByteArrayView("FilePath=\"")) {
        key += c;
        if (unit == 2) {
            key += '\0';
        }
    }
    for (qsizetype at = findBytes(data, key); at >= 0; at = findBytes(data, key, at + 1)) {
        const qsizetype begin = at + key.size();
        qsizetype end = begin;
        while (end + unit <= data.size() &&
               !(data[end] == '"' && (unit == 1 || data[end + 1] == 0))) {
            end += unit;
        }
        if (end + unit <= data.size() && end - begin <= kMaxPathBytes * unit) {
            paths.append(decodedText(data.sliced(begin, end - begin), unit == 2));
        }
    }
}

// The string that starts at `at`, when a length written just before it (a 64-, 32- or 8-bit
// count of its characters or of its bytes) keeps it inside `data` and it reads as a path.
QString prefixedString(QByteArrayView data, qsizetype at, int unit) {
    for (const int width : {8, 4, 1}) {
        if (at < width) {
            continue;
        }
        quint64 length = width == 1 ? quint8(data[at - 1]) : u32LE(data, at - width);
        if (width == 8 && u32LE(data, at - 4) != 0) {
            continue;
        }
        // A count of UTF-16 characters first: read as bytes, it would cut the path in half.
        for (const quint64 bytes : {length * quint64(unit), length}) {
            if (bytes >= 4 && bytes <= quint64(data.size() - at)) {
                const QString text = decodedText(data.sliced(at, qsizetype(bytes)), unit == 2);
                if (looksLikePath(text)) {
                    return text;
                }
            }
        }
    }
    return {};
}

// The strings after their length that begin with a drive ("C:\", "C:/") or a macro ("%FL").
void addPrefixedStrings(QByteArrayView data, int unit, QStringList& paths) {
    for (qsizetype at = unit; at + 2 * unit < data.size(); ++at) {
        const char c = data[at];
        const bool drive = c == ':' && (data[at + unit] == '\\' || data[at + unit] == '/') &&
                           QChar::isLetter(quint8(data[at - unit]));
        const bool macro = c == '%' && data[at + unit] == 'F' && data[at + 2 * unit] == 'L';
        if (!drive && !macro) {
            continue;
        }
        const qsizetype start = drive ? at - unit : at;
        if (unit == 2 && (data[start + 1] != 0 || data[at + 1] != 0)) {
            continue;
        }
        const QString text = prefixedString(data, start, unit);
        if (!text.isEmpty()) {
            paths.append(text);
            at = start + text.size() * unit;
        }
    }
}

// The references of the project's events, each path once.
class FlpPaths {
public:
    ReferenceList found;
    bool utf16 = false;

    void add(const QString& path) {
        if (path.isEmpty() || path.size() > kMaxPathBytes || isPluginModule(path) ||
            found.contains(path)) {
            return;
        }
        FileReference reference;
        const bool rooted = path.startsWith(u'/') || path.startsWith(QLatin1String("\\\\")) ||
                            (path.size() > 2 && path[1] == u':');
        if (path.startsWith(u'%') || (path.startsWith(u'\\') && !rooted)) {
            reference.base = FileReference::Base::Library;  // in the editor's install
            reference.absolute = {path};
        } else if (rooted) {
            reference.absolute = {path};
        } else {
            reference = {FileReference::Base::SessionFolder, path, {}};
        }
        found.add(std::move(reference), path);
    }
};

// FL 12 and later write their texts in UTF-16LE.
bool versionWritesUtf16(QByteArrayView data) {
    const QString version = decodedText(data, false);
    return version.section(u'.', 0, 0).toInt() >= 12;
}

}  // namespace

QStringList pathsInPluginState(QByteArrayView data) {
    QStringList paths;
    for (const int unit : {1, 2}) {
        addFilePathAttributes(data, unit, paths);
        addPrefixedStrings(data, unit, paths);
    }
    return paths;
}

SessionRead readFlpSession(QByteArrayView bytes, const SessionPlace& place) {
    Q_UNUSED(place);
    const auto damaged = [](qsizetype at) {
        return failedSessionRead(SessionKindId::Flp, ReadFailure::Damaged,
                                 QStringLiteral("its events break off at byte %1").arg(at));
    };
    if (!bytes.startsWith("FLhd") || bytes.size() < 8) {
        return failedSessionRead(SessionKindId::Flp, ReadFailure::NotThisKind, {});
    }
    const quint64 headerEnd = 8 + quint64(u32LE(bytes, 4));
    if (headerEnd + 8 > quint64(bytes.size()) ||
        bytes.sliced(qsizetype(headerEnd), 4) != QByteArrayView("FLdt")) {
        return damaged(qsizetype(std::min<quint64>(headerEnd, quint64(bytes.size()))));
    }
    const qsizetype begin = qsizetype(headerEnd) + 8;
    const quint64 declared = u32LE(bytes, qsizetype(headerEnd) + 4);
    if (declared > quint64(bytes.size() - begin)) {
        return damaged(bytes.size());  // cut short: the events it lost may name samples
    }
    const QByteArrayView events = bytes.sliced(begin, qsizetype(declared));
    FlpPaths project;
    for (qsizetype at = 0; at < events.size();) {
        const quint8 id = quint8(events[at++]);
        quint64 length = id < 64 ? 1 : id < 128 ? 2 : id < 192 ? 4 : 0;
        for (int shift = 0; id >= 192; shift += 7) {
            if (at >= events.size() || shift > 28) {
                return damaged(begin + at);
            }
            const quint8 part = quint8(events[at++]);
            length |= quint64(part & 0x7F) << shift;
            if (!(part & 0x80)) {
                break;
            }
        }
        if (length > quint64(events.size() - at)) {
            return damaged(begin + at);
        }
        const QByteArrayView data = events.sliced(at, qsizetype(length));
        at += qsizetype(length);
        if (id == kVersion) {
            project.utf16 = versionWritesUtf16(data);
        } else if (id == kSamplePath) {
            // A project without its version still shows UTF-16LE by the NUL after a character.
            project.add(decodedText(data, project.utf16 || (data.size() > 1 && data[1] == '\0')));
        } else if (id == kPluginNew || id == kPluginState) {
            for (const QString& path : pathsInPluginState(data)) {
                project.add(path);
            }
        }
    }
    SessionRead read;
    project.found.moveInto(read);
    return read;
}

}  // namespace tidewick
