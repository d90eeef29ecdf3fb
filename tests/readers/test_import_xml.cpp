#include <gtest/gtest.h>

#include <tuple>

#include "readers/import_xml.h"
#include "support/reader_fixture.h"

namespace tidewick {
namespace {

using test::xmlWaveBlock;

// The line after the first non-blank one must begin with the session tag. An empty file is read
// and names nothing; a file of blank lines is rejected.
TEST(XmlReader, SecondLineMustBeginWithTheSessionTag) {
    const QByteArray block =
        "\r\n" + xmlWaveBlock({"a.wav"}).join("\r\n") + "\r\n</AuditionSession>";
    const std::tuple<const char*, QByteArray, const char*> cases[] = {
        {"blank lines, then any line", "\r\n \r\n\t\r\nx\r\n<AuditionSession> y" + block, nullptr},
        {"empty file", "", ""},
        {"blank line between", "<?xml?>\r\n\r\n<AuditionSession>" + block, ""},
        {"lower case", "<?xml?>\r\n<auditionsession>", "<auditionsession>"},
        {"tabs, Windows-1252", "<?xml?>\r\n\t<Sitzung\tf\xfcr>\t x", "<Sitzung für>  x"}};
    for (const auto& [name, bytes, shownLine] : cases) {
        const SessionRead r = readXmlSession(bytes, {});
        EXPECT_EQ(r.outcome, shownLine ? ReaderOutcome::Rejected : ReaderOutcome::Read) << name;
        EXPECT_EQ(r.paths.toList().join(u'|'), shownLine || bytes.isEmpty() ? "" : "a.wav") << name;
        if (shownLine) {
            EXPECT_EQ(r.problem, (ReadProblem{ReadFailure::NotThisKind,
                                              SessionKindId::Xml,
                                              ReadSeverity::Notice,
                                              QString::fromUtf8(shownLine),
                                              {}}));
        }
    }
}

TEST(XmlReader, YieldsThePathLinesOfWaveEntries) {
    const QByteArrayList other{"    <Other/>"};
    const QByteArrayList entry = xmlWaveBlock({"a"}).mid(1, 22);  // an entry without its block
    const std::tuple<const char*, QByteArrayList, const char*> cases[] = {
        {"tabs stay", xmlWaveBlock({"\t\tC:\\a.wav\t"}), "\t\tC:\\a.wav\t"},
        {"every escape, in one pass",
         xmlWaveBlock({"R&amp;B &apos;74&quot; &lt;&gt; &#233;&#x41; &amp;lt; & &bogus;"}),
         "R&B '74\" <> \u00e9A &lt; & &bogus;"},
        {"a line longer than any path", xmlWaveBlock({QByteArray(40000, 'a')}), ""},
        {"only blanks", xmlWaveBlock({"     "}), ""},
        {"blanks trimmed before the repeat test", xmlWaveBlock({"a", "  a "}), "a"},
        {"block line indented by a tab", QByteArrayList{"\t<EntityInfo_Wave>"} + entry, ""},
        {"block line with trailing blanks", QByteArrayList{"<EntityInfo_Wave>  "} + entry, "a"},
        {"entry line indented by a tab",
         QByteArrayList{"<EntityInfo_Wave>", "\t<EntityInfo_Wave_1>"} + entry.mid(1), ""},
        {"entries outside a block", other + entry, ""},
        // Only the block right after a block is read; a third one in a row is passed over.
        {"third block in a row",
         xmlWaveBlock({"a"}) + xmlWaveBlock({"b"}) + xmlWaveBlock({"c"}) + other +
             xmlWaveBlock({"d"}),
         "a|b|d"},
        {"inner lines of an entry",
         xmlWaveBlock({"</EntityInfo_Wave>", "<EntityInfo_Wave_9>", "a"}),
         "</EntityInfo_Wave>|<EntityInfo_Wave_9>|a"}};
    for (const auto& [name, body, paths] : cases) {
        const QByteArray bytes = "<?xml?>\r\n<AuditionSession>\r\n" + body.join("\r\n");
        EXPECT_EQ(test::pathsRead(SessionKindId::Xml, bytes), paths) << name;
    }
}

}  // namespace
}  // namespace tidewick
