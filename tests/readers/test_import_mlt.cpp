#include <gtest/gtest.h>

#include <tuple>

#include "readers/import_mlt.h"
#include "support/reader_fixture.h"

namespace tidewick {
namespace {

using Base = FileReference::Base;

TEST(MltReader, ReadsTheResourcesOfRealProjects) {
    if (!test::haveCorpus()) {
        GTEST_SKIP() << "no corpus";
    }
    const std::tuple<const char*, qsizetype, const char*> cases[] = {
        {"Kutukobra-Point-und-Stick__video.mlt", 1,
         "C:/Users/nadzh/Videos/2025-07-14 00-58-17.mkv"},
        {"kdenlive-test-suite__audio-mix.kdenlive", 6, "footage/mono-440hz.ogg"},
        {"synchrone-kremlin-clock__project.kdenlive", 4, "обращение-2020.mp4"},
        {"tomchaplin-phrg_vid__project.kdenlive", 67, "media/videos/scene/1080p60/ERGraph.mp4"},
    };
    for (const auto& [name, count, sample] : cases) {
        const SessionRead read = readMltSession(
            test::readFile(test::corpusPath(QStringLiteral("mlt/") + QLatin1String(name))), {});
        ASSERT_EQ(read.outcome, ReaderOutcome::Read) << name;
        EXPECT_EQ(read.references.size(), count) << name;
        EXPECT_TRUE(read.paths.toList().contains(QString::fromUtf8(sample))) << name;
    }
}

TEST(MltReader, TellsAResourcesFileFromItsSpeedAndItsFrames) {
    const std::tuple<const char*, const char*, bool> cases[] = {
        {"video/04/MVI_9607.MP4", "video/04/MVI_9607.MP4", false},
        {"3:video/04/MVI_9607.MP4", "video/04/MVI_9607.MP4", false},
        {"0,7:clip.mp4", "clip.mp4", false},
        {"-1.5:clip.mp4", "clip.mp4", false},
        {"C:/Users/x/clip.mkv", "C:/Users/x/clip.mkv", false},
        {"shots/frame_%04d.png", "shots/frame_*.png", true},
        {"shots/f#%d[1].png?begin=3", "shots/f[#]*[[]1].png", true},
        {"slides/.all.jpg", "slides/*.jpg", true},
        {"100% done.wav", "100% done.wav", false},
        {"#00000000", "", false},
        {"-", "", false},
        {"<tractor>", "", false},
    };
    for (const auto& [resource, path, pattern] : cases) {
        bool isPattern = !pattern;
        EXPECT_EQ(mltResourcePath(QString::fromUtf8(resource), &isPattern), QString::fromUtf8(path))
            << resource;
        EXPECT_EQ(isPattern, pattern) << resource;
    }
}

// A relative path is read against the root too; a colour or a title names no file, a proxy and
// the original of a clip do.
TEST(MltReader, NamesEveryFileOfAClipOnce) {
    const QByteArray project = R"(<?xml version='1.0' encoding='utf-8'?>
<mlt root="/home/me/film" producer="main bin">
 <producer id="black"><property name="resource">black</property>
  <property name="mlt_service">color</property></producer>
 <producer id="p1"><property name="resource">clips/a.mp4</property>
  <property name="kdenlive:proxy">proxy/a.mkv</property>
  <property name="kdenlive:originalurl">clips/a.mp4</property></producer>
 <chain id="c1"><property name="resource">/abs/b.wav</property>
  <property name="kdenlive:proxy">-</property></chain>
 <playlist id="main bin"><entry producer="p1"/></playlist>
</mlt>)";
    const SessionRead read = readMltSession(project, {});
    EXPECT_EQ(
        read.references,
        (QList<FileReference>{{Base::SessionFolder, "clips/a.mp4", {"/home/me/film/clips/a.mp4"}},
                              {Base::SessionFolder, "proxy/a.mkv", {"/home/me/film/proxy/a.mkv"}},
                              {Base::None, {}, {"/abs/b.wav"}}}));
}

// A project of many clips is read in two halves side by side: the files come out as one reading
// gives them, in order and each once though both halves name it; a piece of the later half
// that does not read alone sends the whole document to the XML reader, with the same result.
TEST(MltReader, ReadsManyClipsInOrderEachFileOnce) {
    QByteArray clips;
    QStringList expected;
    for (int i = 0; i < 1500; ++i) {
        const QByteArray shared = "clips/shared " + QByteArray::number(i % 700) + ".mp4";
        clips += "<producer id=\"p" + QByteArray::number(i) + "\"><property name=\"length\">9" +
                 "</property><property name=\"resource\">" + shared +
                 "</property><property name=\"kdenlive:proxy\">proxy/" + QByteArray::number(i) +
                 ".mkv</property></producer>\n";
        if (i < 700) {
            expected.append(QString::fromLatin1(shared));
        }
        expected.append(QStringLiteral("proxy/%1.mkv").arg(i));
    }
    const QByteArray head = "<?xml version='1.0' encoding='utf-8'?>\n<mlt>\n";
    const QByteArray comment = "<!-- <producer id=\"x\"> -->\n";
    for (const QByteArray& project :
         {head + clips + "</mlt>\n",
          head + clips + comment + clips.first(clips.indexOf('\n') + 1) + "</mlt>\n"}) {
        const SessionRead read = readMltSession(project, {});
        ASSERT_EQ(read.outcome, ReaderOutcome::Read);
        EXPECT_EQ(read.paths, expected);
        EXPECT_EQ(read.references.size(), expected.size());
    }
}

TEST(MltReader, RefusesWhatIsNoWholeProject) {
    const QByteArray project = test::sessionBytes(SessionKindId::Mlt, {"a.mp4"});
    const std::tuple<const char*, QByteArray, ReadFailure> cases[] = {
        {"cut short", project.chopped(4), ReadFailure::CutShort},
        {"broken", QByteArray(project).replace("</property>", "</prop>"), ReadFailure::Damaged},
        {"another XML", "<?xml version=\"1.0\"?><Session/>", ReadFailure::NotThisKind},
    };
    for (const auto& [name, bytes, failure] : cases) {
        const SessionRead read = readMltSession(bytes, {});
        ASSERT_TRUE(read.problem) << name;
        EXPECT_EQ(read.problem->failure, failure) << name;
    }
}

}  // namespace
}  // namespace tidewick
