#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include "readers/import_als.h"
#include "readers/import_aup.h"
#include "session/session_folder.h"
#include "support/database.h"
#include "support/reader_fixture.h"
#include "text/path_text.h"

// The project kinds' real sessions put back into their project's folder tree, with files no
// session names beside them: a load of all the folder's sessions offers every such file and
// no file any reference keeps.
namespace tidewick {
namespace {

using Base = FileReference::Base;

struct ProjectCase {
    const char* name;
    const char* corpusFile;
    const char* session;      // where the session goes, from the temporary folder
    const char* projectInfo;  // the Ableton project folder, when there is one
    QStringList unused;       // files no session names, from the temporary folder
    QStringList movedAway;    // used files put elsewhere in the project: found by their name
};

void PrintTo(const ProjectCase& c, std::ostream* out) {
    *out << c.name;
}

class ProjectTruth : public ::testing::TestWithParam<ProjectCase> {
protected:
    void put(const QString& relative, const QByteArray& bytes = "x") {
        ASSERT_TRUE(test::writeFile(dir.filePath(relative), bytes)) << relative.toStdString();
    }

    // Every file the session's references name in the project, made where they point (or, for
    // one moved away, under the project's "Moved/"); the list of those made.
    QStringList makeUsedFiles(const ProjectCase& c, const QByteArray& bytes) {
        const QString session = dir.filePath(c.session);
        const QString project =
            c.projectInfo ? dir.filePath(c.projectInfo) : hostParentFolder(session);
        const SessionRead read = sessionKindForFile(session)->reader(bytes, {});
        QStringList made;
        for (const FileReference& reference : read.references) {
            QString path;
            if (reference.base == Base::ProjectFolder) {
                path = project + '/' + reference.relative;
            } else if (reference.base == Base::DataFolder) {
                path = dataFolderOf(session) + reference.relative;
            } else if (reference.base == Base::SessionFolder &&
                       !reference.relative.startsWith("..")) {
                path = hostParentFolder(session) + '/' + reference.relative;
            } else if (reference.base == Base::Interchange) {
                // Ardour's interchange folder need not be named after the session.
                path = project + "/interchange/Older Name/" + reference.relative;
                if (reference.relative.startsWith("audiofiles/")) {
                    const QString peaks = project + "/peaks/" + GetFileName(path) + "%A0.peak";
                    put(QDir(dir.path()).relativeFilePath(peaks));  // its peaks, kept
                    made.append(peaks);
                }
            } else if (reference.base == Base::None) {
                // Saved on another machine: found by its name in the project.
                path = project + "/samples/" + GetFileName(reference.absolute.value(0));
            }
            if (path.isEmpty()) {
                continue;
            }
            if (c.movedAway.contains(GetFileName(path))) {
                path = project + "/Moved/" + GetFileName(path);
            }
            put(QDir(dir.path()).relativeFilePath(path));
            made.append(QDir::cleanPath(path));
            if (reference.base == Base::ProjectFolder) {
                put(QDir(dir.path()).relativeFilePath(path) + ".asd");  // its peaks, kept
                made.append(QDir::cleanPath(path) + ".asd");
            }
        }
        return made;
    }

