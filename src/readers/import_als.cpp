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
    QString text;
    for (qsizetype at = 0; at + 1 < data.size(); at += 2) {
        const char16_t unit = char16_t(quint8(data[at]) | quint8(data[at + 1]) << 8);
        if (unit == 0) {
            break;
        }
        text += QChar(unit);
    }
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

// The tokens of a set, as many as are at hand; the FileRefs met become references.
class LiveSetReader {
public:
    QXmlStreamReader xml;
    bool notLive = false;
    bool rooted = false;  // the Ableton root was met
    QList<FileReference> references;
    QStringList texts;

    // Reads the tokens at hand; false once the XML is broken or no set.
    bool readAvailable() {
        while (!xml.atEnd() && !notLive) {
            switch (xml.readNext()) {
                case QXmlStreamReader::StartElement:
                    start();
                    break;
                case QXmlStreamReader::EndElement:
                    end();
                    break;
                case QXmlStreamReader::Characters:
                    if (inData_ && ref_.dataHex.size() < kMaxDataHex) {
                        ref_.dataHex += xml.text().toLatin1();
                    }
                    break;
                default:
                    break;
            }
        }
        return !notLive && (xml.error() == QXmlStreamReader::NoError ||
                            xml.error() == QXmlStreamReader::PrematureEndOfDocumentError);
    }

private:
    QString value() const { return xml.attributes().value(QLatin1String("Value")).toString(); }

    void start() {
        ++depth_;
        const QStringView name = xml.name();
        if (depth_ == 1) {
            notLive = name != u"Ableton";
            rooted = !notLive;
        } else if (refDepth_ < 0 && name == u"FileRef") {
            refDepth_ = depth_;
            ref_ = {};
        } else if (refDepth_ > 0 && depth_ == refDepth_ + 1) {
            child(name);
        } else if (inRelativePath_ && depth_ == refDepth_ + 2 && name == u"RelativePathElement") {
            ref_.dirs.append(xml.attributes().value(QLatin1String("Dir")).toString());
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
        if (refDepth_ > 0 && depth_ == refDepth_ + 1) {
            inRelativePath_ = inData_ = false;
        } else if (depth_ == refDepth_) {
            finish();
            refDepth_ = -1;
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

    int depth_ = 0;
    int refDepth_ = -1;
    bool inRelativePath_ = false;
    bool inData_ = false;
    LiveRef ref_;
    QSet<QString> seen_;
};

SessionRead failedRead(ReadFailure failure, const QString& detail) {
    SessionRead read;
    read.outcome =
        failure == ReadFailure::NotThisKind ? ReaderOutcome::Rejected : ReaderOutcome::Failed;
    read.problem = ReadProblem{failure, SessionKindId::Als, ReadSeverity::Error, detail, {}};
    return read;
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
    // The XML goes to the reader a piece at a time, so neither it nor the unpacked text is
    // ever held whole.
    LiveSetReader live;
    bool whole = true;
    if (isGzip(bytes)) {
        GunzipPieces pieces(bytes);
        for (QByteArrayView piece = pieces.next(); !piece.isEmpty(); piece = pieces.next()) {
            live.xml.addData(piece.toByteArray());
            if (!live.readAvailable()) {
                break;
            }
        }
        whole = !pieces.damaged();
    } else {
        constexpr qsizetype kPiece = 256 * 1024;
        for (qsizetype at = 0; at < bytes.size(); at += kPiece) {
            live.xml.addData(bytes.sliced(at, std::min(kPiece, bytes.size() - at)).toByteArray());
            if (!live.readAvailable()) {
                break;
            }
        }
    }
    if (live.notLive || (!live.rooted && whole)) {
        return failedRead(ReadFailure::NotThisKind, {});
    }
    if (!whole) {
        return failedRead(ReadFailure::Damaged,
                          QStringLiteral("its gzip stream is cut or damaged"));
    }
    if (live.xml.error() == QXmlStreamReader::PrematureEndOfDocumentError) {
        return failedRead(ReadFailure::CutShort, QStringLiteral("</Ableton>"));
    }
    if (live.xml.error() != QXmlStreamReader::NoError) {
        return failedRead(
            ReadFailure::Damaged,
            QStringLiteral("line %1: %2").arg(live.xml.lineNumber()).arg(live.xml.errorString()));
    }
    SessionRead read;
    read.paths = std::move(live.texts);
    read.references = std::move(live.references);
    return read;
}

}  // namespace tidewick
