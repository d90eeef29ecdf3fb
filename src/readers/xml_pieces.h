#pragma once

#include <QByteArrayView>
#include <QList>
#include <QString>
#include <QXmlStreamReader>
#include <functional>
#include <optional>

#include "readers/reader_contract.h"

// The XML kinds whose media sit in a few elements of a large document (Ardour's Sources, MLT's
// producers) find those elements with a byte search and give only their bytes to Qt's XML
// stream reader; the rest of the document is never parsed.
namespace tidewick {

/// Called at each start and end element the XML reader meets; the visitor reads the reader's
/// token (name, attributes, or the element's text with readElementText()).
using XmlVisit = std::function<void(QXmlStreamReader& xml)>;

/// The root element of an XML document: its name and the value of one attribute of it.
struct XmlRoot {
    QString name;       ///< empty when the bytes hold no element at all
    QString attribute;  ///< the value of the attribute asked for
    /// The document declares an encoding other than UTF-8, which a piece cut out of it no
    /// longer says.
    bool foreignEncoding = false;
};

/// Reads the document's prolog and root start tag only.
XmlRoot xmlRootOf(QByteArrayView bytes, QLatin1StringView attribute);

/// Visits every element of `names` in `bytes` ("Sources"; "producer" and "chain"), in document
/// order, each cut out by a byte search from its start tag to its end tag (or to the "/>" of an
/// empty one) and read as one whole element. False when a piece does not read as one (a tag
/// written inside a comment or CDATA, a ">" inside an attribute value): the caller then reads
/// the whole document instead.
bool visitElementPieces(QByteArrayView bytes, const QList<QByteArrayView>& names,
                        const XmlVisit& visit);

/// Visits every element of the whole document (its start and its end, and with `withText` each
/// piece of text too), given to the reader a piece at a time so that it never holds the document
/// decoded; the reader's error at the end (NoError when the document is whole), with the line
/// where it stopped in `line`.
QXmlStreamReader::Error visitWholeDocument(QByteArrayView bytes, const XmlVisit& visit,
                                           qint64* line, bool withText = false);

/// Reads the elements `names` of `bytes` into `found`, whose visit(xml) takes each of them: cut
/// out by a byte search, or, where the document cannot be cut so (it declares another encoding,
/// or a piece does not read alone), by reading the whole document into `found` made anew from
/// `fresh`. The line where the document's XML breaks off; nothing when it read.
template <typename Found>
std::optional<qint64> readElements(QByteArrayView bytes, const XmlRoot& root,
                                   const QList<QByteArrayView>& names, Found& found,
                                   const Found& fresh) {
    const auto visit = [&found](QXmlStreamReader& xml) { found.visit(xml); };
    if (!root.foreignEncoding && visitElementPieces(bytes, names, visit)) {
        return std::nullopt;
    }
    found = fresh;
    qint64 line = 0;
    if (visitWholeDocument(bytes, visit, &line) != QXmlStreamReader::NoError) {
        return line;
    }
    return std::nullopt;
}

}  // namespace tidewick
