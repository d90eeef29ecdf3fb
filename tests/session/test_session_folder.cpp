#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include "session/session_folder.h"
#include "support/session_files.h"
#include "text/path_text.h"

namespace tidewick {
namespace {

using enum SessionKindId;

// A REAPER project cut short: its media cannot all be known.
const QByteArray kCutProject = "<REAPER_PROJECT 0.1 \"6.0\"\n  <TRACK\n    <ITEM\n";

// A session folder on disk: its lines are "name:kind:path,path" for a session, or a bare
// name for a file of 10 bytes.
class SessionFolderTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(dir.isValid()); }

    void make(const QStringList& entries) const {
        for (const QString& entry : entries) {
            const QStringList parts = entry.split(u':');
            if (parts.size() == 3) {
                const SessionKind* kind = sessionKindByIdText(parts[1]);
                ASSERT_NE(kind, nullptr) << qPrintable(entry);
                ASSERT_TRUE(test::writeFile(dir.filePath(parts[0]),
                                            test::sessionBytes(kind->id, parts[2].split(u','))));
            } else {
                ASSERT_TRUE(test::writeFile(dir.filePath(entry), QByteArray(10, 'x')));
            }
        }
    }

    SessionOptions options(SessionKindId kind, const QString& session) const {
        SessionOptions o = startingOptions(sessionKind(kind), dir.path(), disk);
        o.selected = int(o.sessions.indexOf(session));
        return o;
    }

    static QStringList texts(const QList<OtherFile>& files) {
        QStringList names;
        for (const OtherFile& file : files) {
            names.append(file.text);
        }
        names.sort();
        return names;
    }

    // "file <- keepers" for each kept file, in the listing's order.
    static QStringList keptLines(const QList<KeptFile>& files) {
        QStringList lines;
        for (const KeptFile& file : files) {
            lines.append(file.text + " <- " + file.usedBy.join(u','));
        }
        return lines;
    }

    QTemporaryDir dir;
    FileSystem disk;
};

// What the folder's other sessions keep, by kind and place: every session Tidewick can see
// guards its media, and names itself as the keeper.
struct GuardCase {
    const char* name;
    QStringList folder;
    SessionKindId kind;
    QString session;
    QStringList offered;  // "Files to be Moved", sorted
    QStringList kept;     // "file <- keeper"
};

void PrintTo(const GuardCase& c, std::ostream* os) {
    *os << c.name;
}

class Guards : public SessionFolderTest, public ::testing::WithParamInterface<GuardCase> {};

TEST_P(Guards, EverySessionInSightKeepsWhatItUses) {
    const GuardCase& c = GetParam();
    make(c.folder);
    SessionFolder folder(disk);
    folder.load(options(c.kind, c.session));
    ASSERT_FALSE(folder.stopped());
    EXPECT_EQ(texts(folder.otherFiles()), c.offered);
    QStringList kept = keptLines(folder.keptFiles());
    kept.sort();
    EXPECT_EQ(kept, c.kept);
}

INSTANTIATE_TEST_SUITE_P(
    SessionFolder, Guards,
    ::testing::Values(
        GuardCase{"AnotherKindBesideTheSession",
                  {"mix.sesx:sesx:a.wav", "band.rpp:rpp:b.wav", "a.wav", "b.wav", "c.wav"},
                  Sesx,
                  "mix.sesx",
                  {"c.wav"},
                  {"b.wav <- band.rpp"}},
        GuardCase{"BackupsBesideAndInTheirFolders",
                  {"s.rpp:rpp:a.wav", "s.rpp-bak:rpp:b.wav", "Backups/s-1.rpp:rpp:c.wav", "a.wav",
                   "b.wav", "c.wav", "d.wav"},
                  Rpp,
                  "s.rpp",
                  {"d.wav", "s.rpp-bak"},
                  {"b.wav <- s.rpp-bak", "c.wav <- Backups/s-1.rpp"}},
        GuardCase{"AForeignFileNamedLikeASessionGuardsNothing",
                  {"mix.sesx:sesx:a.wav", "junk.veg", "a.wav", "b.wav"},
                  Sesx,
                  "mix.sesx",
                  {"b.wav", "junk.veg"},
                  {}},
        GuardCase{"TwoSessionsKeepingOneFileAreBothNamed",
                  {"a.sesx:sesx:x.wav", "b.rpp:rpp:s.wav", "c.xml:xml:s.wav", "s.wav", "x.wav"},
                  Sesx,
                  "a.sesx",
                  {},
                  {"s.wav <- b.rpp,c.xml"}}),
    [](const auto& info) { return std::string(info.param.name); });