    QTemporaryDir dir;
    FileSystem disk;
};

TEST_P(ProjectTruth, OffersEveryUnusedFileAndNoFileAReferenceKeeps) {
    const ProjectCase& c = GetParam();
    if (!test::haveCorpus()) {
        GTEST_SKIP() << "no corpus";
    }
    const QByteArray bytes = test::readFile(test::corpusPath(c.corpusFile));
    put(c.session, bytes);
    if (c.projectInfo) {
        put(QString(c.projectInfo) + "/Ableton Project Info/AProject.ico");
        put(QString(c.projectInfo) + "/Backup/set [2024-01-01 101010].als", bytes);
    }
    const QStringList used = makeUsedFiles(c, bytes);
    ASSERT_FALSE(used.isEmpty());
    for (const QString& file : c.unused) {
        put(file);
    }
    const QString folder = hostParentFolder(dir.filePath(c.session));
    SessionOptions options =
        withWholeFolder(startingOptions(*sessionKindForFile(c.session), folder, disk));
    options.keepPeaks = true;
    SessionFolder load(disk);
    load.load(options);
    ASSERT_FALSE(load.stopped()) << load.used().stoppedAt.toStdString();
    QStringList offered;
    for (const OtherFile& file : load.otherFiles()) {
        offered.append(QDir::cleanPath(otherFilePath(withSeparator(load.root()), file.text)));
    }
    for (const QString& file : used) {
        EXPECT_FALSE(offered.contains(file)) << "offered though used: " << file.toStdString();
    }
    for (const QString& file : c.unused) {
        EXPECT_TRUE(offered.contains(dir.filePath(file))) << "not offered: " << file.toStdString();
    }
    EXPECT_EQ(offered.size(), c.unused.size()) << offered.join('\n').toStdString();
}

INSTANTIATE_TEST_SUITE_P(
    Corpus, ProjectTruth,
    ::testing::Values(
        ProjectCase{"Live8Windows",
                    "als/Tockitt-Deliverance__Deliverance.als",
                    "Song Project/Deliverance.als",
                    "Song Project",
                    {"Song Project/Samples/Recorded/0099 take.wav",
                     "Song Project/Samples/Recorded/0099 take.wav.asd", "Song Project/notes.txt",
                     "Song Project/Samples/Imported/loop.aif", "Song Project/Backup/readme.txt"},
                    {"0007 R Gt.wav"}},
        ProjectCase{"Live10MacInASubFolder",
                    "als/JonatanWallgren-blind__blind.als",
                    "blind Project/Sets/blind.als",
                    "blind Project",
                    {"blind Project/Samples/Processed/Reverse/old R.wav", "blind Project/mix.wav"},
                    {}},
        ProjectCase{"Live12WindowsElsewhere",
                    "als/Zorroinvader-musix__Untitled^1.als",
                    "jam Project/Untitled^1.als",
                    "jam Project",
                    {"jam Project/Samples/Recorded/3-Audio 0002 [2024-12-07 181800].wav"},
                    {}},
        ProjectCase{"Audacity2",
                    "aup/Noxime-LD39-Powerlift__audio.aup",
                    "game/audio.aup",
                    nullptr,
                    {"game/audio_data/e00/d00/e00000ff.au", "game/audio_data/e01/d02/e0102aa.au",
                     "game/audio.wav"},
                    {}},
        ProjectCase{"Audacity1FlatWithStaleName",
                    "aup/christiantam-Tetris__sounds.aup",
                    "tetris/renamed.aup",
                    nullptr,
                    {"tetris/renamed_data/b00099.au", "tetris/sounds.aup.bak"},
                    {}},
        ProjectCase{"Ardour2",
                    "ardour/morashon-seg1__seg1-2000.ardour",
                    "seg1/seg1-2000.ardour",
                    nullptr,
                    {"seg1/interchange/seg1/audiofiles/take9-L.wav", "seg1/export/mix.wav",
                     "seg1/peaks/take9-L.wav%A0.peak", "seg1/dead/old.wav"},
                    {}},
        ProjectCase{"Ardour6WithMidi",
                    "ardour/jahunt1-lmc32-dnb__LMC DnB.ardour",
                    "dnb/LMC DnB.ardour",
                    nullptr,
                    {"dnb/interchange/Older Name/midifiles/unused.mid", "dnb/bass.wav",
                     "dnb/analysis/x.qm-onset"},
                    {}},
        ProjectCase{
            "FLStudio20WindowsWithFactoryCopy",
            "flp/letsbefriendzz-ChristmasTape__2022-12-13-maybemaybemaybe.flp",
            "tape/maybe.flp",
            nullptr,
            {"tape/samples/FLO - Pad 02.wav", "tape/samples/Unused Loop.wav", "tape/stems/old.wav"},
            {}},
        ProjectCase{"FLStudio20Mac",
                    "flp/dawtool__complex.flp",
                    "beat/complex.flp",
                    nullptr,
                    {"beat/audio/coin2.wav"},
                    {}},
        ProjectCase{"Kdenlive24",
                    "mlt/kdenlive-test-suite__audio-mix.kdenlive",
                    "film/projects/audio-mix.kdenlive",
                    nullptr,
                    {"film/projects/footage/unused.ogg", "film/projects/proxy/old.mkv",
                     "film/projects/thumbs/a.png"},
                    {}},
        ProjectCase{"ShotcutWindows",
                    "mlt/Kutukobra-Point-und-Stick__video.mlt",
                    "trailer/video.mlt",
                    nullptr,
                    {"trailer/render.mp4"},
                    {}}),
    [](const auto& info) { return std::string(info.param.name); });

// What a load of the first session of `kind` in `folder` offers; nothing for a load that stopped.
QStringList offeredOnLoad(SessionKindId kind, const QString& folder) {
    const FileSystem disk;
    SessionOptions options = startingOptions(sessionKind(kind), folder, disk);
    options.selected = 0;
    SessionFolder load(disk);
    load.load(options);
    QStringList offered;
    for (const OtherFile& file : load.otherFiles()) {
        offered.append(file.text);
    }
    return load.stopped() ? QStringList{"(stopped)"} : offered;
}

// A load of another kind beside them keeps what they use and never offers them, nor an
// Audacity 3 project's database companions, nor the state Ardour keeps beside a session.
TEST(ProjectGuard, AnotherKindsLoadKeepsTheirFiles) {
    QTemporaryDir dir;
    const auto put = [&dir](const QString& name, const QByteArray& bytes = "x") {
        ASSERT_TRUE(test::writeFile(dir.filePath(name), bytes));
    };
    put("a.rpp", test::sessionBytes(SessionKindId::Rpp, {"own.wav"}));
    put("set.als", test::sessionBytes(SessionKindId::Als, {"take.wav"}));
    put("pod.aup",
        "<?xml version=\"1.0\"?><project><simpleblockfile filename=\"e0000001.au\"/>"
        "<pcmaliasblockfile summaryfile=\"e0000002.auf\" aliasfile=\"" +
            dir.filePath("voice.wav").toUtf8() + "\"/></project>");
    put("mix.ardour", test::sessionBytes(SessionKindId::Ardour, {"vox.wav"}));
    put("beat.flp", test::sessionBytes(SessionKindId::Flp, {"kick.wav"}));
    put("cut.kdenlive", test::sessionBytes(SessionKindId::Mlt, {"2:clip.mp4"}));
    for (const char* name :
         {"own.wav", "take.wav", "voice.wav", "pod_data/e00/d00/e0000001.au", "decoy.wav",
          "new.aup3-wal", "new.aup3-shm", "interchange/mix/audiofiles/vox.wav", "kick.wav",
          "clip.mp4", "mix.history", "mix.pending", "mix.ardour.bak", "instant.xml"}) {
        put(name);
    }
    test::writeDatabase(dir.filePath("new.aup3"),
                        {"PRAGMA application_id = 1096107097", "CREATE TABLE project (id INTEGER)",
                         "CREATE TABLE sampleblocks (id INTEGER)"});
    EXPECT_EQ(offeredOnLoad(SessionKindId::Rpp, dir.path()), QStringList{"decoy.wav"});
}

// An image sequence keeps every frame of its pattern, and a proxy is kept with its clip.
TEST(ProjectGuard, AnImageSequenceKeepsEveryFrame) {
    QTemporaryDir dir;
    for (const char* name :
         {"shots/f_001.png", "shots/f_1000.png", "shots/g_001.png", "slides/a.jpg", "slides/b.JPG",
          "slides/c.png", "proxy/p.mkv", "proxy/old.mkv"}) {
        ASSERT_TRUE(test::writeFile(dir.filePath(name), "x"));
    }
    ASSERT_TRUE(test::writeFile(
        dir.filePath("film.kdenlive"),
        "<mlt><producer><property name=\"resource\">shots/f_%03d.png</property>"
        "<property name=\"kdenlive:proxy\">proxy/p.mkv</property></producer>"
        "<chain><property name=\"resource\">slides/.all.jpg</property></chain></mlt>"));
    EXPECT_EQ(offeredOnLoad(SessionKindId::Mlt, dir.path()),
              QStringList({"proxy/old.mkv", "shots/g_001.png", "slides/c.png"}));
}

}  // namespace
}  // namespace tidewick
