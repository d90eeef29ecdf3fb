#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <QDateTime>
#include <QDirIterator>
#include <QLocale>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <csignal>
#include <functional>

#include "fileops/move_run.h"
#include "support/reader_fixture.h"
#include "text/path_text.h"

namespace tidewick {
namespace {

// A real disk whose changes fail where a test says.
class FaultyDisk : public FileOperations {
public:
    QHash<QString, Error> copyFaults;  // by the source's file name
    bool trashRefuses = false;         // for files of the session folder
    bool deleteRefuses = false;
    QString sessionFolder;
    std::function<void(const QString& destination)> duringCopy;  // done as the data goes
    int interruptAfter = -1;  // files moved before an interrupt comes

    Result<TrashPlace> copyFile(const QString& source, const QString& destination, CopyMode mode,
                                const Progress& progress) override {
        if (copyFaults.contains(GetFileName(source))) {
            return copyFaults.value(GetFileName(source));
        }
        const Progress watched = [&](qint64 bytes) {
            if (duringCopy) {
                std::exchange(duringCopy, nullptr)(destination);
            }
            progress(bytes);
        };
        return FileOperations::copyFile(source, destination, mode, watched);
    }
    Result<TrashPlace> trash(const QString& path) override {
        if (trashRefuses && path.startsWith(sessionFolder)) {
            return Error{EPERM, "refused"};
        }
        return FileOperations::trash(path);
    }
    Result<void> removeFile(const QString& path) override {
        return deleteRefuses ? Error{EACCES, qt_error_string(EACCES)}
                             : FileOperations::removeFile(path);
    }
};

// A session folder "Song" with files of 1,000 bytes, a target "Old", and a trash of its own.
class MoveRunTest : public ::testing::Test {
protected:
    void SetUp() override {
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        qputenv("XDG_DATA_HOME", root.filePath("data").toUtf8());
        QDir().mkpath(song);
        QDir().mkpath(old);
        disk.sessionFolder = song;
    }
    void write(const QString& folder, const char* names, int size) const {
        for (const QString& name : test::texts(names)) {
            ASSERT_TRUE(test::writeFile(folder + '/' + name, QByteArray(size, 'x')));
        }
    }
    // The files under `folder` with their sizes, "a.wav:1000|mix/b.wav:10", hidden ones too.
    QString listing(const QString& folder) const {
        QStringList found;
        QDirIterator it(folder, QDir::Files | QDir::Hidden | QDir::System,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString path = it.next();
            found.append(QDir(folder).relativeFilePath(path) + ':' +
                         QString::number(disk.entrySize(path).valueOr(-1)));
        }
        found.sort();
        return found.join('|');
    }
    // Runs `request`, answering the overwrite questions from `answers`; returns the lines the
    // log writes for the files, with the session folder written "@", and keeps the totals line.
    QString run(const MoveRequest& request, QList<std::optional<OverwriteAnswer>> answers) {
        QString log;
        MoveEvents events;
        events.log = [&log](const QString& text) { log += text; };
        events.askOverwrite = [&answers](const QString&) {
            return answers.isEmpty() ? OverwriteAnswer::Cancel
                                     : answers.takeFirst().value_or(OverwriteAnswer::Cancel);
        };
        events.stopRequested = [this] {
            return disk.interruptAfter >= 0 && disk.interruptAfter-- == 0;
        };
        outcome = runMove(request, disk, events);
        const QStringList lines = log.split("\r\n");
        EXPECT_EQ(lines.value(0), "Moving selected files to..." + moveDestination(request));
        EXPECT_EQ(lines.value(2), QString(50, '-'));
        const qsizetype blank = lines.lastIndexOf(QString());
        totals = lines.mid(blank + 1, lines.size() - 3 - blank).join('|');
        return lines.mid(3, blank - 3)
            .join('|')
            .replace("Moving..." + song + '/', "@")
            .replace(old, "#");
    }

    MoveRequest plainRequest() const {
        MoveRequest request;
        request.sessionFolder = song;
        request.sessionFile = "mix.sesx";
        request.targetText = old;
        return request;
    }

