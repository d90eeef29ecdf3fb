#include <gtest/gtest.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <functional>

#include "audit/recording_disk.h"
#include "support/reader_fixture.h"
#include "sweep/listed_disk.h"

// The disk as a folder's audit asked it: asked again, an unchanged disk answers the same, and a
// change to anything that was asked is noticed; nothing else is.
namespace tidewick {
namespace {

struct Change {
    const char* name;
    std::function<void(const QString& root)> make;
    bool noticed;
};

void PrintTo(const Change& c, std::ostream* out) {
    *out << c.name;
}

void write(const QString& path, const QByteArray& bytes = "x") {
    ASSERT_TRUE(test::writeFile(path, bytes)) << path.toStdString();
}

const Change kChanges[] = {
    {"Nothing", [](const QString&) {}, false},
    {"AFileOfAFolderNotAsked", [](const QString& root) { write(root + "/Unasked/y.wav"); }, false},
    {"AFileCameIntoAListedFolder", [](const QString& root) { write(root + "/Song/new.wav"); },
     true},
    {"AHiddenFileCameIntoAListedFolder",
     [](const QString& root) { write(root + "/Song/.new.wav"); }, true},
    {"AListedFileWentAway",
     [](const QString& root) { ASSERT_TRUE(QFile::remove(root + "/Song/take.wav")); }, true},
    {"AFileAskedForAppeared", [](const QString& root) { write(root + "/Other/absent.wav"); }, true},
    {"AFolderOfFilesAskedForAppeared", [](const QString& root) { write(root + "/Gone/a.wav"); },
     true},
    {"AFolderInAMissingFolderAppeared",
     [](const QString& root) { ASSERT_TRUE(QDir().mkpath(root + "/Gone/Backups")); }, true},
    {"AFileGrew", [](const QString& root) { write(root + "/Other/x.wav", "xx"); }, true},
    {"ASessionWasSavedAgainAtItsSize",
     [](const QString& root) {
         QFile session(root + "/Song/mix.sesx");
         ASSERT_TRUE(session.open(QIODevice::ReadWrite));
         ASSERT_TRUE(session.setFileTime(QDateTime::currentDateTime().addSecs(60),
                                         QFileDevice::FileModificationTime));
     },
     true},
    {"AFolderCameIntoAListedFolder",
     [](const QString& root) { ASSERT_TRUE(QDir().mkpath(root + "/Song/Takes")); }, true},
    {"AFileCameIntoAFolderListedWhole",
     [](const QString& root) { write(root + "/Song/Media/Takes/b.wav"); }, true},
    {"AFolderAskedForWentAway",
     [](const QString& root) { ASSERT_TRUE(QDir(root + "/Song/Media").removeRecursively()); },
     true},
    {"ALinkLeadsElsewhere",
     [](const QString& root) {
         ASSERT_TRUE(QFile::remove(root + "/Song/link.wav"));
         ASSERT_TRUE(QFile::link(root + "/Other/x.wav", root + "/Song/link.wav"));
     },
     true},
    {"TheCurrentFolderChanged",
     [](const QString& root) { ASSERT_TRUE(QDir::setCurrent(root + "/Other")); }, true},
};

class RecordingDiskChanges : public ::testing::TestWithParam<Change> {
protected:
    void SetUp() override {
        previousCurrent = QDir::currentPath();
        ASSERT_TRUE(QDir::setCurrent(root.path()));
        for (const char* file : {"Song/take.wav", "Song/.hidden", "Song/mix.sesx",
                                 "Song/Media/a.wav", "Other/x.wav"}) {
            write(root.filePath(file));
        }
        ASSERT_TRUE(QFile::link(root.filePath("Song/take.wav"), root.filePath("Song/link.wav")));
    }
    void TearDown() override { QDir::setCurrent(previousCurrent); }

