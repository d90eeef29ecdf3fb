#include <gtest/gtest.h>

#include <tuple>

#include "readers/import_sesx.h"
#include "support/reader_fixture.h"

namespace tidewick {
namespace {

using test::sesxFileElement;

// The declaration and the session's root on one line: read line by line, that line is never
// examined.
const QByteArray kDeclaration = R"(<?xml version="1.0" encoding="UTF-8" ?><sesx version="1.7">)";

// What the reading by lines gives, as Audition writes its sessions.
QString read(const QByteArray& bytes) {
    return readSesxLines(bytes).join(u'|');
}

// A file whose first line holds a line feed is read in pieces split at line feeds, untrimmed; any
// other file line by line, each line cleaned (tabs read as blanks, then trimmed).
TEST(SesxReader, ReadingModeDecidesWhatIsAFileElement) {
    const QByteArrayList indented{sesxFileElement("a", "  "), sesxFileElement("b", "\t\t"),
                                  sesxFileElement("c", " \t ")};
    const std::tuple<const char*, QByteArray, const char*> cases[] = {
        {"CR LF, any indentation", kDeclaration + "\r\n" + indented.join("\r\n"), "a|b|c"},
        {"LF, tabs stay", kDeclaration + "\n" + indented.join("\n"), "a"},
        {"CR LF, tabs inside become blanks", kDeclaration + "\r\n<file\tabsolutePath=\"a\tb\"/>",
         "a b"},
        {"LF, tab inside the tag or path",
         kDeclaration + "\n<file\tabsolutePath=\"a\"/>\n<file absolutePath=\"a\tb\"/>\n", "a\tb"},
        // The cut that drops "<file " drops blanks of an indented piece instead.
        {"LF, indented piece", kDeclaration + "\n" + sesxFileElement("a", "      ") + "\n", "a"}};
    for (const auto& [name, bytes, paths] : cases) {
        EXPECT_EQ(read(bytes), paths) << name;
    }
}

TEST(SesxReader, EndOfFilesOrSessionEndsTheRead) {
    // The line between two elements; whether it stops a read by lines, and one by pieces.
    const std::tuple<QByteArray, bool, bool> cases[] = {
        {"</files>", true, true},   {"  </files>", true, false}, {" </sesx> ", true, true},
        {"\t</sesx>", true, false}, {"<files/>", false, false},  {"</sesx> x", false, false}};
    for (const auto& [line, stopsLines, stopsPieces] : cases) {
        const QByteArrayList lines{kDeclaration, sesxFileElement("1"), line, sesxFileElement("2")};
        EXPECT_EQ(read(lines.join("\r\n")), stopsLines ? "1" : "1|2") << line.data();
        EXPECT_EQ(read(lines.join("\n")), stopsPieces ? "1" : "1|2") << line.data();
    }
}

TEST(SesxReader, TakesTheAbsolutePathValue) {
    const std::tuple<const char*, QByteArray, const char*> cases[] = {
        {"attribute anywhere", R"(<file id="0" absolutePath="C:\A\t 1.wav" relativePath="x"/>)",
         R"(C:\A\t 1.wav)"},
        // The last character is never part of the value.
        {"closing quote last", R"(<file absolutePath="a.wav">)", ""},
        {"no closing quote", R"(<file absolutePath="a.wav/>)", ""},
        {"empty value", R"(<file absolutePath="" id="0"/>)", ""},
        {"every escape, the first colon", R"(<file absolutePath="C%3a\R&amp;B %3a &amp;"/>)",
         R"(C:\R&B %3a &)"},
        {"encoded colon in upper case", R"(<file absolutePath="C%3A\a"/>)", R"(C%3A\a)"}};
    for (const auto& [name, element, paths] : cases) {
        for (const char* lineEnd : {"\r\n", "\n"}) {
            EXPECT_EQ(read(kDeclaration + lineEnd + element + lineEnd), paths) << name;
        }
    }
}

// Read as a session without media, an empty, cut or foreign file would offer the whole folder
// for moving.
TEST(SesxReader, AFileWithoutTheSessionRootIsRefused) {
    for (const QByteArray& bytes : {QByteArray(), QByteArray("<?xml version=\"1.0\"?>\r\n"),
                                    QByteArray("<xml>\r\n<files>\r\n")}) {
        const SessionRead r = readSesxSession(bytes, {});
        EXPECT_EQ(r.outcome, ReaderOutcome::Rejected) << bytes.data();
        EXPECT_EQ(r.problem,
                  (ReadProblem{
                      ReadFailure::NotThisKind, SessionKindId::Sesx, ReadSeverity::Error, {}, {}}));
    }
}

// Cut short, a session is refused: the file elements it lost would name files that are then
// offered for moving. A complete one without media is read.
TEST(TextSessions, ACutSessionIsRefusedAndACompleteOneWithoutMediaIsRead) {
    const QByteArray sesx = test::sessionBytes(SessionKindId::Sesx, {"/a.wav"});
    const QByteArray rpp = test::sessionBytes(SessionKindId::Rpp, {"a.wav"});
    const QByteArray xml = test::sessionBytes(SessionKindId::Xml, {"a.wav"});
    const std::tuple<const char*, SessionKindId, QByteArray, bool> cases[] = {
        {"sesx before its files", SessionKindId::Sesx, sesx.left(sesx.indexOf("<files>")), false},
        {"sesx before </sesx>", SessionKindId::Sesx, sesx.left(sesx.indexOf("</sesx>")), false},
        {"sesx with <files/>", SessionKindId::Sesx, "<sesx>\n<files/>\n</sesx>\n\0", true},
        {"rpp before its last >", SessionKindId::Rpp, rpp.left(rpp.lastIndexOf('>')), false},
        {"rpp whole", SessionKindId::Rpp, rpp, true},
        {"xml before its root's end", SessionKindId::Xml, xml.left(xml.indexOf("</Audition")),
         false},
        {"xml whole", SessionKindId::Xml, xml + "\r\n  ", true},
    };
    for (const auto& [name, kind, bytes, complete] : cases) {
        const SessionRead r = sessionKind(kind).reader(bytes, {});
        EXPECT_EQ(r.outcome, complete ? ReaderOutcome::Read : ReaderOutcome::Failed) << name;
        EXPECT_EQ(r.problem.has_value() && r.problem->failure == ReadFailure::CutShort, !complete)
            << name;
    }
}

// Valid XML laid out as Audition never writes it still gives every file element; Audition's own
// layout reads as before (the line reading alone).
TEST(SesxReader, EveryFileElementIsFoundWhereverTheXmlPutsIt) {
    const std::tuple<const char*, QByteArray, const char*> cases[] = {
        {"one line",
         R"(<sesx><files><file absolutePath="/a"/><file absolutePath="/b"/></files></sesx>)",
         "/a|/b"},
        {"split over lines",
         "<sesx>\n<files>\n<file\n  absolutePath=\"/a\" id=\"0\"/>\n</files>\n</sesx>", "/a"},
        {"single quotes, blanks around =",
         "<sesx>\n<files>\n<file absolutePath = '/a&amp;b'/>\n</files>\n</sesx>", "/a&b"},
        {"after </files>, escaped colon",
         "<sesx>\r\n<files>\r\n</files>\r\n<file absolutePath=\"C%3a/x\"/>\r\n</sesx>", "C:/x"},
        {"Audition's layout", test::sessionBytes(SessionKindId::Sesx, {"/a", "/b"}), "/a|/b"},
    };
    for (const auto& [name, bytes, paths] : cases) {
        EXPECT_EQ(test::pathsRead(SessionKindId::Sesx, bytes), paths) << name;
    }
    // The export's wave entries on one line each give their path text.
    const QByteArray xml =
        "<?xml version=\"1.0\"?>\r\n<AuditionSession><EntityInfo_Wave>"
        "<EntityInfo_Wave_1><F>0</F> C:\\a.wav <F/></EntityInfo_Wave_1>"
        "</EntityInfo_Wave></AuditionSession>";
    EXPECT_EQ(test::pathsRead(SessionKindId::Xml, xml), "C:\\a.wav");
}

}  // namespace
}  // namespace tidewick
