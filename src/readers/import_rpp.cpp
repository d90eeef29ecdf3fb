#include "readers/import_rpp.h"

#include <algorithm>
#include <array>

#include <QDir>

#include "readers/path_list.h"
#include "readers/session_bytes.h"
#include "readers/session_text.h"
#include "text/path_text.h"

namespace tidewick {

namespace {

constexpr QByteArrayView kHeader = "<REAPER_PROJECT";
constexpr QByteArrayView kRecordPath = "RECORD_PATH";
constexpr QByteArrayView kBankProgramFile = "BANKPROGRAMFILE";
constexpr QByteArrayView kMidiSource = "<SOURCE MIDI";
constexpr QByteArrayView kFileKeyword = "FILE";
constexpr QByteArrayView kAnySource = "<SOURCE ";
constexpr std::array<QByteArrayView, 7> kMediaSources = {
    "<SOURCE WAVE", "<SOURCE VIDEO", "<SOURCE WAVPACK", "<SOURCE APE",
    "<SOURCE FLAC", "<SOURCE MP3",   "<SOURCE VORBIS"};

// The record path's value starts at the 14th character: "RECORD_PATH" and a blank are 12, and
// the value's opening quote is the 13th.
constexpr qsizetype kRecordValueStart = 13;
// Length of "url:file:\\localhost\", the prefix REAPER puts before a path given as a URL.
constexpr qsizetype kUrlPrefixLength = 21;

bool beginsWith(QByteArrayView line, QByteArrayView prefix) {
    if (line.size() < prefix.size()) {
        return false;
    }
    for (qsizetype i = 0; i < prefix.size(); ++i) {
        const char c = line[i] == '\t' ? ' ' : line[i];
        if (c != prefix[i]) {
            return false;
        }
    }
    return true;
}

// The text of a piece of a cleaned line: tabs read as blanks, the bytes decoded as session text.
QString textOf(QByteArrayView piece) {
    if (!piece.contains('\t')) {
        return decodeSessionText(piece);
    }
    QByteArray bytes = piece.toByteArray();
    bytes.replace('\t', ' ');
    return decodeSessionText(bytes);
}

bool isBlank(char c) {
    return c == ' ' || c == '\t';
}

// The value a file line gives after its keyword, in each form REAPER writes one: "a b.wav";
// 'say "hi".wav' when the path holds a double quote; `it's "x".wav` when it holds both; or, with
// `bareAllowed` (a FILE or BANKPROGRAMFILE line), a bare token without blanks or quotes
// (FILE Media/take-01.wav). None when the line gives no whole value: a quote left open names no
// file, as its end is unknown.
std::optional<QByteArrayView> fileValue(QByteArrayView line, bool bareAllowed) {
    qsizetype at = 0;
    while (at < line.size() && !isBlank(line[at])) {
        ++at;  // the keyword
    }
    while (at < line.size() && isBlank(line[at])) {
        ++at;
    }
    if (at == line.size()) {
        return std::nullopt;
    }
    const char open = line[at];
    if (open == '"' || open == '\'' || open == '`') {
        const qsizetype close = line.indexOf(open, at + 1);
        return close < 0 ? std::nullopt : std::optional(line.sliced(at + 1, close - at - 1));
    }
    qsizetype end = at;
    while (end < line.size() && !isBlank(line[end])) {
        ++end;
    }
    return bareAllowed ? std::optional(line.sliced(at, end - at)) : std::nullopt;
}

// REAPER writes the separators of the system it runs on, so a project saved on Windows holds
// "\" and one saved on macOS "/". Paths leave the reader in the host's form.
// One character for another gives what replacing again and again from the start gives, in
// one pass.
void toHostSeparators(QString& path) {
    if (hostSeparator() == u'\\') {
        path.replace(u'/', u'\\');
    } else {
        path.replace(u'\\', u'/');
    }
}

// "url:file:\\localhost\" as it reads once its separators are the host's. The test has to be
// made on that form: the separators were already replaced, so on a "/" host the prefix reads
// "url:file://localhost/", whichever separators the project itself used.
QString urlPrefix(const char* scheme) {
    const QChar sep = hostSeparator();
    QString prefix = QLatin1StringView(scheme);
    prefix += QLatin1StringView("file:");
    prefix += sep;
    prefix += sep;
    prefix += QLatin1StringView("localhost");
    prefix += sep;
    return prefix;
}

class RppRead {
public:
    RppRead(QByteArrayView bytes, const SessionPlace& place)
        : lines_(bytes, true), fs_(place.fs), projectFolder_(place.folder) {
        AddBackslash(projectFolder_);
    }

