#include <gtest/gtest.h>

#include "readers/import_sesx.h"
#include "support/reader_fixture.h"

namespace tidewick {
namespace {

using test::kByName;
using test::texts;

const QByteArray kDeclaration = R"(<?xml version="1.0" encoding="UTF-8" standalone="no" ?>)";
QByteArray fileElement(const QByteArray& path, const QByteArray& indent = "    ") {
    return indent + R"(<file absolutePath=")" + path + R"(" id="0" mediaHandler="AmioWav"/>)";
}

QByteArray session(const QByteArrayList& files, const QByteArray& lineEnd) {
    const QByteArrayList lines =
        QByteArrayList{kDeclaration, R"(<sesx version="1.7">)", "  <files>"} + files +
        QByteArrayList{"  </files>", "</sesx>"};
    return lines.join(lineEnd) + lineEnd;
}

QStringList read(QByteArrayView bytes) {
    const SessionRead r = readSesxSession(bytes, {});
    EXPECT_EQ(r.outcome, ReaderOutcome::Read);
    EXPECT_FALSE(r.message);
    return r.paths;
}

// A file whose first line holds a line feed is read in pieces split at line feeds up to the
// first carriage return; any other file line by line, from its second line on.
struct ModeCase {
    const char* name;
    QByteArray bytes;
    const char* paths;
};

class SesxModes : public ::testing::TestWithParam<ModeCase> {};

TEST_P(SesxModes, DecideWhichLinesAreExamined) {
    EXPECT_EQ(read(GetParam().bytes), texts(GetParam().paths));
}

const QByteArrayList kIndented{fileElement("a", "  "), fileElement("b", "\t\t"),
                               fileElement("c", " \t ")};

INSTANTIATE_TEST_SUITE_P(
    Cases, SesxModes,
    ::testing::Values(
        ModeCase{"CrLfFindsElementsWhateverTheirIndentation", session(kIndented, "\r\n"), "a|b|c"},
        ModeCase{"CrLikeCrLf", session(kIndented, "\r"), "a|b|c"},
        ModeCase{"LfPiecesKeepTheirTabs", session(kIndented, "\n"), "a"},
        ModeCase{"CrLfNeverExaminesTheFirstLine", fileElement("1", "") + "\r\n" + fileElement("2"),
                 "2"},
        ModeCase{"LfExaminesTheFirstLine", fileElement("1", "") + "\n" + fileElement("2"), "1|2"},
        ModeCase{"LfStopsAtTheFirstCarriageReturn",
                 kDeclaration + "\n" + fileElement("a") + "\n" + fileElement("b") + "\r\n" +
                     fileElement("c") + "\r\n",
                 "a|b"},
        ModeCase{"CrLfLineHoldingLineFeedsIsOneLine",
                 kDeclaration + "\r\n" + fileElement("a") + "\n" + fileElement("b") + "\r\n" +
                     fileElement("c"),
                 "a|c"},
        ModeCase{"CrLfTabInsideTheTagAndPathBecomesABlank",
                 kDeclaration + "\r\n<file\tabsolutePath=\"a\tb\"/>", "a b"},
        ModeCase{"LfTabInsideTheTagIsNoElement", kDeclaration + "\n<file\tabsolutePath=\"a\"/>\n",
                 ""},
        ModeCase{"LfTabInsideThePathStays", kDeclaration + "\n<file absolutePath=\"a\tb\"/>\n",
                 "a\tb"},
        // The cut that drops "<file " drops blanks of an indented piece instead.
        ModeCase{"LfIndentedPiece", kDeclaration + "\n" + fileElement("a", "      ") + "\n", "a"},
        ModeCase{
            "DuplicatesOnceLetterCaseCounts",
            session({fileElement("C:\\a"), fileElement("C:\\A"), fileElement("C%3a\\a")}, "\r\n"),
            "C:\\a|C:\\A"},
        ModeCase{"EmptyFile", "", ""}),
    kByName);

struct StopCase {
    const char* name;
    QByteArray line;  // placed between two file elements
    bool stopsInLineMode;
    bool stopsInPieceMode;
};

class SesxStops : public ::testing::TestWithParam<StopCase> {};

TEST_P(SesxStops, EndOfFilesOrSessionEndsTheRead) {
    const StopCase& c = GetParam();
    const QByteArrayList lines{kDeclaration, fileElement("1"), c.line, fileElement("2")};
    EXPECT_EQ(read(lines.join("\r\n")), texts(c.stopsInLineMode ? "1" : "1|2"));
    EXPECT_EQ(read(lines.join("\n")), texts(c.stopsInPieceMode ? "1" : "1|2"));
}

INSTANTIATE_TEST_SUITE_P(Cases, SesxStops,
                         ::testing::Values(StopCase{"FilesEnd", "</files>", true, true},
                                           StopCase{"FilesEndIndented", "  </files>", true, false},
                                           StopCase{"SessionEndInBlanks", " </sesx> ", true, true},
                                           StopCase{"SessionEndAfterTab", "\t</sesx>", true, false},
                                           StopCase{"EmptyFilesElement", "<files/>", false, false},
                                           StopCase{"SessionEndWithMore", "</sesx> x", false,
                                                    false}),
                         kByName);

struct CutCase {
    const char* name;
    QByteArray element;
    const char* paths;
};

class SesxCut : public ::testing::TestWithParam<CutCase> {};

TEST_P(SesxCut, TakesTheAbsolutePathValue) {
    for (const char* lineEnd : {"\r\n", "\n"}) {
        EXPECT_EQ(read(kDeclaration + lineEnd + GetParam().element + lineEnd),
                  texts(GetParam().paths))
            << QByteArray(lineEnd).toHex().constData();
    }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, SesxCut,
    ::testing::Values(
        CutCase{"AttributeAnywhere",
                R"(<file id="0" absolutePath="C:\A\t 1.wav" relativePath="x"/>)",
                R"(C:\A\t 1.wav)"},
        CutCase{"BlanksInsideTheValueStay", R"(<file absolutePath=" a "/>)", " a "},
        // The last character is never part of the value.
        CutCase{"ClosingQuoteLast", R"(<file absolutePath="a.wav">)", ""},
        CutCase{"NoAbsolutePath", R"(<file id="0" relativePath="a.wav"/>)", ""},
        CutCase{"EmptyValue", R"(<file absolutePath="" id="0"/>)", ""},
        CutCase{"FirstAmpersandOnly", R"(<file absolutePath="R&amp;B &amp; S"/>)", "R&B &amp; S"},
        CutCase{"FirstEncodedColonOnly", R"(<file absolutePath="C%3a\a%3ab"/>)", R"(C:\a%3ab)"},
        CutCase{"EncodedColonInUpperCaseStays", R"(<file absolutePath="C%3A\a"/>)", R"(C%3A\a)"},
        CutCase{"Utf8", "<file absolutePath=\"M\xc3\xbcller \xe2\x80\x94\"/>",
                "M\xc3\xbcller \xe2\x80\x94"},
        CutCase{"Windows1252", "<file absolutePath=\"M\xfcller \x80\"/>",
                "M\xc3\xbcller \xe2\x82\xac"}),
    kByName);

TEST(SesxTruncated, EveryPrefixOfASessionReadsSafely) {
    for (const char* lineEnd : {"\r\n", "\n"}) {
        const QByteArray whole = session(
            {fileElement("C:\\a"), fileElement("C%3a\\R&amp;B"), fileElement("c")}, lineEnd);
        const QStringList full = read(whole);
        ASSERT_EQ(full, texts("C:\\a|C:\\R&B|c"));
        for (qsizetype size = 0; size <= whole.size(); ++size) {
            // A cut element adds nothing: its value has lost its closing quote or last byte.
            const QStringList got = read(QByteArrayView(whole).first(size));
            EXPECT_EQ(got, full.first(got.size())) << size;
        }
    }
}

}  // namespace
}  // namespace tidewick
