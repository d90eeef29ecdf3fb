#include "readers/import_sesx.h"

#include <QXmlStreamReader>
#include <cstring>

#include "readers/path_list.h"
#include "readers/session_bytes.h"
#include "readers/session_text.h"

namespace tidewick {

namespace {

constexpr QByteArrayView kFileElement = "<file ";
constexpr QByteArrayView kFilesEnd = "</files>";
constexpr QByteArrayView kSessionEnd = "</sesx>";
constexpr QByteArrayView kPathAttribute = "absolutePath=";

// Replaces the first occurrence of `find` only, in place; later ones stay.
void replaceFirst(QByteArray& text, QByteArrayView find, char replacement) {
    const qsizetype at = QByteArrayView(text).indexOf(find);
    if (at < 0) {
        return;
    }
    char* data = text.data();
    data[at] = replacement;
    const qsizetype rest = at + find.size();
    std::memmove(data + at + 1, data + rest, size_t(text.size() - rest));
    text.truncate(text.size() - find.size() + 1);
}

// The bytes of `text` from `begin` up to, not including, its last byte; empty when there are
// none.
QByteArrayView fromUpToLastButOne(QByteArrayView text, qsizetype begin) {
    const qsizetype end = text.size() - 1;
    return begin < end ? text.sliced(begin, end - begin) : QByteArrayView();
}

class SesxSession {
public:
    // Examines one line; returns false when reading stops at it. `line` is the line as
    // examined: the cleaned line in line mode, the untouched piece in piece mode, so that
    // "</files>" stops a piece only when it stands unindented.
    bool examine(QByteArrayView line) {
        const QByteArrayView trimmed = trimmedLine(line);
        if (trimmed.startsWith(kFileElement)) {
            cutOutPath(line);
            return true;
        }
        return line != kFilesEnd && trimmed != kSessionEnd;
    }

    // The paths cut out so far, each once, and how many file elements gave one.
    MediaPathList paths;
    qsizetype elementsRead = 0;

private:
    // Takes the absolutePath value from a file element line. The cuts count from the line's
    // own first byte, so that "<file " falls away only from an unindented line, and each drops
    // the line's last byte, which an element ending in "/>" can spare.
    void cutOutPath(QByteArrayView line) {
        const QByteArrayView afterTag = fromUpToLastButOne(line, kFileElement.size());
        const qsizetype at = afterTag.indexOf(kPathAttribute);
        if (at < 0) {
            return;
        }
        // The value starts one byte past "absolutePath=", where the opening quote stands.
        const QByteArrayView value = fromUpToLastButOne(afterTag, at + kPathAttribute.size() + 1);
        const qsizetype quote = value.indexOf('"');
        // A value whose closing quote is missing, or is one of the bytes cut off the end, has
        // no end to cut at; the line adds nothing rather than a path running on into the line.
        if (quote < 0) {
            return;
        }
        if (quote > kMaxPathBytes) {
            return;  // longer than any path can be
        }
        // Every XML escape is decoded; of the URL escapes only the colon is ever written.
        QByteArray path = decodeXmlEscapes(value.first(quote));
        replaceFirst(path, "%3a", ':');
        // An empty value names no file; kept, it would list the session folder as a missing
        // media file.
        if (!path.isEmpty()) {
            paths.appendUnique(decodeSessionText(path));
            ++elementsRead;
        }
    }
};

// How many file elements the bytes hold, wherever they stand: "<file" and white space.
qsizetype fileElementCount(QByteArrayView bytes) {
    qsizetype count = 0;
    for (qsizetype at = findBytes(bytes, "<file"); at >= 0;
         at = findBytes(bytes, "<file", at + 5)) {
        const qsizetype next = at + 5;
        if (next < bytes.size() && (bytes[next] == ' ' || bytes[next] == '\t' ||
                                    bytes[next] == '\r' || bytes[next] == '\n')) {
            ++count;
        }
    }
    return count;
}

// Adds the absolutePath of every file element as an XML reader finds it: on one line with
// others, split over lines, in single quotes, after "</files>". Reading stops at the first
// fault of the XML; what was found before it counts.
void addXmlFileElements(QByteArrayView bytes, MediaPathList& paths) {
    QXmlStreamReader xml(QByteArray::fromRawData(bytes.data(), bytes.size()));
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement || xml.name() != u"file") {
            continue;
        }
        const QStringView value = xml.attributes().value(QLatin1String("absolutePath"));
        if (value.isEmpty() || value.size() > kMaxPathBytes) {
            continue;
        }
        QString path = value.toString();
        const qsizetype colon = path.indexOf(QLatin1String("%3a"));
        if (colon >= 0) {
            path.replace(colon, 3, u':');  // of the URL escapes only the colon is ever written
        }
        paths.appendUnique(path);
    }
}