    SessionRead run() {
        SessionRead read;
        // The header must be the first non-blank line.
        QByteArrayView first;
        do {
            first = trimmedOfBlanksAndTabs(lines_.next());
        } while (first.isEmpty() && !lines_.atEnd());
        if (!beginsWith(first, kHeader)) {
            read.outcome = ReaderOutcome::Rejected;
            read.problem = ReadProblem{ReadFailure::NotThisKind,
                                       SessionKindId::Rpp,
                                       ReadSeverity::Error,
                                       quotedLine(first),
                                       {}};
            return read;
        }
        // Every line after the header is read, the very next one too: it may be a source.
        depth_ = 1;
        ReaperFacts& facts = read.reaper.emplace();
        while (!lines_.atEnd()) {
            // Only a line that begins with one of these opens or closes a block, names a
            // source or the record path: the others are passed over unread.
            lines_.skipLinesNotBeginningWith("<>RB");
            if (lines_.atEnd()) {
                break;
            }
            const QByteArrayView line = nextLine();
            if (beginsWith(line, kRecordPath)) {
                facts.recordPaths.append(recordPathLine(line));
            }
            applySource(line);
        }
        read.paths = paths_.takePaths();
        if (depth_ != 0) {
            // Cut short, it may have lost sources; read as it is, their files would be offered.
            // The paths found stay with the refusal, for whoever reads the file itself.
            read.outcome = ReaderOutcome::Failed;
            read.problem = cutShortProblem(SessionKindId::Rpp, QStringLiteral("\">\""));
        }
        return read;
    }

private:
    // RECORD_PATH "primary" "secondary": the first value names the folder that recordings go
    // into, relative to the project folder or absolute.
    RecordPathLine recordPathLine(QByteArrayView line) const {
        RecordPathLine entry;
        if (line.size() <= kRecordValueStart + 1) {
            return entry;
        }
        // From the 14th character to the last but one, less one more: for a line with two
        // quoted values this ends inside the second value, and the first value is the text
        // before the next quote.
        QByteArrayView value = line.sliced(kRecordValueStart, line.size() - kRecordValueStart - 1);
        value.chop(1);
        const qsizetype quote = value.indexOf('"');
        if (quote >= 0) {
            value = value.first(quote);
        }
        QString r = trimBlanks(textOf(value));
        // A project saved on Windows names a nested record folder as "Audio\Takes"; on a "/" host
        // that folder is found only in host form.
        toHostSeparators(r);
        entry.hasValue = true;
        entry.value = std::move(r);
        checkRecordPath(entry, {projectFolder_, fs_});
        return entry;
    }

    // A media source names its file on the next line; BANKPROGRAMFILE names one on its own.
    void applySource(QByteArrayView line) {
        // Nearly every line of a project begins with another character; this keeps them cheap.
        if (line.isEmpty() || (line[0] != '<' && line[0] != 'B')) {
            return;
        }
        const bool bank = beginsWith(line, kBankProgramFile);
        const bool midi = !bank && beginsWith(line, kMidiSource);
        if (!bank && !midi &&
            std::none_of(kMediaSources.begin(), kMediaSources.end(),
                         [&](QByteArrayView prefix) { return beginsWith(line, prefix); })) {
            if (beginsWith(line, kAnySource)) {
                applyOtherSource();
            }
            return;
        }
        QByteArrayView fileLine = line;
        if (!bank) {
            // Read even past the end of the file, where the line is empty and names nothing.
            // The line read here is the file line and meets no other rule.
            fileLine = nextLine();
            if (midi && !beginsWith(fileLine, kFileKeyword)) {
                return;  // a MIDI source with its notes in the project itself
            }
        }
        addFile(fileLine);
    }

    // A source of any other type (a sub-project, OPUS, REX, ...) names the file it plays when
    // its next line begins with FILE. That line is taken only then: a line of another kind,
    // such as a nested source, meets the rules of its own.
    void applyOtherSource() {
        LineReader ahead = lines_;
        const QByteArrayView next = trimmedOfBlanksAndTabs(ahead.next());
        if (beginsWith(next, kFileKeyword)) {
            lines_ = ahead;  // a FILE line opens and closes no block
            addFile(next);
        }
    }

