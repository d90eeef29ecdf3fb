#include <gtest/gtest.h>

#include <QFileInfo>
#include <QLocale>
#include <QTemporaryDir>
#include <tuple>

#include "app/cli/cli.h"
#include "platform/path_text.h"
#include "support/session_files.h"

namespace tidewick {
namespace {

struct CliRun {
    int code = 0;
    QString out, err;
};

CliRun runCli(const QStringList& arguments) {
    CliRun run;
    QTextStream out(&run.out);
    QTextStream err(&run.err);
    run.code = cli::run(arguments, out, err);
    out.flush();
    err.flush();
    return run;
}

// mix.ses uses a.wav, whose peak file is a.pk; old.ses uses b.wav; b.pk and a take in mix.ses's
// recordings folder are used by neither.
class Scan : public ::testing::Test {
protected:
    void SetUp() override {
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        ASSERT_TRUE(dir.isValid());
        for (const auto& [name, size] : {std::pair{"a.wav", 100},
                                         {"a.pk", 10},
                                         {"b.wav", 3145728},
                                         {"b.pk", 24},
                                         {"mix_Recorded/take.wav", 1000}}) {
            ASSERT_TRUE(test::writeFile(dir.filePath(name), QByteArray(size, 'x')));
        }
        ASSERT_TRUE(test::writeFile(dir.filePath("mix.ses"),
                                    test::sessionBytes(SessionKindId::Ses, {path("a.wav")})));
        ASSERT_TRUE(test::writeFile(dir.filePath("old.ses"),
                                    test::sessionBytes(SessionKindId::Ses, {path("b.wav")})));
    }
    void TearDown() override { QLocale::setDefault(QLocale::c()); }

    QString path(const char* relative) const {
        return dir.filePath(relative).replace(u'/', hostSeparator());
    }

    QTemporaryDir dir;
};

TEST_F(Scan, PrintsBothListsWithTheirCaptionsAndTheSizesLine) {
    const CliRun run =
        runCli({"scan", dir.path(), "--kind", "ses", "--session", "mix.ses", "--keep-peaks"});
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    const qint64 listed = 3145728 + 24 + 1000 + QFileInfo(dir.filePath("old.ses")).size();
    EXPECT_EQ(run.out,
              "used: mix.ses: 1 Media File(s) Used  (NB: Files with a check mark exist on "
              "Disk)\n[x] " +
                  path("a.wav") +
                  "\nunused: Files to be Moved - [0/4]\n[ ] b.wav\n[ ] old.ses\n[ ] b.pk\n[ ] "
                  "mix_Recorded" +
                  hostSeparator() +
                  "take.wav\ninfo: Listed Other Files: " + QLocale().toString(listed) +
                  " bytes (3.00Mb) - Selected Other Files: 0 bytes (0.00Mb)\n");
}

TEST_F(Scan, RefusesBadArgumentsWithOneAndAnInvalidSessionWithTwo) {
    ASSERT_TRUE(test::writeFile(dir.filePath("wave.ses"), "RIFF....WAVEfmt "));
    const QString here = dir.path();
    const std::tuple<QStringList, int, const char*> rows[] = {
        {{"--kind", "ses", "--all"}, 1, "usage: tidewick-cli scan"},
        {{here, "--kind", "ses"}, 1, "usage:"},
        {{here, "--kind", "wav", "--all"}, 1, "unknown kind 'wav'"},
        {{here, "--kind", "ses", "--all", "--type", "24"}, 1, "from 0 to 23"},
        {{here, "--kind", "sesx", "--all", "--sub-folder", "A"},
         1,
         "--sub-folder needs --kind rpp"},
        {{here, "--kind", "ses", "--all", "--fast"}, 1, "unexpected argument '--fast'"},
        {{"/no/such/folder", "--kind", "ses", "--all"}, 1, "no such folder: /no/such/folder"},
        {{here, "--kind", "rpp", "--all"}, 1, "no *.rpp files"},
        {{here, "--kind", "rpp", "--session", "song.rpp"}, 1, "no session file 'song.rpp'"},
        {{here, "--kind", "ses", "--session", "wave.ses"}, 2, "not appear to be a valid session"},
    };
    for (const auto& [arguments, code, error] : rows) {
        const CliRun run = runCli(QStringList{"scan"} + arguments);
        EXPECT_EQ(run.code, code) << error;
        EXPECT_TRUE(run.err.contains(error)) << run.err.toStdString();
        EXPECT_EQ(run.out.isEmpty(), code == 1) << run.out.toStdString();  // 2 still lists
    }
}

}  // namespace
}  // namespace tidewick
