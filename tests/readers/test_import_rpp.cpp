#include <gtest/gtest.h>

#include <cctype>

#include <QDir>
#include <QFile>
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

const QString kNotAProject = QStringLiteral("This is not a properly formated Reaper Project file");

// A path written with "/" as the host writes it.
QString hostPath(const char* path) {
    QString text = QString::fromUtf8(path);
    text.replace(u'/', hostSeparator());
    return text;
}

QStringList hostPaths(std::initializer_list<const char*> paths) {
    QStringList list;
    for (const char* path : paths) {
        list.append(hostPath(path));
    }
    return list;
}

// A project: the header, the line after it (which the reader passes over), then `lines`.
QByteArray project(const QList<QByteArray>& lines, QByteArray lineEnd = "\r\n") {
    QByteArray bytes =
        "<REAPER_PROJECT 0.1 \"7.14/win64\" 1700000000" + lineEnd + "  RIPPLE 0 0" + lineEnd;
    for (const QByteArray& line : lines) {
        bytes += line + lineEnd;
    }
    return bytes;
}

class RppReader : public ::testing::Test {
protected:
    ReaderOutcome read(const QByteArray& bytes) { return ImportRppBytes(bytes, f.context); }
    QStringList paths() const { return f.state.MediaPaths.paths(); }
    QString projectFolder() const { return f.dir.path() + hostSeparator(); }

    ReaderFixture f;
};

// --- The header ------------------------------------------------------------------------------

struct RejectCase {
    const char* name;
    QByteArray bytes;
    QString quotedLine;  // the cleaned first non-blank line the message ends with
};

class RppRejection : public RppReader, public ::testing::WithParamInterface<RejectCase> {};

TEST_P(RppRejection, NamesTheFirstNonBlankLineAndReadsNothing) {
    f.state.RecordFolder = QStringLiteral("kept");
    EXPECT_EQ(read(GetParam().bytes), ReaderOutcome::Rejected);
    ASSERT_EQ(f.ui.messages.size(), 1);
    const MessageBoxRequest& box = f.ui.messages.front();
    EXPECT_EQ(box.text, kNotAProject + u'\n' + GetParam().quotedLine);
    EXPECT_EQ(box.title, QStringLiteral("Processing RPP File"));
    EXPECT_EQ(box.icon, MessageIcon::Critical);
    EXPECT_EQ(box.buttons, MessageButtons::Ok);
    EXPECT_EQ(f.ui.pointerChanges, (QList<bool>{true, false})) << "default pointer before the box";
    EXPECT_TRUE(paths().isEmpty());
    EXPECT_EQ(f.state.RecordFolder, QStringLiteral("kept"));
}

