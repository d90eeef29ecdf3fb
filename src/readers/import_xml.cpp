#include "readers/import_xml.h"

#include "platform/session_text.h"
#include "readers/session_bytes.h"

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
    explicit XmlSession(QByteArrayView bytes) : lines_(bytes, true) {}

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
            read.message = ReaderMessage{
                QStringLiteral("This is not a properly formated Adobe Audition XML file.\n") +
                    quotedLine(header),
                QStringLiteral("Processing XML File"), MessageIcon::Information};
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

    // Reads one wave entry after its opening line and appends its path.
    void ImportXmlWaveEntry() {
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

    LineReader lines_;
    MediaPathList paths_;
};

}  // namespace

SessionRead readXmlSession(QByteArrayView bytes, const SessionPlace& place) {
    Q_UNUSED(place);
    // An empty file meets the header test like any other and fails it: read as a session
    // without media, it would offer the whole folder for moving.
    return XmlSession(bytes).run();
}

}  // namespace tidewick
