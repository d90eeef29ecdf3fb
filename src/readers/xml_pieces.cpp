#include "readers/xml_pieces.h"

#include <algorithm>
#include <cstring>

#include "readers/session_bytes.h"

namespace tidewick {

namespace {

QByteArray rawBytes(QByteArrayView bytes) {
    return QByteArray::fromRawData(bytes.data(), bytes.size());
}

bool endsName(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '>' || c == '/';
}

// Reads the piece just given to `xml`, inside the element that holds all pieces; false unless
// it is one whole element.
bool visitPiece(QXmlStreamReader& xml, const XmlVisit& visit) {
    int depth = 0;
    for (;;) {
        const QXmlStreamReader::TokenType token = xml.readNext();
        if (token == QXmlStreamReader::StartElement) {
            ++depth;
            visit(xml);
            if (xml.tokenType() == QXmlStreamReader::EndElement) {
                --depth;  // the visitor read the element's text up to its end
            }
        } else if (token == QXmlStreamReader::EndElement) {
            --depth;
            visit(xml);
        } else if (token == QXmlStreamReader::Invalid) {
            return xml.error() == QXmlStreamReader::PrematureEndOfDocumentError && depth == 0;
        }
        if (depth < 0) {
            return false;  // a closing tag of no element of the piece
        }
    }
}

}  // namespace

XmlRoot xmlRootOf(QByteArrayView bytes, QLatin1StringView attribute) {
    XmlRoot root;
    // The reader is given the bytes a piece at a time: given the whole document, it would decode
    // all of it before its first token.
    constexpr qsizetype kPiece = 4096;
    QXmlStreamReader xml;
    qsizetype fed = 0;
    while (!xml.atEnd() || fed < bytes.size()) {
        if (xml.atEnd()) {
            xml.addData(rawBytes(bytes.sliced(fed, std::min(kPiece, bytes.size() - fed))));
            fed += std::min(kPiece, bytes.size() - fed);
        }
        const QXmlStreamReader::TokenType token = xml.readNext();
        if (token == QXmlStreamReader::Invalid &&
            xml.error() != QXmlStreamReader::PrematureEndOfDocumentError) {
            break;
        }
        if (token == QXmlStreamReader::StartDocument) {
            const QStringView encoding = xml.documentEncoding();
            root.foreignEncoding = !encoding.isEmpty() &&
                                   encoding.compare(u"UTF-8", Qt::CaseInsensitive) != 0 &&
                                   encoding.compare(u"UTF8", Qt::CaseInsensitive) != 0;
        } else if (token == QXmlStreamReader::StartElement) {
            root.name = xml.name().toString();
            root.attribute = xml.attributes().value(attribute).toString();
            break;
        }
    }
    return root;
}

bool visitElementPieces(QByteArrayView bytes, const QList<QByteArrayView>& names,
                        const XmlVisit& visit) {
    // The pieces go to one reader, one after the other inside an element of their own: a reader
    // made (or cleared) for each piece would cost more than the piece.
    QXmlStreamReader xml;
    xml.addData(QByteArrayLiteral("<pieces>"));
    while (xml.readNext() != QXmlStreamReader::StartElement) {
        if (xml.hasError()) {
            return false;
        }
    }
    // One pass from "<" to "<" (memchr) finds the start tags of every name at once.
    for (qsizetype at = bytes.indexOf('<'); at >= 0; at = bytes.indexOf('<', at + 1)) {
        // Most tags are of other elements: their first letter turns them away.
        const auto named = std::find_if(names.cbegin(), names.cend(), [&](QByteArrayView name) {
            const qsizetype after = at + 1 + name.size();
            return after < bytes.size() && bytes[at + 1] == name[0] &&
                   std::memcmp(bytes.data() + at + 1, name.data(), size_t(name.size())) == 0 &&
                   endsName(bytes[after]);
        });
        if (named == names.cend()) {
            continue;
        }
        const qsizetype tagEnd = bytes.indexOf('>', at);
        if (tagEnd < 0) {
            return false;
        }
        qsizetype end = tagEnd + 1;
        if (bytes[tagEnd - 1] != '/') {
            const QByteArray close = "</" + named->toByteArray() + '>';
            const qsizetype closing = findBytes(bytes, close, tagEnd);
            if (closing < 0) {
                return false;
            }
            end = closing + close.size();
        }
        xml.addData(rawBytes(bytes.sliced(at, end - at)));
        if (!visitPiece(xml, visit)) {
            return false;
        }
        at = end - 1;
    }
    return true;
}

QXmlStreamReader::Error visitWholeDocument(QByteArrayView bytes, const XmlVisit& visit,
                                           qint64* line) {
    // Given a piece at a time, the reader never holds the whole document decoded.
    constexpr qsizetype kPiece = 256 * 1024;
    QXmlStreamReader xml;
    qsizetype fed = 0;
    for (;;) {
        const QXmlStreamReader::TokenType token = xml.readNext();
        if (token == QXmlStreamReader::StartElement || token == QXmlStreamReader::EndElement) {
            visit(xml);
        } else if (xml.error() == QXmlStreamReader::PrematureEndOfDocumentError &&
                   fed < bytes.size()) {
            const qsizetype size = std::min(kPiece, bytes.size() - fed);
            xml.addData(rawBytes(bytes.sliced(fed, size)));
            fed += size;
        } else if (xml.atEnd()) {
            break;
        }
    }
    if (line) {
        *line = xml.lineNumber();
    }
    return xml.error();
}

}  // namespace tidewick
