#include "readers/xml_pieces.h"

#include "readers/session_bytes.h"

namespace tidewick {

namespace {

QByteArray rawBytes(QByteArrayView bytes) {
    return QByteArray::fromRawData(bytes.data(), bytes.size());
}

bool endsName(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '>' || c == '/';
}

// Reads one piece; false unless it is one whole element.
bool visitPiece(QByteArrayView piece, const XmlVisit& visit) {
    QXmlStreamReader xml(rawBytes(piece));
    int depth = 0;
    while (!xml.atEnd()) {
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
        }
    }
    return xml.error() == QXmlStreamReader::NoError && depth == 0;
}

}  // namespace

XmlRoot xmlRootOf(QByteArrayView bytes, QLatin1StringView attribute) {
    XmlRoot root;
    QXmlStreamReader xml(rawBytes(bytes));
    while (!xml.atEnd()) {
        const QXmlStreamReader::TokenType token = xml.readNext();
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

bool visitElementPieces(QByteArrayView bytes, QByteArrayView name, const XmlVisit& visit) {
    const QByteArray open = '<' + name.toByteArray();
    const QByteArray close = "</" + name.toByteArray() + '>';
    for (qsizetype at = findBytes(bytes, open); at >= 0; at = findBytes(bytes, open, at + 1)) {
        const qsizetype after = at + open.size();
        if (after >= bytes.size() || !endsName(bytes[after])) {
            continue;  // "<Sourcesx", or the end of the file
        }
        const qsizetype tagEnd = bytes.indexOf('>', after);
        if (tagEnd < 0) {
            return false;
        }
        qsizetype end = tagEnd + 1;
        if (bytes[tagEnd - 1] != '/') {
            const qsizetype closing = findBytes(bytes, close, tagEnd);
            if (closing < 0) {
                return false;
            }
            end = closing + close.size();
        }
        if (!visitPiece(bytes.sliced(at, end - at), visit)) {
            return false;
        }
        at = end - 1;
    }
    return true;
}

QXmlStreamReader::Error visitWholeDocument(QByteArrayView bytes, const XmlVisit& visit,
                                           qint64* line) {
    QXmlStreamReader xml(rawBytes(bytes));
    while (!xml.atEnd()) {
        const QXmlStreamReader::TokenType token = xml.readNext();
        if (token == QXmlStreamReader::StartElement || token == QXmlStreamReader::EndElement) {
            visit(xml);
        }
    }
    if (line) {
        *line = xml.lineNumber();
    }
    return xml.error();
}

SessionRead failedSessionRead(SessionKindId kind, ReadFailure failure, const QString& detail) {
    SessionRead read;
    read.outcome =
        failure == ReadFailure::NotThisKind ? ReaderOutcome::Rejected : ReaderOutcome::Failed;
    read.problem = ReadProblem{failure, kind, ReadSeverity::Error, detail, {}};
    return read;
}

}  // namespace tidewick
