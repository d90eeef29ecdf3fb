#include <gtest/gtest.h>

#include <algorithm>

#include "readers/import_xml.h"
#include "support/reader_fixture.h"

namespace tidewick {
namespace {

using test::kByName;
using test::texts;

// A wave block as the export lays it out: each entry is its opening line and 21 more, the 18th
// of which is the path line.
QByteArrayList waveBlock(const QByteArrayList& pathLines) {
    QByteArrayList lines{"    <EntityInfo_Wave>"};
    for (const QByteArray& pathLine : pathLines) {
        lines.append("      <EntityInfo_Wave_1>");
        for (int i = 1; i < 18; ++i) {
            lines.append("        <Field>0</Field>");
        }
        lines += QByteArrayList{pathLine, "<Flags/>", "<Peak/>", "      </EntityInfo_Wave_1>"};
    }
    lines.append("    </EntityInfo_Wave>");
    return lines;
}

QByteArray session(const QByteArrayList& body, const QByteArray& lineEnd = "\r\n") {
    const QByteArrayList lines =
        QByteArrayList{"<?xml version=\"1.0\"?>", "<AuditionSession>", "  <Session>"} + body +
        QByteArrayList{"  </Session>", "</AuditionSession>"};
    return lines.join(lineEnd) + lineEnd;
}

SessionRead read(QByteArrayView bytes) {
    return readXmlSession(bytes, {});
}

struct HeaderCase {
    const char* name;
    QByteArray bytes;
    const char* shownLine;  // the cleaned line the rejection shows; null when accepted
};

class XmlHeader : public ::testing::TestWithParam<HeaderCase> {};

TEST_P(XmlHeader, SecondNonBlankLineMustBeginWithTheSessionTag) {
    const HeaderCase& c = GetParam();
    const SessionRead r = read(c.bytes);
    if (c.shownLine == nullptr) {
        EXPECT_EQ(r.outcome, ReaderOutcome::Read);
        EXPECT_FALSE(r.message);
        EXPECT_EQ(r.paths, texts(c.bytes.isEmpty() ? "" : "C:\\a.wav"));
        return;
    }
    EXPECT_EQ(r.outcome, ReaderOutcome::Rejected);
    EXPECT_EQ(r.message,
              (ReaderMessage{"This is not a properly formated Adobe Audition XML file.\n" +
                                 QString::fromUtf8(c.shownLine),
                             "Processing XML File", MessageIcon::Information}));
    EXPECT_TRUE(r.paths.isEmpty());
}

const QByteArray kBlock = "\r\n" + waveBlock({"C:\\a.wav"}).join("\r\n");

INSTANTIATE_TEST_SUITE_P(
    Cases, XmlHeader,
    ::testing::Values(
        HeaderCase{"DeclarationThenTag", "<?xml?>\r\n<AuditionSession>" + kBlock, nullptr},
        HeaderCase{"BlankLinesThenAnyLine", "\r\n \r\n\t\r\nx\r\n<AuditionSession> y" + kBlock,
                   nullptr},
        // An empty file is read, while a file of blank lines is rejected.
        HeaderCase{"EmptyFile", "", nullptr}, HeaderCase{"OnlyBlankLines", "  \r\n\t\r\n", ""},
        HeaderCase{"BlankLineBetween", "<?xml?>\r\n\r\n<AuditionSession>" + kBlock, ""},
        HeaderCase{"TagIndentedByATab", "<?xml?>\r\n\t<AuditionSession>\t x",
                   "<AuditionSession>  x"},
        HeaderCase{"TagInLowerCase", "<?xml?>\r\n<auditionsession>", "<auditionsession>"},
        HeaderCase{"Windows1252Line", "<?xml?>\r\n<Sitzung f\xfcr>", "<Sitzung f\xc3\xbcr>"}),
    kByName);

TEST(XmlLineEnds, LineFeedCarriageReturnAndBothReadAlike) {
    for (const char* lineEnd : {"\r\n", "\n", "\r"}) {
        EXPECT_EQ(read(session(waveBlock({"C:\\one.wav", "D:\\two.wav"}), lineEnd)).paths,
                  texts("C:\\one.wav|D:\\two.wav"))
            << QByteArray(lineEnd).toHex().constData();
    }
}

struct BodyCase {
    const char* name;
    QByteArrayList body;
    const char* paths;
};

class XmlBody : public ::testing::TestWithParam<BodyCase> {};

TEST_P(XmlBody, YieldsThePathLinesOfWaveEntries) {
    EXPECT_EQ(read(session(GetParam().body)).paths, texts(GetParam().paths));
}

QByteArrayList reindented(QByteArrayList lines, const QByteArray& from, const QByteArray& to) {
    std::replace_if(
        lines.begin(), lines.end(), [&](const QByteArray& l) { return l.trimmed() == from; }, to);
    return lines;
}

const QByteArrayList kOther{"    <Other/>"};

INSTANTIATE_TEST_SUITE_P(
    Cases, XmlBody,
    ::testing::Values(
        BodyCase{"IndentedByTabsKeepsThem", waveBlock({"\t\tC:\\a.wav\t"}), "\t\tC:\\a.wav\t"},
        BodyCase{"Ampersands", waveBlock({"C:\\R&amp;B\\a&amp;b.wav"}), "C:\\R&B\\a&b.wav"},
        BodyCase{"AmpersandEntityOfAnEntity", waveBlock({"x&amp;amp;y"}), "x&y"},
        BodyCase{"ApostrophesWhenNoAmpersand", waveBlock({"Bob&apos;s &apos;t&apos;"}),
                 "Bob's 't'"},
        BodyCase{"ApostropheStaysBesideAnAmpersand", waveBlock({"a&amp;b&apos;c"}), "a&b&apos;c"},
        BodyCase{"ApostropheThenAmpLeavesAmp", waveBlock({"a&apos;amp;b"}), "a'amp;b"},
        BodyCase{"EntityBeforeTheBlanksIsDecodedFirst", waveBlock({"  &amp;  "}), "&"},
        BodyCase{"OnlyBlanksAddNothing", waveBlock({"     "}), ""},
        BodyCase{"Utf8", waveBlock({"C:\\M\xc3\xbcller \xe2\x80\x94.wav"}),
                 "C:\\M\xc3\xbcller \xe2\x80\x94.wav"},
        BodyCase{"Windows1252", waveBlock({"C:\\M\xfcller \x80 \x93x\x94.wav"}),
                 "C:\\M\xc3\xbcller \xe2\x82\xac \xe2\x80\x9cx\xe2\x80\x9d.wav"},
        BodyCase{"OneBlockInFileOrder", waveBlock({"b.wav", "a.wav", "c.wav"}),
                 "b.wav|a.wav|c.wav"},
        BodyCase{"BlockLineIndentedByTabIsNotOne",
                 reindented(waveBlock({"a.wav"}), "<EntityInfo_Wave>", "\t<EntityInfo_Wave>"), ""},
        BodyCase{"BlockLineWithTrailingBlanks",
                 reindented(waveBlock({"a.wav"}), "<EntityInfo_Wave>", "<EntityInfo_Wave>   "),
                 "a.wav"},
        BodyCase{"EntryIndentedByTabIsNotOne",
                 reindented(waveBlock({"a.wav"}), "<EntityInfo_Wave_1>", "\t<EntityInfo_Wave_1>"),
                 ""},
        BodyCase{"EntriesOutsideABlockAreIgnored", kOther + waveBlock({"a.wav"}).mid(1, 22), ""},
        // Only the block right after a block is read; a third one in a row is passed over.
        BodyCase{"ThirdBlockBackToBackIsPassedOver",
                 waveBlock({"a"}) + waveBlock({"b"}) + waveBlock({"c"}) + kOther + waveBlock({"d"}),
                 "a|b|d"},
        BodyCase{"InnerLinesOfAnEntryAreNotExamined",
                 waveBlock({"</EntityInfo_Wave>", "<EntityInfo_Wave_9>", "a.wav"}),
                 "</EntityInfo_Wave>|<EntityInfo_Wave_9>|a.wav"},
        BodyCase{"DuplicatesOnceLetterCaseCounts",
                 waveBlock({"C:\\a", "C:\\A", "C:\\a"}) + kOther + waveBlock({"  C:\\a"}),
                 "C:\\a|C:\\A"}),
    kByName);

TEST(XmlBody, ManyNestedEntitiesDecodeInOnePass) {
    const QByteArray line = "x&" + QByteArray("amp;").repeated(100000) + "y";
    EXPECT_EQ(read(session(waveBlock({line}))).paths, texts("x&y"));
}

TEST(XmlTruncated, EveryPrefixOfASessionReadsSafely) {
    const QByteArray whole =
        session(waveBlock({"C:\\a.wav", "C:\\b&amp;c.wav"}) + waveBlock({"C:\\d.wav"}));
    const QStringList full = read(whole).paths;
    ASSERT_EQ(full, texts("C:\\a.wav|C:\\b&c.wav|C:\\d.wav"));
    for (qsizetype size = 0; size <= whole.size(); ++size) {
        const SessionRead r = read(QByteArrayView(whole).first(size));
        ASSERT_NE(r.outcome, ReaderOutcome::Failed) << size;
        // A prefix can only lose paths, or cut the last one short.
        const QStringList& got = r.paths;
        ASSERT_LE(got.size(), full.size()) << size;
        const qsizetype kept = std::max<qsizetype>(got.size() - 1, 0);
        EXPECT_EQ(got.first(kept), full.first(kept)) << size;
    }
}

}  // namespace
}  // namespace tidewick
