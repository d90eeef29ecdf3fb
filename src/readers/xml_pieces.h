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
#include "readers/session_bytes.h"

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

/// Reads a session of `kind` whose document has the root element `rootName` and whose files sit
/// in the elements `names`, into the visitor `make(root)` makes (`root` read with its attribute
/// `rootAttribute`): its visit(xml) takes each element and text, and its `found` (a
/// ReferenceList) ends in the read. The elements are cut out by a byte search, many read in two
/// halves on the cores at hand, the later half's references joining the first's; where the
/// document cannot be cut so (it declares another encoding, or a piece does not read alone), the
/// whole document is read into a visitor made anew. Rejected for another root; failed as cut
/// short without the root's end tag, as damaged where the XML breaks off.
template <typename Make>
SessionRead readXmlSession(QByteArrayView bytes, SessionKindId kind, QStringView rootName,
                           QLatin1StringView rootAttribute, const QList<QByteArrayView>& names,
                           const Make& make) {
    const XmlRoot root = xmlRootOf(bytes, rootAttribute);
    if (root.name != rootName) {
        return failedSessionRead(kind, ReadFailure::NotThisKind, {});
    }
    const QString closing = QStringLiteral("</") + rootName.toString() + u'>';
    if (!endsWithClosing(bytes, closing.toUtf8())) {
        return failedSessionRead(kind, ReadFailure::CutShort, closing);
    }
    auto found = make(root);
    const auto readInPieces = [&] {
        if (const auto pieces = root.foreignEncoding ? std::nullopt : elementPieces(bytes, names)) {
            // The later half goes into a visitor of its own whose references then join the first's.
            constexpr qsizetype kHalvedFrom = 512;
            const qsizetype middle =
                pieces->size() < kHalvedFrom ? pieces->size() : pieces->size() / 2;
            auto later = make(root);
            std::atomic<int> next{0};
            bool read[2] = {false, false};
            onCores(middle < pieces->size() ? 2 : 1, [&](bool) {
                for (int half = next++; half < 2; half = next++) {
                    auto& into = half == 0 ? found : later;
                    const auto visit = [&into](QXmlStreamReader& xml) { into.visit(xml); };
                    read[half] = half == 0 ? visitPieces(*pieces, 0, middle, visit)
                                           : visitPieces(*pieces, middle, pieces->size(), visit);
                }
            });
            if (read[0] && read[1]) {
                found.found.addEach(std::move(later.found));
                return true;
            }
        }
        return false;
    };
    if (!readInPieces()) {
        found = make(root);
        const auto visit = [&found](QXmlStreamReader& xml) { found.visit(xml); };
        qint64 line = 0;
        if (visitWholeDocument(bytes, visit, &line) != QXmlStreamReader::NoError) {
            return failedSessionRead(kind, ReadFailure::Damaged,
                                     QStringLiteral("its XML breaks off at line %1").arg(line));
        }
    }
    SessionRead read;
    found.found.moveInto(read);
    return read;
}

}  // namespace tidewick
