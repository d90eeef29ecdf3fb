#include <gtest/gtest.h>

#include <algorithm>

#include "readers/import_xml.h"
#include "support/reader_fixture.h"

// Failures show paths as text rather than as code units.
void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

namespace tidewick {
namespace {

using test::ReaderFixture;

const auto kByName = [](const auto& info) { return std::string(info.param.name); };

// Texts split at "|".
QStringList list(const char* texts) {
    return QString::fromUtf8(texts).split(u'|', Qt::SkipEmptyParts);
}

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

// One read of bytes, with what the reader left and said.
struct XmlRead {
    ReaderFixture f;
    ReaderOutcome outcome;
    explicit XmlRead(QByteArrayView bytes) : outcome(ImportXmlBytes(bytes, f.context)) {}
    QStringList paths() const { return f.state.MediaPaths.paths(); }
};

struct HeaderCase {
    const char* name;
    QByteArray bytes;
    const char* shownLine;  // the cleaned line the rejection shows; null when accepted
};

class XmlHeader : public ::testing::TestWithParam<HeaderCase> {};

TEST_P(XmlHeader, SecondNonBlankLineMustBeginWithTheSessionTag) {
    const HeaderCase& c = GetParam();
    XmlRead read(c.bytes);
    if (c.shownLine == nullptr) {
        EXPECT_EQ(read.outcome, ReaderOutcome::Read);
        EXPECT_TRUE(read.f.ui.messages.isEmpty());
        EXPECT_EQ(read.f.ui.pointerChanges, QList<bool>{true});
        EXPECT_EQ(read.paths(), list(c.bytes.isEmpty() ? "" : "C:\\a.wav"));
        return;
    }
    EXPECT_EQ(read.outcome, ReaderOutcome::Rejected);
    ASSERT_EQ(read.f.ui.messages.size(), 1);
    const MessageBoxRequest& box = read.f.ui.messages.first();
    EXPECT_EQ(box.text, "This is not a properly formated Adobe Audition XML file.\n" +
                            QString::fromUtf8(c.shownLine));
    EXPECT_EQ(box.title, QStringLiteral("Processing XML File"));
    EXPECT_EQ(box.icon, MessageIcon::Information);
    EXPECT_EQ(box.buttons, MessageButtons::Ok);
    EXPECT_EQ(read.f.ui.pointerChanges, (QList<bool>{true, false})) << "default pointer first";
    EXPECT_TRUE(read.paths().isEmpty());
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
        EXPECT_EQ(XmlRead(session(waveBlock({"C:\\one.wav", "D:\\two.wav"}), lineEnd)).paths(),
                  list("C:\\one.wav|D:\\two.wav"))
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
    EXPECT_EQ(XmlRead(session(GetParam().body)).paths(), list(GetParam().paths));
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
    EXPECT_EQ(XmlRead(session(waveBlock({line}))).paths(), list("x&y"));
}

TEST(XmlTruncated, EveryPrefixOfASessionReadsSafely) {
    const QByteArray whole =
        session(waveBlock({"C:\\a.wav", "C:\\b&amp;c.wav"}) + waveBlock({"C:\\d.wav"}));
    const QStringList full = XmlRead(whole).paths();
    ASSERT_EQ(full, list("C:\\a.wav|C:\\b&c.wav|C:\\d.wav"));
    for (qsizetype size = 0; size <= whole.size(); ++size) {
        XmlRead read(QByteArrayView(whole).first(size));
        ASSERT_NE(read.outcome, ReaderOutcome::Failed) << size;
        // A prefix can only lose paths, or cut the last one short.
        const QStringList got = read.paths();
        ASSERT_LE(got.size(), full.size()) << size;
        const qsizetype kept = std::max<qsizetype>(got.size() - 1, 0);
        EXPECT_EQ(got.first(kept), full.first(kept)) << size;
    }
}

TEST(ImportXmlFile, ReadsTheFileOrReportsWhyNot) {
    ReaderFixture f;
    const QString name =
        f.write(QString::fromUtf8("Mix \xc3\xbc.xml"), session(waveBlock({"C:\\a.wav"}), "\n"));
    EXPECT_EQ(ImportXmlFile(name, f.context), ReaderOutcome::Read);
    EXPECT_EQ(f.state.MediaPaths.paths(), list("C:\\a.wav"));

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
