#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "readers/import_sesx.h"
#include "support/reader_fixture.h"

namespace tidewick {
namespace {

using test::corpusPath;
using test::ReaderFixture;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Paths = std::vector<std::string>;

const QByteArray kDeclaration = R"(<?xml version="1.0" encoding="UTF-8" standalone="no" ?>)";

QByteArray fileElement(const QByteArray& path, const QByteArray& indent = "    ") {
    return indent + R"(<file absolutePath=")" + path + R"(" id="0" mediaHandler="AmioWav"/>)";
}

// A session as Audition writes it, declaration first, with the given lines end.
QByteArray session(const QByteArrayList& files, const QByteArray& lineEnd) {
    QByteArrayList lines{kDeclaration,
                         "<!DOCTYPE sesx>",
                         R"(<sesx version="1.7">)",
                         R"(  <session sampleRate="44100">)",
                         "  </session>",
                         "  <files>"};
    lines += files;
    lines += QByteArrayList{"  </files>", "</sesx>"};
    return lines.join(lineEnd) + lineEnd;
}

Paths utf8(const QStringList& paths) {
    Paths out;
    for (const QString& path : paths) {
        out.push_back(path.toStdString());
    }
    return out;
}

// One read of bytes, with what the reader left and said.
struct SesxRead {
    ProgramState state;
    RecordingInteraction ui;
    FileSystem fs;
    ReaderContext context{state, ui, fs, QString()};
    ReaderOutcome outcome = ReaderOutcome::Failed;

