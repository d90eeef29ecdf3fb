#include <gtest/gtest.h>

#include <tuple>

#include "readers/gzip_pieces.h"
#include "readers/import_als.h"
#include "support/reader_fixture.h"

namespace tidewick {
namespace {

using Base = FileReference::Base;

QByteArray corpusSet(const char* name) {
    return test::readFile(test::corpusPath(QStringLiteral("als/") + QLatin1String(name)));
}

QByteArray gunzipped(QByteArrayView packed) {
    QByteArray whole;
    GunzipPieces pieces(packed);
    for (QByteArrayView piece = pieces.next(); !piece.isEmpty(); piece = pieces.next()) {
        whole += piece;
    }
    return whole;
}

qsizetype countOf(const SessionRead& read, Base base) {
    return std::count_if(read.references.cbegin(), read.references.cend(),
                         [base](const FileReference& each) { return each.base == base; });
}

// Each real set: how many references of the project, of the set's folder and of libraries it
// holds, and one reference of it in full.
TEST(AlsReader, ReadsTheReferencesOfRealSets) {
    if (!test::haveCorpus()) {
        GTEST_SKIP() << "no corpus";
    }
    const struct {
        const char* name;
        qsizetype project, sessionFolder, library;
        FileReference sample;
    } cases[] = {
        {"Tockitt-Deliverance__Deliverance.als",
         17,
         0,
         1,  // Live 8, Windows Data
         {Base::ProjectFolder,
          "Samples/Recorded/0004 2-Audio-13.wav",
          {"D:\\Media\\Music\\Deliverance\\Deliverance Project\\Samples\\Recorded\\0004 "
           "2-Audio-13.wav"}}},
        {"JonatanWallgren-blind__blind.als",
         25,
         8,
         14,  // Live 10, macOS alias records
         {Base::ProjectFolder,
          "Samples/Recorded/3-Audio 0001 [2022-04-01 175348].wav",
          {"/Users/petermcwilliam/Music/Production/Tides/git/blind/Samples/Recorded/3-Audio 0001 "
           "[2022-04-01 175348].wav"}}},
        {"BioShot-stupidabletonsong__Untitled.als",
         1,
         6,
         1,  // Live 11, "../" steps
         {Base::SessionFolder,
          "../Baarcore_Vol1_Track_07_Lulickma_(getmp3.pro).mp3",
          {"/Users/levianderson/Desktop/Baarcore_Vol1_Track_07_Lulickma_(getmp3.pro).mp3"}}},
        {"Zorroinvader-musix__Untitled^1.als",
         12,
         0,
         28,  // Live 12, Windows Path values
         {Base::ProjectFolder,
          "Samples/Recorded/3-Audio 0001 [2024-12-07 181701].wav",
          {"C:/Users/Zorro/Desktop/jam x Project/Samples/Recorded/3-Audio 0001 [2024-12-07 "
           "181701].wav"}}},
        {"dawtool__L12-automation.als", 0, 0, 0, {}},
    };
    for (const auto& c : cases) {
        const SessionRead read = readAlsSession(corpusSet(c.name), {});
        ASSERT_EQ(read.outcome, ReaderOutcome::Read) << c.name;
        EXPECT_EQ(countOf(read, Base::ProjectFolder), c.project) << c.name;
        EXPECT_EQ(countOf(read, Base::SessionFolder), c.sessionFolder) << c.name;
        EXPECT_EQ(countOf(read, Base::Library), c.library) << c.name;
        EXPECT_EQ(read.paths.size(), read.references.size()) << c.name;
        if (!c.sample.relative.isEmpty()) {
            EXPECT_TRUE(read.references.contains(c.sample)) << c.name;
        }
        // An unpacked set reads as its packed form does.
        EXPECT_EQ(readAlsSession(gunzipped(corpusSet(c.name)), {}), read) << c.name;
    }
}

TEST(AlsReader, RefusesWhatIsNoWholeSet) {
    const QByteArray packed =
        test::haveCorpus() ? corpusSet("Tockitt-Deliverance__Deliverance.als") : QByteArray();
    const QByteArray plain = R"(<?xml version="1.0"?><Ableton><FileRef><RelativePathType )"
                             R"(Value="1"/><RelativePath Value="a.wav"/></FileRef></Ableton>)";
    const std::tuple<const char*, QByteArray, ReaderOutcome, ReadFailure> cases[] = {
        {"Git LFS pointer",
         "version https://git-lfs.github.com/spec/v1\noid sha256:00\nsize 96155\n",
         ReaderOutcome::Failed, ReadFailure::Damaged},
        {"gzip cut in half", packed.left(packed.size() / 2), ReaderOutcome::Failed,
         ReadFailure::Damaged},
        {"gzip without its trailer", packed.chopped(4), ReaderOutcome::Failed,
         ReadFailure::Damaged},
        {"XML cut short", plain.chopped(10), ReaderOutcome::Failed, ReadFailure::CutShort},
        {"another XML", "<?xml version=\"1.0\"?><sesx/>", ReaderOutcome::Rejected,
         ReadFailure::NotThisKind},
        {"no XML", "\x01\x02garbage", ReaderOutcome::Rejected, ReadFailure::NotThisKind},
        {"broken XML", QByteArray(plain).replace("</FileRef>", "</Other>"), ReaderOutcome::Failed,
         ReadFailure::Damaged},
    };
    for (const auto& [name, bytes, outcome, failure] : cases) {
        if (bytes.isEmpty()) {
            continue;  // no corpus
        }
        const SessionRead read = readAlsSession(bytes, {});
        EXPECT_EQ(read.outcome, outcome) << name;
        ASSERT_TRUE(read.problem) << name;
        EXPECT_EQ(read.problem->failure, failure) << name;
        EXPECT_TRUE(read.paths.isEmpty()) << name;
    }
}

// Live 8 to 10: the folders of RelativePath ("" steps up) and the Name; a folder's FileRef, and
// the PathHint's folders, name nothing.
TEST(AlsReader, JoinsTheFoldersOfOldSets) {
    const QByteArray set = R"(<?xml version="1.0"?><Ableton><FileRef><RelativePathType Value="1"/>
        <RelativePath><RelativePathElement Dir=""/><RelativePathElement Dir="rec"/></RelativePath>
        <Name Value="a.wav"/><SearchHint><PathHint><RelativePathElement Dir="x"/></PathHint>
        </SearchHint></FileRef><FileRef><RelativePathType Value="3"/><RelativePath>
        <RelativePathElement Dir="Samples"/></RelativePath><Name Value="b"/>
        <RefersToFolder Value="true"/></FileRef></Ableton>)";
    const SessionRead read = readAlsSession(set, {});
    ASSERT_EQ(read.references.size(), 1);
    EXPECT_EQ(read.references[0], (FileReference{Base::SessionFolder, "../rec/a.wav", {}}));
}

TEST(AlsReader, FindsThePathsOfDataBlobs) {
    QByteArray utf16;
    for (const char16_t unit : u"\\\\server\\share\\a.wav") {
        utf16 += char(unit & 0xFF);
        utf16 += char(unit >> 8);
    }
    EXPECT_EQ(pathsInLiveData(utf16), QStringList{"\\\\server\\share\\a.wav"});
    EXPECT_EQ(pathsInLiveData(QByteArray("r\0e\0l\0.\0w\0a\0v\0\0\0", 16)), QStringList());
    // An alias record whose tags run past its end gives what it holds before them.
    QByteArray alias(150, '\0');
    alias += QByteArray("\x00\x12\x00\x05Users\x00", 10) + QByteArray("\x00\x13\x00\x40", 4);
    alias[4] = char(alias.size() >> 8);
    alias[5] = char(alias.size() & 0xFF);
    alias[7] = 2;
    EXPECT_EQ(pathsInLiveData(alias), QStringList{"/Users"});
}

}  // namespace
}  // namespace tidewick
