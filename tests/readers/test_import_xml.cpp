#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

#include "readers/import_xml.h"
#include "support/reader_fixture.h"

namespace tidewick {
namespace {

using test::texts;
using test::xmlWaveBlock;

QByteArray session(const QByteArrayList& body) {
    return (QByteArrayList{"<?xml version=\"1.0\"?>", "<AuditionSession>"} + body +
            QByteArrayList{"</AuditionSession>"})
        .join("\r\n");
}

SessionRead read(QByteArrayView bytes) {
    return readXmlSession(bytes, {});
}

// The line after the first non-blank one must begin with the session tag. An empty file is read
// and names nothing; a file of blank lines is rejected.
TEST(XmlReader, SecondLineMustBeginWithTheSessionTag) {
    const QByteArray block = "\r\n" + xmlWaveBlock({"a.wav"}).join("\r\n");
    const std::tuple<const char*, QByteArray, const char*> cases[] = {
        {"blank lines, then any line", "\r\n \r\n\t\r\nx\r\n<AuditionSession> y" + block, nullptr},
        {"empty file", "", nullptr},
        {"only blank lines", "  \r\n\t\r\n", ""},
        {"blank line between", "<?xml?>\r\n\r\n<AuditionSession>" + block, ""},
        {"lower case", "<?xml?>\r\n<auditionsession>", "<auditionsession>"},
        {"tabs, Windows-1252", "<?xml?>\r\n\t<Sitzung\tf\xfcr>\t x", "<Sitzung für>  x"}};
    for (const auto& [name, bytes, shownLine] : cases) {
        const SessionRead r = read(bytes);
        EXPECT_EQ(r.outcome, shownLine ? ReaderOutcome::Rejected : ReaderOutcome::Read) << name;
        EXPECT_EQ(r.paths, texts(shownLine || bytes.isEmpty() ? "" : "a.wav")) << name;
        if (shownLine) {
            EXPECT_EQ(r.message,
                      (ReaderMessage{"This is not a properly formated Adobe Audition XML file.\n" +
                                         QString::fromUtf8(shownLine),
                                     "Processing XML File", MessageIcon::Information}));
        }
    }
}

QByteArrayList reindented(QByteArrayList lines, const QByteArray& from, const QByteArray& to) {
    std::replace_if(
        lines.begin(), lines.end(), [&](const QByteArray& l) { return l.trimmed() == from; }, to);
    return lines;
}

TEST(XmlReader, YieldsThePathLinesOfWaveEntries) {
    const QByteArrayList other{"    <Other/>"};
    // A quadratic decoding would hang on this line.
    const QByteArray nested = "x&" + QByteArray("amp;").repeated(100000) + "y";
    const std::tuple<const char*, QByteArrayList, const char*> cases[] = {
        {"tabs stay", xmlWaveBlock({"\t\tC:\\a.wav\t"}), "\t\tC:\\a.wav\t"},
        {"ampersands", xmlWaveBlock({"C:\\R&amp;B\\a&amp;b.wav"}), "C:\\R&B\\a&b.wav"},
        {"entities of entities", xmlWaveBlock({nested}), "x&y"},
        {"apostrophes", xmlWaveBlock({"Bob&apos;s &apos;t&apos;"}), "Bob's 't'"},
        {"apostrophe beside an ampersand", xmlWaveBlock({"a&amp;b&apos;c"}), "a&b&apos;c"},
        {"only blanks", xmlWaveBlock({"     "}), ""},
        {"block line indented by a tab",
         reindented(xmlWaveBlock({"a"}), "<EntityInfo_Wave>", "\t<EntityInfo_Wave>"), ""},
        {"entry line indented by a tab",
         reindented(xmlWaveBlock({"a"}), "<EntityInfo_Wave_1>", "\t<EntityInfo_Wave_1>"), ""},
        {"block line with trailing blanks",
         reindented(xmlWaveBlock({"a"}), "<EntityInfo_Wave>", "<EntityInfo_Wave>  "), "a"},
        {"entries outside a block", other + xmlWaveBlock({"a"}).mid(1, 22), ""},
        // Only the block right after a block is read; a third one in a row is passed over.
        {"third block in a row",
         xmlWaveBlock({"a"}) + xmlWaveBlock({"b"}) + xmlWaveBlock({"c"}) + other +
             xmlWaveBlock({"d"}),
         "a|b|d"},
        {"inner lines of an entry",
         xmlWaveBlock({"</EntityInfo_Wave>", "<EntityInfo_Wave_9>", "a"}),
         "</EntityInfo_Wave>|<EntityInfo_Wave_9>|a"},
        {"blanks trimmed before the repeat test", xmlWaveBlock({"a", "  a "}), "a"}};
    for (const auto& [name, body, paths] : cases) {
        EXPECT_EQ(read(session(body)).paths, texts(paths)) << name;
    }
}

TEST(XmlReader, EveryPrefixReadsSafely) {
    const QByteArray whole =
        session(xmlWaveBlock({"C:\\a.wav", "C:\\b&amp;c.wav"}) + xmlWaveBlock({"C:\\d.wav"}));
    const QStringList full = texts("C:\\a.wav|C:\\b&c.wav|C:\\d.wav");
    ASSERT_EQ(read(whole).paths, full);
    for (qsizetype size = 0; size <= whole.size(); ++size) {
        const SessionRead r = read(QByteArrayView(whole).first(size));
        ASSERT_NE(r.outcome, ReaderOutcome::Failed) << size;
        // A prefix can only lose paths, or cut the last one short.
        const qsizetype kept = std::max<qsizetype>(r.paths.size() - 1, 0);
        ASSERT_LE(r.paths.size(), full.size()) << size;
        EXPECT_EQ(r.paths.first(kept), full.first(kept)) << size;
    }
}

}  // namespace
}  // namespace tidewick
