#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <functional>
#include <optional>

#include "readers/reader_contract.h"

// The small pieces every reader stands on: one read of the whole file, bounds-checked numbers,
// and the lines of a text session.
namespace tidewick {

/// Reads the whole of a file into `bytes`, in one go, into the memory `bytes` holds already
/// where it has room; the reason it could not be read, empty when it was.
QString readSessionBytes(const QString& fileName, QByteArray& bytes);

/// Reads the file a piece of about `pieceSize` bytes at a time, for a reader that need not hold
/// all of it: `take(bytes, atEnd)` is handed the bytes it has not taken yet (those it left last
/// time, then the new piece; `atEnd` once the file's end is among them) and returns how many of
/// them, from the front, it took, or −1 to stop. It may keep a copy of `bytes` (another thread
/// may read them on): the next piece then goes elsewhere. The reason the file could not be read,
/// as readSessionBytes gives it; empty when read (or stopped).
QString readSessionPieces(const QString& fileName, qsizetype pieceSize,
                          const std::function<qsizetype(const QByteArray&, bool)>& take);

/// The 32-bit signed little-endian number at `pos`; none when it lies outside `bytes`.
inline std::optional<qint32> readI32LE(QByteArrayView bytes, qint64 pos) {
    if (pos < 0 || pos > bytes.size() - 4) {
        return std::nullopt;
    }
    const auto* p = reinterpret_cast<const unsigned char*>(bytes.data() + pos);
    return static_cast<qint32>(quint32(p[0]) | quint32(p[1]) << 8 | quint32(p[2]) << 16 |
                               quint32(p[3]) << 24);
}

/// Hands out the lines of a text session. A line ends at a carriage return, at a carriage
/// return and line feed, and, when `lineFeedEndsLine` is set, at a lone line feed too. Past the
/// end every further line is empty text, so a reader that asks for a line the file lacks reads
/// an empty one.
class LineReader {
public:
    LineReader(QByteArrayView bytes, bool lineFeedEndsLine)
        : bytes_(bytes), lineFeedEndsLine_(lineFeedEndsLine) {}

    /// True once every line has been handed out.
    bool atEnd() const { return pos_ >= bytes_.size(); }

    /// The next line, without its line end.
    QByteArrayView next();

    /// Passes over the lines whose first character other than blanks and tabs is none of
    /// `firsts` (at most four), empty lines among them: the next line handed out is the first that
    /// begins with one of them, or none is left.
    void skipLinesNotBeginningWith(QByteArrayView firsts);

private:
    // The first line end (CR, or LF where it ends a line) at or after `from`, or the end of the
    // bytes: sixteen bytes a step where the processor compares them at once.
    qsizetype lineEndFrom(qsizetype from) const;
    // Where the line begins whose first character other than blanks and tabs stands at `hit`,
    // or -1 when another character stands before it on its line.
    qsizetype lineStartAt(qsizetype hit) const;
    // The start of the line after the one that ends at `end`.
    qsizetype pastLineEnd(qsizetype end) const;

    QByteArrayView bytes_;
    qsizetype pos_ = 0;
    bool lineFeedEndsLine_;
};

/// Removes leading and trailing blanks (code 32); tabs stay.
QByteArrayView trimmedLine(QByteArrayView line);

/// Removes leading and trailing blanks and tabs, without copying: the bounds of a line's cleaned
/// form, whose inner tabs still read as tabs.
QByteArrayView trimmedOfBlanksAndTabs(QByteArrayView line);

/// A line's cleaned form: every tab read as a blank, then leading and trailing blanks removed.
/// Returned as bytes with the tabs inside replaced.
QByteArray cleanedLine(QByteArrayView line);

/// Where `needle` first stands in `bytes` from `from` on, or −1: memmem's pace, which a large
/// session's scans for an element want.
qsizetype findBytes(QByteArrayView bytes, QByteArrayView needle, qsizetype from = 0);

/// True when `bytes`, but for white space and NUL bytes at its end, ends with `closing` (a
/// text session's closing tag): a file cut short ends before it.
bool endsWithClosing(QByteArrayView bytes, QByteArrayView closing);

/// The problem of a text session of `kind` cut short: it ends before its `closing`, so the media
/// it names cannot all be known.
inline ReadProblem cutShortProblem(SessionKindId kind, const QString& closing) {
    return {ReadFailure::CutShort, kind, ReadSeverity::Error, closing, {}};
}

/// The most bytes a media path can have; a longer text in a session names no file.
constexpr qsizetype kMaxPathBytes = 32768;

/// Where the root element of the XML text `text` begins (its "<"), past a byte order mark, the
/// declaration, comments and a document type; −1 when the text holds no element there.
qsizetype rootElementStart(QByteArrayView text);
/// Whether the element at the start of `text` ("<project version=...") is named `name`.
bool startsElement(QByteArrayView text, QByteArrayView name);
/// The start tag that begins at `at` (its "<") of `text`, up to and with its ">", quoted values
/// passed over whole (a ">" may stand in one); empty when it never ends.
QByteArrayView startTagAt(QByteArrayView text, qsizetype at);
/// The value of the attribute `name` of the start tag `tag` ("<a href='x' n=\"1\"/>"), in double or
/// single quotes, its XML escapes decoded; nothing when the tag has no such attribute.
std::optional<QByteArray> tagAttribute(QByteArrayView tag, QByteArrayView name);
/// The same value as written between its quotes, its escapes not decoded.
std::optional<QByteArrayView> tagAttributeText(QByteArrayView tag, QByteArrayView name);
/// A read that found no session it could use: `failure`'s problem of `kind` (a file of another
/// kind is rejected, any other failure fails the read), with `detail` for its message.
SessionRead failedSessionRead(SessionKindId kind, ReadFailure failure, const QString& detail);
/// The text of UTF-16LE `bytes` up to their first NUL (a path a binary session holds so).
QString utf16LeText(QByteArrayView bytes);
/// `text` with every XML escape decoded in one pass from left to right: "&amp;", "&apos;",
/// "&quot;", "&lt;", "&gt;" and the numeric "&#N;" and "&#xH;" (as UTF-8). So "&amp;lt;" gives
/// "&lt;"; an ampersand that begins no escape stays as it is.
QByteArray decodeXmlEscapes(QByteArrayView text);

/// A line of the file as a rejection quotes it: cleaned, decoded, and cut to its first
/// 1,024 characters, which is all a report of it can show; the rest is never copied.
QString quotedLine(QByteArrayView line);

}  // namespace tidewick
