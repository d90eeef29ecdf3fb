#include <gtest/gtest.h>

#include <QDir>

#include "text/letter_case.h"
#include "text/path_text.h"
#include "text/pattern_list.h"
#include "text/wildcard.h"

namespace tidewick {
namespace {

TEST(PathParts, SplitLikeTheFileSystemObjectWithEitherSeparator) {
    // path, parent, name, base, extension
    const char* const cases[][5] = {
        {"C:\\take.wav", "C:\\", "take.wav", "take", "wav"},
        {"/take.wav", "/", "take.wav", "take", "wav"},
        {"take.wav", "", "take.wav", "take", "wav"},
        {"mixed/dir\\take.1.WAV", "mixed/dir", "take.1.WAV", "take.1", "WAV"},
        {"C:\\a\\folder\\", "C:\\a", "folder", "folder", ""},
        {"C:\\", "", "", "", ""},
        {"C:\\\\take.wav", "C:\\", "take.wav", "take", "wav"},
        {"C:/\\take.wav", "C:\\", "take.wav", "take", "wav"},  // the separator it is cut at
        {".hidden", "", ".hidden", "", "hidden"},
        {"dir.v2/noext", "dir.v2", "noext", "noext", ""},
    };
    for (const auto& [path, parent, name, base, extension] : cases) {
        SCOPED_TRACE(path);
        EXPECT_EQ(GetParentFolderName(path), parent);
        const QString text = QString::fromUtf8(path);
        QString storage;
        EXPECT_EQ(parentFolderView(text, storage).toString(), QString::fromUtf8(parent));
        EXPECT_EQ(GetFileName(path), name);
        EXPECT_EQ(GetBaseName(path), base);
        EXPECT_EQ(GetExtensionName(path), extension);
    }
}

TEST(AddBackslash, AppendsTheHostSeparatorToTheArgumentItself) {
    QString empty;
    EXPECT_EQ(AddBackslash(empty), QString(hostSeparator()));
    EXPECT_EQ(empty, QString(hostSeparator()));
    for (const char* ended : {"/tmp/x/", "C:\\x\\"}) {
        QString text = ended;
        EXPECT_EQ(AddBackslash(text), ended);
    }
}

// The short ways for ASCII text give what Qt gives, and text beyond ASCII still goes to Qt: the
// sharp s grows to "SS", the Kelvin sign folds to "k", the dotless i upper-cases to "I".
TEST(LetterCase, AgreesWithQt) {
    for (const QString& text : {u"take 01.wav"_qs, u"MiXeD.Ses"_qs, u""_qs, u"stra\u00dfe.WAV"_qs,
                                u"\u212a.wav"_qs, u"\u0131.sesx"_qs, u"a\u00e9b"_qs}) {
        SCOPED_TRACE(text.toStdString());
        EXPECT_EQ(upperCase(text), text.toUpper());
        EXPECT_EQ(lowerCase(text), text.toLower());
        EXPECT_EQ(UpperCased(text).view(), text.toUpper());
        EXPECT_EQ(sameUpperCase(text, text.toLower()), text.toUpper() == text.toLower().toUpper());
        for (const QString& ending : {u".wav"_qs, u".sesx"_qs, u"V"_qs}) {
            EXPECT_EQ(endsWithIgnoringCase(text, ending),
                      text.endsWith(ending, Qt::CaseInsensitive));
        }
    }
    EXPECT_FALSE(sameUpperCase(u"ab", u"abc"));
}

TEST(CleanHostPath, DropsDotPartsDoubleAndTrailingSeparators) {
    for (const char* path : {"/a/b.wav", "/a//b", "/a/./b", "/a/../b", "./a", "a/", "/", "/a/.b",
                             "/a/b/.", "..", "a/b.c/d"}) {
        EXPECT_EQ(cleanHostPath(path), QDir::toNativeSeparators(QDir::cleanPath(path))) << path;
    }
}

// A pattern list matches a name when one of its patterns matches both upper-cased, whichever way
// it takes for a pattern that is "*" and a plain ending.
TEST(PatternList, MatchesWhereAPatternMatchesBothUpperCased) {
    const QStringList names = {"a.SESX", "x.sesx2", "\u00df.wav", "take1.Wav",
                               "b.ss",   ".sesx",   "S"};
    for (const char* list : {"*.sesx", "*.WAV; *.aif", "*.*", "take?.wav", "*.\u00df", "*s", "*"}) {
        const PatternList patterns(QString::fromUtf8(list));
        for (const QString& name : names) {
            bool expected = false;
            for (const QString& pattern : splitPatternList(QString::fromUtf8(list))) {
                const QString upper = pattern == u"*.*" ? u"*"_qs : pattern.toUpper();
                expected = expected || wildcardMatch(name.toUpper(), upper);
            }
            EXPECT_EQ(patterns.matches(name), expected) << list << " ~ " << name.toStdString();
        }
    }
}

TEST(Wildcard, MatchesTheWholeText) {
    const std::tuple<const char*, const char*, bool> cases[] = {
        {"TAKE.WAV", "*.WAV", true},
        {"", "*", true},
        {"A", "", false},
        {"ABC", "A?C", true},
        {"AC", "A?C", false},
        {"TAKE1", "TAKE#", true},
        {"B", "[A-C]", true},
        {"B", "[!A-C]", false},
        {"-", "[A-]", true},
        {"A*B", "A[*]B", true},
        {"AB", "A[]B", true},
        {"[X", "[X", true},
        {"take.wav", "*.WAV", false},
        {".SESX", "*.SESX", true},
        {"SESX", "*.SESX", false},
        {"A.SESX2", "*.SESX", false},
        {"A.S#", "*.S[#]", true},
        {"AAAAAAAAAAAAAAAAAAAAB", "*A*A*A*A*C", false},
    };
    for (const auto& [text, pattern, matches] : cases) {
        EXPECT_EQ(wildcardMatch(QString(text), QString(pattern)), matches)
            << text << " ~ " << pattern;
    }
}

}  // namespace
}  // namespace tidewick
