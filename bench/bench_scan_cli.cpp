// `tidewick-cli scan` as a user runs it, whole processes run in pairs (scan, baseline, scan, ...)
// so that a drift of the machine's speed touches both alike; medians of each and the median of
// the pairs' ratios:
// - a folder of 50 000 files whose session names 10 000, against `find FOLDER -maxdepth 1 -type f
//   -printf '%s\n'` listing the same folder with sizes;
// - a folder of 100 REAPER projects of 1 MB each (each naming 200 of its 20 000 takes, every one
//   guarding the load of the first), against that `find` and a `cat` of the projects.
// The command line program is found beside this benchmark's build folder, or at TIDEWICK_CLI.
#include <QCoreApplication>
#include <QTemporaryDir>
#include <cstdio>
#include <vector>

#include "cli_program.h"
#include "process_timing.h"
#include "readers/session_kinds.h"
#include "session_folder.h"
#include "support/session_files.h"

namespace {

using tidewick::bench::median;
using tidewick::bench::timeRun;

constexpr int kPairs = 9;
constexpr int kTakes = 20000;
constexpr int kProjects = 100;
constexpr int kNamed = 200;  // takes each project names
constexpr qsizetype kProjectBytes = 1024 * 1024;

// The projects' folder: the takes, and each project padded with track settings to 1 MB.
QStringList writeProjects(const QString& folder) {
    QStringList takes, projects;
    for (int i = 0; i < kTakes; ++i) {
        takes.append(folder + QStringLiteral("/take %1.wav").arg(i, 6, 10, QLatin1Char('0')));
        tidewick::test::writeFile(takes.last(), "RIFF");
    }
    for (int p = 0; p < kProjects; ++p) {
        QStringList named;
        for (int k = 0; k < kNamed; ++k) {
            named.append(takes[(p * kNamed + k) % kTakes]);
        }
        QByteArray bytes = tidewick::test::sessionBytes(tidewick::SessionKindId::Rpp, named);
        const QByteArray line = "    VOLPAN 1 0 -1 -1 1\r\n";
        const qsizetype missing = std::max<qsizetype>(kProjectBytes - bytes.size(), 0);
        bytes.insert(bytes.indexOf("  <TRACK") + 10, line.repeated(missing / line.size() + 1));
        projects.append(folder + QStringLiteral("/s%1.rpp").arg(p, 3, 10, QLatin1Char('0')));
        tidewick::test::writeFile(projects.last(), bytes);
    }
    return projects;
}

// Runs the scan and the baseline in pairs and prints their medians and the ratio's, against
// `target`; false when a run failed.
bool comparePaired(const QString& label, const QStringList& scan, const QString& baseline,
                   const QStringList& baselineArguments, double target) {
    const QString cli = tidewick::bench::cliProgram();
    timeRun(cli, scan);  // warm the page cache and the dynamic loader for both
    timeRun(baseline, baselineArguments);
    std::vector<double> scans, baselines, ratios;
    for (int pair = 0; pair < kPairs; ++pair) {
        const double s = timeRun(cli, scan);
        const double b = timeRun(baseline, baselineArguments);
        if (s < 0 || b < 0) {
            std::fprintf(stderr, "a run failed: %s\n", qPrintable(s < 0 ? cli : baseline));
            return false;
        }
        scans.push_back(s);
        baselines.push_back(b);
        ratios.push_back(s / b);
    }
    const double ratio = median(ratios);
    std::printf("%s; %d paired runs\n", qPrintable(label), kPairs);
    std::printf("  tidewick-cli scan: median %.3f s, baseline: median %.3f s\n", median(scans),
                median(baselines));
    std::printf("  scan / baseline: %.2fx (median of pair ratios; target %.2fx) %s\n", ratio,
                target, ratio <= target ? "ok" : "MISSED");
    return true;
}

QStringList findArguments(const QString& folder) {
    return {folder,
            QStringLiteral("-maxdepth"),
            QStringLiteral("1"),
            QStringLiteral("-type"),
            QStringLiteral("f"),
            QStringLiteral("-printf"),
            QStringLiteral("%s\n")};
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const tidewick::bench::SessionFolder folder(tidewick::bench::kFiles, true);
    const QString path = folder.dir.path();
    const bool listed = comparePaired(
        QStringLiteral("folder: %1 files, the session names %2; baseline find -printf %s")
            .arg(tidewick::bench::kFiles)
            .arg(tidewick::bench::kFiles / tidewick::bench::kUsedEvery),
        {QStringLiteral("scan"), path, QStringLiteral("--kind"), QStringLiteral("sesx"),
         QStringLiteral("--session"), QStringLiteral("session.sesx")},
        QStringLiteral("find"), findArguments(path), 1.25);

    QTemporaryDir projects;
    QString findAndCat = QStringLiteral("find '%1' -maxdepth 1 -type f -printf '%s\\n' >/dev/null")
                             .arg(projects.path());
    findAndCat += QStringLiteral(" && cat");
    for (const QString& project : writeProjects(projects.path())) {
        findAndCat += QStringLiteral(" '") + project + u'\'';
    }
    findAndCat += QStringLiteral(" >/dev/null");
    const bool guarded = comparePaired(
        QStringLiteral("folder: %1 takes, %2 REAPER projects of 1 MB guarding the load of one; "
                       "baseline find + cat of the projects")
            .arg(kTakes)
            .arg(kProjects),
        {QStringLiteral("scan"), projects.path(), QStringLiteral("--kind"), QStringLiteral("rpp"),
         QStringLiteral("--session"), QStringLiteral("s000.rpp")},
        QStringLiteral("sh"), {QStringLiteral("-c"), findAndCat}, 2.0);
    return listed && guarded ? 0 : 1;
}
