#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QTemporaryDir>

#include "app/cli/cli.h"
#include "platform/path_text.h"
#include "support/session_files.h"

namespace tidewick {
namespace {

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

struct UsageCase {
    const char* name;
    QStringList arguments;  // after "scan"; "@" stands for an existing folder
    const char* errorPart;
};

class ScanUsage : public ::testing::TestWithParam<UsageCase> {};

TEST_P(ScanUsage, RefusesWithExitCodeOneAndSaysWhy) {
    QTemporaryDir dir;
    QStringList arguments{QStringLiteral("scan")};
    for (const QString& argument : GetParam().arguments) {
        arguments.append(argument == QLatin1String("@") ? dir.path() : argument);
    }
    const CliRun run = runCli(arguments);
    EXPECT_EQ(run.code, 1);
    EXPECT_TRUE(run.out.isEmpty()) << run.out.toStdString();
    EXPECT_TRUE(run.err.contains(QString::fromUtf8(GetParam().errorPart))) << run.err.toStdString();
}

QStringList args(std::initializer_list<const char*> texts) {
    QStringList list;
    for (const char* text : texts) {
        list.append(QString::fromUtf8(text));
    }
    return list;
}

INSTANTIATE_TEST_SUITE_P(
    Arguments, ScanUsage,
    ::testing::Values(
        UsageCase{"NoFolder", args({"--kind", "ses", "--all"}), "usage: tidewick-cli scan"},
        UsageCase{"NeitherSessionNorAll", args({"@", "--kind", "ses"}), "usage:"},
        UsageCase{"UnknownKind", args({"@", "--kind", "wav", "--all"}), "unknown kind 'wav'"},
        UsageCase{"TypeOutOfRange", args({"@", "--kind", "ses", "--all", "--type", "24"}),
                  "from 0 to 23"},
        UsageCase{"SubFolderWithoutItsRow",
                  args({"@", "--kind", "sesx", "--all", "--sub-folder", "Audio"}),
                  "--sub-folder needs --kind rpp or veg"},
        UsageCase{"UnknownOption", args({"@", "--kind", "ses", "--all", "--fast"}),
                  "unexpected argument '--fast'"},
        UsageCase{"MissingFolder", args({"/no/such/folder", "--kind", "ses", "--all"}),
                  "no such folder: /no/such/folder"},
        UsageCase{"NoSessionFiles", args({"@", "--kind", "ses", "--all"}), "no *.ses files"},
        UsageCase{"MissingSession", args({"@", "--kind", "rpp", "--session", "song.rpp"}),
                  "no session file 'song.rpp'"}),
    [](const auto& info) { return std::string(info.param.name); });

// A session folder: mix.ses uses a.wav; a.pk is its peak file; b.wav, b.pk and a take in the
// session's recordings folder are not used; old.ses is another session.
class Scan : public ::testing::Test {
protected:
    void SetUp() override {
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        ASSERT_TRUE(dir.isValid());
        file("a.wav", 100);
        file("a.pk", 10);
        file("b.wav", 3145728);
        file("b.pk", 24);
        file("mix_Recorded/take.wav", 1000);
        ASSERT_TRUE(test::writeFile(dir.filePath(QStringLiteral("mix.ses")),
                                    test::sessionBytes(SessionKindId::Ses, {path("a.wav")})));
        ASSERT_TRUE(test::writeFile(dir.filePath(QStringLiteral("old.ses")),
                                    test::sessionBytes(SessionKindId::Ses, {path("b.wav")})));
    }
    void TearDown() override { QLocale::setDefault(QLocale::c()); }

    void file(const char* relative, qint64 size) {
        QFile f(dir.filePath(QString::fromUtf8(relative)));
        QDir().mkpath(QFileInfo(f).absolutePath());
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        ASSERT_TRUE(f.resize(size));
    }
    QString path(const char* relative) const {
        QString text = dir.filePath(QString::fromUtf8(relative));
        text.replace(u'/', hostSeparator());
        return text;
    }
    CliRun scan(const QStringList& options) const {
        return runCli(QStringList{QStringLiteral("scan"), dir.path()} + options);
    }

    QTemporaryDir dir;
};

const QString kUsed =
    QStringLiteral("Media File(s) Used  (NB: Files with a check mark exist on Disk)");

TEST_F(Scan, PrintsBothListsWithTheirCaptionsAndTheSizesLine) {
    const CliRun run = scan(args({"--kind", "ses", "--session", "mix.ses", "--keep-peaks"}));
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    const qint64 listed =
        3145728 + 24 + 1000 + QFileInfo(dir.filePath(QStringLiteral("old.ses"))).size();
    const QString expected =
        QStringLiteral("used: mix.ses: 1 ") + kUsed + QStringLiteral("\n[x] ") + path("a.wav") +
        QStringLiteral("\nunused: Files to be Moved - [0/4]\n[ ] b.wav\n[ ] old.ses\n[ ] b.pk\n") +
        QStringLiteral("[ ] mix_Recorded") + hostSeparator() + QStringLiteral("take.wav\n") +
        QStringLiteral("info: Listed Other Files: ") + QLocale().toString(listed) +
        QStringLiteral(" bytes (3.00Mb) - Selected Other Files: 0 bytes (0.00Mb)\n");
    EXPECT_EQ(run.out, expected) << run.out.toStdString();
}

TEST_F(Scan, AnInvalidSessionEndsWithExitCodeTwo) {
    ASSERT_TRUE(test::writeFile(dir.filePath(QStringLiteral("wave.ses")), "RIFF....WAVEfmt "));
    const CliRun run = scan(args({"--kind", "ses", "--session", "wave.ses"}));
    EXPECT_EQ(run.code, 2);
    EXPECT_TRUE(run.err.contains(QStringLiteral("does not appear to be a valid session file")))
        << run.err.toStdString();
    EXPECT_TRUE(run.out.startsWith(QStringLiteral("used: "))) << run.out.toStdString();
}

}  // namespace
}  // namespace tidewick
