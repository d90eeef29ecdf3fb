#include "readers/import_xml.h"

#include <QXmlStreamReader>

#include "readers/path_list.h"
#include "readers/session_bytes.h"
#include "readers/session_text.h"
#include "readers/xml_pieces.h"
#include "text/text_index.h"

namespace tidewick {

namespace {

constexpr QByteArrayView kSessionTag = "<AuditionSession>";
constexpr QByteArrayView kWaveBlockOpen = "<EntityInfo_Wave>";
constexpr QByteArrayView kWaveBlockClose = "</EntityInfo_Wave>";
constexpr QByteArrayView kWaveEntryOpen = "<EntityInfo_Wave_";

// Lines from an entry's opening line to its path line, and from the path line to the entry's end.
constexpr int kLinesToPath = 18;
constexpr int kLinesAfterPath = 3;

// True when the line's cleaned form would be empty: it holds nothing but blanks and tabs.
bool isBlankLine(QByteArrayView line) {
    for (const char c : line) {
        if (c != ' ' && c != '\t') {
            return false;
        }
    }
    return true;
}

// One Audition XML file's lines, read in the fixed order of the export.
class XmlSession {
public:
    // A lone line feed ends a line too: the export is also met with LF line ends, and read as
    // one long line such a file would yield nothing.
    explicit XmlSession(QByteArrayView bytes) : bytes_(bytes), lines_(bytes, true) {}

    SessionRead run() {
        SessionRead read;
        // The first non-blank line is the declaration, whatever it says.
        QByteArrayView line;
        do {
            line = lines_.next();
        } while (isBlankLine(line) && !lines_.atEnd());

        // The header test takes the next line as it is, untrimmed. A file that ends before it
        // reads an empty line here, which fails the test.
        const QByteArrayView header = lines_.next();
        if (!header.startsWith(kSessionTag)) {
            read.outcome = ReaderOutcome::Rejected;
            // XML files of other programs are common beside sessions: one is reported as a notice.
            read.problem = ReadProblem{ReadFailure::NotThisKind,
                                       SessionKindId::Xml,
                                       ReadSeverity::Notice,
                                       quotedLine(header),
                                       {}};
            return read;
        }

        while (!lines_.atEnd()) {
            if (trimmedLine(lines_.next()) == kWaveBlockOpen) {
                // A block that follows right after the previous one's closing line is read
                // too, but only one: the line after that second block is not looked at.
                if (readWaveBlock()) {
                    readWaveBlock();
                }
            }
        }
        if (!endsWithClosing(bytes_, "</AuditionSession>")) {
            // Cut short, it may have lost entries; read as it is, their files would be offered.
            // The paths found stay with the refusal, for whoever reads the file itself.
            read.outcome = ReaderOutcome::Failed;
            read.problem =
                cutShortProblem(SessionKindId::Xml, QStringLiteral("</AuditionSession>"));
            read.paths = paths_.takePaths();
            return read;
        }
        // The export writes an entry's lines one under the other. Where the bytes hold more
        // entries than the lines gave, the XML is read as XML too.
        if (entryCount(bytes_) != entriesRead_) {
            addXmlEntries();
        }
        read.paths = paths_.takePaths();
        return read;
    }

private:
    // Reads wave entries up to the block's closing line, then the one line after it; returns
    // whether that line opens another block.
    bool readWaveBlock() {
        while (!lines_.atEnd()) {
            const QByteArrayView line = trimmedLine(lines_.next());
            if (line.startsWith(kWaveEntryOpen)) {
                ImportXmlWaveEntry();
            } else if (line == kWaveBlockClose) {
                return trimmedLine(lines_.next()) == kWaveBlockOpen;
            }
        }
        return false;
    }

    // Adds the text that each wave entry holds directly (its path line), as an XML reader finds
    // it, where the lines did not give it already; reading stops at the first fault of the XML.
    void addXmlEntries() {
        TextSet known;
        for (const QString& path : paths_.paths()) {
            known.insert(path.trimmed());
        }
        int depthInEntry = 0;  // 1 directly inside a wave entry
        QString text;
        const auto visit = [&](QXmlStreamReader& xml) {
            const QXmlStreamReader::TokenType token = xml.tokenType();
            if (token == QXmlStreamReader::StartElement) {
                if (depthInEntry > 0) {
                    ++depthInEntry;
                } else if (xml.name().startsWith(u"EntityInfo_Wave_")) {
                    depthInEntry = 1;
                    text.clear();
                }
            } else if (token == QXmlStreamReader::Characters && depthInEntry == 1) {
                text += xml.text();
            } else if (token == QXmlStreamReader::EndElement && depthInEntry > 0 &&
                       --depthInEntry == 0) {
                const QString path = text.trimmed();
                if (!path.isEmpty() && path.size() <= kMaxPathBytes && !known.contains(path)) {
                    known.insert(path);
                    paths_.appendUnique(path);
                }
            }
        };
        visitWholeDocument(bytes_, visit, nullptr);  // up to the first fault of the XML
    }

    // How many wave entries the bytes hold, wherever they stand.
    static qsizetype entryCount(QByteArrayView bytes) {
        qsizetype count = 0;
        for (qsizetype at = findBytes(bytes, kWaveEntryOpen); at >= 0;
             at = findBytes(bytes, kWaveEntryOpen, at + kWaveEntryOpen.size())) {
            ++count;
        }
        return count;
    }

    // Reads one wave entry after its opening line and appends its path.
    void ImportXmlWaveEntry() {
        ++entriesRead_;
        QByteArrayView pathLine;
        for (int i = 0; i < kLinesToPath; ++i) {
            pathLine = lines_.next();
        }
        // Every escape is decoded, or a path such as "R&amp;B &apos;74.wav" would name no file
        // and the file it names would be offered for moving. A line longer than any path can
        // be names no file and is not copied at all.
        const QByteArray decoded =
            pathLine.size() <= kMaxPathBytes ? decodeXmlEscapes(pathLine) : QByteArray();
        const QByteArrayView path = trimmedLine(decoded);
        for (int i = 0; i < kLinesAfterPath; ++i) {
            lines_.next();
        }
        // An entry cut short by the end of the file reads empty lines, and an empty path
        // names no file.
        if (!path.isEmpty()) {
            paths_.appendUnique(decodeSessionText(path));
        }
    }

    QByteArrayView bytes_;
    LineReader lines_;
    MediaPathList paths_;
    qsizetype entriesRead_ = 0;
};

}  // namespace

SessionRead readXmlSession(QByteArrayView bytes, const SessionPlace& place) {
    Q_UNUSED(place);
    // An empty file meets the header test like any other and fails it: read as a session
    // without media, it would offer the whole folder for moving.
    return XmlSession(bytes).run();
}

}  // namespace tidewick