    QTemporaryDir root;
    QString song = root.filePath("Song"), old = root.filePath("Old");
    QString trash = root.filePath("data/Trash/files");
    FaultyDisk disk;
    MoveOutcome outcome;
    QString totals;
};

struct MoveCase {
    const char* name;
    const char* files;     // in Song, 1,000 bytes each, listed in this order
    const char* checked;   // the lines checked
    const char* inTarget;  // already in Old, 10 bytes each
    QList<std::optional<OverwriteAnswer>> answers;
    std::function<void(MoveRequest&, FaultyDisk&, const QString& song)> prepare;
    const char* log;  // the files' lines, the session folder written "@"
    const char* totals;
    const char* left;    // Song afterwards
    const char* target;  // Old afterwards
    int trashed;         // files in the trash afterwards
};

void PrintTo(const MoveCase& c, std::ostream* out) {
    *out << c.name;
}

const std::function<void(MoveRequest&, FaultyDisk&, const QString&)> kAsIs =
    [](MoveRequest&, FaultyDisk&, const QString&) {};
constexpr auto kYes = OverwriteAnswer::Yes;
constexpr auto kNo = OverwriteAnswer::No;
constexpr auto kAll = OverwriteAnswer::YesToAll;
constexpr auto kCancel = OverwriteAnswer::Cancel;

// Gives `file` a new time of change while its copy goes on, on `times` copies one after another.
void touchDuringCopy(FaultyDisk& disk, const QString& file, int times) {
    disk.duringCopy = [&disk, file, times](const QString&) {
        const struct timespec when[2] = {{0, UTIME_OMIT}, {times * 1000, 0}};
        ::utimensat(AT_FDCWD, QFile::encodeName(file).constData(), when, 0);
        if (times > 1) {
            touchDuringCopy(disk, file, times - 1);
        }
    };
}

// The target folder of a case, from its session folder.
QString targetOf(const QString& song) {
    return QDir::cleanPath(song + "/../Old");
}

// A name whose trash record ("....wav.trashinfo") would be longer than a name may be.
const QByteArray kLongName = QByteArray(246, 'n') + ".wav";
const QByteArray kLongNameLog = "@" + kLongName + "...OK - 1,000 bytes moved.";
const QByteArray kLongNameListing = kLongName + ":1000";

// clang-format off
const MoveCase kMoveCases[] = {
    {"CheckedOnesInListOrder", "a.wav|c.wav|d.wav|b.wav", "b.wav|a.wav|c.wav", "", {}, kAsIs,
     "@a.wav...OK - 1,000 bytes moved.|@c.wav...OK - 1,000 bytes moved.|@b.wav...OK - 1,000 bytes moved.",
     "Files Moved: 3 - Bytes Moved:  3,000 (0.00Mb)", "d.wav:1000", "a.wav:1000|b.wav:1000|c.wav:1000", 3},
    {"NoSkips", "a.wav|b.wav", "a.wav|b.wav", "a.wav", {kNo}, kAsIs,
     "@a.wavSkipped|@b.wav...OK - 1,000 bytes moved.",
     "Files Moved: 1 - Bytes Moved:  1,000 (0.00Mb)", "a.wav:1000", "a.wav:10|b.wav:1000", 1},
    {"YesTrashesTheOldFile", "a.wav", "a.wav", "a.wav", {kYes}, kAsIs,
     "@a.wav...OK - 1,000 bytes moved.",
     "Files Moved: 1 - Bytes Moved:  1,000 (0.00Mb)", "", "a.wav:1000", 2},
    {"YesToAllAsksOnce", "a.wav|b.wav|c.wav", "a.wav|b.wav|c.wav", "a.wav|c.wav", {kAll, kNo}, kAsIs,
     "@a.wav...OK - 1,000 bytes moved.|@b.wav...OK - 1,000 bytes moved.|@c.wav...OK - 1,000 bytes moved.",
     "Files Moved: 3 - Bytes Moved:  3,000 (0.00Mb)", "", "a.wav:1000|b.wav:1000|c.wav:1000", 5},
    {"CancelAtTheSecondOfFour", "a.wav|b.wav|c.wav|d.wav", "a.wav|b.wav|c.wav|d.wav", "b.wav", {kCancel}, kAsIs,
     "@a.wav...OK - 1,000 bytes moved.|@b.wavOperation cancelled.",
     "Files Moved: 1 - Bytes Moved:  1,000 (0.00Mb)", "b.wav:1000|c.wav:1000|d.wav:1000", "a.wav:1000|b.wav:10", 1},
    {"ExcludedStays", "a.wav|notes.txt", "a.wav|notes.txt", "", {},
     [](MoveRequest& request, FaultyDisk&, const QString&) { request.excludeOn = true; request.excluded = {"*.MID", "*.TXT"}; },
     "@a.wav...OK - 1,000 bytes moved.|@notes.txt...File Excluded",
     "Files Moved: 1 - Bytes Moved:  1,000 (0.00Mb)", "notes.txt:1000", "a.wav:1000", 1},
    {"ExclusionListOff", "notes.txt", "notes.txt", "", {},
     [](MoveRequest& request, FaultyDisk&, const QString&) { request.excluded = {"*.TXT"}; },
     "@notes.txt...OK - 1,000 bytes moved.",
     "Files Moved: 1 - Bytes Moved:  1,000 (0.00Mb)", "", "notes.txt:1000", 1},
    {"IntoTheSessionsSubFolder", "a.wav", "a.wav", "", {},
     [](MoveRequest& request, FaultyDisk&, const QString&) { request.storeInSubFolder = true; request.sessionFile = "mix.ses"; },
     "@a.wav...OK - 1,000 bytes moved.",
     "Files Moved: 1 - Bytes Moved:  1,000 (0.00Mb)", "", "mix/a.wav:1000", 1},
    {"TargetParentMissingIsSaidOnce", "a.wav|b.wav", "a.wav|b.wav", "", {},
     [](MoveRequest& request, FaultyDisk&, const QString&) { request.targetText += "/x/y"; },
     "The target folder's parent #/x does not exist.",
     "Files Moved: 0 - Bytes Moved:  0 (0.00Mb)", "a.wav:1000|b.wav:1000", "", 0},
    {"SourceVanishedAfterTheScan", "a.wav|b.wav", "a.wav|b.wav", "", {},
     [](MoveRequest&, FaultyDisk&, const QString& song) { QFile::remove(song + "/a.wav"); },
     "@a.wav...Error 2 (No such file or directory)|@b.wav...OK - 1,000 bytes moved.",
     "Files Moved: 1 - Bytes Moved:  1,000 (0.00Mb)", "", "b.wav:1000", 1},
    {"DiskFull", "a.wav|b.wav", "a.wav|b.wav", "", {},
     [](MoveRequest&, FaultyDisk& disk, const QString&) { disk.copyFaults.insert("a.wav", {ENOSPC, qt_error_string(ENOSPC)}); },
     "@a.wav...Error 28 (No space left on device)|@b.wav...OK - 1,000 bytes moved.",
     "Files Moved: 1 - Bytes Moved:  1,000 (0.00Mb)", "a.wav:1000", "b.wav:1000", 1},
    {"TrashRefusesSoTheSourceIsDeletedAfterItsCopy", "a.wav", "a.wav", "", {},
     [](MoveRequest&, FaultyDisk& disk, const QString&) { disk.trashRefuses = true; },
     "@a.wav...OK - 1,000 bytes moved (source deleted: the trash refused it).",
     "Files Moved: 1 - Bytes Moved:  1,000 (0.00Mb)|Sources Deleted (the trash refused them): 1", "", "a.wav:1000", 0},
    {"SourceCannotBeRemoved", "a.wav", "a.wav", "", {},
     [](MoveRequest&, FaultyDisk& disk, const QString&) { disk.trashRefuses = disk.deleteRefuses = true; },
     "@a.wav...File copied.  Cannot remove source file.  Error 13 (Permission denied)",
     "Files Moved: 0 - Bytes Moved:  1,000 (0.00Mb)", "a.wav:1000", "a.wav:1000", 0},
    {"ALinkMovesAsALink", "a.wav", "", "", {},
     [](MoveRequest& request, FaultyDisk&, const QString& song) { QFile::link("a.wav", song + "/l.wav"); request.items.append({"l.wav", true}); },
     "@l.wav...OK - 5 bytes moved.",
     "Files Moved: 1 - Bytes Moved:  5 (0.00Mb)", "a.wav:1000", "l.wav:5", 1},
    {"SizesBeyond2GiB", "", "", "", {},
     [](MoveRequest& request, FaultyDisk&, const QString& song) {
         QFile big(song + "/big.wav");  // sparse: its copy costs no data
         ASSERT_TRUE(big.open(QIODevice::WriteOnly) && big.resize(3LL << 30));
         request.items.append({"big.wav", true});
     },
     "@big.wav...OK - 3,221,225,472 bytes moved.",
     "Files Moved: 1 - Bytes Moved:  3,221,225,472 (3,072.00Mb)", "", "big.wav:3221225472", 1},
    {"TargetIsTheSessionFolder", "a.wav", "a.wav", "", {kYes},
     [](MoveRequest& request, FaultyDisk&, const QString& song) { request.targetText = song; },
     "@a.wav...Error 17 (The file is already in the target folder)",
     "Files Moved: 0 - Bytes Moved:  0 (0.00Mb)", "a.wav:1000", "a.wav:1000", 0},
    {"ANameTakenDuringTheCopyStaysAndTheSourceToo", "a.wav", "a.wav", "", {},
     [](MoveRequest&, FaultyDisk& disk, const QString&) {
         disk.duringCopy = [](const QString& destination) {  // another program writes there
             QProcess::execute("sh", {"-c", "printf other > \"$0\"", destination});
         };
     },
     "@a.wav...Error 17 (A file of that name appeared in the target folder)",
     "Files Moved: 0 - Bytes Moved:  0 (0.00Mb)", "a.wav:1000", "a.wav:5", 0},
    {"AFileWrittenToDuringItsCopyIsCopiedAgain", "a.wav", "a.wav", "", {},
     [](MoveRequest&, FaultyDisk& disk, const QString& song) { touchDuringCopy(disk, song + "/a.wav", 1); },
     "@a.wav...OK - 1,000 bytes moved.", "Files Moved: 1 - Bytes Moved:  1,000 (0.00Mb)", "", "a.wav:1000", 1},
    {"AFileThatKeepsChangingWhileCopiedStaysAndLeavesNoCopy", "a.wav", "a.wav", "", {},
     [](MoveRequest&, FaultyDisk& disk, const QString& song) { touchDuringCopy(disk, song + "/a.wav", 2); },
     "@a.wav...Error 11 (The file changed while it was copied)",
     "Files Moved: 0 - Bytes Moved:  0 (0.00Mb)", "a.wav:1000", "", 0},
    {"ANameWithANewlineCannotForgeALogLine", "x\nFiles Moved: 9.wav", "x\nFiles Moved: 9.wav", "", {}, kAsIs,
     "@x\\nFiles Moved: 9.wav...OK - 1,000 bytes moved.",
     "Files Moved: 1 - Bytes Moved:  1,000 (0.00Mb)", "", "x\nFiles Moved: 9.wav:1000", 1},
    {"AFileTheSessionsUseIsNeverReplaced", "a.wav|b.wav", "a.wav|b.wav", "a.wav", {kAll},
     [](MoveRequest& request, FaultyDisk&, const QString& song) {
         request.usedFiles.insert(QFileInfo(targetOf(song) + "/a.wav").canonicalFilePath(), "mix.sesx");
     },
     "@a.wav...Skipped - the file in the target is used by mix.sesx|@b.wav...OK - 1,000 bytes moved.",
     "Files Moved: 1 - Bytes Moved:  1,000 (0.00Mb)", "a.wav:1000", "a.wav:10|b.wav:1000", 1},
    {"ABackslashIsPartOfAName", "x\\take.wav|y\\take.wav", "x\\take.wav|y\\take.wav", "", {}, kAsIs,
     "@x\\take.wav...OK - 1,000 bytes moved.|@y\\take.wav...OK - 1,000 bytes moved.",
     "Files Moved: 2 - Bytes Moved:  2,000 (0.00Mb)", "", "x\\take.wav:1000|y\\take.wav:1000", 2},
    {"TheWriteThroughNeverOpensAMovedLink", "", "", "", {},
     [](MoveRequest& request, FaultyDisk& disk, const QString& song) {
         QFile::link("p", song + "/l.wav");  // in the target "p" is a pipe nobody writes to
         ASSERT_EQ(::mkfifo(QFile::encodeName(targetOf(song) + "/p").constData(), 0600), 0);
         request.items.append({"l.wav", true});
         disk.trashRefuses = true;
     },
     "@l.wav...OK - 1 bytes moved (source deleted: the trash refused it).",
     "Files Moved: 1 - Bytes Moved:  1 (0.00Mb)|Sources Deleted (the trash refused them): 1", "", "l.wav:1|p:0", 0},
    {"AnExcludedFileIsNotAskedAbout", "notes.txt|a.wav", "notes.txt|a.wav", "notes.txt", {kCancel},
     [](MoveRequest& request, FaultyDisk&, const QString&) { request.excludeOn = true; request.excluded = {"*.TXT"}; },
     "@notes.txt...File Excluded|@a.wav...OK - 1,000 bytes moved.",
     "Files Moved: 1 - Bytes Moved:  1,000 (0.00Mb)", "notes.txt:1000", "a.wav:1000|notes.txt:10", 1},
    {"ASessionNamedOnlyDotsGivesNoSubFolder", "a.wav", "a.wav", "", {},
     [](MoveRequest& request, FaultyDisk&, const QString&) { request.storeInSubFolder = true; request.sessionFile = "...sesx"; },
     "The session's name gives no sub-folder to store the files in (\"...sesx\").",
     "Files Moved: 0 - Bytes Moved:  0 (0.00Mb)", "a.wav:1000", "", 0},
    {"TargetIsAFile", "a.wav", "a.wav", "a.wav", {},
     [](MoveRequest& request, FaultyDisk&, const QString&) { request.targetText += "/a.wav"; },
     "The target #/a.wav is a file, not a folder.",
     "Files Moved: 0 - Bytes Moved:  0 (0.00Mb)", "a.wav:1000", "a.wav:10", 0},
    {"LeftoversOfARunThatDiedGo", "a.wav", "a.wav", ".tidewick-copy-1-live|.tidewick-copy-999999999-dead", {}, kAsIs,
     "@a.wav...OK - 1,000 bytes moved.",
     "Files Moved: 1 - Bytes Moved:  1,000 (0.00Mb)", "", ".tidewick-copy-1-live:10|a.wav:1000", 1},
    {"TheTrashFolderIsAFile", "a.wav", "a.wav", "", {},
     [](MoveRequest&, FaultyDisk&, const QString& song) { test::writeFile(song + "/../data/Trash", "x"); },
     "@a.wav...OK - 1,000 bytes moved (source deleted: the trash refused it).",
     "Files Moved: 1 - Bytes Moved:  1,000 (0.00Mb)|Sources Deleted (the trash refused them): 1", "", "a.wav:1000", 0},
    {"ARecordWithoutItsFileLeftByARunThatDiedGoes", "a.wav", "a.wav", "", {},
     [](MoveRequest&, FaultyDisk&, const QString& song) {
         const QString record = song + "/../data/Trash/info/ghost.wav.trashinfo";
         test::writeFile(record, "[Trash Info]\nPath=" + song.toUtf8() + "/ghost.wav\n");
         QFile file(record);
         ASSERT_TRUE(file.open(QIODevice::ReadWrite));
         file.setFileTime(QDateTime::currentDateTime().addSecs(-120), QFileDevice::FileModificationTime);
     },
     "@a.wav...OK - 1,000 bytes moved.", "Files Moved: 1 - Bytes Moved:  1,000 (0.00Mb)", "", "a.wav:1000", 1},
    {"AnInterruptStopsAfterTheFileInHand", "a.wav|b.wav|c.wav", "a.wav|b.wav|c.wav", "", {},
     [](MoveRequest&, FaultyDisk& disk, const QString&) { disk.interruptAfter = 1; },
     "@a.wav...OK - 1,000 bytes moved.|@b.wavOperation cancelled.",
     "Files Moved: 1 - Bytes Moved:  1,000 (0.00Mb)", "b.wav:1000|c.wav:1000", "a.wav:1000", 1},
    {"ALongNameIsShortenedInTheTrash", kLongName.constData(), kLongName.constData(), "", {}, kAsIs,
     kLongNameLog.constData(),
     "Files Moved: 1 - Bytes Moved:  1,000 (0.00Mb)", "", kLongNameListing.constData(), 1},
};
// clang-format on

class MoveCases : public MoveRunTest, public ::testing::WithParamInterface<MoveCase> {};

TEST_P(MoveCases, LogFolderAndTrashTellTheSameStory) {
    const MoveCase& c = GetParam();
    write(song, c.files, 1000);
    write(old, c.inTarget, 10);
    MoveRequest request = plainRequest();
    for (const QString& name : test::texts(c.files)) {
        request.items.append({name, test::texts(c.checked).contains(name)});
    }
    c.prepare(request, disk, song);
    EXPECT_EQ(run(request, c.answers), c.log);
    EXPECT_EQ(totals, c.totals);
    EXPECT_EQ(listing(song), c.left);
    const QString destination = moveDestination(request);
    EXPECT_EQ(
        listing(request.storeInSubFolder || !QFileInfo(destination).isDir() ? old : destination),
        c.target);
    EXPECT_EQ(QDir(trash).entryList(QDir::Files | QDir::System).size(), c.trashed);
    // Each file in the trash has its record of where it was, and each record its file.
    for (const QFileInfo& info : QDir(trash + "/../info").entryInfoList(QDir::Files)) {
        const QFileInfo file(trash + '/' + info.completeBaseName());
        EXPECT_TRUE(file.exists() || file.isSymLink()) << info.fileName().toStdString();
        QFile record(info.filePath());
        ASSERT_TRUE(record.open(QIODevice::ReadOnly));
        EXPECT_TRUE(QRegularExpression("^\\[Trash Info\\]\nPath=(" + song + "|" + old +
                                       ")/[^/\n]+\nDeletionDate=\\d{4}-\\d\\d-\\d\\dT")
                        .match(record.readAll())
                        .hasMatch());
    }
    EXPECT_EQ(outcome.failed, QString(c.log).contains("Error") || QString(c.log).startsWith("The"));
}

INSTANTIATE_TEST_SUITE_P(Moves, MoveCases, ::testing::ValuesIn(kMoveCases),
                         [](const auto& info) { return std::string(info.param.name); });

// A copy that fails halfway (the file grows past what the process may write) leaves no file
// under any name in the target, the old file of that name where it was, and the source.
TEST_F(MoveRunTest, ACopyThatFailsHalfwayLeavesEverythingAsItWas) {
    write(song, "a.wav", 100000);
    write(old, "a.wav", 10);
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit saved{};
    getrlimit(RLIMIT_FSIZE, &saved);
    rlimit small = saved;
    small.rlim_cur = 65536;
    setrlimit(RLIMIT_FSIZE, &small);
    MoveRequest request = plainRequest();
    request.items = {{"a.wav", true}};
    const QString log = run(request, {kYes});
    setrlimit(RLIMIT_FSIZE, &saved);
    EXPECT_EQ(log, "@a.wav...Error 27 (File too large)");
    EXPECT_EQ(listing(song), "a.wav:100000");
    EXPECT_EQ(listing(old), "a.wav:10");
    EXPECT_FALSE(QDir(trash).exists() && !QDir(trash).isEmpty());
}

}  // namespace
}  // namespace tidewick
