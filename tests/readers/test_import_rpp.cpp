#include <gtest/gtest.h>

#include <tuple>

#include <QDir>
#include <QTemporaryDir>

#include "platform/path_text.h"
#include "readers/import_rpp.h"
#include "support/reader_fixture.h"

// Failures show paths as text rather than as code units.
void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

namespace tidewick {
namespace {

using test::ReaderFixture;

// Texts split at "|", each with "/" turned into the host's separator.
QStringList hostPaths(const char* list) {
    QStringList out = QString::fromUtf8(list).split(u'|', Qt::SkipEmptyParts);
    for (QString& path : out) {
        path.replace(u'/', hostSeparator());
    }
    return out;
}

// The header, the line after it (which the reader passes over), then `body`, "|" ending a line.
QByteArray rpp(const char* body, const char* lineEnd = "\r\n") {
    QByteArray bytes = "<REAPER_PROJECT 0.1|  RIPPLE 0 0|" + QByteArray(body) + "|";
    return bytes.replace("|", lineEnd);
}

template <typename Param>
class RppTest : public ::testing::TestWithParam<Param> {
protected:
    ReaderOutcome read(const QByteArray& bytes) { return ImportRppBytes(bytes, f.context); }
    ReaderFixture f;
};

const auto kByName = [](const auto& info) { return std::string(info.param.name); };

struct RejectCase {
    const char* name;
    QByteArray bytes;
    QString quotedLine;
};

using RppRejection = RppTest<RejectCase>;

TEST_P(RppRejection, NamesTheFirstNonBlankLineAndReadsNothing) {
    f.state.RecordFolder = QStringLiteral("kept");
    EXPECT_EQ(read(GetParam().bytes), ReaderOutcome::Rejected);
    ASSERT_EQ(f.ui.messages.size(), 1);
    const MessageBoxRequest& box = f.ui.messages.front();
    EXPECT_EQ(box.text,
              "This is not a properly formated Reaper Project file\n" + GetParam().quotedLine);
    EXPECT_EQ(box.title, QStringLiteral("Processing RPP File"));
    EXPECT_EQ(box.icon, MessageIcon::Critical);
    EXPECT_EQ(box.buttons, MessageButtons::Ok);
    EXPECT_EQ(f.ui.pointerChanges, (QList<bool>{true, false})) << "default pointer before the box";
    EXPECT_TRUE(f.state.MediaPaths.isEmpty());
    EXPECT_EQ(f.state.RecordFolder, QStringLiteral("kept"));
}

INSTANTIATE_TEST_SUITE_P(
    Table, RppRejection,
    ::testing::Values(
        RejectCase{"EmptyFile", "", QString()},
        RejectCase{"HeaderInOtherCase", "<reaper_project 0.1\r\n", "<reaper_project 0.1"},
        RejectCase{"HeaderAfterOtherLine", "\r\n  junk\t\r\n<REAPER_PROJECT\r\n", "junk"},
        RejectCase{"TabsInsideBecomeBlanks", "\t<REAPER\tPROJECT\t\n", "<REAPER PROJECT"},
        RejectCase{"LongLineIsCut", QByteArray(5000, 'x'), QString(1024, u'x')}),
    kByName);

struct SourceCase {
    const char* name;
    QByteArray bytes;
    const char* expected;
};

using RppSources = RppTest<SourceCase>;

TEST_P(RppSources, YieldTheQuotedFile) {
    EXPECT_EQ(read(GetParam().bytes), ReaderOutcome::Read);
    EXPECT_EQ(f.state.MediaPaths.paths(), hostPaths(GetParam().expected));
    EXPECT_TRUE(f.ui.messages.isEmpty());
    EXPECT_EQ(f.ui.pointerChanges, QList<bool>{true}) << "the caller restores the pointer";
}

const char* const kTwo = "<SOURCE WAVE|FILE \"Audio\\take 1.wav\"|<SOURCE MIDI|FILE \"b.mid\" 0";

INSTANTIATE_TEST_SUITE_P(
    Table, RppSources,
    ::testing::Values(
        SourceCase{"CrLf", rpp(kTwo, "\r\n"), "Audio/take 1.wav|b.mid"},
        SourceCase{"Lf", rpp(kTwo, "\n"), "Audio/take 1.wav|b.mid"},
        SourceCase{"Cr", rpp(kTwo, "\r"), "Audio/take 1.wav|b.mid"},
        // "\n\r" is two line ends, so the source's file line is the empty one between them.
        SourceCase{"LfCr", "<REAPER_PROJECT\n\r\n\r<SOURCE WAVE\n\rFILE \"a.wav\"\n\r", ""},
        SourceCase{"HeaderAfterBlanksLineAfterItUnread",
                   "\r\n \t \n\t<REAPER_PROJECT\r\n<SOURCE WAVE\r\nFILE \"a\"\r\n<SOURCE "
                   "WAVE\r\nFILE \"b\"",
                   "b"},
        SourceCase{
            "EveryMediaKind",
            rpp("<SOURCE WAVE|FILE \"1\"|<SOURCE VIDEO|FILE \"2\"|<SOURCE WAVPACK|FILE \"3\"|"
                "<SOURCE APE|FILE \"4\"|<SOURCE FLAC|FILE \"5\"|<SOURCE MP3|FILE \"6\" 1|"
                "<SOURCE VORBIS|FILE \"7\""),
            "1|2|3|4|5|6|7"},
        SourceCase{"OtherKindsAndOtherCase",
                   rpp("<SOURCE CLICK|FILE \"c\"|<source wave|FILE \"l\"|FILE \"x\""), ""},
        SourceCase{"AnyLineAfterASourceIsItsFileLine", rpp("<SOURCE WAVE|NOTFILE \"odd\""), "odd"},
        SourceCase{"FileLineIsNotExaminedAgain", rpp("<SOURCE WAVE|<SOURCE FLAC|FILE \"x\""), ""},
        // A MIDI source without FILE still takes the next line; MIDIPOOL/FILENAME match by prefix.
        SourceCase{"Midi",
                   rpp("<SOURCE MIDI|HASDATA 1|<SOURCE MIDI|<SOURCE WAVE|FILE \"after.wav\"|"
                       "<SOURCE MIDIPOOL|FILENAME \"b.mid\""),
                   "b.mid"},
        SourceCase{"BankProgramFileOnItsOwnLine", rpp("BANKPROGRAMFILE \"C:\\gm\"|FILE \"n\""),
                   "C:/gm"},
        SourceCase{
            "DuplicatesOnceLetterCaseCounts",
            rpp("<SOURCE WAVE|FILE \"a\"|<SOURCE FLAC|FILE \"a\"|<SOURCE WAVE|FILE \"A\"|"
                "BANKPROGRAMFILE \"a\"|<SOURCE WAVE|FILE \"d/b\"|<SOURCE WAVE|FILE \"d\\b\""),
            "a|A|d/b"},
        SourceCase{"UrlPrefix",
                   rpp("<SOURCE WAVE|FILE \"url:file:\\\\localhost\\C:\\a\"|<SOURCE WAVE|"
                       "FILE \"URL:file://localhost/D:/b\"|<SOURCE WAVE|"
                       "FILE \"Url:file:\\\\localhost\\c\"|<SOURCE WAVE|"
                       "FILE \"xurl:file:\\\\localhost\\e\""),
                   "C:/a|D:/b|Url:file://localhost/c|/e"},
        SourceCase{
            "FirstTwoQuotesOnly",
            rpp("<SOURCE WAVE|FILE \"cut|<SOURCE WAVE|FILE \"\"|<SOURCE WAVE|FILE \"ok\" \"no\""),
            "ok"},
        SourceCase{"WindowsPathsBecomeHostPaths",
                   rpp("<SOURCE WAVE|FILE \"C:\\R\\t\"|<SOURCE WAVE|FILE \"M/x\\t\"|<SOURCE "
                       "WAVE|FILE \"\\\\s\\t\""),
                   "C:/R/t|M/x/t|//s/t"},
        SourceCase{"Utf8AndWindows1252",
                   rpp("<SOURCE MP3|FILE \"/\xD0\x92 \xD0\xBD.mp3\"|<SOURCE WAVE|FILE \"Caf\xE9\""),
                   "/\xD0\x92 \xD0\xBD.mp3|Caf\xC3\xA9"}),
    kByName);

// "{pf}" is the project folder with its separator, "{dir}" the same without it, "{abs}" an
// existing folder outside it, and "/" the host separator. `line` follows "RECORD_PATH".
struct RecordCase {
    const char* name;
    bool allFiles;
    const char* initial;
    const char* line;
    const char* expected;
};

class RppRecordPath : public RppTest<RecordCase> {
protected:
    void SetUp() override {
        ASSERT_TRUE(QDir(f.dir.path()).mkpath(QStringLiteral("Media")));
        ASSERT_TRUE(QDir(f.dir.path()).mkpath(QStringLiteral("Audio/Takes")));
        ASSERT_TRUE(QDir(outside.path()).mkpath(QStringLiteral("rec")));
    }
    QString expand(const char* text) const {
        return QString::fromUtf8(text)
            .replace(QStringLiteral("{pf}"), f.dir.path() + u'/')
            .replace(QStringLiteral("{dir}"), f.dir.path())
            .replace(QStringLiteral("{abs}"), outside.path() + QStringLiteral("/rec"))
            .replace(u'/', hostSeparator());
    }
    QTemporaryDir outside;
};

TEST_P(RppRecordPath, SetsTheRecordFolder) {
    const RecordCase& c = GetParam();
    f.state.CheckAllFiles = c.allFiles;
    f.state.RecordFolder = expand(c.initial);
    read(rpp(("RECORD_PATH" + expand(c.line)).toUtf8().constData()));
    EXPECT_EQ(f.state.RecordFolder, expand(c.expected));
}

INSTANTIATE_TEST_SUITE_P(
    Table, RppRecordPath,
    ::testing::Values(
        RecordCase{"SubFolder", false, "{abs}", " \"Media\" \"\"", "{pf}Media"},
        RecordCase{"MissingSubFolder", false, "{abs}", " \"Gone\" \"\"", "{pf}"},
        RecordCase{"ShortLineKeepsAValue", false, "x", " \"\"", "x"},
        RecordCase{"ShortLineFillsAnEmptyValue", false, "", "", "{pf}"},
        RecordCase{"AbsoluteFolder", false, "x", " \"{abs}\" \"\"", "{abs}"},
        RecordCase{"BlanksAndTabs", false, "", "\t\" Media \"\t\"\"\t", "{pf}Media"},
        RecordCase{"SecondValueIsIgnored", false, "", " \"\" \"Media\"", "{pf}"},
        RecordCase{"LoneValueLosesItsLastCharacter", false, "", " \"Media\"", "{pf}"},
        RecordCase{"WindowsSubFolder", false, "", " \"Audio\\Takes\" \"\"", "{pf}Audio/Takes"},
        RecordCase{"AllFirstSubFolder", true, "", " \"Media\" \"\"", "{pf}Media"},
        RecordCase{"AllBareProjectFolderGivesWay", true, "{dir}", " \"Media\" \"\"", "{pf}Media"},
        RecordCase{"AllEarlierFolderStaysWithSeparator", true, "{abs}", " \"Media\" \"\"",
                   "{abs}/"},
        RecordCase{"AllMissingFillsAnEmptyValue", true, "", " \"Gone\" \"\"", "{pf}"},
        RecordCase{"AllMissingKeepsAValue", true, "{abs}", " \"Gone\" \"\"", "{abs}"},
        RecordCase{"AllAbsoluteFolderChangesNothing", true, "", " \"{abs}\" \"\"", ""}),
    kByName);

// A relative record path is the project's sub-folder, even when the current folder holds one.
TEST(RppRecordFolder, RelativeRecordPathIgnoresTheCurrentFolder) {
    ReaderFixture f;
    QTemporaryDir current;
    ASSERT_TRUE(QDir(current.path()).mkpath(QStringLiteral("Rec")));
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(current.path()));
    ImportRppBytes(rpp("RECORD_PATH \"Rec\" \"\""), f.context);
    QDir::setCurrent(before);
    EXPECT_EQ(f.state.RecordFolder, f.dir.path() + hostSeparator());
}

TEST(RppTruncated, EveryPrefixReadsSafely) {
    const QByteArray whole =
        rpp("RECORD_PATH \"\" \"\"|<SOURCE WAVE|FILE \"a\"|<SOURCE MIDI|"
            "FILE \"b\"|BANKPROGRAMFILE \"c\"");
    for (qsizetype size = 0; size <= whole.size(); ++size) {
        ReaderFixture f;
        const ReaderOutcome outcome = ImportRppBytes(whole.first(size), f.context);
        EXPECT_EQ(outcome, size < 15 ? ReaderOutcome::Rejected : ReaderOutcome::Read) << size;
        const QStringList got = f.state.MediaPaths.paths();
        EXPECT_EQ(got, QStringList({"a", "b", "c"}).first(got.size())) << size;
    }
}

TEST(RppFile, FileThatCannotBeOpenedIsReported) {
    ReaderFixture f;
    EXPECT_EQ(ImportRppFile(f.dir.filePath(QStringLiteral("missing.rpp")), f.context),
              ReaderOutcome::Failed);
    ASSERT_EQ(f.ui.messages.size(), 1);
    EXPECT_EQ(f.ui.messages.front().title, QStringLiteral("File Error"));
    EXPECT_TRUE(f.ui.messages.front().text.startsWith(
        QStringLiteral("An error occurred accessing the selected RPP file.  ")));
}

TEST(RppCorpus, YieldsTheProjectsMedia) {
    const std::tuple<const char*, qsizetype, const char*> rows[] = {
        {"audiotest_Paranoid.RPP", 4, "05-200525_1858.wav"},
        {"AudiuMax_Reaper_4x4_Template.RPP", 0, ""},
        {"exvertus_test_track.rpp", 1, "audio/02 - Just Between Us.flac"},
        {"griffinsauce_multiple-media-paths.rpp", 0, ""},
        {"helgobox_clip-engine-basic.RPP", 1, "10-Column 8-230607_1038.wav"},
        {"helgobox_issue-219-play-preview.rpp", 3, ""},  // a 4th FILE is a RPP_PROJECT source
        {"lordb8r_Call_Routing.rpp", 2, "Audio Files/Zoom (monitor) - 002-02.wav"},
        {"noisefarm_201205_1424_test.RPP", 4, "01-201205_2139.wav"},
        {"tears_dont_fall_project.rpp", 50, "02-Guitar0-240929_1654.wav"},
        {"ultraschall_testproject_test.rpp", 1, "Recordings/trss-mr-death.mp3"},
        {"vovas-music_son_Untitled.RPP", 1,
         "/Users/vova/Downloads/\xD0\x92 \xD0\xBD\xD0\xBE\xD1\x87\xD1\x8C.mp3"}};
    for (const auto& [file, count, sample] : rows) {
        SCOPED_TRACE(file);
        ReaderFixture f;
        f.context.sessionFolder = test::corpusPath(QStringLiteral("rpp"));
        ASSERT_EQ(
            ImportRppFile(f.context.sessionFolder + u'/' + QLatin1StringView(file), f.context),
            ReaderOutcome::Read);
        EXPECT_EQ(f.state.MediaPaths.paths().size(), count);
        EXPECT_TRUE(*sample == 0 ||
                    f.state.MediaPaths.paths().contains(hostPaths(sample).value(0)));
    }
}

}  // namespace
}  // namespace tidewick
