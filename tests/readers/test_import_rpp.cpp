#include <gtest/gtest.h>

#include <tuple>

#include <QDir>
#include <QTemporaryDir>

#include "readers/import_rpp.h"
#include "support/reader_fixture.h"
#include "text/path_text.h"

namespace tidewick {
namespace {

// A path with each "/" turned into the host's separator.
QString host(QString path) {
    return path.replace(u'/', hostSeparator());
}

// The header, the line after it (which the reader passes over), then `body`, "|" ending a line.
QByteArray rpp(QByteArray body) {
    return "<REAPER_PROJECT 0.1\r\n  RIPPLE 0 0\r\n" + body.replace("|", "\r\n") + "\r\n";
}

TEST(RppReader, RejectsAFileWhoseFirstNonBlankLineIsNoHeader) {
    const std::pair<QByteArray, QString> cases[] = {
        {"", ""},
        {"<reaper_project 0.1\r\n", "<reaper_project 0.1"},
        {"\r\n  junk\t\r\n<REAPER_PROJECT\r\n<SOURCE WAVE\r\nFILE \"a\"", "junk"},
        {"\t<REAPER\tPROJECT\t\n", "<REAPER PROJECT"},
        {QByteArray(5000, 'x'), QString(1024, u'x')}};
    for (const auto& [bytes, quotedLine] : cases) {
        const SessionRead r = readRppSession(bytes, {});
        EXPECT_EQ(r.outcome, ReaderOutcome::Rejected);
        EXPECT_EQ(r.problem, (ReadProblem{ReadFailure::NotThisKind,
                                          SessionKindId::Rpp,
                                          ReadSeverity::Error,
                                          quotedLine,
                                          {}}));
        EXPECT_TRUE(r.paths.isEmpty());
    }
}

// Each quoting form REAPER writes a path in: double quotes, single quotes when the path holds a
// double quote, backticks when it holds both, and a bare token when it holds no blank.
struct QuotingCase {
    const char* name;
    QByteArray line;  // after a media source
    const char* path;
};

void PrintTo(const QuotingCase& c, std::ostream* os) {
    *os << c.name;
}

class Quoting : public ::testing::TestWithParam<QuotingCase> {};

TEST_P(Quoting, AFileLineGivesItsPathInEveryForm) {
    const QByteArray bytes = rpp("<SOURCE WAVE|" + GetParam().line + "|>|>");
    EXPECT_EQ(test::pathsRead(SessionKindId::Rpp, bytes), host(GetParam().path));
    EXPECT_EQ(readRppSession(bytes, {}).outcome, ReaderOutcome::Read);
}

INSTANTIATE_TEST_SUITE_P(
    RppReader, Quoting,
    ::testing::Values(
        QuotingCase{"DoubleQuoted", "FILE \"Media/a b.wav\" 1", "Media/a b.wav"},
        QuotingCase{"SingleQuotedHoldingADoubleQuote", "FILE 'say \"hi\".wav'", "say \"hi\".wav"},
        QuotingCase{"BacktickedHoldingBoth", "FILE `it's \"x\".wav` 1", "it's \"x\".wav"},
        QuotingCase{"Bare", "FILE Media/take-01.wav", "Media/take-01.wav"},
        QuotingCase{"BareWithATrailingValue", "FILE\ttake.wav 1", "take.wav"},
        QuotingCase{"BareBankProgramFile", "BANKPROGRAMFILE C:\\gm.txt", "C:/gm.txt"},
        QuotingCase{"AQuoteLeftOpenNamesNothing", "FILE 'cut.wav", ""},
        QuotingCase{"ABareTokenOnALineOfAnotherKeywordNamesNothing", "LENGTH 3", ""}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(RppReader, SourcesYieldTheQuotedFile) {
    const std::tuple<const char*, QByteArray, const char*> cases[] = {
        {"header after blank lines, the line after it read too",
         "\r\n \t \n\t<REAPER_PROJECT\r\n<SOURCE WAVE\r\nFILE \"a\"\r\n<SOURCE WAVE\r\nFILE \"b\"",
         "a|b"},
        {"every media kind",
         rpp("<SOURCE WAVE|FILE \"1\"|<SOURCE VIDEO|FILE \"2\"|<SOURCE WAVPACK|FILE \"3\"|"
             "<SOURCE APE|FILE \"4\"|<SOURCE FLAC|FILE \"5\"|<SOURCE MP3|FILE \"6\" 1|"
             "<SOURCE VORBIS|FILE \"7\""),
         "1|2|3|4|5|6|7"},
        // Any other source names the file on a FILE line right after it, and only then takes it.
        {"other kinds, other case",
         rpp("<SOURCE RPP_PROJECT|FILE \"sub.rpp\"|<source wave|FILE \"l\"|<SOURCE OPUS|FILE "
             "\"o\""),
         "sub.rpp|o"},
        {"another source's next line stays a line",
         rpp("<SOURCE SECTION|<SOURCE WAVE|FILE \"w\"|<SOURCE REX|LENGTH 3|FILE \"no\""), "w"},
        {"any line after a source is its file line", rpp("<SOURCE WAVE|NOTFILE \"odd\""), "odd"},
        {"a file line is not examined again", rpp("<SOURCE WAVE|<SOURCE FLAC|FILE \"x\""), ""},
        // A MIDI source without FILE still takes the next line; MIDIPOOL/FILENAME match by prefix.
        {"MIDI",
         rpp("<SOURCE MIDI|HASDATA 1|<SOURCE MIDI|<SOURCE WAVE|FILE \"after.wav\"|"
             "<SOURCE MIDIPOOL|FILENAME \"b.mid\""),
         "b.mid"},
        {"BANKPROGRAMFILE on its own line", rpp("BANKPROGRAMFILE \"C:\\gm\"|FILE \"n\""), "C:/gm"},
        {"one path for both separators",
         rpp("<SOURCE WAVE|FILE \"d/b\"|BANKPROGRAMFILE \"d\\b\"|BANKPROGRAMFILE \"d/b\""), "d/b"},
        {"URL prefix",
         rpp("<SOURCE WAVE|FILE \"url:file:\\\\localhost\\C:\\a\"|BANKPROGRAMFILE "
             "\"URL:file://localhost/D:/b\"|BANKPROGRAMFILE \"Url:file:\\\\localhost\\c\"|"
             "BANKPROGRAMFILE \"xurl:file:\\\\localhost\\e\""),
         "C:/a|D:/b|Url:file://localhost/c|/e"},
        {"first two quotes only",
         rpp("<SOURCE WAVE|FILE \"cut|<SOURCE WAVE|FILE \"\"|<SOURCE WAVE|FILE \"ok\" \"no\""),
         "ok"}};
    for (const auto& [name, bytes, paths] : cases) {
        EXPECT_EQ(test::pathsRead(SessionKindId::Rpp, bytes), host(paths)) << name;
    }
}

// One RECORD_PATH line of a project in % is read against the disk and folded into the record
// folder. % holds "Media" and "Audio/Takes", the current folder @ holds "Media" and "rec".
TEST(RppReader, RecordPathLineSetsTheRecordFolder) {
    test::ReaderFixture f;
    QTemporaryDir outside;
    ASSERT_TRUE(QDir(f.dir.path()).mkpath("Media") && QDir(f.dir.path()).mkpath("Audio/Takes") &&
                QDir(outside.path()).mkpath("rec") && QDir(outside.path()).mkpath("Media"));
    const auto place = [&](const char* text) {
        return host(
            QString::fromUtf8(text).replace("@", outside.path()).replace("%", f.dir.path()));
    };
    // line after "RECORD_PATH", whole-folder scan, record folder before, record folder after
    const std::tuple<const char*, const char*, bool, const char*, const char*> cases[] = {
        {"a 14-character line keeps a folder", " \"\"", false, "x", "x"},
        {"a 14-character line fills an empty folder", " \"\"", false, "", "%/"},
        {"an empty value sets the project folder", " \"x\"", false, "x", "%/"},
        {"a sub-folder", " \"Media\" \"\"", false, "x", "%/Media"},
        {"blanks and tabs around the value go", "\t\" Media \"\t\"\"\t", false, "x", "%/Media"},
        {"a Windows sub-folder", " \"Audio\\Takes\" \"\"", false, "x", "%/Audio/Takes"},
        {"a missing folder", " \"Gone\" \"\"", false, "x", "%/"},
        {"the second value is not read", " \"\" \"Media\"", false, "x", "%/"},
        {"a lone value loses its last character", " \"Media\"", false, "x", "%/"},
        {"an absolute folder", " \"@/rec\" \"\"", false, "x", "@/rec"},
        // A relative value "exists by itself" only in the current folder: it is not taken.
        {"a folder of the current folder", " \"rec\" \"\"", false, "x", "%/"},
        {"all: an absolute folder changes nothing", " \"@/rec\" \"\"", true, "", ""},
        {"all: a folder as it stands changes nothing", " \"Media\" \"\"", true, "x", "x"},
        {"all: the first sub-folder", " \"Audio\\Takes\" \"\"", true, "", "%/Audio/Takes"},
        {"all: the bare project folder gives way", " \"Audio\\Takes\" \"\"", true, "%",
         "%/Audio/Takes"},
        {"all: an earlier folder stays, with a separator", " \"Audio\\Takes\" \"\"", true, "/e",
         "/e/"},
        {"all: a missing folder fills an empty folder", " \"Gone\" \"\"", true, "", "%/"},
        {"all: a missing folder keeps a folder", " \"Gone\" \"\"", true, "/e", "/e"}};
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(outside.path()));
    for (const auto& [name, line, wholeFolder, folder, expected] : cases) {
        const QByteArray bytes =
            rpp("RECORD_PATH" + place(line).toUtf8() + "|<SOURCE WAVE|FILE \"a\"");
        const SessionRead r = readRppSession(bytes, f.place());
        ASSERT_TRUE(r.reaper) << name;
        ASSERT_EQ(r.reaper->recordPaths.size(), 1) << name;
        EXPECT_EQ(r.paths, QStringList{"a"}) << name;
        EXPECT_EQ(foldRecordPath(place(folder), r.reaper->recordPaths[0], place("%/"), wholeFolder),
                  place(expected))
            << name;
    }
    QDir::setCurrent(before);
}

}  // namespace
}  // namespace tidewick
