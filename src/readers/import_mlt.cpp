#include "readers/import_mlt.h"

#include <QSet>
#include <optional>
#include <utility>

#include "readers/path_list.h"
#include "readers/session_bytes.h"
#include "readers/xml_pieces.h"

namespace tidewick {

namespace {

bool isRooted(QStringView path) {
    return path.startsWith(u'/') || path.startsWith(u'\\') || (path.size() > 1 && path[1] == u':');
}

// The length of a speed prefix ("3:", "-0.5:", "0,7:"), 0 for none: digits, at most one
// decimal point or comma, then a colon. A drive ("C:") is a letter, never a prefix.
qsizetype speedPrefixLength(QStringView text) {
    qsizetype at = text.startsWith(u'-') ? 1 : 0;
    bool digits = false, point = false;
    for (; at < text.size(); ++at) {
        const QChar c = text[at];
        if (c.isDigit()) {
            digits = true;
        } else if ((c == u'.' || c == u',') && !point) {
            point = true;
        } else {
            break;
        }
    }
    return digits && at < text.size() && text[at] == u':' ? at + 1 : 0;
}

// A file name with every wildcard character written as a one-character list: "[*]".
QString escapedForWildcard(QStringView name) {
    QString text;
    for (const QChar c : name) {
        if (c == u'*' || c == u'?' || c == u'#' || c == u'[') {
            text += u'[' + QString(c) + u']';
        } else {
            text += c;
        }
    }
    return text;
}

// The services whose resource is a colour, a text or a generator's setting, never a file.
bool namesNoFile(const QString& service) {
    static const QSet<QString> generators = {
        QStringLiteral("color"),     QStringLiteral("colour"), QStringLiteral("kdenlivetitle"),
        QStringLiteral("qtext"),     QStringLiteral("noise"),  QStringLiteral("tone"),
        QStringLiteral("blipflash"), QStringLiteral("count")};
    return generators.contains(service) || service.startsWith(QLatin1String("frei0r."));
}

// One producer or chain as read so far.
struct Clip {
    QString service;
    QStringList resources;  // resource and warp_resource
    QStringList files;      // kdenlive:originalurl, kdenlive:proxy
};

// The clips of the project, each file once.
class MltClips {
public:
    explicit MltClips(const QString& root) : root_(root) {}

    ReferenceList found;

    // Each start, end and piece of text. A property's value is gathered from its pieces of
    // text: given the document a piece at a time, the reader may give one text in two.
    void visit(QXmlStreamReader& xml) {
        const QXmlStreamReader::TokenType token = xml.tokenType();
        if (property_) {
            if (token == QXmlStreamReader::Characters && propertyDepth_ == 0) {
                value_ += xml.text();
            } else if (token == QXmlStreamReader::StartElement) {
                ++propertyDepth_;  // an element inside the value, whose text is not its
            } else if (token == QXmlStreamReader::EndElement && propertyDepth_-- == 0) {
                setProperty(*std::exchange(property_, std::nullopt), value_);
            }
            return;
        }
        const bool start = token == QXmlStreamReader::StartElement;
        const QStringView name = xml.name();
        if (name == u"producer" || name == u"chain") {
            if (start && clipDepth_++ == 0) {
                clip_ = {};
            } else if (token == QXmlStreamReader::EndElement && --clipDepth_ == 0) {
                finish();
            }
        } else if (start && name == u"property" && clipDepth_ > 0) {
            // Most of a clip's properties (its length, streams, metadata) name no file: their
            // text is passed over.
            const QStringView property = xml.attributes().value(QLatin1String("name"));
            if (namesFileOrService(property)) {
                property_ = property.toString();
                propertyDepth_ = 0;
                value_.clear();
            }
        }
    }

private:
    static bool namesFileOrService(QStringView name) {
        return name == u"mlt_service" || name == u"resource" || name == u"warp_resource" ||
               name == u"kdenlive:originalurl" || name == u"kdenlive:proxy";
    }

    void setProperty(const QString& name, const QString& value) {
        if (name == u"mlt_service") {
            clip_.service = value;
        } else if (name == u"resource" || name == u"warp_resource") {
            clip_.resources.append(value);
        } else if (name == u"kdenlive:originalurl" || name == u"kdenlive:proxy") {
            clip_.files.append(value);
        }
    }

    void finish() {
        if (!namesNoFile(clip_.service)) {
            for (const QString& resource : clip_.resources) {
                add(resource);
            }
        }
        for (const QString& file : clip_.files) {
            add(file);
        }
    }

    void add(const QString& value) {
        bool pattern = false;
        const QString path = mltResourcePath(value, &pattern);
        if (path.isEmpty() || path.size() > kMaxPathBytes || found.contains(path)) {
            return;
        }
        FileReference reference;
        reference.pattern = pattern;
        if (isRooted(path)) {
            reference.absolute = {path};
        } else {
            reference.base = FileReference::Base::SessionFolder;
            reference.relative = path;
            if (isRooted(root_)) {
                reference.absolute = {root_ + u'/' + path};
            }
        }
        found.add(std::move(reference), path);
    }

    QString root_;
    int clipDepth_ = 0;
    Clip clip_;
    std::optional<QString> property_;  // the name of the property whose value is being read
    int propertyDepth_ = 0;
    QString value_;
};

}  // namespace

QString mltResourcePath(const QString& resource, bool* pattern) {
    *pattern = false;
    QString path = resource.trimmed();
    path.remove(0, speedPrefixLength(path));
    if (path.isEmpty() || path == u"-" || path.startsWith(u'#') || path.startsWith(u'<') ||
        path.startsWith(QLatin1String("0x"))) {
        return {};
    }
    const qsizetype slash = std::max(path.lastIndexOf(u'/'), path.lastIndexOf(u'\\'));
    const QString folder = path.first(slash + 1);
    QStringView name = QStringView(path).mid(slash + 1);
    if (name.startsWith(QLatin1String(".all."))) {
        *pattern = true;  // Kdenlive's slideshow of every picture of the folder: "*.png"
        return folder + u'*' + escapedForWildcard(name.mid(4));
    }
    // An image sequence: "%d" or "%04d" stands for the frame number; "?begin=..." follows.
    const qsizetype percent = name.indexOf(u'%');
    qsizetype digitsEnd = percent + 1;
    while (percent >= 0 && digitsEnd < name.size() && name[digitsEnd].isDigit()) {
        ++digitsEnd;
    }
    if (percent < 0 || digitsEnd >= name.size() || name[digitsEnd] != u'd') {
        return path;
    }
    const qsizetype query = name.indexOf(u'?', digitsEnd);
    if (query >= 0) {
        name = name.first(query);
    }
    *pattern = true;
    return folder + escapedForWildcard(name.first(percent)) + u'*' +
           escapedForWildcard(name.mid(digitsEnd + 1));
}

SessionRead readMltSession(QByteArrayView bytes, const SessionPlace& place) {
    Q_UNUSED(place);
    // The root's "root" attribute is the folder that relative paths start from.
    return readXmlSession(bytes, SessionKindId::Mlt, u"mlt", QLatin1StringView("root"),
                          {"producer", "chain"},
                          [](const XmlRoot& root) { return MltClips(root.attribute); });
}

}  // namespace tidewick