bool mayHoldFileElement(QByteArrayView trimmed) {
    const qsizetype tagEnd = kFileElement.size() - 1;
    return trimmed.size() > tagEnd && trimmed.first(tagEnd) == kFileElement.first(tagEnd) &&
           (trimmed[tagEnd] == ' ' || trimmed[tagEnd] == '\t');
}

// Hands the lines that may name files to `session` until it stops.
void examineLines(QByteArrayView bytes, SesxSession& session) {
    // The first line runs up to the file's first carriage return, since a lone line feed does
    // not end a line here. (Found with one fast search: in piece mode it is the whole file.)
    const qsizetype firstEnd = bytes.indexOf('\r');
    const QByteArrayView first = firstEnd < 0 ? bytes : bytes.first(firstEnd);
    if (first.contains('\n')) {
        // Piece mode: a file whose lines end in a line feed alone arrives as one first line.
        // Its pieces are the lines, the first one included, and nothing after that first line
        // is read.
        qsizetype begin = 0;
        for (;;) {
            const qsizetype feed = first.indexOf('\n', begin);
            const qsizetype end = feed < 0 ? first.size() : feed;
            if (!session.examine(first.sliced(begin, end - begin)) || feed < 0) {
                break;
            }
            begin = feed + 1;
        }
        return;
    }
    // Line mode: the first line is the XML declaration and is never examined. An empty file has
    // no first line, and reading one gives empty text and nothing further.
    LineReader lines(bytes, false);
    lines.next();
    while (!lines.atEnd()) {
        // Trimmed of blanks and tabs, a line compares with "</files>" and "</sesx>" as its
        // cleaned form does, since neither holds a blank or a tab; only a file element line
        // needs its inner tabs turned into blanks, so only such a line is copied to clean it.
        QByteArrayView line = trimmedOfBlanksAndTabs(lines.next());
        QByteArray cleaned;
        if (mayHoldFileElement(line)) {
            cleaned = cleanedLine(line);
            line = cleaned;
        }
        if (!session.examine(line)) {
            break;
        }
    }
}

}  // namespace

QStringList readSesxLines(QByteArrayView bytes) {
    SesxSession session;
    examineLines(bytes, session);
    return session.paths.takePaths();
}

SessionRead readSesxSession(QByteArrayView bytes, const SessionPlace& place) {
    Q_UNUSED(place);
    SessionRead read;
    if (!bytes.contains("<sesx")) {
        // Empty, cut short before its root or some other file: read as a session without
        // media, it would offer the whole folder for moving.
        read.outcome = ReaderOutcome::Rejected;
        read.problem =
            ReadProblem{ReadFailure::NotThisKind, SessionKindId::Sesx, ReadSeverity::Error, {}, {}};
        return read;
    }
    if (!endsWithClosing(bytes, kSessionEnd)) {
        // Cut short, it may have lost file elements; read as it is, their files would be offered.
        read.outcome = ReaderOutcome::Failed;
        read.problem = cutShortProblem(SessionKindId::Sesx, QStringLiteral("</sesx>"));
        return read;
    }
    SesxSession session;
    examineLines(bytes, session);
    // Audition writes each element on a line of its own, and the lines give every path. Where
    // the bytes hold more file elements than the lines gave paths, the XML is read as XML too.
    if (fileElementCount(bytes) != session.elementsRead) {
        addXmlFileElements(bytes, session.paths);
    }
    read.paths = session.paths.takePaths();
    return read;
}

}  // namespace tidewick
