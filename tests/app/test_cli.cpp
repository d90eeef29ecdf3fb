#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTextStream>

#include "app/cli/cli.h"
#include "app/cli/command_docs.h"
#include "app/cli/command_table.h"
#include "audit/session_index.h"
#include "readers/session_kinds.h"
#include "support/reader_fixture.h"
#include "support/ses_writer.h"
#include "support/session_files.h"
#include "text/path_text.h"

namespace tidewick {
namespace {

using test::SesWriter;

// Each command against files on disk: what each call prints on either stream and its exit
// code. An empty "out" or "err" cell means that stream stays empty; otherwise the output
// starts with "out" and the error stream holds "err".
TEST(Cli, PrintsAndExitsAsEachCallDeserves) {
    test::ReaderFixture f;
    const QByteArray session =
        SesWriter()
            .version("Audition 3.0")
            .list({{"  C:\\Takes\\Caf\xc3\xa9 take.wav  "}, {"D:\\loop.wav"}, {"D:\\loop.wav"}},
                  "Audition 3.0")
            .bytes();
    // Each record trimmed, in the reader's order, duplicates kept.
    const QString media = "C:\\Takes\\Caf\u00e9 take.wav\nD:\\loop.wav\nD:\\loop.wav\n";
    const QString song = f.write("song.ses", session);
    const QString odd = f.write("song.bak", session);
    const QString notSession = f.write("wave.ses", "RIFF....WAVEfmt ");
    ASSERT_TRUE(QDir(f.dir.path()).mkpath("Media"));
    const QString project =
        f.write("p.rpp", "<REAPER_PROJECT\r\n\r\nRECORD_PATH \"Media\" \"\"\r\n>\r\n");
    const QString recordFolder = QFileInfo(project).absolutePath() + hostSeparator() + "Media";

    // A folder to scan: mix.ses uses a.wav, and wave.ses is no session.
    const QString here = f.dir.filePath("scan");
    for (const char* name : {"a.wav", "b.wav", "b.pk"}) {
        ASSERT_TRUE(test::writeFile(here + '/' + name, "RIFF"));
    }
    const QString used = QString(here + "/a.wav").replace(u'/', hostSeparator());
    ASSERT_TRUE(test::writeFile(here + "/mix.ses", test::sessionBytes(SessionKindId::Ses, {used})));
    ASSERT_TRUE(test::writeFile(here + "/wave.ses", "RIFF....WAVEfmt "));
    const QString old = f.dir.filePath("Old"), gone = f.dir.filePath("no/Old");
    ASSERT_TRUE(QDir().mkpath(old));
    qputenv("XDG_DATA_HOME", f.dir.filePath("data").toUtf8());
    const QStringList move = {"move", here, "--kind", "ses", "--session", "mix.ses", "--to"};
    const QStringList copy = {"copy-used", here, "--kind", "ses", "--session", "mix.ses"};
    const QString collect = f.dir.filePath("Collect");
    // A library: a folder that frees one file, and one whose session is cut short.
    qputenv("XDG_CACHE_HOME", f.dir.filePath("cache").toUtf8());
    const QString library = f.dir.filePath("Library"), band = library + "/Band";
    for (const QString& file : {band + "/a.wav", band + "/b.wav", library + "/Cut/a.wav"}) {
        ASSERT_TRUE(test::writeFile(file, "RIFF"));
    }
    ASSERT_TRUE(
        test::writeFile(band + "/mix.sesx", test::sessionBytes(SessionKindId::Sesx, {"a.wav"})));
    ASSERT_TRUE(test::writeFile(library + "/Cut/mix.sesx",
                                test::sessionBytes(SessionKindId::Sesx, {"a.wav"}).chopped(20)));

    const struct {
        QStringList arguments;
        int code;
        QString out, err;
    } rows[] = {
        {{}, 1, "", "  tidewick-cli media FILE"},
        {{"--help"}, 0, "usage: tidewick-cli COMMAND", ""},
        {{"--version"}, 0, "tidewick-cli 0.", ""},
        {{"help", "move"}, 0, "usage: tidewick-cli move FOLDER", ""},
        {{"help", "frob"}, 1, "", "unknown command 'frob'"},
        {{"frob"}, 1, "", "Try 'tidewick-cli help'"},
        {{"media", "--help"}, 0, "usage: tidewick-cli media FILE", ""},
        {{"media"}, 1, "", "FILE is missing"},
        {{"media", song}, 0, media, ""},
        {{"media", odd}, 1, "", "cannot tell the kind"},
        {{"media", "--verbose", song}, 0, media, "version: Audition 3.0\n"},
        {{"media", "--verbose", project}, 0, "", "record folder: " + recordFolder + "\n"},
        {{"media", f.dir.filePath("missing.ses")}, 1, "", "no such file"},
        {{"media", notSession}, 2, "", "does not appear to be a valid session file"},
        {{"media", f.write("broken.ses", session.left(40))}, 2, "", "File Error: An error"},

        {{"scan", here, "--kind", "ses", "--session", "mix.ses"},
         0,
         "used: mix.ses: 1 Media File(s) Used  (NB: Files with a check mark exist on Disk)\n[x] " +
             used + '\n',
         ""},
        {{"scan", "--kind", "ses", "--all"}, 1, "", "FOLDER is missing"},
        {{"scan", "-h"}, 0, "usage: tidewick-cli scan FOLDER", ""},
        {{"scan", here, "--bogus"}, 1, "", "Unknown option 'bogus'"},
        // --opt=value, the kind of the folder's sessions, a name in another letter case.
        {{"scan", here, "--kind=ses", "--session=MIX.SES"}, 0, "used: mix.ses: 1 Media", ""},
        {{"scan", here, "--session", "mix.ses"}, 0, "used: mix.ses: 1 Media", ""},
        {{"scan", f.dir.path(), "--all"}, 1, "", "--kind is required: ses, sesx"},
        {{"scan", here + "/mix.ses"}, 0, "used: mix.ses: 1 Media", ""},
        {{"scan", here + "/a.wav", "--all"}, 1, "", "a.wav is a file, not a folder"},
        {{"scan", here, "--session", "mix.ses", "--all"}, 1, "", "cannot be used together"},
        {{"scan", here, "--kind", "rpp", "--all", "--add-folder", "--sub-folder", "A"},
         1,
         "",
         "--add-folder and --sub-folder cannot be used together"},
        {{"scan", here, "--kind", "wav", "--all"}, 1, "", "unknown kind 'wav'"},
        {{"scan", here, "--kind", "ses", "--all", "--type", "24"}, 1, "", "from 0 to 23"},
        {{"scan", here, "--kind", "sesx", "--all", "--sub-folder", "A"}, 1, "", "need --kind rpp"},
        {{"scan", "/no/such/folder", "--kind", "ses", "--all"}, 1, "", "no such folder: /no/"},
        {{"scan", here, "--kind", "rpp", "--all"}, 1, "", "no *.rpp files"},
        {{"scan", here, "--kind", "ses", "--session", "song.ses"}, 1, "", "no session file"},
        // The lists still print after the reader's complaint.
        {{"scan", here, "--kind", "ses", "--session", "wave.ses"},
         2,
         "used: ",
         "Reading stopped at \"wave.ses\""},

        {move, 1, "", "Missing value after '--to'"},
        {move + QStringList{old, "--overwrite", "maybe"}, 1, "", "--overwrite takes no or yes"},
        {QStringList(move).replaceInStrings("mix.ses", "wave.ses") << old, 2, "", "nothing moved"},
        {move + QStringList{old, "--only", "B.*", "--dry-run"}, 0,
         here + "/b.wav -> " + old + "/b.wav\n" + here + "/b.pk -> " + old + "/b.pk\n", ""},
        {move + QStringList{gone, "--only", "b.pk"}, 4, "",
         "The target folder's parent " + f.dir.filePath("no") + " does not exist."},
        {move + QStringList{"  " + old + "  ", "--only", "b.pk"}, 0,  // trimmed where it enters
         "Moving selected files to..." + old + "\nCommenced ", "the record of this move is"},

        {copy, 1, "", "--to TARGET is required"},
        {copy + QStringList{"--to", gone}, 4, "",
         "The target folder's parent " + f.dir.filePath("no") + " does not exist."},
        {copy + QStringList{"--to", collect}, 0, "Copying...", ""},

        {{"audit"}, 1, "", "ROOT is missing"},
        {{"audit", library, "--json", "--csv"}, 1, "", "cannot be used together"},
        {{"audit", "/no/such/folder"}, 1, "", "no such folder: /no/"},
        {{"audit", band},
         0,
         band + "  reclaimable 1 file 4 bytes (0.00Mb)  sessions SESX 1  used 1  missing 0\n"
                "Totals: 1 folder, 1 session, 1 used, 0 missing, reclaimable 1 file 4 bytes "
                "(0.00Mb)\n",
         ""},
        {{"audit", library, "--csv"},
         2,
         "folder,sessions,ses,sesx,xml,rpp,veg,als,aup,ardour,flp,mlt,used,missing,"
         "reclaimableFiles,reclaimableBytes,stopped,reason\n" +
             band + ",1,0,1,0,0,0,0,0,0,0,0,1,0,1,4,no,\n" + library + "/Cut,1,0,1,",
         library + "/Cut: Reading stopped at \"mix.sesx\""},
        {{"audit", band, "--json"}, 0, "{\n    \"folders\": [\n", ""},
        {{"scan", band, "--all", "--json"}, 0, "{\n    \"folder\": ", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.arguments.join(' ').toStdString());
        QString out, err;
        QTextStream outStream(&out), errStream(&err);
        EXPECT_EQ(cli::run(row.arguments, outStream, errStream), row.code);
        outStream.flush();
        errStream.flush();
        EXPECT_TRUE(row.out.isEmpty() ? out.isEmpty() : out.startsWith(row.out))
            << out.toStdString();
        EXPECT_TRUE(row.err.isEmpty() ? err.isEmpty() : err.contains(row.err)) << err.toStdString();
    }
}

// `scan` as the sweep sees it: a folder reached through a link, a session saved on Windows whose
// take lies beside it (kept, and said so), each session keeping the other's media, and a session
// cut short (refused, nothing offered).
TEST(Cli, ScanKnowsAUsedFileHoweverItIsReached) {
    test::ReaderFixture f;
    const QString real = f.dir.filePath("real");
    for (const char* name : {"used.wav", "take1.wav", "other.wav"}) {
        ASSERT_TRUE(test::writeFile(real + '/' + name, "RIFF"));
    }
    ASSERT_TRUE(QFile::link("real", f.dir.filePath("link")));
    const QByteArray sesx = test::sessionBytes(SessionKindId::Sesx, {real + "/used.wav"});
    ASSERT_TRUE(test::writeFile(real + "/a.sesx", sesx));
    ASSERT_TRUE(test::writeFile(real + "/b.sesx",
                                test::sessionBytes(SessionKindId::Sesx, {"D:\\Song\\take1.wav"})));
    const QStringList scan = {"scan", f.dir.filePath("link"), "--kind", "sesx", "--session"};
    const struct {
        QString session;
        int code;
        QString out, err, notOffered;
    } rows[] = {
        {"a.sesx", 0,
         "[x] " + real + "/used.wav\nunused: Files to be Moved - [0/1]\n[ ] other.wav\n" +
             "kept: 1 file used by other sessions\ntake1.wav  <- b.sesx\n",
         "", "[ ] used.wav"},
        {"b.sesx", 0,
         "kept: 2 files used by other sessions\ntake1.wav  <- b.sesx\nused.wav  <- a.sesx\n", "",
         "[ ] take1.wav"},
        {"cut.sesx", 2, "unused: Files to be Moved\n", "is incomplete", "[ ] "},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.session.toStdString());
        if (row.session == "cut.sesx") {
            ASSERT_TRUE(test::writeFile(real + "/cut.sesx", sesx.left(sesx.size() - 12)));
        }
        QString out, err;
        QTextStream outStream(&out), errStream(&err);
        EXPECT_EQ(cli::run(scan + QStringList{row.session}, outStream, errStream), row.code);
        outStream.flush();
        errStream.flush();
        EXPECT_TRUE(out.contains(row.out)) << out.toStdString();
        EXPECT_TRUE(row.err.isEmpty() || err.contains(row.err)) << err.toStdString();
        EXPECT_FALSE(out.contains(row.notOffered)) << out.toStdString();
    }
}

// Every session of the folder guards its media, whatever its kind and the tab: what `scan` of
// the first session lists and keeps. A session is "name:kind:path,path"; a backup is listed, a
// foreign file guards nothing, a damaged session stops the load.
TEST(Cli, EverySessionInTheFolderGuardsItsMedia) {
    const struct {
        const char* name;
        QStringList sessions;  // the first is scanned
        QString unused, kept;  // "a.wav|b.wav", "vox.wav <- mix.sesx|..."
        int code = 0;
    } rows[] = {
        {"two of one kind",
         {"a.ses:ses:a.wav", "b.ses:ses:b.wav"},
         "vox.wav|x.wav",
         "b.wav <- b.ses"},
        {"three kinds",
         {"song.rpp:rpp:Media/t.wav", "mix.sesx:sesx:vox.wav", "f.veg:veg:b.wav"},
         "a.wav|x.wav",
         "b.wav <- f.veg|vox.wav <- mix.sesx"},
        {"a relative path, a Windows one",
         {"s.rpp:rpp:a.wav", "a.xml:xml:x/../vox.wav,D:\\x\\b.wav"},
         "x.wav",
         "b.wav <- a.xml|vox.wav <- a.xml"},
        {"backups beside and in their folders",
         {"s.rpp:rpp:a.wav", "s.rpp-bak:rpp:b.wav", "Backups/s-1.rpp:rpp:x.wav",
          "Backup/m.sesx:sesx:Media/m.wav", "f.veg.bak:veg:vox.wav"},
         "f.veg.bak|s.rpp-bak",
         "b.wav <- s.rpp-bak|vox.wav <- f.veg.bak|x.wav <- Backups/s-1.rpp"},
        {"foreign files guard nothing",
         {"a.sesx:sesx:a.wav", "b.xml:RIFF", "c.ses:RIFF", "d.rpp:<ITEM"},
         "b.wav|b.xml|c.ses|d.rpp|vox.wav|x.wav",
         ""},
        {"a damaged session stops the load",
         {"a.sesx:sesx:a.wav", "b.rpp:<REAPER_PROJECT"},
         "",
         "",
         2},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        test::ReaderFixture f;
        for (const char* file :
             {"a.wav", "b.wav", "x.wav", "vox.wav", "Media/m.wav", "Media/t.wav"}) {
            ASSERT_TRUE(test::writeFile(f.dir.filePath(file), "RIFF"));
        }
        for (const QString& session : row.sessions) {
            const QStringList parts = session.split(':');
            const SessionKind* kind = sessionKindByIdText(parts.value(1));
            const QStringList paths = session.section(':', 2).split(',', Qt::SkipEmptyParts);
            const QByteArray bytes =
                kind ? test::sessionBytes(kind->id, paths) : parts.value(1).toUtf8();
            ASSERT_TRUE(test::writeFile(f.dir.filePath(parts[0]), bytes));
        }
        const QString first = row.sessions[0].section(':', 0, 0);
        QString out, err;
        QTextStream outStream(&out), errStream(&err);
        EXPECT_EQ(cli::run({"scan", f.dir.path(), "--kind", row.sessions[0].section(':', 1, 1),
                            "--session", first, "--json"},
                           outStream, errStream),
                  row.code);
        outStream.flush();
        const QJsonDocument json = QJsonDocument::fromJson(out.toUtf8());
        QStringList unused, kept;
        for (const QJsonValue file : json["unused"]["files"].toArray()) {
            unused << file["text"].toString();
        }
        for (const QJsonValue file : json["kept"]["files"].toArray()) {
            QStringList by;
            for (const QJsonValue session : file["usedBy"].toArray()) {
                by << session.toString();
            }
            kept << file["text"].toString() + " <- " + by.join(',');
        }
        unused.sort();
        kept.sort();
        EXPECT_EQ(unused.join('|'), row.unused);
        EXPECT_EQ(kept.join('|'), row.kept);
    }
}

// A real project copied with the one of its recordings that is on disk.
TEST(Cli, CopyUsedCopiesTheFilesOfARealSessionThatAreOnDisk) {
    if (!test::haveCorpus()) {
        GTEST_SKIP() << "no session corpus at " << test::corpusPath({}).toStdString();
    }
    test::ReaderFixture f;
    const QString studio = f.dir.filePath("studio"), collect = f.dir.filePath("Collect");
    ASSERT_TRUE(test::writeFile(studio + "/Audio Files/Vox - 002-02.wav", "RIFF vox"));
    ASSERT_TRUE(QFile::copy(test::corpusPath("rpp/lordb8r_Call_Routing.rpp"), studio + "/p.rpp"));
    QString out, err;
    QTextStream outStream(&out), errStream(&err);
    EXPECT_EQ(cli::run({"copy-used", studio, "--kind", "rpp", "--all", "--to", collect}, outStream,
                       errStream),
              0);
    outStream.flush();
    EXPECT_EQ(out, "Copying..." + studio +
                       "/Audio Files/Vox - 002-02.wav...OK - 8 bytes copied.\n\n"
                       "Files Copied: 1 - Files Skipped: 0 - Files Missing: 1 - Bytes Copied:  8 "
                       "(0.00Mb)\n");
    EXPECT_EQ(test::readFile(collect + "/Vox - 002-02.wav"), "RIFF vox");
    EXPECT_EQ(QDir(collect).entryList(QDir::Files), QStringList{"Vox - 002-02.wav"});
}

// After an audit, a session of folder A that uses B/shared.wav guards it in every front end, as
// in the window; an index row made by hand (right size and time, no inode) is no read.
struct AuditedGuardCase {
    const char* name;
    const char* handMadeRowFor;  // a session whose row is replaced by one naming no media
    QStringList arguments;       // after the command's folder, "B" or the library
    int code;
    const char* shows;
    const char* neverShows;
};

void PrintTo(const AuditedGuardCase& c, std::ostream* os) {
    *os << c.name;
}

class AuditedGuard : public ::testing::TestWithParam<AuditedGuardCase> {};

TEST_P(AuditedGuard, AFileThatASessionOfTheLibraryUsesIsNeverOffered) {
    const AuditedGuardCase& c = GetParam();
    test::ReaderFixture f;
    qputenv("XDG_CACHE_HOME", f.dir.filePath("cache").toUtf8());
    qputenv("XDG_DATA_HOME", f.dir.filePath("data").toUtf8());
    const QString library = f.dir.filePath("L"), b = library + "/B";
    for (const char* file : {"B/b.wav", "B/shared.wav", "B/spare.wav"}) {
        ASSERT_TRUE(test::writeFile(library + '/' + file, "RIFF"));
    }
    ASSERT_TRUE(test::writeFile(library + "/A/s.sesx",
                                test::sessionBytes(SessionKindId::Sesx, {b + "/shared.wav"})));
    ASSERT_TRUE(
        test::writeFile(b + "/own.sesx", test::sessionBytes(SessionKindId::Sesx, {"b.wav"})));
    QString out, err;
    QTextStream outStream(&out), errStream(&err);
    ASSERT_EQ(cli::run({"audit", library}, outStream, errStream), 0) << err.toStdString();
    if (*c.handMadeRowFor != 0) {
        const QString session = library + '/' + c.handMadeRowFor;
        FileStamp stamp = *FileSystem().fileStamp(session);
        stamp.inode = 0;
        SessionIndex(SessionIndex::defaultFile())
            .update(session,
                    {stamp, SessionKindId::Sesx, {ReaderOutcome::Read, {}, {}, {}, {}, {}}},
                    {b + "/shared.wav"});
        ASSERT_TRUE(test::writeFile(b + "/new.wav", "RIFF"));  // B is audited again
    }
    QStringList arguments = c.arguments;
    arguments.replaceInStrings("@", f.dir.path() + '/');
    out.clear();
    EXPECT_EQ(cli::run(arguments, outStream, errStream), c.code) << err.toStdString();
    outStream.flush();
    EXPECT_TRUE(out.contains(c.shows)) << out.toStdString();
    EXPECT_FALSE(out.contains(c.neverShows)) << out.toStdString();
}

INSTANTIATE_TEST_SUITE_P(
    Cli, AuditedGuard,
    ::testing::Values(
        AuditedGuardCase{"ScanKeepsIt",
                         "",
                         {"scan", "@L/B", "--kind", "sesx", "--all"},
                         0,
                         "/L/A/s.sesx\n",
                         "[ ] shared.wav"},
        AuditedGuardCase{"MoveKeepsIt",
                         "",
                         {"move", "@L/B", "--kind", "sesx", "--all", "--to", "@T", "--dry-run"},
                         0,
                         "spare.wav",
                         "shared.wav"},
        AuditedGuardCase{"CopyUsedCopiesOnlyWhatBsSessionsUse",
                         "",
                         {"copy-used", "@L/B", "--kind", "sesx", "--all", "--to", "@C"},
                         0,
                         "Files Copied: 1 ",
                         "shared"},
        AuditedGuardCase{"AHandMadeRowOfAnotherFoldersSessionIsReadAgain",
                         "A/s.sesx",
                         {"scan", "@L/B", "--kind", "sesx", "--all"},
                         0,
                         "/L/A/s.sesx\n",
                         "[ ] shared.wav"},
        AuditedGuardCase{"AHandMadeRowOfTheFoldersOwnSessionIsReadAgainByTheAudit",
                         "B/own.sesx",
                         {"audit", "@L"},
                         0,
                         "/L/B  reclaimable 2 files",
                         "/L/B  reclaimable 3"}),
    [](const auto& info) { return std::string(info.param.name); });

// A file name may hold any byte but "/": printed raw, a line feed would split a line and an
// escape sequence would drive the terminal. The JSON form leads back to each file.
TEST(Cli, NamesLeadBackToTheirFiles) {
    for (const auto& [text, shown] : {std::pair<QString, QString>{"a\nb.wav", "a\\nb.wav"},
                                      {"\x1b[31m.wav", "\\x1B[31m.wav"},
                                      {QString(QChar(0xDCFF)) + ".wav", "\\xFF.wav"},
                                      {"caf\u00e9 \U0001F3B5.wav", "caf\u00e9 \U0001F3B5.wav"}}) {
        EXPECT_EQ(visibleText(text), shown);
    }
    test::ReaderFixture f;
    const QString name = "new\nline.wav";
    ASSERT_TRUE(test::writeFile(f.dir.filePath(name), "RIFF"));
    ASSERT_TRUE(
        test::writeFile(f.dir.filePath("s.xml"), test::sessionBytes(SessionKindId::Xml, {})));
    QString out, err;
    QTextStream outStream(&out), errStream(&err);
    EXPECT_EQ(cli::run({"scan", f.dir.path(), "--kind", "xml", "--session", "s.xml", "--json"},
                       outStream, errStream),
              0);
    outStream.flush();
    const QJsonArray files = QJsonDocument::fromJson(out.toUtf8())["unused"]["files"].toArray();
    ASSERT_EQ(files.size(), 1);
    EXPECT_EQ(files[0]["text"].toString(), name);
    EXPECT_TRUE(QFileInfo(files[0]["path"].toString()).isFile());
}

}  // namespace
}  // namespace tidewick

namespace tidewick {
namespace {

// The manual page and the completion are made from the table: each names every command and
// every option the help names.
TEST(CliDocs, TheManualAndTheCompletionNameEveryOptionOfTheTable) {
    const QString man = cli::manPage(), completion = cli::bashCompletion();
    for (const cli::Command& command : cli::commands()) {
        EXPECT_TRUE(man.contains(".SS " + QString(command.name).replace('-', "\\-")))
            << command.name.toStdString();
        EXPECT_TRUE(completion.contains(command.name + ") options=")) << command.name.toStdString();
        for (const cli::OptionHelp& option : command.options) {
            const QString name = "--" + option.names.last();
            EXPECT_TRUE(man.contains(QString(name).replace('-', "\\-"))) << name.toStdString();
            EXPECT_TRUE(completion.contains(name)) << name.toStdString();
            EXPECT_TRUE(cli::commandHelp(command).contains(name)) << name.toStdString();
        }
    }
}

}  // namespace
}  // namespace tidewick