    // Asks `disk` what a folder's audit asks, and checks that each answer is the real disk's.
    void ask(const FileSystem& disk) const {
        const FileSystem real;
        const QString song = root.filePath("Song"), other = root.filePath("Other");
        const auto wanted = [](const QString& name) { return name.endsWith(".wav"); };
        EXPECT_EQ(disk.listFiles(song), real.listFiles(song));
        EXPECT_EQ(disk.listFiles(song, true), real.listFiles(song, true));
        EXPECT_EQ(disk.listFiles(song, false, wanted), real.listFiles(song, false, wanted));
        EXPECT_TRUE(disk.FileExists(song + "/take.wav"));  // the listing's answer
        EXPECT_FALSE(disk.FileExists(other + "/absent.wav"));
        EXPECT_TRUE(disk.fileIds(root.filePath("Gone/a.wav")).isEmpty());
        EXPECT_FALSE(disk.FolderExists(root.filePath("Gone/Backups")));
        EXPECT_TRUE(disk.FolderExists(song));  // the listing's answer
        EXPECT_TRUE(disk.folderReadable(song));
        EXPECT_EQ(disk.fileSize(other + "/x.wav"), 1);
        EXPECT_EQ(disk.fileStamp(song + "/mix.sesx"), real.fileStamp(song + "/mix.sesx"));
        EXPECT_TRUE(disk.FolderExists(song + "/Media"));
        EXPECT_EQ(disk.listFolders(song), real.listFolders(song));
        const FileSystem::Contents media = disk.listContents(song + "/Media");
        EXPECT_EQ(media.files, real.listContents(song + "/Media").files);
        EXPECT_EQ(disk.fileIds(song + "/link.wav"), real.fileIds(song + "/link.wav"));
        EXPECT_EQ(disk.currentDirectory(), root.path());
    }

    QTemporaryDir root;
    QString previousCurrent;
};

TEST_P(RecordingDiskChanges, AReplayNoticesAChangeToWhatWasAsked) {
    const FileSystem disk;
    const RecordingDisk recorded(disk);
    ask(ListedDisk(recorded));  // as a load asks it
    const Result<QByteArray> before = replaySignature(recorded.questions(), disk);
    ASSERT_TRUE(before.ok());
    EXPECT_EQ(*before, recorded.signature());  // the disk answers as it did

    GetParam().make(root.path());
    const Result<QByteArray> after = replaySignature(recorded.questions(), disk);
    ASSERT_TRUE(after.ok());
    EXPECT_EQ(*after != recorded.signature(), GetParam().noticed);
}

INSTANTIATE_TEST_SUITE_P(RecordingDisk, RecordingDiskChanges, ::testing::ValuesIn(kChanges),
                         [](const auto& info) { return std::string(info.param.name); });

// A session may name thousands of files (and folders) of a folder long gone: the folder is asked,
// once.
TEST(RecordingDisk, TheFilesOfAMissingFolderAreOneQuestion) {
    QTemporaryDir root;
    const FileSystem disk;
    const RecordingDisk recorded(disk), once(disk);
    const ListedDisk listed(recorded);
    for (const QString name : {"a.wav", "b.wav", "c.wav"}) {
        EXPECT_FALSE(listed.FileExists(root.filePath("Gone/" + name)));
        EXPECT_TRUE(listed.fileIds(root.filePath("Gone/" + name)).isEmpty());
        EXPECT_FALSE(listed.fileStamp(root.filePath("Gone/" + name)));
        EXPECT_FALSE(listed.FolderExists(root.filePath("Gone/" + name + "/Backups")));
    }
    EXPECT_FALSE(once.FolderExists(root.filePath("Gone/")));
    EXPECT_EQ(recorded.questions(), once.questions());
}

// A record that is not whole (a question cut short, a length past its end) replays as a
// failure, never as a signature that might match.
TEST(RecordingDisk, ADamagedRecordFails) {
    QTemporaryDir root;
    const FileSystem disk;
    const RecordingDisk recorded(disk);
    EXPECT_FALSE(recorded.FileExists(root.filePath("a.wav")));
    const QByteArray questions = recorded.questions();  // one question
    EXPECT_TRUE(replaySignature({}, disk).ok());
    for (qsizetype cut = 1; cut < questions.size(); ++cut) {
        EXPECT_FALSE(replaySignature(questions.left(cut), disk).ok()) << cut;
    }
    QByteArray lying = questions;
    lying[8] = char(0x7F);  // the top byte of the path's length: far past the record's end
    EXPECT_FALSE(replaySignature(lying, disk).ok());
}

}  // namespace
}  // namespace tidewick
