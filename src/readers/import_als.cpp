#include "readers/import_als.h"

#include <QSet>
#include <QXmlStreamReader>
#include <algorithm>

#include "readers/gzip_pieces.h"
#include "readers/session_bytes.h"

namespace tidewick {

namespace {

// A Data blob longer than this holds no path this reader could use.
constexpr qsizetype kMaxDataHex = 64 * 1024;

quint16 u16BE(QByteArrayView bytes, qsizetype at) {
    return quint16(quint8(bytes[at]) << 8 | quint8(bytes[at + 1]));
}

// A macOS alias record of version 2: a fixed part of 150 bytes, then tagged extras, each a
// big-endian type and length, its bytes and a pad byte to an even length. Tag 0x12 holds the
// POSIX path from the volume's root, tag 0x13 where the volume is mounted.
QStringList pathsInAlias(QByteArrayView data) {
    constexpr qsizetype kTagsStart = 150;
    if (data.size() < kTagsStart || u16BE(data, 4) != data.size() || u16BE(data, 6) != 2) {
        return {};
    }
    QString posixPath;
    QString mountPoint = QStringLiteral("/");
    for (qsizetype at = kTagsStart; at + 4 <= data.size();) {
        const quint16 type = u16BE(data, at);
        const qsizetype length = u16BE(data, at + 2);
        if (type == 0xFFFF || at + 4 + length > data.size()) {
            break;
        }
        const QString text = QString::fromUtf8(data.sliced(at + 4, length));
        if (type == 0x12) {
            posixPath = text;
        } else if (type == 0x13 && text.startsWith(u'/')) {
            mountPoint = text;
        }
        at += 4 + length + (length % 2);
    }
    if (posixPath.isEmpty()) {
        return {};
    }
    if (!mountPoint.endsWith(u'/')) {
        mountPoint += u'/';
    }
    return {mountPoint + (posixPath.startsWith(u'/') ? posixPath.mid(1) : posixPath)};
}

// A Windows set's Data: the path as UTF-16LE text up to a NUL, with a drive ("D:\...") or a
// network share ("\\server\...") at its start.
QStringList pathsInUtf16(QByteArrayView data) {
    const QString text = utf16LeText(data);
    const bool drive = text.size() > 2 && text[0].isLetter() && text[1] == u':';
    const bool share = text.startsWith(QLatin1String("\\\\"));
    return drive || share ? QStringList{text} : QStringList();
}

// One FileRef as read so far.
struct LiveRef {
    int type = 0;
    QString relativeValue;  // Live 11 and later
    QStringList dirs;       // Live 8 to 10
    bool dirsGiven = false;
    QString name, path;
    QByteArray dataHex;
    bool folder = false;
};

FileReference::Base baseOfType(int type) {
    switch (type) {
        case 1:
            return FileReference::Base::SessionFolder;
        case 3:
            return FileReference::Base::ProjectFolder;
        case 2:
        case 5:
        case 6:
        case 7:
            return FileReference::Base::Library;
        default:
            return FileReference::Base::None;
    }
}

// The FileRefs of a set, each handed over as its own element ("<FileRef>...</FileRef>") and read
// with an XML reader; the references they make, each file once.
class FileRefReader {
public:
    QList<FileReference> references;
    QStringList texts;

    // Reads one FileRef element; false when its XML is broken.
    bool read(QByteArrayView element) {
        // A set names the same sample in many places, each time in the same words.
        const QByteArray raw = QByteArray::fromRawData(element.data(), element.size());
        if (seenElements_.contains(raw)) {
            return true;
        }
        seenElements_.insert(element.toByteArray());
        xml_.clear();
        xml_.addData(raw);
        depth_ = 0;
        ref_ = {};
        while (!xml_.atEnd()) {
            switch (xml_.readNext()) {
                case QXmlStreamReader::StartElement:
                    start();
                    break;
                case QXmlStreamReader::EndElement:
                    end();
                    break;
                case QXmlStreamReader::Characters:
                    if (inData_ && ref_.dataHex.size() < kMaxDataHex) {
                        ref_.dataHex += xml_.text().toLatin1();
                    }
                    break;
                default:
                    break;
            }
        }
        return !xml_.hasError();
    }

private:
    QString value() const { return xml_.attributes().value(QLatin1String("Value")).toString(); }

