#include <gtest/gtest.h>

#include <tuple>

#include <QDir>
#include <QTemporaryDir>

#include "platform/path_text.h"
#include "readers/import_rpp.h"
#include "support/reader_fixture.h"

namespace tidewick {

void PrintTo(const RecordPathLine& line, std::ostream* out) {
    *out << (line.hasValue ? '"' + line.value.toStdString() + '"' : "(no value)")
         << (line.existsAsIs ? " exists" : "") << (line.absolute ? " absolute" : "")
         << (line.existsInProject ? " in-project" : "");
}

namespace {

using test::texts;

// A path with each "/" turned into the host's separator.
QString host(QString path) {
    return path.replace(u'/', hostSeparator());
}

// The header, the line after it (which the reader passes over), then `body`, "|" ending a line.
QByteArray rpp(QByteArray body) {
    return "<REAPER_PROJECT 0.1\r\n  RIPPLE 0 0\r\n" + body.replace("|", "\r\n") + "\r\n";
}

SessionRead read(QByteArrayView bytes) {
    return readRppSession(bytes, {});
}

TEST(RppReader, RejectsAFileWhoseFirstNonBlankLineIsNoHeader) {
    const std::pair<QByteArray, QString> cases[] = {
        {"", ""},
        {"<reaper_project 0.1\r\n", "<reaper_project 0.1"},
        {"\r\n  junk\t\r\n<REAPER_PROJECT\r\n<SOURCE WAVE\r\nFILE \"a\"", "junk"},
        {"\t<REAPER\tPROJECT\t\n", "<REAPER PROJECT"},
        {QByteArray(5000, 'x'), QString(1024, u'x')}};
    for (const auto& [bytes, quotedLine] : cases) {
        const SessionRead r = read(bytes);
        EXPECT_EQ(r.outcome, ReaderOutcome::Rejected);
        EXPECT_EQ(
            r.message,
            (ReaderMessage{"This is not a properly formated Reaper Project file\n" + quotedLine,
                           "Processing RPP File", MessageIcon::Critical}));
        EXPECT_TRUE(r.paths.isEmpty());
    }
}

TEST(RppReader, SourcesYieldTheQuotedFile) {
    const std::tuple<const char*, QByteArray, const char*> cases[] = {
        {"header after blank lines; the line after it unread",
         "\r\n \t \n\t<REAPER_PROJECT\r\n<SOURCE WAVE\r\nFILE \"a\"\r\n<SOURCE WAVE\r\nFILE \"b\"",
         "b"},
        {"every media kind",
         rpp("<SOURCE WAVE|FILE \"1\"|<SOURCE VIDEO|FILE \"2\"|<SOURCE WAVPACK|FILE \"3\"|"
             "<SOURCE APE|FILE \"4\"|<SOURCE FLAC|FILE \"5\"|<SOURCE MP3|FILE \"6\" 1|"
             "<SOURCE VORBIS|FILE \"7\""),
         "1|2|3|4|5|6|7"},
        {"other kinds, other case",
         rpp("<SOURCE CLICK|FILE \"c\"|<source wave|FILE \"l\"|FILE \"x\""), ""},
        {"any line after a source is its file line", rpp("<SOURCE WAVE|NOTFILE \"odd\""), "odd"},
        {"a file line is not examined again", rpp("<SOURCE WAVE|<SOURCE FLAC|FILE \"x\""), ""},
        // A MIDI source without FILE still takes the next line; MIDIPOOL/FILENAME match by prefix.
        {"MIDI",
         rpp("<SOURCE MIDI|HASDATA 1|<SOURCE MIDI|<SOURCE WAVE|FILE \"after.wav\"|"
             "<SOURCE MIDIPOOL|FILENAME \"b.mid\""),
         "b.mid"},
        {"BANKPROGRAMFILE on its own line", rpp("BANKPROGRAMFILE \"C:\\gm\"|FILE \"n\""), "C:/gm"},
        {"one path for both separators",
         rpp("BANKPROGRAMFILE \"a\"|<SOURCE WAVE|FILE \"a\"|<SOURCE WAVE|FILE \"d/b\"|<SOURCE "
             "WAVE|FILE \"d\\b\""),
         "a|d/b"},
        {"URL prefix",
         rpp("<SOURCE WAVE|FILE \"url:file:\\\\localhost\\C:\\a\"|<SOURCE WAVE|"
             "FILE \"URL:file://localhost/D:/b\"|<SOURCE WAVE|"
             "FILE \"Url:file:\\\\localhost\\c\"|<SOURCE WAVE|"
             "FILE \"xurl:file:\\\\localhost\\e\""),
         "C:/a|D:/b|Url:file://localhost/c|/e"},
        {"first two quotes only",
         rpp("<SOURCE WAVE|FILE \"cut|<SOURCE WAVE|FILE \"\"|<SOURCE WAVE|FILE \"ok\" \"no\""),
         "ok"},
        {"Windows paths in host form",
         rpp("<SOURCE WAVE|FILE \"C:\\R\\t\"|<SOURCE WAVE|FILE \"M/x\\t\"|<SOURCE WAVE|FILE "
             "\"\\\\s\\t\""),
         "C:/R/t|M/x/t|//s/t"}};
    for (const auto& [name, bytes, paths] : cases) {
        const SessionRead r = read(bytes);
        EXPECT_EQ(r.outcome, ReaderOutcome::Read) << name;
        QStringList expected = texts(paths);
        for (QString& path : expected) {
            path = host(path);
        }
        EXPECT_EQ(r.paths, expected) << name;
    }
}

// The project folder holds "Media" and "Audio/Takes", the current folder "rec", and `abs` is
// an existing folder outside both.
TEST(RppReader, RecordPathLinesTellWhatTheDiskHoldsForTheirFirstValue) {
    test::ReaderFixture f;
    QTemporaryDir outside;
    ASSERT_TRUE(QDir(f.dir.path()).mkpath("Media") && QDir(f.dir.path()).mkpath("Audio/Takes") &&
                QDir(outside.path()).mkpath("rec"));
    const QString abs = host(outside.path() + "/rec");
    const std::pair<QByteArray, RecordPathLine> lines[] = {
        {" \"\"", {}},           // 14 characters hold no value
        {" \"x\"", {true, ""}},  // 15 hold an empty one
        {" \"Media\" \"\"", {true, "Media", false, false, true}},
        {" \"Gone\" \"\"", {true, "Gone"}},
        {" \"" + abs.toUtf8() + "\" \"\"", {true, abs, true, true}},
        {"\t\" Media \"\t\"\"\t", {true, "Media", false, false, true}},
        {" \"\" \"Media\"", {true, ""}},         // the second value is not read
        {" \"Media\"", {true, "Medi"}},          // a lone value loses its last character
        {" \"rec\" \"\"", {true, "rec", true}},  // exists in the current folder only
        {" \"Audio\\Takes\" \"\"", {true, host("Audio/Takes"), false, false, true}}};
    QByteArray body;
    QList<RecordPathLine> expected;
    for (const auto& [line, entry] : lines) {
        body += "RECORD_PATH" + line + "|<SOURCE WAVE|FILE \"a\"|";
        expected.append(entry);
    }
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(outside.path()));
    const SessionRead r = readRppSession(rpp(body), f.place());
    QDir::setCurrent(before);
    EXPECT_EQ(r.recordPaths, expected);
    EXPECT_EQ(r.paths, QStringList{"a"});
    // Without a disk no folder exists.
    for (RecordPathLine& entry : expected) {
        entry.existsAsIs = entry.existsInProject = false;
    }
    EXPECT_EQ(read(rpp(body)).recordPaths, expected);
}

// One line folded into the record folder of a project whose folder is "P/".
TEST(RppReader, FoldRecordPathGivesTheNewRecordFolder) {
    const RecordPathLine none, gone{true, "Gone"}, media{true, "Media", false, false, true},
        abs{true, "/abs", true, true}, rec{true, "rec", true}, both{true, "M", true, false, true};
    const std::tuple<const char*, bool, const char*, RecordPathLine, const char*> cases[] = {
        {"short line keeps a folder", false, "x", none, "x"},
        {"short line fills an empty folder", false, "", none, "P/"},
        {"absolute folder", false, "x", abs, "/abs"},
        // A relative value "exists by itself" only in the current folder: it is not taken.
        {"relative folder as is", false, "x", rec, "P/"},
        {"relative folder as is and in the project", false, "x", both, "P/M"},
        {"sub-folder", false, "x", media, "P/Media"},
        {"missing folder", false, "x", gone, "P/"},
        {"all: short line fills an empty folder", true, "", none, "P/"},
        {"all: absolute folder changes nothing", true, "", abs, ""},
        {"all: relative folder as is changes nothing", true, "x", both, "x"},
        {"all: first sub-folder", true, "", media, "P/Media"},
        {"all: bare project folder gives way", true, "P", media, "P/Media"},
        {"all: earlier folder stays, with a separator", true, "/abs", media, "/abs/"},
        {"all: missing folder fills an empty folder", true, "", gone, "P/"},
        {"all: missing folder keeps a folder", true, "/abs", gone, "/abs"}};
    for (const auto& [name, wholeFolder, initial, line, expected] : cases) {
        RecordPathLine hostLine = line;
        hostLine.value = host(line.value);
        EXPECT_EQ(foldRecordPath(host(initial), hostLine, host("P/"), wholeFolder), host(expected))
            << name;
    }
}

TEST(RppReader, EveryPrefixReadsSafely) {
    const QByteArray whole =
        rpp("RECORD_PATH \"\" \"\"|<SOURCE WAVE|FILE \"a\"|<SOURCE MIDI|"
            "FILE \"b\"|BANKPROGRAMFILE \"c\"");
    for (qsizetype size = 0; size <= whole.size(); ++size) {
        const SessionRead r = read(whole.first(size));
        EXPECT_EQ(r.outcome, size < 15 ? ReaderOutcome::Rejected : ReaderOutcome::Read) << size;
        EXPECT_EQ(r.paths, QStringList({"a", "b", "c"}).first(r.paths.size())) << size;
    }
}

}  // namespace
}  // namespace tidewick
