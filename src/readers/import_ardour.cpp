#include "readers/import_ardour.h"

#include "readers/path_list.h"
#include "readers/session_bytes.h"
#include "readers/xml_pieces.h"

namespace tidewick {

namespace {

bool isRooted(const QString& path) {
    return path.startsWith(u'/') || path.startsWith(u'\\') || (path.size() > 1 && path[1] == u':');
}

// The sources of the Sources elements met, each file once.
class ArdourSources {
public:
    ReferenceList found;

    void visit(QXmlStreamReader& xml) {
        const bool start = xml.tokenType() == QXmlStreamReader::StartElement;
        if (!start && xml.tokenType() != QXmlStreamReader::EndElement) {
            return;  // text
        }
        if (xml.name() == u"Sources") {
            sources_ += start ? 1 : -1;
        } else if (xml.name() == u"Source" && sources_ > 0) {
            if (start && nested_++ == 0) {
                add(xml.attributes());
            } else if (!start) {
                --nested_;
            }
        }
    }

private:
    void add(const QXmlStreamAttributes& attributes) {
        const QString name = attributes.value(QLatin1String("name")).toString();
        // A playlist source (a compound region's) is made of other sources and is no file.
        if (name.isEmpty() || name.size() > kMaxPathBytes ||
            attributes.hasAttribute(QLatin1String("playlist"))) {
            return;
        }
        FileReference reference;
        if (isRooted(name)) {
            reference.absolute = {name};
        } else if (name.contains(u'/') || name.contains(u'\\')) {
            reference = {FileReference::Base::SessionFolder, name, {}};
        } else {
            const bool midi = attributes.value(QLatin1String("type")) == u"midi";
            const QString folder =
                midi ? QStringLiteral("midifiles/") : QStringLiteral("audiofiles/");
            reference = {FileReference::Base::Interchange, folder + name, {}};
        }
        found.add(std::move(reference), name);
    }

    int sources_ = 0;
    int nested_ = 0;
};

}  // namespace

SessionRead readArdourSession(QByteArrayView bytes, const SessionPlace& place) {
    Q_UNUSED(place);
    return readXmlSession(bytes, SessionKindId::Ardour, u"Session", QLatin1StringView("version"),
                          {"Sources"}, [](const XmlRoot&) { return ArdourSources(); });
}

}  // namespace tidewick