INSTANTIATE_TEST_SUITE_P(
    Table, RppRejection,
    ::testing::Values(
        RejectCase{"EmptyFile", "", QString()},
        RejectCase{"OnlyBlankLines", "\r\n   \n\t\t\r\n \r", QString()},
        RejectCase{"HeaderInOtherCase", "<reaper_project 0.1\r\n",
                   QStringLiteral("<reaper_project 0.1")},
        RejectCase{"HeaderAfterOtherLine", "\r\n  junk\t\r\n<REAPER_PROJECT\r\n",
                   QStringLiteral("junk")},
        RejectCase{"TabsInsideBecomeBlanks", "\t<REAPER\tPROJECT\t\n",
                   QStringLiteral("<REAPER PROJECT")},
        RejectCase{"Utf8Line", "Caf\xC3\xA9 project\n", QStringLiteral("Café project")},
        RejectCase{"Windows1252Line", "Caf\xE9 project\n", QStringLiteral("Café project")},
        RejectCase{"LongLineIsCut", QByteArray(5000, 'x'), QString(1024, u'x')}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(RppReader, HeaderMayFollowBlankLinesAndTabs) {
    EXPECT_EQ(read("\r\n \t \n\t<REAPER_PROJECT 0.1\r\n"), ReaderOutcome::Read);
    EXPECT_TRUE(f.ui.messages.isEmpty());
    EXPECT_EQ(f.ui.pointerChanges, QList<bool>{true}) << "the caller restores the pointer";
}

TEST_F(RppReader, TheLineAfterTheHeaderIsNeverExamined) {
    read("<REAPER_PROJECT\r\n<SOURCE WAVE\r\nFILE \"a.wav\"\r\n<SOURCE WAVE\r\nFILE \"b.wav\"\r\n");
    EXPECT_EQ(paths(), QStringList{QStringLiteral("b.wav")});
}

TEST_F(RppReader, EndingRightAfterTheHeaderReadsAsEmpty) {
    for (const QByteArray& bytes :
         {QByteArray("<REAPER_PROJECT"), QByteArray("<REAPER_PROJECT\r\n"),
          QByteArray("<REAPER_PROJECT\n  RECORD_PATH \"x\" \"\"")}) {
        EXPECT_EQ(read(bytes), ReaderOutcome::Read);
    }
    EXPECT_TRUE(paths().isEmpty());
}

// --- Line ends -------------------------------------------------------------------------------

class RppLineEnds : public RppReader, public ::testing::WithParamInterface<const char*> {};

TEST_P(RppLineEnds, EndALineAtCrLfCrAndLoneLf) {
    const QByteArray bytes =
        project({"  RECORD_PATH \"\" \"\"", "  <ITEM", "    <SOURCE WAVE",
                 "      FILE \"Audio\\take 1.wav\"", "    >", "    <SOURCE MIDI",
                 "      FILE \"beat.mid\" 0", "    >", "  >"},
                GetParam());
    EXPECT_EQ(read(bytes), ReaderOutcome::Read);
    EXPECT_EQ(paths(), hostPaths({"Audio/take 1.wav", "beat.mid"}));
    EXPECT_EQ(f.state.RecordFolder, projectFolder());
}

INSTANTIATE_TEST_SUITE_P(
    Table, RppLineEnds, ::testing::Values("\r\n", "\n", "\r"), [](const auto& info) {
        return std::string(info.index == 0 ? "CrLf" : info.index == 1 ? "Lf" : "Cr");
    });

TEST_F(RppReader, MixedLineEndsInOneFile) {
    read("<REAPER_PROJECT\n\r\n<SOURCE WAVE\nFILE \"a.wav\"\r\n<SOURCE FLAC\rFILE \"b.flac\"\n");
    EXPECT_EQ(paths(), hostPaths({"a.wav", "b.flac"}));
}

TEST_F(RppReader, LineFeedBeforeCarriageReturnLeavesAnEmptyLine) {
    // "\n\r" is two line ends, so the file line of the source is the empty line between them.
    read("<REAPER_PROJECT\n\r\n\r<SOURCE WAVE\n\rFILE \"a.wav\"\n\r");
    EXPECT_TRUE(paths().isEmpty());
}

// --- Sources ---------------------------------------------------------------------------------

struct SourceCase {
    const char* name;
    QList<QByteArray> lines;
    QStringList expected;
};

class RppSources : public RppReader, public ::testing::WithParamInterface<SourceCase> {};

TEST_P(RppSources, YieldTheQuotedFile) {
    EXPECT_EQ(read(project(GetParam().lines)), ReaderOutcome::Read);
    EXPECT_EQ(paths(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, RppSources,
    ::testing::Values(
        SourceCase{
            "EveryMediaKind",
            {"<SOURCE WAVE", "FILE \"1.wav\"", "<SOURCE VIDEO", "FILE \"2.mp4\"", "<SOURCE WAVPACK",
             "FILE \"3.wv\"", "<SOURCE APE", "FILE \"4.ape\"", "<SOURCE FLAC", "FILE \"5.flac\"",
             "<SOURCE MP3", "FILE \"6.mp3\" 1", "<SOURCE VORBIS", "FILE \"7.ogg\""},
            hostPaths({"1.wav", "2.mp4", "3.wv", "4.ape", "5.flac", "6.mp3", "7.ogg"})},
        SourceCase{"OtherKindsAndOtherCase",
                   {"<SOURCE RPP_PROJECT", "FILE \"sub.rpp\"", "<SOURCE CLICK", "FILE \"c.wav\"",
                    "<source wave", "FILE \"lower.wav\"", "FILE \"loose.wav\""},
                   {}},
        SourceCase{"SectionHoldsTheRealSource",
                   {"<SOURCE SECTION", "LENGTH 190", "<SOURCE MP3", "FILE \"x.mp3\" 1", ">", ">"},
                   hostPaths({"x.mp3"})},
        SourceCase{"AnyLineAfterAMediaSourceIsItsFileLine",
                   {"<SOURCE WAVE", "NOTFILE \"odd.wav\""},
                   hostPaths({"odd.wav"})},
        SourceCase{
            "FileLineIsNotExaminedAgain", {"<SOURCE WAVE", "<SOURCE FLAC", "FILE \"x.flac\""}, {}},
        SourceCase{"MidiWithoutFile",
                   {"<SOURCE MIDI", "HASDATA 1 960 QN", "<SOURCE MIDI", "<SOURCE WAVE",
                    "FILE \"after.wav\""},
                   {}},
        SourceCase{"MidiFileIsAPrefixTest",
                   {"<SOURCE MIDI", "FILE \"a.mid\"", "<SOURCE MIDIPOOL", "FILENAME \"b.mid\""},
                   hostPaths({"a.mid", "b.mid"})},
        SourceCase{"BankProgramFileOnItsOwnLine",
                   {"BANKPROGRAMFILE \"C:\\banks\\gm.reabank\"", "FILE \"next.wav\""},
                   hostPaths({"C:/banks/gm.reabank"})},
        SourceCase{"DuplicatesOnceLetterCaseCounts",
                   {"<SOURCE WAVE", "FILE \"a.wav\"", "<SOURCE FLAC", "FILE \"a.wav\"",
                    "<SOURCE WAVE", "FILE \"A.wav\"", "BANKPROGRAMFILE \"a.wav\"", "<SOURCE WAVE",
                    "FILE \"d/b.wav\"", "<SOURCE WAVE", "FILE \"d\\b.wav\""},
                   hostPaths({"a.wav", "A.wav", "d/b.wav"})},
        SourceCase{"UrlPrefixAfterOtherText",
                   {"<SOURCE WAVE", "FILE \"xurl:file:\\\\localhost\\abc.wav\""},
                   hostPaths({"/abc.wav"})},
        SourceCase{"TabsBecomeBlanks",
                   {"\t\t<SOURCE\tWAVE", "\t\t\tFILE\t\"a\tb.wav\"\t1"},
                   hostPaths({"a b.wav"})},
        SourceCase{"FirstTwoQuotesOnly",
                   {"<SOURCE WAVE", "FILE \"a.wav\" \"b.wav\""},
                   hostPaths({"a.wav"})},
        SourceCase{
            "FewerThanTwoQuotesAreSkipped",
            {"<SOURCE WAVE", "FILE \"broken.wav", "<SOURCE WAVE", "FILE bare.wav",
             "BANKPROGRAMFILE \"x", "<SOURCE WAVE", "FILE \"\"", "<SOURCE WAVE", "FILE \"ok.wav\""},
            hostPaths({"ok.wav"})},
        SourceCase{
            "WindowsPathsBecomeHostPaths",
            {"<SOURCE WAVE", "FILE \"C:\\Rec\\Song\\take.wav\"", "<SOURCE WAVE",
             "FILE \"Media/mixed\\take.wav\"", "<SOURCE WAVE", "FILE \"\\\\server\\s\\t.wav\""},
            hostPaths({"C:/Rec/Song/take.wav", "Media/mixed/take.wav", "//server/s/t.wav"})},
        SourceCase{"UrlPrefixInEitherSeparatorForm",
                   {"<SOURCE WAVE", "FILE \"url:file:\\\\localhost\\C:\\a.wav\"", "<SOURCE WAVE",
                    "FILE \"URL:file://localhost/D:/b.wav\"", "<SOURCE WAVE",
                    "FILE \"Url:file:\\\\localhost\\c.wav\"", "<SOURCE WAVE",
                    "FILE \"url:file:\\\\otherhost\\d.wav\""},
                   hostPaths({"C:/a.wav", "D:/b.wav", "Url:file://localhost/c.wav",
                              "url:file://otherhost/d.wav"})},
        SourceCase{
            "PathsAreDecoded",
            {"<SOURCE MP3", "FILE \"/Users/vova/\xD0\x92 \xD0\xBD\xD0\xBE\xD1\x87\xD1\x8C.mp3\" 1",
             "<SOURCE WAVE", "FILE \"Caf\xE9.wav\""},
            QStringList{QStringLiteral("/Users/vova/В ночь.mp3"), QStringLiteral("Café.wav")}},
        SourceCase{"SourceOnTheLastLine", {"<SOURCE WAVE"}, {}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(RppReader, SourceWithoutALineEndAtTheEndOfTheFile) {
    read("<REAPER_PROJECT\n\n<SOURCE WAVE\nFILE \"last.wav\"");
    EXPECT_EQ(paths(), hostPaths({"last.wav"}));
}

// --- The record path -------------------------------------------------------------------------

// In the texts below "{pf}" is the project folder with its separator, "{dir}" the same without
// it, "{abs}" an existing folder outside it, and "/" the host separator.
struct RecordCase {
    const char* name;
    bool allFiles;
    const char* initial;
    const char* line;
    const char* expected;
};

class RppRecordPath : public RppReader, public ::testing::WithParamInterface<RecordCase> {
protected:
    void SetUp() override {
        ASSERT_TRUE(QDir(f.dir.path()).mkpath(QStringLiteral("Media")));
        ASSERT_TRUE(QDir(f.dir.path()).mkpath(QStringLiteral("Audio/Takes")));
        ASSERT_TRUE(QDir(outside.path()).mkpath(QStringLiteral("rec")));
    }
    QString expand(const char* text) const {
        QString out = QString::fromUtf8(text);
        out.replace(QStringLiteral("{pf}"), projectFolder());
        out.replace(QStringLiteral("{dir}"), f.dir.path());
        out.replace(QStringLiteral("{abs}"), outside.path() + QStringLiteral("/rec"));
        out.replace(u'/', hostSeparator());
        return out;
    }

    QTemporaryDir outside;
};

TEST_P(RppRecordPath, SetsTheRecordFolder) {
    const RecordCase& c = GetParam();
    f.state.CheckAllFiles = c.allFiles;
    f.state.RecordFolder = expand(c.initial);
    read(project({expand(c.line).toUtf8()}));
    EXPECT_EQ(f.state.RecordFolder, expand(c.expected));
    EXPECT_EQ(f.state.CheckAllFiles, c.allFiles) << "the reader only reads the flag";
}

INSTANTIATE_TEST_SUITE_P(
    SingleProject, RppRecordPath,
    ::testing::Values(
        RecordCase{"ExistingSubFolder", false, "", "RECORD_PATH \"Media\" \"\"", "{pf}Media"},
        RecordCase{"ReplacesAnEarlierValue", false, "{abs}", "RECORD_PATH \"Media\" \"\"",
                   "{pf}Media"},
        RecordCase{"MissingSubFolder", false, "{abs}", "RECORD_PATH \"Gone\" \"\"", "{pf}"},
        RecordCase{"EmptyValue", false, "x", "RECORD_PATH \"\" \"\"", "{pf}"},
        RecordCase{"ShortLineKeepsAValue", false, "x", "RECORD_PATH \"\"", "x"},
        RecordCase{"ShortLineFillsAnEmptyValue", false, "", "RECORD_PATH", "{pf}"},
        RecordCase{"AbsoluteExistingFolder", false, "x", "RECORD_PATH \"{abs}\" \"\"", "{abs}"},
        RecordCase{"BlanksAroundTheValue", false, "", "RECORD_PATH \"  Media \" \"\"", "{pf}Media"},
        RecordCase{"TabsAroundTheLine", false, "", "\tRECORD_PATH\t\"Media\"\t\"\"\t", "{pf}Media"},
        RecordCase{"SecondValueIsIgnored", false, "", "RECORD_PATH \"\" \"Media\"", "{pf}"},
        RecordCase{"LoneValueLosesItsLastCharacter", false, "", "RECORD_PATH \"Media\"", "{pf}"},
        RecordCase{"WindowsSubFolder", false, "", "RECORD_PATH \"Audio\\Takes\" \"\"",
                   "{pf}Audio/Takes"}),
    [](const auto& info) { return std::string(info.param.name); });

INSTANTIATE_TEST_SUITE_P(
    WholeFolder, RppRecordPath,
    ::testing::Values(
        RecordCase{"FirstProjectSubFolder", true, "", "RECORD_PATH \"Media\" \"\"", "{pf}Media"},
        RecordCase{"ProjectFolderGivesWay", true, "{pf}", "RECORD_PATH \"Media\" \"\"",
                   "{pf}Media"},
        RecordCase{"ProjectFolderWithoutSeparatorGivesWay", true, "{dir}",
                   "RECORD_PATH \"Media\" \"\"", "{pf}Media"},
        RecordCase{"EarlierFolderStaysWithSeparator", true, "{abs}", "RECORD_PATH \"Media\" \"\"",
                   "{abs}/"},
        RecordCase{"MissingFillsOnlyAnEmptyValue", true, "", "RECORD_PATH \"Gone\" \"\"", "{pf}"},
        RecordCase{"MissingKeepsAValue", true, "{abs}", "RECORD_PATH \"Gone\" \"\"", "{abs}"},
        RecordCase{"AbsoluteExistingFolderChangesNothing", true, "", "RECORD_PATH \"{abs}\" \"\"",
                   ""},
        RecordCase{"ShortLineKeepsAValue", true, "x", "RECORD_PATH", "x"}),
    [](const auto& info) { return std::string(info.param.name); });

// A relative record path is the project's sub-folder, even when the program's current folder
// holds a folder of that name.
TEST_F(RppReader, RelativeRecordPathIgnoresTheCurrentFolder) {
    QTemporaryDir current;
    ASSERT_TRUE(QDir(current.path()).mkpath(QStringLiteral("Rec")));
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(current.path()));
    const QByteArray bytes = project({"RECORD_PATH \"Rec\" \"\""});

    read(bytes);
    EXPECT_EQ(f.state.RecordFolder, projectFolder()) << "no Rec in the project folder";
    ASSERT_TRUE(QDir(f.dir.path()).mkpath(QStringLiteral("Rec")));
    read(bytes);
    EXPECT_EQ(f.state.RecordFolder, projectFolder() + QStringLiteral("Rec"));

    // A whole-folder scan leaves the record folder alone for a path that exists by itself.
    f.state.CheckAllFiles = true;
    f.state.RecordFolder.clear();
    read(bytes);
    EXPECT_EQ(f.state.RecordFolder, QString());
    QDir::setCurrent(before);
}

// --- Files on disk ---------------------------------------------------------------------------

TEST_F(RppReader, FileThatCannotBeOpenedIsReported) {
    EXPECT_EQ(ImportRppFile(f.dir.filePath(QStringLiteral("missing.rpp")), f.context),
              ReaderOutcome::Failed);
    ASSERT_EQ(f.ui.messages.size(), 1);
    EXPECT_EQ(f.ui.messages.front().title, QStringLiteral("File Error"));
    EXPECT_TRUE(f.ui.messages.front().text.startsWith(
        QStringLiteral("An error occurred accessing the selected RPP file.  ")));
}

struct CorpusCase {
    const char* file;
    qsizetype count;
    const char* sample;  // one expected path, "/" as the host separator
};

class RppCorpus : public ::testing::TestWithParam<CorpusCase> {};

// The counts are the distinct FILE references that the corpus notes give, except where a source
// kind the reader does not take holds one (noted in the row).
TEST_P(RppCorpus, YieldsTheProjectsMedia) {
    ReaderFixture f;
    f.context.sessionFolder = test::corpusPath(QStringLiteral("rpp"));
    const CorpusCase& c = GetParam();
    ASSERT_EQ(ImportRppFile(test::corpusPath(QStringLiteral("rpp/") + QLatin1StringView(c.file)),
                            f.context),
              ReaderOutcome::Read);
    EXPECT_TRUE(f.ui.messages.isEmpty());
    const QStringList& paths = f.state.MediaPaths.paths();
    EXPECT_EQ(paths.size(), c.count);
    if (c.sample != nullptr) {
        EXPECT_TRUE(paths.contains(hostPath(c.sample))) << paths.join(u'\n').toStdString();
    }
    // No record folder of the corpus exists beside it, so the project folder stands in.
    EXPECT_EQ(f.state.RecordFolder, f.context.sessionFolder + hostSeparator());
}

INSTANTIATE_TEST_SUITE_P(
    Table, RppCorpus,
    ::testing::Values(
        CorpusCase{"audiotest_Paranoid.RPP", 4, "05-200525_1858.wav"},
        CorpusCase{"AudiuMax_Reaper_4x4_Template.RPP", 0, nullptr},
        CorpusCase{"exvertus_test_track.rpp", 1, "audio/02 - Just Between Us.flac"},
        CorpusCase{"glutones_toast-band-session.RPP", 0, nullptr},
        CorpusCase{"griffinsauce_multiple-media-paths.rpp", 0, nullptr},
        CorpusCase{"helgobox_clip-engine-basic.RPP", 1, "10-Column 8-230607_1038.wav"},
        // 4 FILE references, one of them a RPP_PROJECT source, which names no media.
        CorpusCase{"helgobox_issue-219-play-preview.rpp", 3,
                   "C:/Users/benja/Documents/opt/flutter/.pub-cache/hosted/pub.dartlang.org/"
                   "import_js_library-1.0.2/example/assets/astronomia.mp3"},
        CorpusCase{"helgobox_issue-45-grouping-vca-test.RPP", 1,
                   "/Users/helgoboss/Documents/projects/music/gigs/"
                   "2022-09-25-neustadt-art-festival/recordings/mondpalast-video.mp4"},
        CorpusCase{"helgobox_issue-809-pitch-bend-scrub.RPP", 1,
                   "/Users/helgoboss/Documents/projects/music/sessions/"
                   "asia-2023-field-recordings/230212-150249-siquijor-berg-nacht-jungs.WAV"},
        CorpusCase{"koulaxizis_NewProject.rpp", 0, nullptr},
        CorpusCase{"lordb8r_Call_Routing.rpp", 2, "Audio Files/Zoom (monitor) - 002-02.wav"},
        CorpusCase{"noisefarm_201205_1424_test.RPP", 4, "01-201205_2139.wav"},
        CorpusCase{"one-button-device_test.RPP", 1, "01-210711_2359.wav"},
        CorpusCase{"perlence-rpp_vst.RPP", 0, nullptr},
        CorpusCase{"rbcaislir43_git-test_test.rpp", 0, nullptr},
        CorpusCase{"rpp-editor_test1_reserialized.rpp", 0, nullptr},
        CorpusCase{"tears_dont_fall_project.rpp", 50, "02-Guitar0-240929_1654.wav"},
        CorpusCase{"ultraschall_StudioLink_Linux.RPP", 0, nullptr},
        CorpusCase{"ultraschall_testproject_test.rpp", 1, "Recordings/trss-mr-death.mp3"},
        CorpusCase{"vovas-music_son_Untitled.RPP", 1,
                   "/Users/vova/Downloads/\xD0\x92 \xD0\xBD\xD0\xBE\xD1\x87\xD1\x8C.mp3"}),
    [](const auto& info) {
        std::string name = info.param.file;
        for (char& ch : name) {
            if (!std::isalnum(static_cast<unsigned char>(ch))) {
                ch = '_';
            }
        }
        return name;
    });

TEST(RppCorpusRecordPath, ExistingRecordSubFolderOfARealProject) {
    ReaderFixture f;
    QFile source(test::corpusPath(QStringLiteral("rpp/glutones_toast-band-session.RPP")));
    ASSERT_TRUE(source.open(QIODevice::ReadOnly));
    const QString copy = f.write(QStringLiteral("toast.RPP"), source.readAll());
    ASSERT_TRUE(QDir(f.dir.path()).mkpath(QStringLiteral("Media")));
    ASSERT_EQ(ImportRppFile(copy, f.context), ReaderOutcome::Read);
    EXPECT_EQ(f.state.RecordFolder, f.dir.path() + hostSeparator() + QStringLiteral("Media"));
}

}  // namespace
}  // namespace tidewick
