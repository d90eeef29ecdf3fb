#include <gtest/gtest.h>

#include <tuple>

#include "readers/import_ardour.h"
#include "support/reader_fixture.h"

namespace tidewick {
namespace {

using Base = FileReference::Base;

// Each real session of Ardour 2 to 6: how many files it names, how many of them MIDI, and one.
TEST(ArdourReader, ReadsTheSourcesOfRealSessions) {
    if (!test::haveCorpus()) {
        GTEST_SKIP() << "no corpus";
    }
    const std::tuple<const char*, qsizetype, qsizetype, const char*> cases[] = {
        {"morashon-seg1__seg1-2000.ardour", 24, 0, "audiofiles/intro_ref_instr-L.wav"},
        {"schef-olclick__olclick.ardour", 25, 0, "audiofiles/14_OL_BB_DRUMSEND_NEW.wav"},
        {"jahunt1-lmc32-dnb__LMC DnB.ardour", 44, 18, "midifiles/Take9_ACE Reasonable Synth-2.mid"},
        {"sustainablelab-Elements-and-Clouds__Elements-and-Clouds-2020-09-17-take2.ardour", 2, 0,
         "audiofiles/Audio-1%R.wav"},
    };
    for (const auto& [name, count, midi, sample] : cases) {
        const SessionRead read = readArdourSession(
            test::readFile(test::corpusPath(QStringLiteral("ardour/") + QLatin1String(name))), {});
        ASSERT_EQ(read.outcome, ReaderOutcome::Read) << name;
        EXPECT_EQ(read.references.size(), count) << name;
        EXPECT_EQ(std::count_if(read.references.cbegin(), read.references.cend(),
                                [](const auto& r) { return r.relative.startsWith("midifiles/"); }),
                  midi)
            << name;
        EXPECT_TRUE(read.references.contains(FileReference{Base::Interchange, sample, {}})) << name;
    }
}

// A source named by its path is that file; a playlist source and an import's origin name none.
// A Sources tag inside a comment cannot be cut out by the byte search: the whole document is
// read instead, with the same result.
TEST(ArdourReader, NamesEachSourceOnceByWhereArdourKeepsIt) {
    const QByteArray sources = R"(<Sources>
      <Source name="a%L.wav" type="audio" origin="/home/me/import/a.wav"/>
      <Source name="a%L.wav" type="audio" channel="1"/>
      <Source name="/media/disk/ext.flac" type="audio"/>
      <Source name="Audio 1.3" type="audio" playlist="88"><Playlist/></Source>
      <Source name="beat.mid" type="midi"/></Sources>)";
    const QList<FileReference> expected = {{Base::Interchange, "audiofiles/a%L.wav", {}},
                                           {Base::None, {}, {"/media/disk/ext.flac"}},
                                           {Base::Interchange, "midifiles/beat.mid", {}}};
    for (const QByteArray& comment : {QByteArray(), QByteArray("<!-- <Sources> -->")}) {
        const SessionRead read =
            readArdourSession("<?xml version=\"1.0\"?>\n<Session version=\"7003\">" + comment +
                                  sources + "<Regions/></Session>\n",
                              {});
        EXPECT_EQ(read.references, expected) << comment.constData();
    }
}

TEST(ArdourReader, RefusesWhatIsNoWholeSession) {
    const QByteArray session = test::sessionBytes(SessionKindId::Ardour, {"a.wav"});
    const std::tuple<const char*, QByteArray, ReadFailure> cases[] = {
        {"cut short", session.chopped(6), ReadFailure::CutShort},
        {"broken", QByteArray(session).replace("<Sources>", "<Sources"), ReadFailure::Damaged},
        {"another XML", "<?xml version=\"1.0\"?><project/>", ReadFailure::NotThisKind},
        {"no XML", "Session", ReadFailure::NotThisKind},
    };
    for (const auto& [name, bytes, failure] : cases) {
        const SessionRead read = readArdourSession(bytes, {});
        ASSERT_TRUE(read.problem) << name;
        EXPECT_EQ(read.problem->failure, failure) << name;
        EXPECT_NE(read.outcome, ReaderOutcome::Read) << name;
    }
}

}  // namespace
}  // namespace tidewick
