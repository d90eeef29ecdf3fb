#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include "app/cli/audit_output.h"
#include "audit/audited_library.h"
#include "audit/library_audit.h"
#include "session/session_folder.h"
#include "support/session_files.h"
#include "text/path_text.h"

// An audit tells what it could not read, keeps its missing media's candidates few and near, and
// prints every name as it is.
namespace tidewick {
namespace {

// The real disk, but for one folder that cannot be listed (a folder without permission, which
// the tests, run as root, cannot make otherwise).
class RefusingDisk : public FileSystem {
public:
    explicit RefusingDisk(QString refused) : refused_(std::move(refused)) {}
    Contents listContents(const QString& folder) const override {
        return folder == refused_ ? Contents{} : FileSystem::listContents(folder);
    }
    bool folderReadable(const QString& folder) const override {
        return folder != refused_ && FileSystem::folderReadable(folder);
    }

private:
    QString refused_;
};

class AuditTruth : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(dir.isValid()); }
    void session(const QString& path, const QStringList& media) const {
        ASSERT_TRUE(
            test::writeFile(dir.filePath(path), test::sessionBytes(SessionKindId::Sesx, media)));
    }
    void file(const QString& path) const { ASSERT_TRUE(test::writeFile(dir.filePath(path), "x")); }

    QTemporaryDir dir;
};

TEST_F(AuditTruth, AFolderThatCannotBeReadIsReportedAsNotRead) {
    session("Band/mix.sesx", {"a.wav"});
    file("Band/a.wav");
    session("Locked/old.sesx", {"b.wav"});
    const RefusingDisk disk(dir.filePath("Locked") + u'/');
    const LibraryReport report = auditLibrary(dir.path(), disk, nullptr);
    ASSERT_EQ(report.folders.size(), 2);
    const FolderReport& locked = report.folders.last();
    EXPECT_EQ(locked.folder, dir.filePath("Locked"));
    EXPECT_TRUE(locked.stopped);
    EXPECT_TRUE(locked.reason.contains("could not be read"));
    EXPECT_EQ(report.stopped, 1) << "the command line exits 2 for it";
}

TEST_F(AuditTruth, AMissingFileKeepsItsNearestCandidatesOnly) {
    session("Song/mix.sesx", {"take.wav"});
    for (int i = 0; i < 12; ++i) {
        file(QStringLiteral("Far/%1/Deeper/take.wav").arg(i, 2, 10, QLatin1Char('0')));
    }
    file("Song/Takes/TAKE.wav");
    const FileSystem disk;
    const LibraryReport report = auditLibrary(dir.path(), disk, nullptr);
    ASSERT_EQ(report.folders.size(), 1);
    const QList<Candidate>& candidates = report.folders.first().missing.value(0).candidates;
    ASSERT_EQ(candidates.size(), 8);
    EXPECT_EQ(candidates.first().path, dir.filePath("Song/Takes/TAKE.wav"));
    EXPECT_EQ(candidates.last().path, dir.filePath("Far/06/Deeper/take.wav"));
}

TEST_F(AuditTruth, CsvKeepsABytesOfANameEscapedAsTheTextDoes) {
    LibraryReport report;
    for (const QByteArray& name : {QByteArray("Song\xff"), QByteArray("Song\xfe")}) {
        FolderReport folder;
        folder.folder = decodeFileName("/music/" + name);
        report.folders.append(folder);
    }
    const QString csv = cli::auditCsv(report);
    EXPECT_TRUE(csv.contains("/music/Song\\xFF,")) << csv.toStdString();
    EXPECT_TRUE(csv.contains("/music/Song\\xFE,")) << csv.toStdString();
    EXPECT_FALSE(csv.contains(QChar::ReplacementCharacter));
}

TEST_F(AuditTruth, AnIndexThatCannotSayStopsTheLoadRatherThanDropItsGuard) {
    session("Song/mix.sesx", {"a.wav"});
    file("Song/b.wav");
    const QString index = dir.filePath("cache/index.sqlite");
    ASSERT_TRUE(test::writeFile(index, "this is no database"));
    const FileSystem disk;
    SessionFolder folder(disk);
    AuditedLibrary library(index);
    folder.setSessionsElsewhere([&](const QStringList& folders) {
        return library.sessionsUsing(folders, disk, folder.cache());
    });
    SessionOptions options =
        startingOptions(sessionKind(SessionKindId::Sesx), dir.filePath("Song"), disk);
    options.selected = 0;
    folder.load(options);
    EXPECT_TRUE(folder.stopped());
    EXPECT_TRUE(folder.used().stoppedAt.contains("set aside"))
        << folder.used().stoppedAt.toStdString();
    EXPECT_TRUE(folder.otherFiles().isEmpty());
}

}  // namespace
}  // namespace tidewick