    // Adds the path that `fileLine` gives after its keyword (fileValue).
    void addFile(QByteArrayView fileLine) {
        const bool bareAllowed =
            beginsWith(fileLine, kFileKeyword) || beginsWith(fileLine, kBankProgramFile);
        const std::optional<QByteArrayView> quoted = fileValue(fileLine, bareAllowed);
        if (!quoted || quoted->size() > kMaxPathBytes) {
            return;  // no whole value: there is no path to cut out
        }
        const QByteArrayView inside = *quoted;
        QString path = textOf(inside);
        toHostSeparators(path);
        if (containsUrlPrefix(path)) {
            // The rest after the prefix is the path, whole: nothing shows that this form
            // carries a trailing character, and cutting one off would name another file.
            path = path.mid(kUrlPrefixLength);
        }
        // An empty path names no file; it would only put a blank line into the used list.
        if (!path.isEmpty()) {
            paths_.appendUnique(path);
        }
    }

    // The next line, cleaned, counted into the depth of blocks: "<NAME" opens one, ">" alone
    // closes it, and a whole project ends with its header's block closed.
    QByteArrayView nextLine() {
        const QByteArrayView line = trimmedOfBlanksAndTabs(lines_.next());
        if (!line.isEmpty()) {
            if (line[0] == '<') {
                ++depth_;
            } else if (line.size() == 1 && line[0] == '>') {
                --depth_;
            }
        }
        return line;
    }

    bool containsUrlPrefix(QStringView path) const {
        // Looked for only where a "u" or "U" stands, so a path without one costs one pass.
        for (qsizetype at = 0; at + kUrlPrefixLength <= path.size(); ++at) {
            const QChar c = path[at];
            if ((c == u'u' || c == u'U') &&
                (path.sliced(at, kUrlPrefixLength) == urlPrefixLower_ ||
                 path.sliced(at, kUrlPrefixLength) == urlPrefixUpper_)) {
                return true;
            }
        }
        return false;
    }

    LineReader lines_;
    qsizetype depth_ = 0;
    const FileSystem* fs_;
    QString projectFolder_;
    MediaPathList paths_;
    const QString urlPrefixLower_ = urlPrefix("url:");
    const QString urlPrefixUpper_ = urlPrefix("URL:");
};

}  // namespace

void checkRecordPath(RecordPathLine& line, const SessionPlace& place) {
    // A text with a zero character names no folder; the file system would only warn about it.
    const auto folderExists = [&place](const QString& path) {
        return place.fs != nullptr && !path.contains(QChar(u'\0')) && place.fs->FolderExists(path);
    };
    const QString& value = line.value;
    line.existsAsIs = folderExists(value);
    line.absolute = QDir::isAbsolutePath(value);
    line.existsInProject = !value.isEmpty() && folderExists(withSeparator(place.folder) + value);
}

SessionRead readRppSession(QByteArrayView bytes, const SessionPlace& place) {
    return RppRead(bytes, place).run();
}

QString foldRecordPath(QString recordFolder, const RecordPathLine& line,
                       const QString& projectFolder, bool wholeFolder) {
    // A line too short to hold a value leaves a record folder that is set, and sets the project
    // folder otherwise.
    if (!line.hasValue) {
        return recordFolder.isEmpty() ? projectFolder : recordFolder;
    }
    // A record path that names an existing folder by itself: in a whole-folder scan the first
    // project's value stays. In a single-project load an absolute path becomes the record
    // folder, which is what the sub-folder display shows for an existing folder. A relative one
    // exists "by itself" only in the program's current folder, which has nothing to do with the
    // project; taking it would point the record folder, and the files offered for moving, at
    // some other folder. So it is read against the project folder like any relative record
    // path.
    if (line.existsAsIs && (wholeFolder || line.absolute)) {
        return wholeFolder ? recordFolder : line.value;
    }
    if (line.existsInProject) {
        const QString inProject = projectFolder + line.value;
        if (!wholeFolder) {
            return inProject;
        }
        // In a whole-folder scan the first value set stays, except that the bare project folder
        // gives way to a later project's existing record sub-folder. The appended separator
        // stays on the record folder either way.
        const bool wasEmpty = recordFolder.isEmpty();
        AddBackslash(recordFolder);
        return wasEmpty || recordFolder == projectFolder ? inProject : recordFolder;
    }
    return !wholeFolder || recordFolder.isEmpty() ? projectFolder : recordFolder;
}

}  // namespace tidewick
