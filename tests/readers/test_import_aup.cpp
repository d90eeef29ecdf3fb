#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <tuple>

#include "readers/import_aup.h"
#include "readers/session_kinds.h"
#include "support/database.h"
#include "support/reader_fixture.h"

namespace tidewick {
namespace {

using Base = FileReference::Base;

QByteArray corpusProject(const char* name) {
    return test::readFile(test::corpusPath(QStringLiteral("aup/") + QLatin1String(name)));
}

TEST(AupReader, ReadsTheBlockFilesOfRealProjects) {
    if (!test::haveCorpus()) {
        GTEST_SKIP() << "no corpus";
    }
    const std::tuple<const char*, qsizetype, const char*> cases[] = {
        {"tlevine-nyc-data-music__song.aup", 30, "e00/d00/e0000090.au"},
        {"Noxime-LD39-Powerlift__audio.aup", 8, "e00/d00/e0000597.au"},
        {"startung-rug-ethics__audio.aup", 74, nullptr},
        {"christiantam-Tetris__sounds.aup", 5, "b00005.au"},  // 1.x: in the data folder itself
    };
    for (const auto& [name, count, sample] : cases) {
        const SessionRead read = readAupSession(corpusProject(name), {});
        ASSERT_EQ(read.outcome, ReaderOutcome::Read) << name;
        EXPECT_EQ(read.references.size(), count) << name;
        for (const FileReference& reference : read.references) {
            EXPECT_EQ(reference.base, Base::DataFolder) << name;
        }
        if (sample) {
            EXPECT_TRUE(read.paths.toList().contains(QString::fromLatin1(sample))) << name;
        }
    }
}

TEST(AupReader, AliasBlockFilesNameTheirAudioAndSummary) {
    const QByteArray project = R"(<?xml version="1.0"?><project version="1.3.0">
        <pcmaliasblockfile summaryfile="e12a4567.auf" aliasfile="/music/take.wav"/>
        <pcmaliasblockfile summaryfile="../x.auf" aliasfile="beside.wav"/>
        <silentblockfile len="9"/><simpleblockfile filename="e0000001.au"/>
        <simpleblockfile filename="e0000001.au"/></project>)";
    const SessionRead read = readAupSession(project, {});
    EXPECT_EQ(read.references,
              (QList<FileReference>{{Base::DataFolder, "e12/da4/e12a4567.auf", {}},
                                    {Base::None, {}, {"/music/take.wav"}},
                                    {Base::SessionFolder, "beside.wav", {}},
                                    {Base::DataFolder, "e00/d00/e0000001.au", {}}}));
}

// Thousands of blockfiles, each named twice far apart (as tracks that share blocks do), among
// names written with escapes or beyond ASCII and names that are paths: each file once, in the
// order first met, whether the project is read whole or from its file a piece at a time (tags
// cut between pieces, one longer than a piece, a ">" or quotes of the other kind in values).
TEST(AupReader, ListsEachOfManyBlockFilesOnceInOrder) {
    QByteArray blocks;
    QStringList expected;
    const QByteArray values = " min='\"' rms=\">" + QByteArray(200, ' ') + "\"";
    for (int i = 0; i < 5000; ++i) {
        const QByteArray name =
            "e" + QByteArray::number(i * 7919 % 0xFFFFF, 16).rightJustified(7, '0') + ".au";
        blocks += "<simpleblockfile filename=\"" + name + "\"" + values.sliced(i % 2 * 10) + "/>\n";
        expected.append(QString::fromLatin1(name.first(3) + "/d" + name.sliced(3, 2) + "/" + name));
    }
    const QByteArray head = "<?xml version=\"1.0\"?><project version=\"1.3.0\">\n" + blocks;
    const QByteArray tail =
        blocks +
        "<simpleblockfile filename=\"e00&amp;0001.au\"/>"
        "<simpleblockfile filename=\"é0000001.au\"/>"
        "<simpleblockfile filename=\"../e0000001.au\"/><simpleblockfile filename=\"..\"/>"
        "<simpleblockfile filename=\"b1.au\"/></project>\n";
    expected += {"e00/d&0/e00&0001.au", QStringLiteral("é00/d00/é0000001.au"), "b1.au"};
    const SessionRead read = readAupSession(head + tail, {});
    EXPECT_EQ(read.paths, expected);
    ASSERT_EQ(read.references.size(), expected.size());
    for (qsizetype i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(read.references[i].relative, expected[i]);
    }
    // Its file is read on the cores at hand, and, with a tag longer than a piece that holds "<"s,
    // one piece after another.
    const QByteArray longTag =
        "<simpleblockfile filename=\"e0000000.au\" x=\"" + QByteArray(3 << 19, '<') + "\"/>";
    test::ReaderFixture f;
    for (const QByteArray& bytes : {head + tail, head + longTag + tail}) {
        const QString file = f.write("big.aup", bytes);
        EXPECT_EQ(readSessionFile(sessionKind(SessionKindId::Aup), file, f.place()), read);
    }
}

TEST(AupReader, RefusesWhatIsNoWholeProject) {
    const QByteArray project =
        "<?xml version=\"1.0\"?>\n<project version=\"1.3.0\">\n"
        "<simpleblockfile filename=\"e0000001.au\"/>\n</project>\n";
    const std::tuple<const char*, QByteArray, ReaderOutcome, ReadFailure> cases[] = {
        {"cut short", project.chopped(12), ReaderOutcome::Failed, ReadFailure::CutShort},
        {"an element that never ends",
         QByteArray(project).replace("e0000001.au\"/>", "e0000001.au/>"), ReaderOutcome::Failed,
         ReadFailure::Damaged},
        {"closed by another tag", QByteArray(project).replace("</project>", "</p>"),
         ReaderOutcome::Failed, ReadFailure::CutShort},
        {"another XML", "<?xml version=\"1.0\"?><sesx/>", ReaderOutcome::Rejected,
         ReadFailure::NotThisKind},
        {"a database named .aup", QByteArray("SQLite format 3\0", 16) + QByteArray(100, '\0'),
         ReaderOutcome::Rejected, ReadFailure::NotThisKind},
    };
    for (const auto& [name, bytes, outcome, failure] : cases) {
        const SessionRead read = readAupSession(bytes, {});
        EXPECT_EQ(read.outcome, outcome) << name;
        ASSERT_TRUE(read.problem) << name;
        EXPECT_EQ(read.problem->failure, failure) << name;
    }
}

// An Audacity 3 project names no file; a database of another program, or no database, is
// damaged. None is changed by the check.
TEST(AupReader, ChecksAnAudacity3ProjectReadOnly) {
    int argc = 0;
    QCoreApplication app(argc, nullptr);
    test::ReaderFixture f;
    const QString project = f.dir.filePath("song.aup3");
    const QString foreign = f.dir.filePath("other.aup3");
    test::writeDatabase(project, {"PRAGMA application_id = 1096107097",
                                  "CREATE TABLE project (id INTEGER PRIMARY KEY, doc BLOB)",
                                  "CREATE TABLE sampleblocks (blockid INTEGER PRIMARY KEY)"});
    test::writeDatabase(foreign, {"CREATE TABLE project (id INTEGER)"});
    const QString notDatabase = f.write("text.aup3", "no database");
    const QByteArray before = test::readFile(project);
    const SessionKind& aup = sessionKind(SessionKindId::Aup);
    const SessionRead read = readSessionFile(aup, project, f.place());
    EXPECT_EQ(read.outcome, ReaderOutcome::Read);
    EXPECT_TRUE(read.references.isEmpty());
    EXPECT_EQ(test::readFile(project), before);
    for (const QString& damaged : {foreign, notDatabase}) {
        const SessionRead bad = readSessionFile(aup, damaged, f.place());
        EXPECT_EQ(bad.outcome, ReaderOutcome::Failed) << damaged.toStdString();
        ASSERT_TRUE(bad.problem);
        EXPECT_EQ(bad.problem->failure, ReadFailure::Damaged);
        EXPECT_EQ(bad.problem->file, damaged);
    }
}

}  // namespace
}  // namespace tidewick
