// `tidewick-cli scan` of a folder of 50 000 files whose session names 10 000, as a user runs it,
// against `find FOLDER -maxdepth 1 -type f -printf '%s\n'` listing the same folder with sizes:
// whole processes, run in pairs (scan, find, scan, find, ...) so that a drift of the machine's
// speed touches both alike; medians of each and the median of the pairs' ratios. The command
// line program is found beside this benchmark's build folder, or at TIDEWICK_CLI.
#include <QCoreApplication>
#include <cstdio>
#include <vector>

#include "cli_program.h"
#include "process_timing.h"
#include "session_folder.h"

namespace {

using tidewick::bench::median;
using tidewick::bench::timeRun;

constexpr int kPairs = 9;

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QString cli = tidewick::bench::cliProgram();
    const tidewick::bench::SessionFolder folder(tidewick::bench::kFiles, true);
    const QString path = folder.dir.path();
    const QStringList scan = {QStringLiteral("scan"),      path,
                              QStringLiteral("--kind"),    QStringLiteral("sesx"),
                              QStringLiteral("--session"), QStringLiteral("session.sesx")};
    const QStringList find = {path,
                              QStringLiteral("-maxdepth"),
                              QStringLiteral("1"),
                              QStringLiteral("-type"),
                              QStringLiteral("f"),
                              QStringLiteral("-printf"),
                              QStringLiteral("%s\n")};
    timeRun(cli, scan);  // warm the page cache and the dynamic loader for both
    timeRun(QStringLiteral("find"), find);

    std::vector<double> scans, finds, ratios;
    for (int pair = 0; pair < kPairs; ++pair) {
        const double s = timeRun(cli, scan);
        const double f = timeRun(QStringLiteral("find"), find);
        if (s < 0 || f < 0) {
            std::fprintf(stderr, "a run failed: %s\n", s < 0 ? qPrintable(cli) : "find");
            return 1;
        }
        scans.push_back(s);
        finds.push_back(f);
        ratios.push_back(s / f);
    }
    const double ratio = median(ratios);
    std::printf("folder: %d files, the session names %d; %d paired runs\n", tidewick::bench::kFiles,
                tidewick::bench::kFiles / tidewick::bench::kUsedEvery, kPairs);
    std::printf("tidewick-cli scan: median %.3f s\nfind -printf %%s:  median %.3f s\n",
                median(scans), median(finds));
    std::printf("scan / find: %.2fx (median of pair ratios; target 2.0x) %s\n", ratio,
                ratio <= 2.0 ? "ok" : "MISSED");
    return 0;
}
