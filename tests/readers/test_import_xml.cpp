#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "readers/import_xml.h"
#include "support/reader_fixture.h"

namespace tidewick {
namespace {

using test::ReaderFixture;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Paths = std::vector<std::string>;

const char* const kDeclaration = R"(<?xml version="1.0" encoding="UTF-8" standalone="no"?>)";
const QString kRejectText =
    QStringLiteral("This is not a properly formated Adobe Audition XML file.\n");

// One wave entry as the export lays it out: the opening line and 21 more, the 18th of which is
// the path line.
QByteArrayList waveEntry(const QByteArray& pathLine, int number = 1) {
    const QByteArray n = QByteArray::number(number);
    QByteArrayList lines{"      <EntityInfo_Wave_" + n + ">"};
    for (int i = 1; i < 18; ++i) {
        lines.append("        <Field" + QByteArray::number(i) + ">0</Field>");
    }
    lines.append(pathLine);
    lines.append("        <Flags>0</Flags>");
    lines.append("        <Peak>0</Peak>");
    lines.append("      </EntityInfo_Wave_" + n + ">");
    return lines;
}

QByteArrayList waveBlock(const QList<QByteArray>& pathLines) {
    QByteArrayList lines{"    <EntityInfo_Wave>"};
    int number = 0;
    for (const QByteArray& pathLine : pathLines) {
        lines += waveEntry(pathLine, ++number);
    }
    lines.append("    </EntityInfo_Wave>");
    return lines;
}

QByteArray session(const QByteArrayList& body, const QByteArray& lineEnd = "\r\n") {
    QByteArrayList lines{kDeclaration, "<AuditionSession>", "  <Session>"};
    lines += body;
    lines += QByteArrayList{"  </Session>", "</AuditionSession>"};
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
struct XmlRead {
    ProgramState state;
    RecordingInteraction ui;
    FileSystem fs;
    ReaderContext context{state, ui, fs, QString()};
    ReaderOutcome outcome = ReaderOutcome::Failed;

    explicit XmlRead(QByteArrayView bytes) { outcome = ImportXmlBytes(bytes, context); }
    Paths paths() const { return utf8(state.MediaPaths.paths()); }
};

// --- The header test -----------------------------------------------------------------------

struct HeaderCase {
    const char* name;
    QByteArray bytes;
    bool accepted;
    const char* shownLine;  // the cleaned line the rejection shows
};

class XmlHeader : public ::testing::TestWithParam<HeaderCase> {};

TEST_P(XmlHeader, SecondNonBlankLineMustBeginWithTheSessionTag) {
    const HeaderCase& c = GetParam();
    const QByteArray bytes = c.bytes + "\r\n" + waveBlock({"C:\\a.wav"}).join("\r\n");
    XmlRead read(bytes);
    if (c.accepted) {
        EXPECT_EQ(read.outcome, ReaderOutcome::Read);
        EXPECT_THAT(read.ui.messages, IsEmpty());
        EXPECT_THAT(read.ui.pointerChanges, ElementsAre(true));
        EXPECT_THAT(read.paths(), ElementsAre("C:\\a.wav"));
        return;
    }
    EXPECT_EQ(read.outcome, ReaderOutcome::Rejected);
    ASSERT_EQ(read.ui.messages.size(), 1);
    const MessageBoxRequest& box = read.ui.messages.first();
    EXPECT_EQ(box.text.toStdString(), (kRejectText + QString::fromUtf8(c.shownLine)).toStdString());
    EXPECT_EQ(box.title, QStringLiteral("Processing XML File"));
    EXPECT_EQ(box.icon, MessageIcon::Information);
    EXPECT_EQ(box.buttons, MessageButtons::Ok);
    EXPECT_THAT(read.ui.pointerChanges, ElementsAre(true, false))
        << "the default pointer comes back before the message";
    EXPECT_THAT(read.paths(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Cases, XmlHeader,
    ::testing::Values(
        HeaderCase{"DeclarationThenTag", "<?xml?>\r\n<AuditionSession>", true, ""},
        HeaderCase{"BlankLinesBeforeTheDeclaration",
                   "\r\n  \r\n\t\r\n \t \r\n<?xml?>\r\n<AuditionSession>", true, ""},
        HeaderCase{"AnythingAsFirstLine", "garbage\r\n<AuditionSession> and more", true, ""},
        HeaderCase{"TagIndentedByABlank", "<?xml?>\r\n <AuditionSession>", false,
                   "<AuditionSession>"},
        HeaderCase{"TagIndentedByATab", "<?xml?>\r\n\t<AuditionSession>\t x", false,
                   "<AuditionSession>  x"},
        HeaderCase{"TagInLowerCase", "<?xml?>\r\n<auditionsession>", false, "<auditionsession>"},
        HeaderCase{"BlankLineBetween", "<?xml?>\r\n\r\n<AuditionSession>", false, ""},
        HeaderCase{"NoDeclaration", "<AuditionSession>\r\n<Session>", false, "<Session>"},
        HeaderCase{"Windows1252Line", "<?xml?>\r\n<Sitzung f\xfcr>", false,
                   "<Sitzung f\xc3\xbcr>"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(XmlHeaderAtTheEnd, AFileThatEndsBeforeTheTagIsRejected) {
    for (const QByteArray& bytes : {QByteArray("  \r\n\t\r\n"), QByteArray("<?xml?>"),
                                    QByteArray("<?xml?>\r\n"), QByteArray("\n\n<?xml?>\n")}) {
        XmlRead read(bytes);
        EXPECT_EQ(read.outcome, ReaderOutcome::Rejected) << bytes.constData();
        ASSERT_EQ(read.ui.messages.size(), 1);
        EXPECT_EQ(read.ui.messages.first().text, kRejectText);
    }
}

TEST(XmlEmptyFile, IsReadWithoutAWord) {
    ReaderFixture f;
    EXPECT_EQ(ImportXmlFile(f.write(QStringLiteral("empty.xml"), {}), f.context),
              ReaderOutcome::Read);
    EXPECT_THAT(f.ui.messages, IsEmpty());
    EXPECT_THAT(f.ui.pointerChanges, ElementsAre(true));
    EXPECT_TRUE(f.state.MediaPaths.isEmpty());
}

// --- Line ends -------------------------------------------------------------------------------

TEST(XmlLineEnds, LineFeedCarriageReturnAndBothReadAlike) {
    const QByteArrayList body = waveBlock({"C:\\one.wav", "D:\\two.wav"});
    for (const QByteArray& lineEnd : {QByteArray("\r\n"), QByteArray("\n"), QByteArray("\r")}) {
        XmlRead read(session(body, lineEnd));
        EXPECT_EQ(read.outcome, ReaderOutcome::Read);
        EXPECT_THAT(read.paths(), ElementsAre("C:\\one.wav", "D:\\two.wav"))
            << QByteArray(lineEnd).toHex().constData();
    }
    // Mixed line ends in one file, as an editor that touched a CR LF file may leave it.
    QByteArray mixed = session(body);
    for (qsizetype at = mixed.indexOf("\r\n"); at >= 0; at = mixed.indexOf("\r\n", at + 1)) {
        if (at % 3 == 0) {
            mixed.remove(at, 1);
        }
    }
    EXPECT_THAT(XmlRead(mixed).paths(), ElementsAre("C:\\one.wav", "D:\\two.wav"));
}

// --- The path line ---------------------------------------------------------------------------

struct PathLineCase {
    const char* name;
    QByteArray line;
    Paths paths;
};

class XmlPathLine : public ::testing::TestWithParam<PathLineCase> {};

TEST_P(XmlPathLine, DecodesOneEntityKindAndTrimsBlanks) {
    const PathLineCase& c = GetParam();
    EXPECT_EQ(XmlRead(session(waveBlock({c.line}))).paths(), c.paths);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, XmlPathLine,
    ::testing::Values(
        PathLineCase{"Plain", "C:\\Audio\\take.wav", {"C:\\Audio\\take.wav"}},
        PathLineCase{"IndentedByBlanks", "        C:\\a.wav   ", {"C:\\a.wav"}},
        PathLineCase{"IndentedByTabsKeepsThem", "\t\tC:\\a.wav\t", {"\t\tC:\\a.wav\t"}},
        PathLineCase{"TwoAmpersands", "C:\\R&amp;B\\a&amp;b.wav", {"C:\\R&B\\a&b.wav"}},
        PathLineCase{"AmpersandEntityOfAnEntity", "x&amp;amp;y", {"x&y"}},
        PathLineCase{"ApostrophesWhenNoAmpersand",
                     "C:\\Bob&apos;s &apos;take&apos;.wav",
                     {"C:\\Bob's 'take'.wav"}},
        PathLineCase{"ApostropheStaysBesideAnAmpersand", "a&amp;b&apos;c", {"a&b&apos;c"}},
        PathLineCase{"ApostropheThenAmpLeavesAmp", "a&apos;amp;b", {"a'amp;b"}},
        PathLineCase{"EntityBeforeTheBlanksIsDecodedFirst", "  &amp;  ", {"&"}},
        PathLineCase{"OnlyBlanksAddNothing", "     ", {}}, PathLineCase{"EmptyAddsNothing", "", {}},
        PathLineCase{"Utf8",
                     "C:\\Aufnahmen\\M\xc3\xbcller \xe2\x80\x94 1.wav",
                     {"C:\\Aufnahmen\\M\xc3\xbcller \xe2\x80\x94 1.wav"}},
        PathLineCase{"Windows1252",
                     "C:\\M\xfcller \x80 \x93x\x94.wav",
                     {"C:\\M\xc3\xbcller \xe2\x82\xac \xe2\x80\x9cx\xe2\x80\x9d.wav"}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(XmlPathLine, ManyNestedEntitiesDecodeInOnePass) {
    // A hundred thousand nested entities still decode to one ampersand, without a search from
    // the start per replacement.
    QByteArray line = "x&";
    for (int i = 0; i < 100000; ++i) {
        line += "amp;";
    }
    EXPECT_THAT(XmlRead(session(waveBlock({line + "y"}))).paths(), ElementsAre("x&y"));
}

// --- Blocks and entries ----------------------------------------------------------------------

struct BlockCase {
    const char* name;
    QByteArrayList body;
    Paths paths;
};

class XmlBlocks : public ::testing::TestWithParam<BlockCase> {};

TEST_P(XmlBlocks, FollowTheLineLayoutOfTheExport) {
    const BlockCase& c = GetParam();
    for (const QByteArray& lineEnd : {QByteArray("\r\n"), QByteArray("\n")}) {
        EXPECT_EQ(XmlRead(session(c.body, lineEnd)).paths(), c.paths);
    }
}

QByteArrayList reindented(QByteArrayList lines, const QByteArray& from, const QByteArray& to) {
    for (QByteArray& line : lines) {
        if (line.trimmed() == from) {
            line = to;
        }
    }
    return lines;
}

const QByteArrayList kOther{"    <Other/>"};

INSTANTIATE_TEST_SUITE_P(
    Cases, XmlBlocks,
    ::testing::Values(
        BlockCase{"NoBlock", kOther, {}},
        BlockCase{"OneBlockInFileOrder",
                  waveBlock({"b.wav", "a.wav", "c.wav"}),
                  {"b.wav", "a.wav", "c.wav"}},
        BlockCase{"BlockLineIndentedByTabIsNotOne",
                  reindented(waveBlock({"a.wav"}), "<EntityInfo_Wave>", "\t<EntityInfo_Wave>"),
                  {}},
        BlockCase{"BlockLineWithTrailingBlanks",
                  reindented(waveBlock({"a.wav"}), "<EntityInfo_Wave>", "<EntityInfo_Wave>   "),
                  {"a.wav"}},
        BlockCase{"EntryIndentedByTabIsNotOne",
                  reindented(waveBlock({"a.wav"}), "<EntityInfo_Wave_1>", "\t<EntityInfo_Wave_1>"),
                  {}},
        BlockCase{"EntriesOutsideABlockAreIgnored", kOther + waveEntry("a.wav"), {}},
        BlockCase{"BlocksApart",
                  waveBlock({"a.wav"}) + kOther + waveBlock({"b.wav"}),
                  {"a.wav", "b.wav"}},
        BlockCase{
            "TwoBlocksBackToBack", waveBlock({"a.wav"}) + waveBlock({"b.wav"}), {"a.wav", "b.wav"}},
        BlockCase{"ThirdBlockBackToBackIsPassedOver",
                  waveBlock({"a.wav"}) + waveBlock({"b.wav"}) + waveBlock({"c.wav"}) + kOther +
                      waveBlock({"d.wav"}),
                  {"a.wav", "b.wav", "d.wav"}},
        BlockCase{"InnerLinesOfAnEntryAreNotExamined",
                  waveBlock({"</EntityInfo_Wave>", "<EntityInfo_Wave_9>", "a.wav"}),
                  {"</EntityInfo_Wave>", "<EntityInfo_Wave_9>", "a.wav"}},
        BlockCase{"DuplicatesOnceLetterCaseCounts",
                  waveBlock({"C:\\a.wav", "C:\\A.wav", "C:\\a.wav"}) + kOther +
                      waveBlock({"  C:\\a.wav"}),
                  {"C:\\a.wav", "C:\\A.wav"}}),
    [](const auto& info) { return std::string(info.param.name); });

// --- Truncated files -------------------------------------------------------------------------

TEST(XmlTruncated, EveryPrefixOfASessionReadsSafely) {
    const QByteArray whole =
        session(waveBlock({"C:\\a.wav", "C:\\b&amp;c.wav"}) + waveBlock({"C:\\d.wav"}));
    const Paths full = XmlRead(whole).paths();
    ASSERT_THAT(full, ElementsAre("C:\\a.wav", "C:\\b&c.wav", "C:\\d.wav"));
    for (qsizetype size = 0; size <= whole.size(); ++size) {
        XmlRead read(QByteArrayView(whole).first(size));
        ASSERT_NE(read.outcome, ReaderOutcome::Failed) << size;
        // A prefix can only lose paths, or cut the last one short.
        const Paths got = read.paths();
        ASSERT_LE(got.size(), full.size()) << size;
        for (size_t i = 0; i + 1 < got.size(); ++i) {
            EXPECT_EQ(got[i], full[i]) << size;
        }
    }
}

// --- The file ------------------------------------------------------------------------------

TEST(ImportXmlFile, ReadsTheFileOrReportsWhyNot) {
    ReaderFixture f;
    const QString name =
        f.write(QString::fromUtf8("Mix \xc3\xbc.xml"), session(waveBlock({"C:\\a.wav"}), "\n"));
    EXPECT_EQ(ImportXmlFile(name, f.context), ReaderOutcome::Read);
    EXPECT_THAT(utf8(f.state.MediaPaths.paths()), ElementsAre("C:\\a.wav"));

    ReaderFixture missing;
    EXPECT_EQ(ImportXmlFile(missing.dir.filePath(QStringLiteral("gone.xml")), missing.context),
              ReaderOutcome::Failed);
    ASSERT_EQ(missing.ui.messages.size(), 1);
    const MessageBoxRequest& box = missing.ui.messages.first();
    EXPECT_TRUE(box.text.startsWith(
        QStringLiteral("An error occurred accessing the selected XML file.  ")));
    EXPECT_EQ(box.title, QStringLiteral("File Error"));
    EXPECT_EQ(box.icon, MessageIcon::Critical);
}

}  // namespace
}  // namespace tidewick