    void start() {
        ++depth_;
        if (depth_ == 2) {
            child(xml_.name());
        } else if (inRelativePath_ && depth_ == 3 && xml_.name() == u"RelativePathElement") {
            ref_.dirs.append(xml_.attributes().value(QLatin1String("Dir")).toString());
        }
    }

    void child(QStringView name) {
        if (name == u"RelativePathType") {
            ref_.type = value().toInt();
        } else if (name == u"RelativePath") {
            ref_.relativeValue = value();
            inRelativePath_ = ref_.relativeValue.isEmpty();
            ref_.dirsGiven = inRelativePath_;
        } else if (name == u"Name") {
            ref_.name = value();
        } else if (name == u"Path") {
            ref_.path = value();
        } else if (name == u"RefersToFolder") {
            ref_.folder = value() == u"true";
        } else if (name == u"Data") {
            inData_ = true;
        }
    }

    void end() {
        if (depth_ == 2) {
            inRelativePath_ = inData_ = false;
        } else if (depth_ == 1) {
            finish();
        }
        --depth_;
    }

    // The FileRef just closed, as a reference: a folder's keeps nothing, and each file is met
    // once however often the set names it.
    void finish() {
        if (ref_.folder) {
            return;
        }
        FileReference reference;
        reference.base = baseOfType(ref_.type);
        if (!ref_.relativeValue.isEmpty()) {
            reference.relative = ref_.relativeValue;
        } else if (ref_.dirsGiven && !ref_.name.isEmpty()) {
            QStringList parts;
            for (const QString& dir : ref_.dirs) {
                parts.append(dir.isEmpty() ? QStringLiteral("..") : dir);  // "" steps up
            }
            parts.append(ref_.name);
            reference.relative = parts.join(u'/');
        } else if (!ref_.name.isEmpty()) {
            reference.relative = ref_.name;
        }
        if (!ref_.path.isEmpty()) {
            reference.absolute.append(ref_.path);
        }
        for (const QString& path : pathsInLiveData(QByteArray::fromHex(ref_.dataHex))) {
            if (!reference.absolute.contains(path)) {
                reference.absolute.append(path);
            }
        }
        add(std::move(reference));
    }

    void add(FileReference reference) {
        const bool relative = reference.base == FileReference::Base::SessionFolder ||
                              reference.base == FileReference::Base::ProjectFolder;
        QString text = relative || reference.absolute.isEmpty() ? reference.relative
                                                                : reference.absolute.first();
        if (text.isEmpty() || text.size() > kMaxPathBytes) {
            return;
        }
        const QString key = QString::number(int(reference.base)) + u'\n' + reference.relative +
                            u'\n' + reference.absolute.join(u'\n');
        if (!seen_.contains(key)) {
            seen_.insert(key);
            references.append(std::move(reference));
            texts.append(std::move(text));
        }
    }

    QXmlStreamReader xml_;
    int depth_ = 0;
    bool inRelativePath_ = false;
    bool inData_ = false;
    LiveRef ref_;
    QSet<QByteArray> seenElements_;
    QSet<QString> seen_;
};

constexpr QByteArrayView kRefStart = "<FileRef";
constexpr QByteArrayView kRefEnd = "</FileRef>";
// A FileRef longer than this is no reference Live wrote: the set is damaged.
constexpr qsizetype kMaxRefBytes = 4 * 1024 * 1024;

// The text of a set, a piece at a time as it is unpacked: its FileRef elements are found by a
// byte search and read one by one, so that the rest of the set (most of it) costs one scan.
// Only an element that runs over from one piece into the next is copied.
class LiveSetScan {
public:
    FileRefReader refs;
    bool notLive = false;  // the text does not begin as a set does
    bool broken = false;   // a FileRef's XML is broken, or one never ends
    qint64 scanned = 0;

    void feed(QByteArrayView piece) {
        if (notLive || broken) {
            return;
        }
        if (scanned == 0) {
            notLive = !beginsAsSet(piece);
        }
        scanned += piece.size();
        last_ = (last_ + piece.toByteArray()).right(64);
        if (tail_.isEmpty()) {
            scan(piece);
            return;
        }
        const QByteArray joined = std::move(tail_) + piece.toByteArray();
        tail_.clear();
        scan(joined);
    }