// A folder too large for one core: its files are judged on every core, and what the guard's
// sessions keep is worked out there too; the verdicts are those of one core, file by file.
TEST_F(SessionFolderTest, ALargeFolderIsJudgedAsASmallOneIs) {
    QStringList entries, used, guarded, offered, kept;
    for (int i = 0; i < 6000; ++i) {
        const QString name = QStringLiteral("take %1.wav").arg(i, 4, 10, QLatin1Char('0'));
        entries.append(name);
        (i % 6 == 0 ? used : i % 6 == 1 ? guarded : offered).append(name);
    }
    guarded.append(used.first());  // a file both use is the load's own
    for (const QString& name : guarded.first(guarded.size() - 1)) {
        kept.append(name + " <- band.rpp");
    }
    make(entries +
         QStringList{"mix.sesx:sesx:" + used.join(u','), "band.rpp:rpp:" + guarded.join(u',')});
    SessionFolder folder(disk);
    folder.load(options(Sesx, "mix.sesx"));
    ASSERT_FALSE(folder.stopped());
    EXPECT_EQ(texts(folder.otherFiles()), offered);
    EXPECT_EQ(keptLines(folder.keptFiles()), kept);
}

// The real disk, but for folders it cannot list (named by their last part), as a folder
// without permission or on a failing disk is: listed as empty, and said so when asked.
class UnlistableDisk : public FileSystem {
public:
    explicit UnlistableDisk(QString name) : name_(u'/' + std::move(name) + u'/') {}
    bool folderReadable(const QString& folder) const override { return !refused(folder); }
    QList<FolderEntry> listFiles(const QString& folder, bool withHidden,
                                 const NameTest& wanted) const override {
        return refused(folder) ? QList<FolderEntry>()
                               : FileSystem::listFiles(folder, withHidden, wanted);
    }

private:
    bool refused(const QString& folder) const { return withSeparator(folder).endsWith(name_); }
    QString name_;
};

// A folder that may hold sessions but cannot be listed stops the load, named: read as empty, the
// only session using a take would guard nothing.
struct UnlistableCase {
    const char* name;
    QStringList folder;
    SessionKindId kind;
    const char* unlistable;
    const char* rowFolder;  // the sub-folder row, switched on; none when empty
};

void PrintTo(const UnlistableCase& c, std::ostream* os) {
    *os << c.name;
}

class Unlistable : public SessionFolderTest,
                   public ::testing::WithParamInterface<UnlistableCase> {};

