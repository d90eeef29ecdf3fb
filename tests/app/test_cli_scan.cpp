#include <gtest/gtest.h>

#include <QDir>
#include <QLocale>
#include <QTemporaryDir>

#include "app/cli/cli.h"

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
        UsageCase{"NoKind", args({"@", "--all"}), "usage: tidewick-cli scan"},
        UsageCase{"NeitherSessionNorAll", args({"@", "--kind", "ses"}), "usage:"},
        UsageCase{"BothSessionAndAll", args({"@", "--kind", "ses", "--all", "--session", "a.ses"}),
                  "usage:"},
        UsageCase{"UnknownKind", args({"@", "--kind", "wav", "--all"}), "unknown kind 'wav'"},
        UsageCase{"TypeOutOfRange", args({"@", "--kind", "ses", "--all", "--type", "24"}),
                  "from 0 to 23"},
        UsageCase{"TypeNotANumber", args({"@", "--kind", "ses", "--all", "--type", "wav"}),
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

}  // namespace
}  // namespace tidewick
