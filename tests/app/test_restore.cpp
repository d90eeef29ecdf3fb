#include <gtest/gtest.h>

#include <sys/stat.h>
#include <QCryptographicHash>
#include <QDirIterator>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QRegularExpression>
#include <QTextStream>
#include <functional>

#include "app/cli/cli.h"
#include "fileops/restore.h"
#include "support/reader_fixture.h"

// A move undone with `tidewick-cli restore`, on the real disk and the real trash: what the
// session folder and the target hold afterwards, byte for byte, whatever happened in between.
namespace tidewick {
namespace {

struct RestoreCase {
    const char* name;
    const char* inTarget;  // files of 10 bytes in Old before the move (replaced by it)
    std::function<void(const QString& root, const QString& record)> between;
    int code;
    QStringList shown;       // what `restore` prints, in order
    const char *song, *old;  // what Song and Old hold afterwards ("name:content", "|" between)
};

void PrintTo(const RestoreCase& c, std::ostream* out) {
    *out << c.name;
}

const auto kNothing = [](const QString&, const QString&) {};
const QString kBack = "a.wav:aaaa|b.wav:bbbb";

void removeAll(const QString& folder) {
    QDir(folder).removeRecursively();
    QDir().mkpath(folder);
}

const RestoreCase kCases[] = {
    {"MovedFilesComeBackFromTheTrash",
     "",
     kNothing,
     0,
     {"a.wav...OK - 4 bytes restored.", "Files Restored: 2 - Bytes Restored:  8"},
     "a.wav:aaaa|b.wav:bbbb",
     ""},
    {"AnEmptiedTrashLeavesTheTargetCopies",
     "",
     [](const QString& root, const QString&) { removeAll(root + "/data/Trash"); },
     0,
     {"b.wav...OK - 4 bytes restored."},
     "a.wav:aaaa|b.wav:bbbb",
     ""},
    {"DeletedCopiesLeaveTheTrash",
     "",
     [](const QString& root, const QString&) { removeAll(root + "/Old"); },
     0,
     {"Files Restored: 2"},
     "a.wav:aaaa|b.wav:bbbb",
     ""},
    {"ANewFileAtTheSourceStaysAndTheMovedOneToo",
     "",
     [](const QString& root, const QString&) { test::writeFile(root + "/Song/a.wav", "new"); },
     4,
     {"a.wav...Not restored - another file now has its name", "b.wav...OK"},
     "a.wav:new|b.wav:bbbb",
     "a.wav:aaaa"},
    {"FilesTheMoveReplacedComeBack",
     "a.wav",
     kNothing,
     0,
     {"Files Restored: 2"},
     "a.wav:aaaa|b.wav:bbbb",
     "a.wav:xxxxxxxxxx"},
    {"ARunCutShortRestoresWhatItMoved",
     "",
     [](const QString&, const QString& record) {
         QFile file(record);  // the end and half of the last file's line never written
         ASSERT_TRUE(file.open(QIODevice::ReadWrite));
         const QByteArray bytes = file.readAll();
         const qsizetype end = bytes.lastIndexOf('\n', bytes.size() - 2);
         file.resize(bytes.lastIndexOf('\n', end - 1) + 20);
     },
     0,
     {"a.wav...OK", "Files Restored: 1"},
     "a.wav:aaaa",
     "b.wav:bbbb"},
    {"ASecondRestoreChangesNothing",
     "",
     [](const QString&, const QString& record) {
         QString out;
         QTextStream stream(&out);
         cli::run({"restore", record}, stream, stream);
     },
     0,
     {"a.wav...Already in place", "Nothing to restore"},
     "a.wav:aaaa|b.wav:bbbb",
     ""},
    {"AnInterruptedRestoreIsFinishedByARerun",
     "a.wav",
     [](const QString&, const QString& record) {
         FileOperations disk;
         RestoreEvents events;
         int asked = 0;
         events.stopRequested = [&asked] { return ++asked > 1; };
         EXPECT_TRUE(restoreMove(*readMoveRecord(record), disk, false, events).cancelled);
     },
     0,
     {"a.wav...Already in place", "b.wav...OK", "Files Restored: 1"},
     "a.wav:aaaa|b.wav:bbbb",
     "a.wav:xxxxxxxxxx"},
    {"ADamagedRecordIsRefused",
     "",
     [](const QString&, const QString& record) { test::writeFile(record, "{\"moves\": 1}\n"); },
     2,
     {"cannot be read: it is no record of a Tidewick move"},
     "",
     "a.wav:aaaa|b.wav:bbbb"},
};

class Contents {
protected:
    // "name:content" of each file under `folder`, hidden ones too.
    static QString contents(const QString& folder) {
        QStringList found;
        QDirIterator it(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString path = it.next();
            found << QDir(folder).relativeFilePath(path) + ':' + test::readFile(path);
        }
        found.sort();
        return found.join('|');
    }
};

class RestoreCases : public Contents, public ::testing::TestWithParam<RestoreCase> {};

TEST_P(RestoreCases, PutsTheFoldersBackAsTheyWereAndLosesNothing) {
    const RestoreCase& c = GetParam();
    QTemporaryDir root;
    qputenv("XDG_DATA_HOME", root.filePath("data").toUtf8());
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    ASSERT_TRUE(test::writeFile(root.filePath("Song/a.wav"), "aaaa") &&
                test::writeFile(root.filePath("Song/b.wav"), "bbbb") &&
                QDir().mkpath(root.filePath("Old")));
    for (const QString& name : test::texts(c.inTarget)) {
        ASSERT_TRUE(test::writeFile(root.filePath("Old/" + name), "xxxxxxxxxx"));
    }
    MoveRequest request;
    request.sessionFolder = root.filePath("Song");
    request.targetText = root.filePath("Old");
    request.items = {{"a.wav", true}, {"b.wav", true}};
    MoveEvents events;
    events.askOverwrite = [](const QString&) { return OverwriteAnswer::YesToAll; };
    FileOperations disk;
    const QString record = runRecordedMove(request, disk, events, moveRecordsFolder()).record;
    ASSERT_TRUE(record.startsWith(root.filePath("data/Tidewick/moves/")));
    c.between(root.path(), record);

    // A dry run changes nothing, and says what would come back.
    const QString before = contents(root.path());
    QString out;
    QTextStream stream(&out);
    cli::run({"restore", record, "--dry-run"}, stream, stream);
    EXPECT_EQ(contents(root.path()), before);

    out.clear();
    EXPECT_EQ(cli::run({"restore", record}, stream, stream), c.code);
    stream.flush();
    qsizetype from = 0;
    for (const QString& expected : c.shown) {
        from = out.indexOf(expected, from);
        EXPECT_GE(from, 0) << expected.toStdString() << "\nin:\n" << out.toStdString();
    }
    EXPECT_EQ(contents(root.filePath("Song")), QString(c.song));
    EXPECT_EQ(contents(root.filePath("Old")), QString(c.old));
    // The list tells what came back as the disk shows it.
    out.clear();
    cli::run({"restore", "--list", "--json"}, stream, stream);
    stream.flush();
    const int back =
        int(QString(c.song).contains("a.wav:aaaa")) + int(QString(c.song).contains("b.wav:bbbb"));
    const QJsonObject listed = QJsonDocument::fromJson(out.toUtf8())["records"][0].toObject();
    const int moved = listed["filesMoved"].toInt(), listedBack = listed["filesBack"].toInt();
    if (moved == 2) {
        EXPECT_EQ(listedBack, back) << out.toStdString();
    }
    if (!listed.isEmpty()) {
        EXPECT_EQ(listed["state"], listedBack == 0      ? "moved"
                                   : listedBack < moved ? "partly restored"
                                                        : "restored");
    }
    // Every byte moved is somewhere: back in Song, in Old, or in the trash, whose every record
    // has its file and names the folder it came from.
    const QString all = contents(root.path());
    EXPECT_TRUE(all.contains(":aaaa") && all.contains(":bbbb")) << all.toStdString();
    const QDir info(root.filePath("data/Trash/info"));
    for (const QString& record : info.entryList(QDir::Files)) {
        const QString name = record.chopped(QString(".trashinfo").size());
        EXPECT_TRUE(QFile::exists(root.filePath("data/Trash/files/" + name))) << name.toStdString();
        const QString text = test::readFile(info.filePath(record));
        const QString was = QString(name).remove(QRegularExpression(" \\d+(?=\\.wav$)"));
        EXPECT_TRUE(text.contains("Path=" + root.filePath("Old/" + was) + '\n') ||
                    text.contains("Path=" + root.filePath("Song/" + was) + '\n'))
            << text.toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(Restores, RestoreCases, ::testing::ValuesIn(kCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(Restore, ListsTheRecordsNewestFirst) {
    QTemporaryDir root;
    qputenv("XDG_DATA_HOME", root.filePath("data").toUtf8());
    const QString moves = root.filePath("data/Tidewick/moves");
    ASSERT_TRUE(test::writeFile(moves + "/2026-01-01T10-00-00-1.jsonl",
                                "{\"tidewickMove\":1,\"started\":\"2026-01-01T10:00:00\","
                                "\"sessionFolder\":\"/old\"}\n"));
    ASSERT_TRUE(test::writeFile(moves + "/2026-02-01T10-00-00-1.jsonl",
                                "{\"tidewickMove\":1,\"started\":\"2026-02-01T10:00:00\","
                                "\"sessionFolder\":\"/new\"}\n{\"finished\":\"\"}\n"));
    QString out;
    QTextStream stream(&out);
    EXPECT_EQ(cli::run({"restore", "--list"}, stream, stream), 0);
    stream.flush();
    EXPECT_LT(out.indexOf("/new   0 files   0 bytes\n"),
              out.indexOf("/old   0 files   0 bytes   (cut short)"));
    EXPECT_EQ(cli::run({"restore"}, stream, stream), 1);
    EXPECT_EQ(cli::run({"restore", "--last", moves}, stream, stream), 1);
}

// A record is a file anyone can write. A forged or changed line is refused and nothing of it is
// touched: the private files beside the session stay as they are, whatever the line claims.
using Lines = QList<QJsonObject>;  // the header, a.wav's line, b.wav's line, the end

struct ForgedCase {
    const char* name;
    std::function<void(Lines& lines, const QString& root)> forge;
    bool resign;  // the forger also writes the checksums anew
    QStringList extra;
    int code;
    const char* shown;
    const char* song;  // what Song holds afterwards
};

void PrintTo(const ForgedCase& c, std::ostream* out) {
    *out << c.name;
}

QJsonObject& aLine(Lines& lines) {
    return lines[1];
}

// Points a.wav's line at `path` as its source.
std::function<void(Lines&, const QString&)> sourceAt(const QString& path) {
    return [path](Lines& lines, const QString& root) { aLine(lines)["source"] = root + path; };
}

// Claims the private keep.wav as a.wav's copy in the target, its trash entry emptied.
void privateCopy(Lines& lines, const QString& root) {
    QJsonObject& line = aLine(lines);
    const QFileInfo keep(root + "/Private/keep.wav");
    line["destination"] = keep.filePath();
    line["size"] = keep.size();
    line["modified"] = QString::number(keep.lastModified().toMSecsSinceEpoch() * 1000000);
    line["trash"] = QJsonObject{};
}

const ForgedCase kForged[] = {
    {"ASourceOutsideTheSessionFolderIsRefused",
     sourceAt("/Private/a.wav"),
     true,
     {},
     4,
     "...Refused - the record places it outside the folders",
     "b.wav:bbbb"},
    {"ASourceClimbingOutWithDotDotIsRefused",
     sourceAt("/Song/../Private/a.wav"),
     true,
     {},
     4,
     "...Refused",
     "b.wav:bbbb"},
    {"ASourceThroughALinkedFolderIsRefused",
     [](Lines& lines, const QString& root) {
         QFile::link(root + "/Private", root + "/Song/inside");
         sourceAt("/Song/inside/a.wav")(lines, root);
     },
     true,
     {},
     4,
     "...Refused",
     "b.wav:bbbb"},
    {"ATrashEntryOutsideATrashIsRefused",
     [](Lines& lines, const QString& root) {
         aLine(lines)["trash"] = QJsonObject{{"file", root + "/Private/keep.wav"},
                                             {"info", root + "/Private/keep.txt"}};
     },
     true,
     {},
     4,
     "...Refused - the record claims a trash entry where",
     "b.wav:bbbb"},
    {"ATrashRecordNamingAnotherFileIsRefused",
     [](Lines& lines, const QString&) { aLine(lines)["trash"] = lines[2]["trash"]; },
     true,
     {},
     4,
     "names another file",
     "b.wav:bbbb"},
    {"ACopyOutsideTheTargetIsRefused",
     privateCopy,
     true,
     {},
     4,
     "outside the move's target",
     "b.wav:bbbb"},
    {"AReplacedEntryOutsideATrashIsRefused",
     [](Lines& lines, const QString& root) {
         aLine(lines)["replaced"] = QJsonObject{{"file", root + "/Private/keep.wav"},
                                                {"info", root + "/Private/keep.txt"}};
     },
     true,
     {},
     4,
     "...Refused",
     "b.wav:bbbb"},
    {"AChangedLineRefusesTheWholeRecord",
     privateCopy,
     false,
     {},
     2,
     "line(s) 2 are damaged or fail their checksum; nothing restored",
     ""},
    {"WithForceTheSoundLinesComeBackAndTheChangedOneIsSkipped",
     privateCopy,
     false,
     {"--force"},
     0,
     "--force: its sound lines are restored",
     "b.wav:bbbb"},
    {"ARecordWithoutChecksumsIsRestoredOnlyWithForce",
     [](Lines& lines, const QString&) {
         for (QJsonObject& line : lines) {
             line.remove("check");
         }
     },
     false,
     {},
     2,
     "carries no checksums",
     ""},
};

class ForgedRecords : public Contents, public ::testing::TestWithParam<ForgedCase> {};

TEST_P(ForgedRecords, AreRefusedAndTouchNothingOutsideTheMove) {
    const ForgedCase& c = GetParam();
    QTemporaryDir root;
    qputenv("XDG_DATA_HOME", root.filePath("data").toUtf8());
    ASSERT_TRUE(test::writeFile(root.filePath("Song/a.wav"), "aaaa") &&
                test::writeFile(root.filePath("Song/b.wav"), "bbbb") &&
                test::writeFile(root.filePath("Private/keep.wav"), "secret") &&
                test::writeFile(root.filePath("Private/keep.txt"), "note") &&
                QDir().mkpath(root.filePath("Old")));
    MoveRequest request;
    request.sessionFolder = root.filePath("Song");
    request.targetText = root.filePath("Old");
    request.items = {{"a.wav", true}, {"b.wav", true}};
    FileOperations disk;
    const QString record = runRecordedMove(request, disk, {}, moveRecordsFolder()).record;
    Lines lines;
    for (const QByteArray& line : test::readFile(record).split('\n')) {
        if (!line.isEmpty()) {
            lines.append(QJsonDocument::fromJson(line).object());
        }
    }
    ASSERT_EQ(lines.size(), 4);
    c.forge(lines, root.path());
    QByteArray forged;
    for (QJsonObject line : lines) {
        if (c.resign && line.contains("check")) {
            line.remove("check");
            line["check"] =
                QString(QCryptographicHash::hash(QJsonDocument(line).toJson(QJsonDocument::Compact),
                                                 QCryptographicHash::Sha256)
                            .toHex());
        }
        forged += QJsonDocument(line).toJson(QJsonDocument::Compact) + '\n';
    }
    ASSERT_TRUE(test::writeFile(record, forged));

    QString out;
    QTextStream stream(&out);
    EXPECT_EQ(cli::run(QStringList{"restore", record} + c.extra, stream, stream), c.code);
    stream.flush();
    EXPECT_TRUE(out.contains(c.shown)) << out.toStdString();
    EXPECT_EQ(contents(root.filePath("Private")), "keep.txt:note|keep.wav:secret");
    EXPECT_EQ(contents(root.filePath("Song")), QString(c.song));
}

INSTANTIATE_TEST_SUITE_P(Restores, ForgedRecords, ::testing::ValuesIn(kForged),
                         [](const auto& info) { return std::string(info.param.name); });

// The record files themselves: only an ordinary file of a record's size is read, and --last
// names a newest record it cannot use rather than taking an older one.
struct RecordFileCase {
    const char* name;
    std::function<void(const QString& record)> spoil;
    bool last;
    const char* shown;
};

void PrintTo(const RecordFileCase& c, std::ostream* out) {
    *out << c.name;
}

const RecordFileCase kRecordFiles[] = {
    {"ADamagedNewestRecordIsNamedAndNoOlderOneTaken",
     [](const QString& record) {
         test::writeFile(QFileInfo(record).path() + "/9999-12-31T00-00-00.0-1-1.jsonl", "{");
     },
     true, "9999-12-31T00-00-00.0-1-1.jsonl cannot be read: it is no record"},
    {"ARecordThatIsAPipeIsNeverOpened",
     [](const QString& record) {
         QFile::remove(record);
         ASSERT_EQ(::mkfifo(QFile::encodeName(record).constData(), 0600), 0);
     },
     false, "cannot be read: it is no ordinary file"},
    {"ARecordLargerThanARecordCanBeIsRefused",
     [](const QString& record) { QFile(record).resize(kMoveRecordLimit + 1); }, false,
     "cannot be read: it is larger than a record can be"},
    {"ADamagedLineBeforeAnEmptyLineIsNamed",
     [](const QString& record) {
         QByteArray bytes = test::readFile(record);
         bytes.insert(bytes.indexOf('\n') + 1, "{\"outcome\":\"mo\n\n");
         test::writeFile(record, bytes);
     },
     false, "its line(s) 2 are damaged or fail their checksum; nothing restored"},
    {"DamagedLinesFarDownALongRecordAreNamedInOrder",
     [](const QString& record) {
         QList<QByteArray> lines = test::readFile(record).split('\n');
         for (int copy = 0; copy < 200; ++copy) {
             lines.insert(2, lines[1]);  // the file's line again and again
         }
         lines[69] = lines[139] = "{";
         test::writeFile(record, lines.join('\n'));
     },
     false, "its line(s) 70, 140 are damaged or fail their checksum; nothing restored"},
};

class RecordFiles : public Contents, public ::testing::TestWithParam<RecordFileCase> {};

TEST_P(RecordFiles, AreReadOnlyWhenWholeAndRefusedOtherwise) {
    const RecordFileCase& c = GetParam();
    QTemporaryDir root;
    qputenv("XDG_DATA_HOME", root.filePath("data").toUtf8());
    ASSERT_TRUE(test::writeFile(root.filePath("Song/a.wav"), "aaaa") &&
                QDir().mkpath(root.filePath("Old")));
    MoveRequest request;
    request.sessionFolder = root.filePath("Song");
    request.targetText = root.filePath("Old");
    request.items = {{"a.wav", true}};
    FileOperations disk;
    const QString record = runRecordedMove(request, disk, {}, moveRecordsFolder()).record;
    c.spoil(record);
    QString out;
    QTextStream stream(&out);
    EXPECT_EQ(cli::run({"restore", c.last ? "--last" : record}, stream, stream), 2);
    stream.flush();
    EXPECT_TRUE(out.contains(c.shown)) << out.toStdString();
    EXPECT_EQ(contents(root.filePath("Song")), "");
}

INSTANTIATE_TEST_SUITE_P(Restores, RecordFiles, ::testing::ValuesIn(kRecordFiles),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace tidewick