TEST_P(Unlistable, AFolderThatMayHoldSessionsStopsTheLoadNamingIt) {
    const UnlistableCase& c = GetParam();
    make(c.folder);
    const UnlistableDisk refusing(c.unlistable);
    SessionFolder folder(refusing);
    SessionOptions o = options(c.kind, c.folder[0].section(u':', 0, 0));
    o.rowOn = *c.rowFolder != 0;
    o.rowFolder = c.rowFolder;
    folder.load(o);
    EXPECT_TRUE(folder.stopped());
    EXPECT_EQ(folder.used().stoppedAt, QString(c.unlistable) + u'/');
    EXPECT_TRUE(folder.otherFiles().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    SessionFolder, Unlistable,
    ::testing::Values(
        UnlistableCase{"ABackupsFolder",
                       {"s.rpp:rpp:a.wav", "Backups/s-1.rpp:rpp:c.wav", "a.wav", "c.wav"},
                       Rpp,
                       "Backups",
                       ""},
        UnlistableCase{"ABackupFolder",
                       {"m.sesx:sesx:a.wav", "Backup/m.sesx:sesx:c.wav", "a.wav", "c.wav"},
                       Sesx,
                       "Backup",
                       ""},
        UnlistableCase{"TheRecordFolder",
                       {"mix.ses:ses:a.wav", "mix_Recorded/old.ses:ses:c.wav", "a.wav", "c.wav"},
                       Ses,
                       "mix_Recorded",
                       ""},
        UnlistableCase{"TheRowsFolder",
                       {"song.veg:veg:a.wav", "Takes/t.veg:veg:c.wav", "a.wav", "c.wav"},
                       Veg,
                       "Takes",
                       "Takes"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(SessionFolderTest, AnUnreadableSessionInSightStopsTheLoadAndOffersNothing) {
    make({"mix.sesx:sesx:a.wav", "a.wav", "b.wav"});
    ASSERT_TRUE(test::writeFile(dir.filePath("broken.rpp"), kCutProject));
    SessionFolder folder(disk);
    folder.load(options(Sesx, "mix.sesx"));
    EXPECT_TRUE(folder.stopped());
    EXPECT_EQ(folder.used().stoppedAt, "broken.rpp");
    EXPECT_TRUE(folder.otherFiles().isEmpty());
    folder.relist(options(Sesx, "mix.sesx"));
    EXPECT_TRUE(folder.otherFiles().isEmpty()) << "a later listing offers nothing either";
}

TEST_F(SessionFolderTest, APickedRowFolderGuardsWithItsSessionsOrStopsTheLoad) {
    make({"song.rpp:rpp:take1.wav", "take1.wav", "Other/old.rpp:rpp:Other/keep.wav",
          "Other/keep.wav", "Other/drop.wav", "Bad/x.wav"});
    ASSERT_TRUE(test::writeFile(dir.filePath("Bad/broken.rpp"), kCutProject));
    SessionFolder folder(disk);
    SessionOptions o = options(Rpp, "song.rpp");
    o.rowOn = true;
    folder.load(o);
    ASSERT_FALSE(folder.stopped());
    EXPECT_TRUE(folder.pickRowFolder(folder.options(), "Other"));
    EXPECT_TRUE(texts(folder.otherFiles()).contains("Other/drop.wav"));
    EXPECT_FALSE(texts(folder.otherFiles()).contains("Other/keep.wav"));
    EXPECT_EQ(folder.recordFolder(), "Other");

    EXPECT_FALSE(folder.pickRowFolder(folder.options(), "Bad"));
    EXPECT_TRUE(folder.stopped());
    EXPECT_TRUE(folder.otherFiles().isEmpty());
}

TEST_F(SessionFolderTest, TheMoveAndTheCopyNeverTakeAUsedFile) {
    make({"mix.sesx:sesx:a.wav,missing.wav", "other.rpp:rpp:b.wav", "a.wav", "b.wav", "c.wav"});
    SessionFolder folder(disk);
    SessionOptions o = options(Sesx, "mix.sesx");
    o.excludeOn = true;
    o.excluded = {"*.txt"};
    folder.load(o);
    const MoveRequest move = folder.moveRequest(o, {{"c.wav", true}}, "  /target  ", true);
    EXPECT_EQ(move.targetText, "/target");
    EXPECT_EQ(move.sessionFile, "mix.sesx");
    EXPECT_TRUE(move.excludeOn);
    EXPECT_EQ(QSet<QString>(move.usedFiles.keyBegin(), move.usedFiles.keyEnd()),
              QSet<QString>({dir.filePath("a.wav"), dir.filePath("b.wav")}));

    const CopyRequest copy = folder.copyRequest(folder.rowsOnDisk());
    ASSERT_EQ(copy.items.size(), 1) << "the missing file is not copied";
    EXPECT_EQ(copy.items[0].source, dir.filePath("a.wav"));
}

TEST_F(SessionFolderTest, ARowFolderAddedAfterTheLoadListsEachFileOnce) {
    make({"song.veg:veg:a.wav", "a.wav", "Takes/t1.wav", "Takes/t2.wav"});
    SessionFolder folder(disk);
    SessionOptions o = options(Veg, "song.veg");
    folder.load(o);
    EXPECT_FALSE(texts(folder.otherFiles()).contains("Takes/t1.wav"));
    o.rowOn = true;
    o.rowFolder = "Takes";
    EXPECT_EQ(texts(folder.addFolder(o)), QStringList({"Takes/t1.wav", "Takes/t2.wav"}));
    EXPECT_TRUE(folder.addFolder(o).isEmpty()) << "a second time adds nothing";
    o.rowFolder = dir.path();  // the session folder, named whole
    EXPECT_TRUE(folder.addFolder(o).isEmpty());
}

}  // namespace
}  // namespace tidewick
