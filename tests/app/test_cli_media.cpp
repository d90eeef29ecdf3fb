#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>

#include "app/cli/cli.h"
#include "platform/path_text.h"
#include "support/reader_fixture.h"
#include "support/ses_writer.h"

namespace tidewick {
namespace {

using test::ReaderFixture;
using test::SesWriter;

struct CliRun {
    int code;
    QString out;
    QString err;
};

CliRun runCli(const QStringList& arguments) {
    QString out;
    QString err;
    QTextStream outStream(&out);
    QTextStream errStream(&err);
    const int code = cli::run(arguments, outStream, errStream);
    outStream.flush();
    errStream.flush();
    return {code, out, err};
}

class CliMedia : public ::testing::Test {
protected:
    ReaderFixture f;
    const QByteArray session =
        SesWriter()
            .version("Audition 3.0")
            .list({{"  C:\\Takes\\Caf\xc3\xa9 take.wav  "}, {"D:\\loop.wav"}, {"D:\\loop.wav"}},
                  "Audition 3.0")
            .bytes();
};

TEST_F(CliMedia, PrintsEachRecordTrimmedInReaderOrder) {
    const CliRun run = runCli({"media", f.write("song.ses", session)});
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_EQ(run.out, "C:\\Takes\\Caf\u00e9 take.wav\nD:\\loop.wav\nD:\\loop.wav\n");
    EXPECT_TRUE(run.err.isEmpty());
}

TEST_F(CliMedia, KindComesFromTheExtensionInAnyCaseOrFromTheOption) {
    const QString upper = f.write("SONG.SES", session);
    EXPECT_EQ(runCli({"media", upper}).code, 0);
    const QString odd = f.write("song.bak", session);
    EXPECT_EQ(runCli({"media", odd}).code, 1);
    EXPECT_EQ(runCli({"media", odd, "--kind", "ses"}).code, 0);
}

TEST_F(CliMedia, VerboseAddsTheVersionOnTheErrorStream) {
    const CliRun run = runCli({"media", "--verbose", f.write("song.ses", session)});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.err, "version: Audition 3.0\n");
}

TEST_F(CliMedia, VerboseNamesTheRecordFolderThatAProjectLoadWouldSet) {
    ASSERT_TRUE(QDir(f.dir.path()).mkpath("Media"));
    const QString project =
        f.write("p.rpp", "<REAPER_PROJECT\r\n\r\nRECORD_PATH \"Media\" \"\"\r\n");
    const CliRun run = runCli({"media", "--verbose", project});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.err,
              "record folder: " + QFileInfo(project).absolutePath() + hostSeparator() + "Media\n");
}

TEST_F(CliMedia, ExitCodesTellUsageFromReaderFailures) {
    struct Case {
        QStringList arguments;
        int code;
        const char* errorPart;
    };
    const QString missing = f.dir.filePath("missing.ses");
    const QString notSession = f.write("wave.ses", "RIFF....WAVEfmt ");
    const QString unsupported = f.write("old.ses", SesWriter().version("Cool Edit 96").bytes());
    const QString broken = f.write("broken.ses", session.left(40));
    const QString empty = f.write("empty.ses", SesWriter().version("Audition 2.0").bytes());
    const Case cases[] = {
        {{}, 1, "usage"},
        {{"frobnicate"}, 1, "unknown command"},
        {{"media"}, 1, "usage"},
        {{"media", missing}, 1, "no such file"},
        {{"media", notSession, "--kind", "wav"}, 1, "unknown kind"},
        {{"media", notSession}, 2, "does not appear to be a valid session file"},
        {{"media", unsupported}, 2, "Cool Edit 96 is not currently supported"},
        {{"media", broken}, 2, "File Error: An error occurred accessing the selected SES file."},
        {{"media", empty}, 0, ""},
    };
    for (const Case& c : cases) {
        const CliRun run = runCli(c.arguments);
        EXPECT_EQ(run.code, c.code) << c.arguments.join(u' ').toStdString();
        EXPECT_TRUE(run.err.contains(QString::fromUtf8(c.errorPart)))
            << c.errorPart << " not in: " << run.err.toStdString();
        EXPECT_TRUE(run.out.isEmpty() || c.code == 0);
    }
}

}  // namespace
}  // namespace tidewick
