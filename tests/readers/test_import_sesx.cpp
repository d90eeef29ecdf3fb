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

QString read(const QByteArray& bytes) {
    const SessionRead r = readSesxSession(bytes, {});
    EXPECT_TRUE(r.outcome == ReaderOutcome::Read && !r.message);
    return r.paths.join(u'|');
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
        EXPECT_TRUE(r.message && r.message->title == "Processing SESX File");
    }
}

}  // namespace
}  // namespace tidewick
