#include <gtest/gtest.h>

#include <tuple>

#include <QFileInfo>

#include "platform/path_text.h"
#include "readers/session_kinds.h"
#include "support/reader_fixture.h"
#include "support/session_files.h"

namespace tidewick {
namespace {

using test::ReaderFixture;

TEST(SessionFile, EveryKindReadsItsFileOrSaysWhyNot) {
    ReaderFixture f;
    for (const SessionKind& kind : sessionKinds()) {
        SCOPED_TRACE(kind.tabCaption.toStdString());
        const QString extension = kind.sessionPattern.mid(1);
        const QString name =
            f.write("s" + extension, test::sessionBytes(kind.id, {"a.wav", "b.wav", "a.wav"}));
        const SessionRead read = readSessionFile(kind, name, f.place());
        EXPECT_EQ(read.outcome, ReaderOutcome::Read);
        const QStringList expected = kind.id == SessionKindId::Ses
                                         ? QStringList{"a.wav", "b.wav", "a.wav"}
                                         : QStringList{"a.wav", "b.wav"};
        EXPECT_EQ(read.paths, expected);
        EXPECT_FALSE(read.message);

        const SessionRead gone = readSessionFile(kind, f.dir.filePath("gone" + extension), {});
        EXPECT_EQ(gone.outcome, ReaderOutcome::Failed);
        ASSERT_TRUE(gone.message);
        const QString opening =
            "An error occurred accessing the selected " + kind.tabCaption + " file.  ";
        EXPECT_TRUE(gone.message->text.startsWith(opening)) << gone.message->text.toStdString();
        EXPECT_GT(gone.message->text.size(), opening.size()) << "the reason follows";
        EXPECT_EQ(gone.message->title, "File Error");
        EXPECT_EQ(gone.message->icon, MessageIcon::Critical);
    }
}

TEST(SessionFile, KindByCaptionIgnoresCase) {
    for (const SessionKind& kind : sessionKinds()) {
        EXPECT_EQ(sessionKindByCaption(kind.tabCaption.toLower()), &kind);
    }
    EXPECT_EQ(sessionKindByCaption("Rpp"), &sessionKind(SessionKindId::Rpp));
    EXPECT_EQ(sessionKindByCaption("se"), nullptr);
    EXPECT_EQ(sessionKindByCaption("*.ses"), nullptr);
}

// Real sessions: how many media paths each names, and one of them. REAPER paths are written
// with "/" here and read in the host's form.
TEST(SessionFile, CorpusYieldsTheSessionsMedia) {
    if (!test::haveCorpus()) {
        GTEST_SKIP() << "no session corpus at " << test::corpusPath({}).toStdString();
    }
    const std::tuple<const char*, qsizetype, const char*> rows[] = {
        {"rpp/audiotest_Paranoid.RPP", 4, "05-200525_1858.wav"},
        {"rpp/AudiuMax_Reaper_4x4_Template.RPP", 0, ""},
        {"rpp/exvertus_test_track.rpp", 1, "audio/02 - Just Between Us.flac"},
        {"rpp/griffinsauce_multiple-media-paths.rpp", 0, ""},
        {"rpp/helgobox_clip-engine-basic.RPP", 1, "10-Column 8-230607_1038.wav"},
        {"rpp/helgobox_issue-219-play-preview.rpp", 3, ""},  // a 4th FILE is a RPP_PROJECT source
        {"rpp/lordb8r_Call_Routing.rpp", 2, "Audio Files/Zoom (monitor) - 002-02.wav"},
        {"rpp/noisefarm_201205_1424_test.RPP", 4, "01-201205_2139.wav"},
        {"rpp/tears_dont_fall_project.rpp", 50, "02-Guitar0-240929_1654.wav"},
        {"rpp/ultraschall_testproject_test.rpp", 1, "Recordings/trss-mr-death.mp3"},
        {"rpp/vovas-music_son_Untitled.RPP", 1,
         "/Users/vova/Downloads/\xD0\x92 \xD0\xBD\xD0\xBE\xD1\x87\xD1\x8C.mp3"},
        {"sesx/AudiuMax_Audium_4x4_Template.sesx", 0, ""},
        {"sesx/FiveTailedGames_FourthSealSoundtrack.sesx", 1,
         R"(D:\NEWM N430 Advanced Game Design\FiveTailedGames\FiveTailedGames\)"
         R"(FourthSealSoundtrack\Conformed Files\SoundSketch acrid soundscape 48000 1.wav)"},
        {"sesx/Mmusic_Untitled_Session_1.sesx", 4,
         "/Users/qianzeng/Desktop/Mmusic/Untitled Session 1/Conformed Files/water 44100 1.wav"},
        // From Vegas Pro 17 on, media records hold a zero where the scan looks for the type
        // value, so those projects yield nothing.
        {"veg/mb2014_Untitled.veg", 1, "C:\\Users\\Vedolin\\Downloads\\15240.wav"},
        // 11 media paths; 12.MP4 and 13.MP4 sit in records of the newer layout.
        {"veg/lumanation_home-page-montage.veg", 9,
         "E:\\Desktop\\Projects\\lumanationcommercial.com\\_\\site-5.mp4"},
        {"veg/fhzhugz1_Videos_intro.veg", 0, ""},
        {"veg/kittybot_project.veg", 0, ""},
        {"veg/cartoon_i_like_you_Untitled.veg", 0, ""}};
    const FileSystem fs;
    for (const auto& [file, count, sample] : rows) {
        SCOPED_TRACE(file);
        const QString path = test::corpusPath(QString::fromUtf8(file));
        const SessionKind* kind = sessionKindForFile(path);
        ASSERT_NE(kind, nullptr);
        const SessionRead read = readSessionFile(*kind, path, {QFileInfo(path).path(), &fs});
        ASSERT_EQ(read.outcome, ReaderOutcome::Read);
        EXPECT_FALSE(read.message);
        EXPECT_EQ(read.paths.size(), count);
        QString expected = QString::fromUtf8(sample);
        if (kind->id == SessionKindId::Rpp) {
            expected.replace(u'/', hostSeparator());
        }
        EXPECT_TRUE(expected.isEmpty() || read.paths.contains(expected)) << expected.toStdString();
    }
}

}  // namespace
}  // namespace tidewick