    // Whether the text ends with the set's closing tag; a set cut short does not.
    bool closed() const { return endsWithClosing(last_, "</Ableton>"); }
    // Whether a FileRef began and never ended.
    bool refLeftOpen() const { return tail_.size() > kRefStart.size(); }

private:
    static bool beginsAsSet(QByteArrayView text) {
        qsizetype at = text.startsWith("\xEF\xBB\xBF") ? 3 : 0;
        for (;;) {
            while (at < text.size() && QChar::isSpace(uchar(text[at]))) {
                ++at;
            }
            if (!text.sliced(at).startsWith("<?") && !text.sliced(at).startsWith("<!--")) {
                break;
            }
            at = text.indexOf('>', at);  // a declaration, or a comment, before the root
            if (at < 0) {
                return false;
            }
            ++at;
        }
        const QByteArrayView rest = text.sliced(at);
        return rest.startsWith("<Ableton") && rest.size() > 8 &&
               (rest[8] == '>' || QChar::isSpace(uchar(rest[8])));
    }

    void scan(QByteArrayView text) {
        qsizetype at = 0;
        for (;;) {
            const qsizetype start = findBytes(text, kRefStart, at);
            if (start < 0) {
                keepPartialStart(text, at);
                return;
            }
            const qsizetype after = start + kRefStart.size();
            if (after >= text.size()) {
                tail_ = text.sliced(start).toByteArray();
                return;
            }
            if (text[after] != '>' && !QChar::isSpace(uchar(text[after]))) {
                at = after;  // another element whose name begins so
                continue;
            }
            const qsizetype end = findBytes(text, kRefEnd, after);
            if (end < 0) {
                tail_ = text.sliced(start).toByteArray();
                broken = tail_.size() > kMaxRefBytes;
                return;
            }
            if (!refs.read(text.sliced(start, end + kRefEnd.size() - start))) {
                broken = true;
                return;
            }
            at = end + kRefEnd.size();
        }
    }

    // Keeps the end of `text` that may be the start of a FileRef the next piece completes.
    void keepPartialStart(QByteArrayView text, qsizetype from) {
        for (qsizetype at = std::max(from, text.size() - kRefStart.size()); at < text.size();
             ++at) {
            if (kRefStart.startsWith(text.sliced(at))) {
                tail_ = text.sliced(at).toByteArray();
                return;
            }
        }
    }

    QByteArray tail_;
    QByteArray last_;
};

SessionRead failedRead(ReadFailure failure, const QString& detail) {
    return failedSessionRead(SessionKindId::Als, failure, detail);
}

}  // namespace

QStringList pathsInLiveData(QByteArrayView data) {
    const QStringList alias = pathsInAlias(data);
    return alias.isEmpty() ? pathsInUtf16(data) : alias;
}

SessionRead readAlsSession(QByteArrayView bytes, const SessionPlace& place) {
    Q_UNUSED(place);
    if (bytes.startsWith("version https://git-lfs")) {
        // A repository's stand-in for the set: the set itself, and what it names, are unknown.
        return failedRead(ReadFailure::Damaged, QStringLiteral("a Git LFS pointer, not the set"));
    }
    // The set is scanned a piece at a time as it is unpacked, so that its text is never held
    // whole.
    LiveSetScan live;
    bool whole = true;
    if (isGzip(bytes)) {
        GunzipPieces pieces(bytes);
        for (QByteArrayView piece = pieces.next(); !piece.isEmpty(); piece = pieces.next()) {
            live.feed(piece);
            if (live.notLive || live.broken) {
                break;
            }
        }
        whole = !pieces.damaged();
    } else {
        live.feed(bytes);
    }
    if (live.notLive || (live.scanned == 0 && whole)) {
        return failedRead(ReadFailure::NotThisKind, {});
    }
    if (!whole) {
        return failedRead(ReadFailure::Damaged,
                          QStringLiteral("its gzip stream is cut or damaged"));
    }
    if (live.broken || (live.closed() && live.refLeftOpen())) {
        return failedRead(ReadFailure::Damaged,
                          QStringLiteral("a file reference in it is no well-formed XML"));
    }
    if (!live.closed()) {
        return failedRead(ReadFailure::CutShort, QStringLiteral("</Ableton>"));
    }
    SessionRead read;
    read.paths = std::move(live.refs.texts);
    read.references = std::move(live.refs.references);
    return read;
}

}  // namespace tidewick
