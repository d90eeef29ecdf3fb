#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>

#include "audit/library_audit.h"
#include "audit/session_index.h"
#include "support/reader_fixture.h"
#include "text/path_text.h"

// Audits of libraries written on the real disk: which folders are found, what each could free,
// what each misses and where it may be, and what the index changes (nothing but the reading).
namespace tidewick {
namespace {

// A library, a file a line: "A/mix.ses = ses: take.wav, @/B/x.wav" writes a session of that kind
// naming those paths ("@" is the library's root), "cut ses: ..." one cut short, "link: A" a link
// to a folder of the library, anything else is the file's bytes.
void writeLibrary(const QString& root, const char* files) {
    for (const QString& line : QString::fromUtf8(files).split(u'\n', Qt::SkipEmptyParts)) {
        const QString path = root + u'/' + line.section(QStringLiteral(" = "), 0, 0).trimmed();
        QString content = line.section(QStringLiteral(" = "), 1).trimmed();
        if (content.startsWith(QLatin1String("link: "))) {
            QDir().mkpath(hostParentFolder(path));
            ASSERT_TRUE(QFile::link(root + u'/' + content.mid(6), path));
            continue;
        }
        const bool cut = content.startsWith(QLatin1String("cut "));
        content.remove(0, cut ? 4 : 0);
        const SessionKind* kind =
            sessionKindForFile(u'x' + content.section(u':', 0, 0).prepend(u'.'));
        QByteArray bytes = content.toUtf8();
        if (kind != nullptr && content.contains(u':')) {
            QStringList paths = content.section(u':', 1).split(u',', Qt::SkipEmptyParts);
            for (QString& each : paths) {
                each = each.trimmed().replace(u'@', root);
            }
            bytes = test::sessionBytes(kind->id, paths);
            bytes.truncate(cut ? bytes.size() / 2 : bytes.size());
        }
        ASSERT_TRUE(test::writeFile(path, bytes)) << path.toStdString();
    }
}

// The report a line a folder, by folder, its paths from the root:
// "B: reclaim B/spare.wav | used 1 | missing x.wav[X/x.wav] | kept B/take.wav<A/song.sesx".
QString described(const LibraryReport& report) {
    const QDir root(report.root);
    const auto rel = [&root](const QString& path) { return root.relativeFilePath(path); };
    QStringList lines;
    for (const FolderReport& folder : report.folders) {
        QString line = rel(folder.folder) + u':';
        QStringList reclaim;
        for (const auto& [text, size] : folder.reclaimable) {
            reclaim.append(rel(folder.reclaimablePath(text)));
        }
        line += folder.stopped      ? QStringLiteral(" stopped")
                : reclaim.isEmpty() ? QString()
                                    : QStringLiteral(" reclaim ") + reclaim.join(u' ');
        line += QStringLiteral(" | used ") + QString::number(folder.used);
        for (const MissingMedia& missing : folder.missing) {
            QStringList candidates;
            for (const Candidate& candidate : missing.candidates) {
                candidates.append(rel(candidate.path));
            }
            line += QStringLiteral(" | missing ") + GetFileName(missing.text) + u'[' +
                    candidates.join(u' ') + u']';
        }
        for (const KeptElsewhere& kept : folder.keptElsewhere) {
            line += QStringLiteral(" | kept ") + rel(kept.path) + u'<' + rel(kept.usedBy);
        }
        lines.append(line);
    }
    lines.sort();
    return lines.join(u'\n');
}

struct AuditCase {
    const char* name;
    const char* files;
    const char* expected;
};

void PrintTo(const AuditCase& c, std::ostream* out) {
    *out << c.name;
}

const AuditCase kCases[] = {
    {"EveryKindInNestedFolders",
     "A/mix.ses = ses: take.wav\nA/take.wav = x\nA/old.wav = x\n"
     "A/B/cut.sesx = sesx: @/A/B/v.wav\nA/B/v.wav = x\nA/B/v2.wav = x\n"
     "C/e.xml = xml: c.wav\nC/c.wav = x\nC/d.wav = x\n"
     "D/E/p.rpp = rpp: r.wav\nD/E/r.wav = x\nD/E/r2.wav = x\nD/E/r.wav.reapeaks = x\n"
     "D/E/r2.wav.reapeaks = x\nF/v.veg = veg: @/F/f.wav\nF/f.wav = x\nF/g.wav = x",
     "A/B: reclaim A/B/v2.wav | used 1\nA: reclaim A/old.wav | used 1\n"
     "C: reclaim C/d.wav | used 1\nD/E: reclaim D/E/r2.wav D/E/r2.wav.reapeaks | used 1\n"
     "F: reclaim F/g.wav | used 1"},
    {"AFileAnotherFolderUsesIsKept",
     "A/song.sesx = sesx: @/B/take.wav\nB/own.rpp = rpp: b.wav\nB/b.wav = x\nB/take.wav = x\n"
     "B/spare.wav = x",
     "A: | used 1\nB: reclaim B/spare.wav | used 1 | kept B/take.wav<A/song.sesx"},
    {"ASharedSampleFolderServesTwoProjects",
     "P1/a.rpp = rpp: ../Samples/kick.wav\nP2/b.sesx = sesx: @/Samples/snare.wav\n"
     "Samples/index.rpp = rpp: \nSamples/kick.wav = x\nSamples/snare.wav = x\n"
     "Samples/hat.wav = x",
     "P1: | used 1\nP2: | used 1\nSamples: reclaim Samples/hat.wav | used 0 | kept "
     "Samples/kick.wav<P1/a.rpp | kept Samples/snare.wav<P2/b.sesx"},
    {"ADamagedSessionStopsItsFolderAlone",
     "Bad/x.ses = cut ses: a.wav\nBad/a.wav = x\nGood/y.sesx = sesx: @/Good/g.wav\n"
     "Good/g.wav = x\nGood/h.wav = x",
     "Bad: stopped | used 0\nGood: reclaim Good/h.wav | used 1"},
    {"MissingMediaNamesItsLikeliestCandidates",
     "A/s.sesx = sesx: /gone/Caf\u00e9 Take.WAV\nA/sub/cafe\u0301 take.wav = x\n"
     "X/CAF\u00c9 TAKE.wav = x\nX/cafe take.wav = x",
     "A: | used 0 | missing Caf\u00e9 Take.WAV[A/sub/cafe\u0301 take.wav X/CAF\u00c9 TAKE.wav]"},
    {"AnArdourSessionsWindowStateIsNoAuditionSession",
     "S/Song.ardour = <Session version=\"7003\"><Sources><Source name=\"a.wav\" type=\"audio\"/>"
     "</Sources></Session>\nS/instant.xml = <instant/>\nS/interchange/Song/audiofiles/a.wav = x\n"
     "S/interchange/Song/audiofiles/b.wav = x",
     "S: reclaim S/interchange/Song/audiofiles/b.wav | used 1"},
    {"LinksHiddenFoldersAndTrashAreNotWalked",
     "A/s.sesx = sesx: @/A/a.wav\nA/a.wav = x\nA/b.wav = x\nL = link: A\n"
     ".hidden/h.sesx = sesx: \nTrash/files/t.sesx = sesx: \nTrash/info/t.sesx = sesx: ",
     "A: reclaim A/b.wav | used 1"},
};

class AuditCases : public ::testing::TestWithParam<AuditCase> {};

TEST_P(AuditCases, ReportsEachSessionFolderOfTheLibrary) {
    QTemporaryDir root;
    writeLibrary(root.path(), GetParam().files);
    const FileSystem disk;
    EXPECT_EQ(described(auditLibrary(root.path(), disk, nullptr)), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Libraries, AuditCases, ::testing::ValuesIn(kCases),
                         [](const auto& info) { return std::string(info.param.name); });

// The index changes what is read, never what is reported: a second audit reads no session, one
// whose file changed is read again, and an index file that is no index is set aside.
TEST(AuditIndex, ASecondAuditReadsOnlyWhatChangedAndReportsTheSame) {
    QTemporaryDir root, cache;
    writeLibrary(root.path(), kCases[1].files);
    const FileSystem disk;
    const QString file = cache.filePath("index.sqlite");
    const auto audit = [&](qsizetype read) {
        SessionIndex index(file);
        const LibraryReport report = auditLibrary(root.path(), disk, &index);
        EXPECT_EQ(report.sessionsRead, read);
        EXPECT_EQ(report.foldersAudited, read);
        EXPECT_EQ(described(report), kCases[1].expected);
        return index.setAside().value_or("");
    };
    EXPECT_EQ(audit(2), "");
    EXPECT_EQ(audit(0), "");
    // The audits an older index kept asked less of the disk than an audit asks now: they are
    // made again, the sessions kept.
    {
        QSqlDatabase older = QSqlDatabase::addDatabase("QSQLITE", "older");
        older.setDatabaseName(file);
        ASSERT_TRUE(older.open());
        EXPECT_TRUE(QSqlQuery(older).exec("DELETE FROM meta WHERE key = 'audit-questions'"));
    }
    QSqlDatabase::removeDatabase("older");
    {
        SessionIndex index(file);
        EXPECT_EQ(auditLibrary(root.path(), disk, &index).foldersAudited, 2);
    }
    EXPECT_EQ(audit(0), "");
    // A session that changed is read again and its folder audited again; a file that comes
    // into a folder has that folder audited again, with no session read.
    writeLibrary(root.path(), "B/own.rpp = rpp: b.wav, spare.wav\nA/new.wav = x");
    {
        SessionIndex index(file);
        EXPECT_EQ(index.roots().valueOr({}), QStringList{QDir(root.path()).absolutePath()});
        const LibraryReport report = auditLibrary(root.path(), disk, &index);
        EXPECT_EQ(report.sessionsRead, 1);
        EXPECT_EQ(report.foldersAudited, 2);
        EXPECT_EQ(report.reclaimableFiles, 1);  // A/new.wav
    }
    QFile::remove(root.filePath("A/new.wav"));
    writeLibrary(root.path(), kCases[1].files);
    for (const QByteArray& damage : {QByteArray("not a database at all"), QByteArray()}) {
        ASSERT_TRUE(
            test::writeFile(file, damage.isEmpty() ? test::readFile(file).left(100) : damage));
        EXPECT_TRUE(audit(2).startsWith(file + ".set-aside-"));
        EXPECT_EQ(audit(0), "");
    }
}

// An index that another program holds is waited for and never set aside, whether the hold meets
// the audit as it opens the index or as it writes: the run keeps what it reads to itself.
TEST(AuditIndex, AnIndexHeldByAnotherIsWaitedForAndNeverSetAside) {
    QTemporaryDir root, cache;
    writeLibrary(root.path(), kCases[1].files);
    const FileSystem disk;
    const QString file = cache.filePath("index.sqlite");
    SessionIndex(file).ready();  // an index with its tables, to hold
    for (const char* hold : {"BEGIN EXCLUSIVE", "BEGIN IMMEDIATE"}) {
        {
            QSqlDatabase other = QSqlDatabase::addDatabase("QSQLITE", "other");
            other.setDatabaseName(file);
            ASSERT_TRUE(other.open());
            ASSERT_TRUE(QSqlQuery(other).exec(hold));
            {
                SessionIndex index(file, std::chrono::milliseconds(20));
                EXPECT_EQ(described(auditLibrary(root.path(), disk, &index)), kCases[1].expected);
                EXPECT_EQ(index.roots().valueOr({}), QStringList{QDir(root.path()).absolutePath()});
                EXPECT_EQ(index.setAside(), std::nullopt) << hold;
            }
            EXPECT_TRUE(QSqlQuery(other).exec("COMMIT"));
        }
        QSqlDatabase::removeDatabase("other");
        EXPECT_EQ(QDir(cache.path()).entryList(QDir::Files), QStringList{"index.sqlite"});
    }
}

}  // namespace
}  // namespace tidewick
