#include <gtest/gtest.h>

#include "platform/path_text.h"
#include "platform/wildcard.h"

namespace tidewick {
namespace {

struct PathCase {
    const char* path;
    const char* parent;
    const char* name;
    const char* base;
    const char* extension;
};

class PathParts : public ::testing::TestWithParam<PathCase> {};

TEST_P(PathParts, SplitsLikeTheFileSystemObject) {
    const PathCase& c = GetParam();
    const QString path = QString::fromUtf8(c.path);
    EXPECT_EQ(GetParentFolderName(path), QString::fromUtf8(c.parent));
    EXPECT_EQ(GetFileName(path), QString::fromUtf8(c.name));
    EXPECT_EQ(GetBaseName(path), QString::fromUtf8(c.base));
    EXPECT_EQ(GetExtensionName(path), QString::fromUtf8(c.extension));
}

INSTANTIATE_TEST_SUITE_P(
    BothSeparators, PathParts,
    ::testing::Values(PathCase{"C:\\a\\take.wav", "C:\\a", "take.wav", "take", "wav"},
                      PathCase{"C:\\take.wav", "C:\\", "take.wav", "take", "wav"},
                      PathCase{"/home/me/take.wav", "/home/me", "take.wav", "take", "wav"},
                      PathCase{"/take.wav", "/", "take.wav", "take", "wav"},
                      PathCase{"take.wav", "", "take.wav", "take", "wav"},
                      PathCase{"Audio\\take.1.WAV", "Audio", "take.1.WAV", "take.1", "WAV"},
                      PathCase{"mixed/dir\\name", "mixed/dir", "name", "name", ""},
                      PathCase{"C:\\a\\folder\\", "C:\\a", "folder", "folder", ""},
                      PathCase{"C:\\", "", "", "", ""}, PathCase{"/", "", "", "", ""},
                      PathCase{".hidden", "", ".hidden", "", "hidden"},
                      PathCase{"dir.v2/noext", "dir.v2", "noext", "noext", ""},
                      PathCase{"", "", "", "", ""}));

TEST(AddBackslash, AppendsTheHostSeparatorToTheArgumentItself) {
    const QString sep = hostSeparator();
    QString empty;
    EXPECT_EQ(AddBackslash(empty), sep);
    EXPECT_EQ(empty, sep);

    QString folder = QStringLiteral("/tmp/x");
    EXPECT_EQ(AddBackslash(folder), QStringLiteral("/tmp/x") + sep);
    EXPECT_EQ(folder, QStringLiteral("/tmp/x") + sep);

    for (const char* ended : {"/tmp/x/", "C:\\x\\"}) {
        QString text = QString::fromUtf8(ended);
        EXPECT_EQ(AddBackslash(text), QString::fromUtf8(ended));
    }
}

TEST(ReplaceAll, RestartsFromTheFirstCharacterAfterEachReplacement) {
    struct Case {
        const char* find;
        const char* text;
        const char* replace;
        const char* result;
    };
    const Case cases[] = {
        {"&amp;", "a&amp;amp;b", "&", "a&b"},  // a replacement that forms a new match
        {"&amp;", "x&amp;y&amp;z", "&", "x&y&z"},
        {"\t", "\ta\t\tb", " ", " a  b"},
        {"\"", "\"quoted\"", "", "quoted"},
        {"/", "a/b/c", "\\", "a\\b\\c"},
        {"aa", "aaaa", "a", "a"},
        {"x", "none here", "y", "none here"},
        {"", "unchanged", "y", "unchanged"},
        {"a", "banana", "aa", "baanaanaa"},  // a replacement holding the text: one pass
    };
    for (const Case& c : cases) {
        QString text = QString::fromUtf8(c.text);
        const QString returned =
            ReplaceAll(QString::fromUtf8(c.find), text, QString::fromUtf8(c.replace));
        EXPECT_EQ(text, QString::fromUtf8(c.result)) << c.text;
        EXPECT_EQ(returned, text);
    }
}

TEST(TrimBlanks, RemovesSpacesOnly) {
    EXPECT_EQ(trimBlanks(QStringLiteral("  a b  ")), QStringLiteral("a b"));
    EXPECT_EQ(trimBlanks(QStringLiteral("\ta\t")), QStringLiteral("\ta\t"));
    EXPECT_EQ(trimBlanks(QStringLiteral("   ")), QString());
}

struct WildcardCase {
    const char* text;
    const char* pattern;
    bool matches;
};

class Wildcard : public ::testing::TestWithParam<WildcardCase> {};

TEST_P(Wildcard, MatchesTheWholeText) {
    const WildcardCase& c = GetParam();
    EXPECT_EQ(wildcardMatch(QString::fromUtf8(c.text), QString::fromUtf8(c.pattern)), c.matches)
        << c.text << " ~ " << c.pattern;
}

INSTANTIATE_TEST_SUITE_P(
    Patterns, Wildcard,
    ::testing::Values(WildcardCase{"TAKE.WAV", "*.WAV", true},
                      WildcardCase{"TAKE.WAV.PK", "*.WAV", false},
                      WildcardCase{"SONG.SES", "*.SES", true}, WildcardCase{"", "*", true},
                      WildcardCase{"", "", true}, WildcardCase{"A", "", false},
                      WildcardCase{"ABC", "A?C", true}, WildcardCase{"AC", "A?C", false},
                      WildcardCase{"TAKE1", "TAKE#", true}, WildcardCase{"TAKEX", "TAKE#", false},
                      WildcardCase{"B", "[A-C]", true}, WildcardCase{"D", "[A-C]", false},
                      WildcardCase{"D", "[!A-C]", true}, WildcardCase{"B", "[!A-C]", false},
                      WildcardCase{"X", "[XYZ]", true}, WildcardCase{"-", "[A-]", true},
                      WildcardCase{"A*B", "A[*]B", true}, WildcardCase{"AXB", "A[*]B", false},
                      WildcardCase{"AB", "A[]B", true}, WildcardCase{"[X", "[X", true},
                      WildcardCase{"MIX_01_FINAL.WAV", "MIX_##_*.WAV", true},
                      WildcardCase{"AAAAAAAAAAAAAAAAAAAAAAAAB", "*A*A*A*A*A*C", false},
                      WildcardCase{"take.wav", "*.WAV", false}));

}  // namespace
}  // namespace tidewick
