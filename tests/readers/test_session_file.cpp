#include <gtest/gtest.h>

#include <tuple>

#include <QFile>

#include "readers/session_kinds.h"
#include "readers/session_text.h"
#include "support/reader_fixture.h"
#include "text/path_text.h"

namespace tidewick {
namespace {

using test::texts;
using Kind = SessionKindId;

SessionRead readAs(Kind kind, QByteArrayView bytes) {
    return sessionKind(kind).reader(bytes, {});
}

// A file that cannot or must not be read fails as unreadable, named, with why.
TEST(SessionFile, UnreadableFileFailsWithTheReason) {
    test::ReaderFixture f;
    QFile large(f.dir.filePath("large.ses"));  // sparse: the size is all that is looked at
    ASSERT_TRUE(large.open(QIODevice::WriteOnly) && large.resize((qint64(1) << 31) - 1024));
    large.close();
    const std::pair<QString, const char*> cases[] = {
        {f.dir.filePath("gone.ses"), "The file does not exist."},
        {f.dir.path(), "It is not an ordinary file."},
        {large.fileName(), "The file is larger than 2 GB."}};
    for (const SessionKind& kind : sessionKinds()) {
        for (const auto& [file, reason] : cases) {
            const SessionRead read = readSessionFile(kind, file, f.place());
            EXPECT_EQ(read.outcome, ReaderOutcome::Failed) << reason;
            EXPECT_EQ(read.problem, (ReadProblem{ReadFailure::Unreadable, kind.id,
                                                 ReadSeverity::Error, reason, file}));
        }
    }
}

// Path bytes are UTF-8 when they are valid UTF-8, else Windows-1252, in every kind of session
// (a Vegas path that is no UTF-16 text loses its zero bytes first).
TEST(SessionText, PathsAreUtf8WhenValidElseWindows1252) {
    const std::pair<QByteArray, const char*> cases[] = {
        {"Caf\xc3\xa9 \xd0\x92.wav", "Café В.wav"},
        {"Caf\xe9 \x80.wav", "Café €.wav"},
        {"\xc0\xaf.wav", "À¯.wav"},            // overlong UTF-8
        {"\xed\xa0\x80.wav", "í\u00a0€.wav"},  // UTF-8 of a surrogate
        {"\xe2\x82.wav", "â‚.wav"}};           // UTF-8 cut short
    for (const auto& [bytes, text] : cases) {
        EXPECT_EQ(decodeSessionText(bytes), QString::fromUtf8(text));
        for (const SessionKind& kind : sessionKinds()) {
            if (kind.projectScope) {
                continue;  // XML of a declared encoding: bytes of another are damaged
            }
            EXPECT_EQ(readAs(kind.id, test::sessionBytesOf(kind.id, {bytes})).paths, texts(text))
                << kind.idText.toStdString() << ": " << text;
        }
    }
}

// A line of a text session ends at CR LF, CR or LF, but for the reading modes of SESX.
TEST(SessionText, LineEnds) {
    const std::tuple<const char*, Kind, QByteArray, const char*> cases[] = {
        // "\n\r" is two line ends, so the source's file line is the empty one between them.
        {"LF CR", Kind::Rpp, "<REAPER_PROJECT\n\r\n\r<SOURCE WAVE\n\rFILE \"a.wav\"\n\r", ""},
        // A line's first character counts after blanks and tabs; within a line it counts not.
        {"CR", Kind::Rpp, "<REAPER_PROJECT\r  VOLPAN 1\r\t <SOURCE WAVE\r FILE b.wav\r >\r>\r",
         "b.wav"},
        {"mid-line", Kind::Rpp, "<REAPER_PROJECT\n  NAME \"<SOURCE WAVE\"\n  FILE c.wav\n>\n", ""},
        {"blank lines", Kind::Rpp, "<REAPER_PROJECT\r\n \r\n\t\r\n<SOURCE MP3\r\nFILE d.mp3\r\n",
         "d.mp3"},
        {"CR LF", Kind::Xml, test::sessionBytes(Kind::Xml, {"a.wav"}), "a.wav"}};
    for (const auto& [name, kind, bytes, paths] : cases) {
        EXPECT_EQ(readAs(kind, bytes).paths, texts(paths)) << name;
    }
}

// Each kind reads the session the test writer lays out for it, whatever its line ends: the
// binary kind gives one path per record, repeats included, every other kind names a path once,
// and letter case makes another path. Cut anywhere, a session reads safely and names a first
// part of those paths; only an Audition XML path line, read as it stands, can be cut short.
TEST(SessionFile, EveryKindReadsItsSessionAndEveryPrefixOfIt) {
    for (const SessionKind& kind : sessionKinds()) {
        const QStringList full = texts(kind.id == Kind::Ses ? "a.wav|a.wav|A.wav" : "a.wav|A.wav");
        for (const char* end : {"\r\n", "\r", "\n"}) {
            QByteArray whole = test::sessionBytes(kind.id, texts("a.wav|a.wav|A.wav"));
            if (kind.id != Kind::Ses && kind.id != Kind::Veg) {
                whole.replace("\r\n", end);
            }
            ASSERT_EQ(readAs(kind.id, whole).paths, full) << kind.idText.toStdString() << end;
            for (qsizetype size = 0; size < whole.size(); ++size) {
                const QStringList got =
                    readAs(kind.id, QByteArrayView(whole).first(size)).paths.toList();
                const qsizetype kept = got.size() - (kind.id == Kind::Xml && !got.isEmpty());
                ASSERT_TRUE(got.size() <= full.size() && got.first(kept) == full.first(kept))
                    << kind.idText.toStdString() << " cut at " << size;
            }
        }
    }
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
        {"rpp/helgobox_issue-219-play-preview.rpp", 4,
         "01-ReaLearn-210420_0101.rpp"},  // a sub-project
        {"rpp/lordb8r_Call_Routing.rpp", 2, "Audio Files/Zoom (monitor) - 002-02.wav"},
        {"rpp/noisefarm_201205_1424_test.RPP", 4, "01-201205_2139.wav"},
        {"rpp/tears_dont_fall_project.rpp", 50, "02-Guitar0-240929_1654.wav"},
        {"rpp/ultraschall_testproject_test.rpp", 1, "Recordings/trss-mr-death.mp3"},
        {"rpp/vovas-music_son_Untitled.RPP", 1, "/Users/vova/Downloads/В ночь.mp3"},
        {"sesx/AudiuMax_Audium_4x4_Template.sesx", 0, ""},
        {"sesx/FiveTailedGames_FourthSealSoundtrack.sesx", 1,
         R"(D:\NEWM N430 Advanced Game Design\FiveTailedGames\FiveTailedGames\)"
         R"(FourthSealSoundtrack\Conformed Files\SoundSketch acrid soundscape 48000 1.wav)"},
        {"sesx/Mmusic_Untitled_Session_1.sesx", 4,
         "/Users/qianzeng/Desktop/Mmusic/Untitled Session 1/Conformed Files/water 44100 1.wav"},
        // Vegas 12, 15, 17, 18 and 20: every file of the media pool, generated media included.
        {"veg/mb2014_Untitled.veg", 1, "C:\\Users\\Vedolin\\Downloads\\15240.wav"},
        {"veg/lumanation_home-page-montage.veg", 11,
         "E:\\Desktop\\Projects\\lumanationcommercial.com\\_\\12.MP4"},
        {"veg/fhzhugz1_Videos_intro.veg", 3,
         "C:\\Users\\franc\\Desktop\\trabalho tiavi\\Apresenta\u00e7\u00e3o1.mp4"},
        {"veg/kittybot_project.veg", 2,
         "META:\\Video Generator\\{Svfx:com.vegascreativesoftware:titlesandtext} (1)"},
        {"veg/cartoon_i_like_you_Untitled.veg", 742,
         "C:\\Users\\lanta\\OneDrive\\\u0414\u043e\u043a\u0443\u043c\u0435\u043d\u0442\u044b"
         "\\creative\\i_like_you\\Image1.png"}};
    const FileSystem fs;
    for (const auto& [file, count, sample] : rows) {
        SCOPED_TRACE(file);
        const QString path = test::corpusPath(QString::fromUtf8(file));
        const SessionKind* kind = sessionKindForFile(path);
        ASSERT_NE(kind, nullptr);
        const SessionRead read = readSessionFile(*kind, path, {QFileInfo(path).path(), &fs});
        // One project of the corpus is cut short in its repository (it ends inside an item):
        // its paths are found, but it is refused, as its other media cannot be known.
        const bool cutShort = QString(file) == "rpp/tears_dont_fall_project.rpp";
        ASSERT_EQ(read.outcome, cutShort ? ReaderOutcome::Failed : ReaderOutcome::Read);
        EXPECT_EQ(read.problem.has_value(), cutShort);
        EXPECT_EQ(read.paths.size(), count);
        QString expected = QString::fromUtf8(sample);
        if (kind->id == Kind::Rpp) {
            expected.replace(u'/', hostSeparator());
        }
        EXPECT_TRUE(expected.isEmpty() || read.paths.toList().contains(expected))
            << expected.toStdString();
    }
}

}  // namespace
}  // namespace tidewick