    explicit SesxRead(QByteArrayView bytes) { outcome = ImportSesxBytes(bytes, context); }
    Paths paths() const { return utf8(state.MediaPaths.paths()); }
};

// --- Line mode and piece mode ----------------------------------------------------------------

struct ModeCase {
    const char* name;
    QByteArray bytes;
    Paths paths;
};

class SesxModes : public ::testing::TestWithParam<ModeCase> {};

TEST_P(SesxModes, DecideWhichLinesAreExamined) {
    const ModeCase& c = GetParam();
    SesxRead read(c.bytes);
    EXPECT_EQ(read.outcome, ReaderOutcome::Read);
    EXPECT_EQ(read.paths(), c.paths);
    EXPECT_THAT(read.ui.messages, IsEmpty());
    EXPECT_THAT(read.ui.pointerChanges, ElementsAre(true)) << "the caller restores the pointer";
}

const QByteArrayList kIndented{fileElement("a.wav", "  "), fileElement("b.wav", "\t\t"),
                               fileElement("c.wav", " \t ")};

INSTANTIATE_TEST_SUITE_P(
    Cases, SesxModes,
    ::testing::Values(ModeCase{"CrLfFindsElementsWhateverTheirIndentation",
                               session(kIndented, "\r\n"),
                               {"a.wav", "b.wav", "c.wav"}},
                      ModeCase{"CrLikeCrLf", session(kIndented, "\r"), {"a.wav", "b.wav", "c.wav"}},
                      ModeCase{"LfPiecesKeepTheirTabs", session(kIndented, "\n"), {"a.wav"}},
                      ModeCase{"CrLfNeverExaminesTheFirstLine",
                               fileElement("first.wav", "") + "\r\n" + fileElement("second.wav"),
                               {"second.wav"}},
                      ModeCase{"LfExaminesTheFirstLine",
                               fileElement("first.wav", "") + "\n" + fileElement("second.wav"),
                               {"first.wav", "second.wav"}},
                      ModeCase{"LfStopsAtTheFirstCarriageReturn",
                               kDeclaration + "\n" + fileElement("a.wav") + "\n" +
                                   fileElement("b.wav") + "\r\n" + fileElement("c.wav") + "\r\n",
                               {"a.wav", "b.wav"}},
                      ModeCase{"CrLfLineHoldingLineFeedsIsOneLine",
                               kDeclaration + "\r\n" + fileElement("a.wav") + "\n" +
                                   fileElement("b.wav") + "\r\n" + fileElement("c.wav"),
                               {"a.wav", "c.wav"}},
                      ModeCase{"CrLfTabInsideTheTagAndPathBecomesABlank",
                               kDeclaration + "\r\n<file\tabsolutePath=\"a\tb.wav\"/>",
                               {"a b.wav"}},
                      ModeCase{"LfTabInsideTheTagIsNoElement",
                               kDeclaration + "\n<file\tabsolutePath=\"a.wav\"/>\n",
                               {}},
                      ModeCase{"LfTabInsideThePathStays",
                               kDeclaration + "\n<file absolutePath=\"a\tb.wav\"/>\n",
                               {"a\tb.wav"}},
                      ModeCase{"EmptyFile", "", {}}, ModeCase{"LineFeedsOnly", "\n\n\n", {}},
                      ModeCase{"CarriageReturnsOnly", "\r\r\n\r", {}}),
    [](const auto& info) { return std::string(info.param.name); });

// --- Where reading stops ---------------------------------------------------------------------

struct StopCase {
    const char* name;
    QByteArray line;  // placed between two file elements
    bool stopsInLineMode;
    bool stopsInPieceMode;
};

class SesxStops : public ::testing::TestWithParam<StopCase> {};

TEST_P(SesxStops, EndOfFilesOrSessionEndsTheRead) {
    const StopCase& c = GetParam();
    const QByteArrayList lines{kDeclaration, fileElement("before.wav"), c.line,
                               fileElement("after.wav")};
    const Paths both{"before.wav", "after.wav"};
    const Paths before{"before.wav"};
    EXPECT_EQ(SesxRead(lines.join("\r\n")).paths(), c.stopsInLineMode ? before : both);
    EXPECT_EQ(SesxRead(lines.join("\n")).paths(), c.stopsInPieceMode ? before : both);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, SesxStops,
    ::testing::Values(StopCase{"FilesEnd", "</files>", true, true},
                      StopCase{"FilesEndIndentedByBlanks", "  </files>", true, false},
                      StopCase{"FilesEndIndentedByTab", "\t</files>", true, false},
                      StopCase{"FilesEndWithTrailingBlank", "</files> ", true, false},
                      StopCase{"SessionEnd", "</sesx>", true, true},
                      StopCase{"SessionEndBetweenBlanks", "  </sesx>  ", true, true},
                      StopCase{"SessionEndIndentedByTab", "\t</sesx>", true, false},
                      StopCase{"EmptyFilesElement", "  <files/>", false, false},
                      StopCase{"FilesEndInUpperCase", "</FILES>", false, false},
                      StopCase{"SessionEndWithMore", "</sesx> x", false, false}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(SesxStops, FilesEndAsTheFirstLineIsNotExaminedInLineMode) {
    const QByteArray bytes = "</files>\r\n" + fileElement("a.wav");
    EXPECT_THAT(SesxRead(bytes).paths(), ElementsAre("a.wav"));
}

// --- Cutting out the path --------------------------------------------------------------------

struct CutCase {
    const char* name;
    QByteArray element;
    Paths paths;
};

class SesxCut : public ::testing::TestWithParam<CutCase> {};

TEST_P(SesxCut, TakesTheAbsolutePathValue) {
    const CutCase& c = GetParam();
    for (const QByteArray& lineEnd : {QByteArray("\r\n"), QByteArray("\n")}) {
        const QByteArray bytes = kDeclaration + lineEnd + c.element + lineEnd;
        EXPECT_EQ(SesxRead(bytes).paths(), c.paths) << QByteArray(lineEnd).toHex().constData();
    }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, SesxCut,
    ::testing::Values(
        CutCase{"AsWritten",
                R"(<file absolutePath="C:\Audio\take 1.wav" id="0" relativePath="take 1.wav"/>)",
                {R"(C:\Audio\take 1.wav)"}},
        CutCase{"AttributeAnywhere",
                R"(<file id="3" absolutePath="/Users/me/a b.wav"/>)",
                {"/Users/me/a b.wav"}},
        CutCase{"BlanksInsideTheValueStay", R"(<file absolutePath=" a.wav "/>)", {" a.wav "}},
        CutCase{"ClosingQuoteSecondToLast", R"(<file absolutePath="a.wav"/>)", {"a.wav"}},
        CutCase{"ClosingQuoteLast", R"(<file absolutePath="a.wav">)", {}},
        CutCase{"NoClosingQuote", R"(<file absolutePath="a.wav)", {}},
        CutCase{"ValueCutByTheLineEnd", R"(<file absolutePath=")", {}},
        CutCase{"NoAbsolutePath", R"(<file id="0" relativePath="a.wav"/>)", {}},
        CutCase{"AttributeNameInOtherCase", R"(<file absolutepath="a.wav"/>)", {}},
        CutCase{"EmptyValue", R"(<file absolutePath="" id="0"/>)", {}},
        CutCase{"TagAlone", "<file x", {}},
        CutCase{"FirstAmpersandOnly",
                R"(<file absolutePath="R&amp;B &amp; Soul.wav"/>)",
                {"R&B &amp; Soul.wav"}},
        CutCase{
            "EncodedDriveColon", R"(<file absolutePath="C%3a\a%3ab.wav"/>)", {R"(C:\a%3ab.wav)"}},
        CutCase{"EncodedColonInUpperCaseStays",
                R"(<file absolutePath="C%3A\a.wav"/>)",
                {R"(C%3A\a.wav)"}},
        CutCase{"BothEncodings", R"(<file absolutePath="C%3a\R&amp;B.wav"/>)", {R"(C:\R&B.wav)"}},
        CutCase{"Utf8",
                "<file absolutePath=\"C:\\M\xc3\xbcller \xe2\x80\x94 1.wav\"/>",
                {"C:\\M\xc3\xbcller \xe2\x80\x94 1.wav"}},
        CutCase{"Windows1252",
                "<file absolutePath=\"C:\\M\xfcller \x80.wav\"/>",
                {"C:\\M\xc3\xbcller \xe2\x82\xac.wav"}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(SesxCut, IndentedPiecesAndRepeatedAttributes) {
    // A piece keeps its indentation, so the cut that drops "<file " drops blanks instead; the
    // attribute is still found after them. Of two attributes the first counts.
    EXPECT_THAT(SesxRead(kDeclaration + "\n" + fileElement("a.wav", "      ") + "\n").paths(),
                ElementsAre("a.wav"));
    EXPECT_THAT(SesxRead(kDeclaration + "\n<file absolutePath=\"x\" absolutePath=\"y\"/>").paths(),
                ElementsAre("x"));
}

TEST(SesxDuplicates, CountOnceWithLetterCaseCounting) {
    for (const QByteArray& lineEnd : {QByteArray("\r\n"), QByteArray("\n")}) {
        SesxRead read(session({fileElement("C:\\a.wav"), fileElement("C:\\A.wav"),
                               fileElement("C:\\a.wav"), fileElement("C%3a\\a.wav")},
                              lineEnd));
        EXPECT_THAT(read.paths(), ElementsAre("C:\\a.wav", "C:\\A.wav"));
    }
}

TEST(SesxTruncated, EveryPrefixOfASessionReadsSafely) {
    for (const QByteArray& lineEnd : {QByteArray("\r\n"), QByteArray("\n")}) {
        const QByteArray whole = session(
            {fileElement("C:\\a.wav"), fileElement("C%3a\\R&amp;B.wav"), fileElement("c.wav")},
            lineEnd);
        const Paths full = SesxRead(whole).paths();
        ASSERT_THAT(full, ElementsAre("C:\\a.wav", "C:\\R&B.wav", "c.wav"));
        for (qsizetype size = 0; size <= whole.size(); ++size) {
            SesxRead read(QByteArrayView(whole).first(size));
            ASSERT_EQ(read.outcome, ReaderOutcome::Read) << size;
            // A cut element adds nothing: its value has lost its closing quote, or the cut-off
            // line end takes the last byte the path would need.
            const Paths got = read.paths();
            ASSERT_LE(got.size(), full.size()) << size;
            EXPECT_TRUE(std::equal(got.begin(), got.end(), full.begin())) << size;
        }
    }
}

// --- Real sessions ---------------------------------------------------------------------------

struct CorpusCase {
    const char* file;
    Paths paths;
};

class SesxCorpus : public ::testing::TestWithParam<CorpusCase> {};

TEST_P(SesxCorpus, YieldsTheFileElementsOfTheSession) {
    const CorpusCase& c = GetParam();
    ReaderFixture f;
    EXPECT_EQ(
        ImportSesxFile(corpusPath(QStringLiteral("sesx/") + QString::fromUtf8(c.file)), f.context),
        ReaderOutcome::Read);
    EXPECT_EQ(utf8(f.state.MediaPaths.paths()), c.paths);
    EXPECT_THAT(f.ui.messages, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Files, SesxCorpus,
    ::testing::Values(
        CorpusCase{"AudiuMax_Audium_4x4_Template.sesx", {}},
        CorpusCase{
            "FiveTailedGames_FourthSealSoundtrack.sesx",
            {R"(D:\NEWM N430 Advanced Game Design\FiveTailedGames\FiveTailedGames\)"
             R"(FourthSealSoundtrack\Conformed Files\SoundSketch acrid soundscape 48000 1.wav)"}},
        CorpusCase{"Mmusic_Untitled_Session_1.sesx",
                   {"/Users/qianzeng/Desktop/Mmusic/Untitled Session 1/Imported Files/ahhh.wav",
                    "/Users/qianzeng/Desktop/Mmusic/Untitled Session 1/Conformed Files/Burp 44100 "
                    "1.wav",
                    "/Users/qianzeng/Desktop/Mmusic/Untitled Session 1/Conformed Files/water 44100 "
                    "1.wav",
                    "/Users/qianzeng/Desktop/Mmusic/Untitled Session 1/Conformed Files/Whistle "
                    "44100 1.wav"}}),
    [](const auto& info) {
        return std::string(info.param.file).substr(0, std::string(info.param.file).find('_'));
    });

TEST(ImportSesxFile, ReportsAFileThatCannotBeRead) {
    ReaderFixture f;
    EXPECT_EQ(ImportSesxFile(f.dir.filePath(QStringLiteral("gone.sesx")), f.context),
              ReaderOutcome::Failed);
    ASSERT_EQ(f.ui.messages.size(), 1);
    const MessageBoxRequest& box = f.ui.messages.first();
    EXPECT_TRUE(box.text.startsWith(
        QStringLiteral("An error occurred accessing the selected SESX file.  ")));
    EXPECT_EQ(box.title, QStringLiteral("File Error"));
    EXPECT_EQ(box.icon, MessageIcon::Critical);
}

}  // namespace
}  // namespace tidewick
