#pragma once

#include <QByteArrayView>
#include <QList>
#include <QString>
#include <QXmlStreamReader>
#include <atomic>
#include <functional>
#include <optional>

#include "platform/on_cores.h"
#include "readers/reader_contract.h"

// The XML kinds whose media sit in a few elements of a large document (Ardour's Sources, MLT's
// producers) find those elements with a byte search and give only their bytes to Qt's XML
// stream reader; the rest of the document is never parsed.
namespace tidewick {

/// Called at each start and end element and each piece of text the XML reader meets; the visitor
/// reads the reader's token (name, attributes, text) and never reads on: given a document a
/// piece at a time, the reader may give one text in two pieces, and an element's text read
/// with readElementText() would stop at the first.
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

/// The elements of `names` in `bytes` ("Sources"; "producer" and "chain"), in document order,
/// each cut out by a byte search from its start tag to its end tag (or to the "/>" of an empty
/// one); nothing when one never ends.
std::optional<QList<QByteArrayView>> elementPieces(QByteArrayView bytes,
                                                   const QList<QByteArrayView>& names);

/// Visits the elements of pieces `from` to `to` (not included), each read as one whole element.
/// False when a piece does not read as one (a tag written inside a comment or CDATA, a ">"
/// inside an attribute value): the caller then reads the whole document instead.
bool visitPieces(const QList<QByteArrayView>& pieces, qsizetype from, qsizetype to,
                 const XmlVisit& visit);

/// Visits every element and text of the whole document, given to the reader a piece at a time so
/// that it never holds the document decoded; the reader's error at the end (NoError when the
/// document is whole), with the line where it stopped in `line`.
QXmlStreamReader::Error visitWholeDocument(QByteArrayView bytes, const XmlVisit& visit,
                                           qint64* line);

/// Reads the elements `names` of `bytes` into `found`, whose visit(xml) takes each of them: cut
/// out by a byte search, or, where the document cannot be cut so (it declares another encoding,
/// or a piece does not read alone), by reading the whole document into `found` made anew from
/// `fresh`. The line where the document's XML breaks off; nothing when it read.
template <typename Found>
std::optional<qint64> readElements(QByteArrayView bytes, const XmlRoot& root,
                                   const QList<QByteArrayView>& names, Found& found,
                                   const Found& fresh) {
    if (const auto pieces = root.foreignEncoding ? std::nullopt : elementPieces(bytes, names)) {
        // Many pieces are read in two halves on the cores at hand, the later half into a `Found`
        // of its own that then joins the first (merge).
        constexpr qsizetype kHalvedFrom = 512;
        const qsizetype middle = pieces->size() < kHalvedFrom ? pieces->size() : pieces->size() / 2;
        Found later = fresh;
        std::atomic<int> next{0};
        bool read[2] = {false, false};
        onCores(middle < pieces->size() ? 2 : 1, [&](bool) {
            for (int half = next++; half < 2; half = next++) {
                Found& into = half == 0 ? found : later;
                const auto visit = [&into](QXmlStreamReader& xml) { into.visit(xml); };
                read[half] = half == 0 ? visitPieces(*pieces, 0, middle, visit)
                                       : visitPieces(*pieces, middle, pieces->size(), visit);
            }
        });
        if (read[0] && read[1]) {
            found.merge(std::move(later));
            return std::nullopt;
        }
    }
    found = fresh;
    const auto visit = [&found](QXmlStreamReader& xml) { found.visit(xml); };
    qint64 line = 0;
    if (visitWholeDocument(bytes, visit, &line) != QXmlStreamReader::NoError) {
        return line;
    }
    return std::nullopt;
}

}  // namespace tidewick
