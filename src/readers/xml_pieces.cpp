#include "readers/xml_pieces.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <tuple>
#include <vector>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

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
        } else if (token == QXmlStreamReader::EndElement) {
            --depth;
            visit(xml);
        } else if (token == QXmlStreamReader::Characters) {
            visit(xml);
        } else if (token == QXmlStreamReader::Invalid) {
            return xml.error() == QXmlStreamReader::PrematureEndOfDocumentError && depth == 0;
        }
        if (depth < 0) {
            return false;  // a closing tag of no element of the piece
        }
    }
}

// The next start tag at or after `from` of an element named one of `names`, and which: its "<"
// and the name's index; -1 when there is none. Sixteen bytes at a time are tested for a "<" with
// a name's last letter where it would stand (a search word's first and last characters, the way
// vectorised searches go), and only those are compared whole.
std::pair<qsizetype, qsizetype> nextStartTag(QByteArrayView bytes,
                                             const QList<QByteArrayView>& names, qsizetype from) {
    const char* data = bytes.data();
    const qsizetype size = bytes.size();
    const auto nameAt = [&](qsizetype at) {
        for (qsizetype n = 0; n < names.size(); ++n) {
            const QByteArrayView name = names[n];
            const qsizetype after = at + 1 + name.size();
            if (after < size && data[at] == '<' &&
                std::memcmp(data + at + 1, name.data(), size_t(name.size())) == 0 &&
                endsName(data[after])) {
                return n;
            }
        }
        return qsizetype(-1);
    };
#ifdef __SSE2__
    qsizetype longest = 0;
    for (const QByteArrayView name : names) {
        longest = std::max(longest, name.size());
    }
    const __m128i open = _mm_set1_epi8('<');
    for (; from + longest + 16 <= size; from += 16) {
        const __m128i opens =
            _mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(data + from)), open);
        if (_mm_movemask_epi8(opens) == 0) {
            continue;
        }
        unsigned hits = 0;
        for (qsizetype n = 0; n < names.size(); ++n) {
            const __m128i last =
                _mm_loadu_si128(reinterpret_cast<const __m128i*>(data + from + names[n].size()));
            hits |= unsigned(_mm_movemask_epi8(
                _mm_and_si128(opens, _mm_cmpeq_epi8(last, _mm_set1_epi8(names[n].back())))));
        }
        for (; hits != 0; hits &= hits - 1) {
            const qsizetype at = from + std::countr_zero(hits);
            if (const qsizetype n = nameAt(at); n >= 0) {
                return {at, n};
            }
        }
    }
#endif
    for (; from < size; ++from) {
        if (const qsizetype n = nameAt(from); n >= 0) {
            return {from, n};
        }
    }
    return {-1, -1};
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

std::optional<QList<QByteArrayView>> elementPieces(QByteArrayView bytes,
                                                   const QList<QByteArrayView>& names) {
    QByteArrayList closings;  // each name's end tag
    for (const QByteArrayView name : names) {
        closings.append("</" + name.toByteArray() + '>');
    }
    QList<QByteArrayView> pieces;
    for (auto [at, named] = nextStartTag(bytes, names, 0); at >= 0;
         std::tie(at, named) = nextStartTag(bytes, names, at + 1)) {
        const qsizetype tagEnd = bytes.indexOf('>', at);
        if (tagEnd < 0) {
            return std::nullopt;
        }
        qsizetype end = tagEnd + 1;
        if (bytes[tagEnd - 1] != '/') {
            const QByteArray& close = closings[named];
            const qsizetype closing = findBytes(bytes, close, tagEnd);
            if (closing < 0) {
                return std::nullopt;
            }
            end = closing + close.size();
        }
        pieces.append(bytes.sliced(at, end - at));
        at = end - 1;
    }
    return pieces;
}

bool visitPieces(const QList<QByteArrayView>& pieces, qsizetype from, qsizetype to,
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
    for (qsizetype i = from; i < to; ++i) {
        xml.addData(rawBytes(pieces[i]));
        if (!visitPiece(xml, visit)) {
            return false;
        }
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
        if (token == QXmlStreamReader::StartElement || token == QXmlStreamReader::EndElement ||
            token == QXmlStreamReader::Characters) {
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
