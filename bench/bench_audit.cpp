// `tidewick-cli audit` of a library of 200 session folders (40 of each kind, 250 files each:
// 50 000 files), as a user runs it, whole processes in pairs:
// - the first audit (no index) against `find ROOT -printf '%s\n'` of the same tree plus a plain
//   read (`cat`) of its session files;
// - an audit with the index warm against the `find` alone;
// and the audit's peak memory. Medians of each and the medians of the pairs' ratios; every second
// pair runs its two the other way round.
// `bench_audit --write FOLDER` writes the library into FOLDER and stops, for a profiler.
#include <sys/resource.h>
#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>
#include <cstdio>
#include <functional>
#include <vector>

#include "cli_program.h"
#include "process_timing.h"
#include "support/session_files.h"

namespace {

using tidewick::bench::median;
using tidewick::bench::timeRun;

constexpr int kFolders = 200;
constexpr int kFilesPerFolder = 250;  // the session among them
constexpr int kUsed = 100;
constexpr int kPairs = 15;

// The library: Artist NN/Song NNN, the kinds in turn, each session naming the first takes.
QStringList writeLibrary(const QString& root) {
    QStringList sessions;
    const QByteArray take(2048, 'x');
    for (int folder = 0; folder < kFolders; ++folder) {
        const auto& kind = tidewick::sessionKinds()[folder % 5];
        const QString path = QStringLiteral("%1/Artist %2/Song %3/")
                                 .arg(root)
                                 .arg(folder / 20, 2, 10, QLatin1Char('0'))
                                 .arg(folder, 3, 10, QLatin1Char('0'));
        QStringList used;
        for (int file = 0; file < kFilesPerFolder - 1; ++file) {
            const QString name = QStringLiteral("take %1.wav").arg(file, 3, 10, QLatin1Char('0'));
            tidewick::test::writeFile(path + name, take);
            if (file < kUsed) {
                used.append(kind.id == tidewick::SessionKindId::Rpp ? name : path + name);
            }
        }
        sessions.append(path + QStringLiteral("song.") + kind.sessionPattern.mid(2));
        tidewick::test::writeFile(sessions.last(), tidewick::test::sessionBytes(kind.id, used));
    }
    return sessions;
}

qint64 peakChildKilobytes() {
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    return usage.ru_maxrss;
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QString cli = tidewick::bench::cliProgram();
    if (const QStringList given = QCoreApplication::arguments();
        given.size() == 3 && given[1] == QLatin1String("--write")) {
        writeLibrary(given[2]);
        return 0;
    }
    QTemporaryDir work;
    const QString root = work.filePath(QStringLiteral("Library"));
    const QStringList sessions = writeLibrary(root);
    const QStringList audit = {QStringLiteral("audit"), root};
    const QStringList find = {root, QStringLiteral("-printf"), QStringLiteral("%s\n")};
    QString readAll = QStringLiteral("find '%1' -printf '%s\\n' >/dev/null && cat").arg(root);
    for (const QString& session : sessions) {
        readAll += QStringLiteral(" '") + session + u'\'';
    }
    readAll += QStringLiteral(" >/dev/null");
    const auto withCache = [](const QString& folder) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_CACHE_HOME"), folder);
        return environment;
    };
    const QProcessEnvironment warm = withCache(work.filePath(QStringLiteral("warm")));
    timeRun(cli, audit, warm);  // the page cache, the loader and the warm index
    timeRun(QStringLiteral("find"), find);

    std::vector<double> firsts, baselines, warms, finds, firstRatios, warmRatios;
    for (int pair = 0; pair < kPairs; ++pair) {
        const QString fresh = work.filePath(QStringLiteral("cold%1").arg(pair));
        // Each pair's two runs the other way round every second pair: what one run leaves for
        // the next (an index the disk is still writing, the caches) falls on both alike.
        double first = 0, baseline = 0, again = 0, listing = 0;
        const auto timeFirst = [&] { first = timeRun(cli, audit, withCache(fresh)); };
        const auto timeBaseline = [&] {
            baseline = timeRun(QStringLiteral("sh"), {QStringLiteral("-c"), readAll});
        };
        const auto timeAgain = [&] { again = timeRun(cli, audit, warm); };
        const auto timeListing = [&] { listing = timeRun(QStringLiteral("find"), find); };
        const auto inTurn = [&pair](const std::function<void()>& a,
                                    const std::function<void()>& b) {
            pair % 2 == 0 ? (a(), b()) : (b(), a());
        };
        inTurn(timeFirst, timeBaseline);
        inTurn(timeAgain, timeListing);
        if (first < 0 || baseline < 0 || again < 0 || listing < 0) {
            std::fprintf(stderr, "a run failed\n");
            return 1;
        }
        firsts.push_back(first);
        baselines.push_back(baseline);
        warms.push_back(again);
        finds.push_back(listing);
        firstRatios.push_back(first / baseline);
        warmRatios.push_back(again / listing);
    }
    const double firstRatio = median(firstRatios), warmRatio = median(warmRatios);
    const double peak = double(peakChildKilobytes()) / 1024;
    std::printf("library: %d session folders, %d files; %d paired runs\n", kFolders,
                kFolders * kFilesPerFolder, kPairs);
    std::printf(
        "first audit (no index):  median %.3f s\nfind + cat of the sessions: median "
        "%.3f s\n",
        median(firsts), median(baselines));
    std::printf(
        "audit with the index:    median %.3f s\nfind -printf %%s:          median %.3f s\n",
        median(warms), median(finds));
    std::printf("first audit / find+cat: %.2fx (target at most 1.0x) %s\n", firstRatio,
                firstRatio <= 1.0 ? "ok" : "MISSED");
    std::printf("warm audit / find:      %.2fx (target at most 1.3x) %s\n", warmRatio,
                warmRatio <= 1.3 ? "ok" : "MISSED");
    std::printf("peak memory of the runs: %.0f MB (target under 200 MB) %s\n", peak,
                peak < 200 ? "ok" : "MISSED");
    return 0;
}
