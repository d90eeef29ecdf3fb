// `tidewick-cli move` of 1,000 files of 1 MiB (1 GiB) to a folder on the same file system, as a
// user runs it, against `cp` of the same files plus a rename of each source into a trash folder
// (`mv`): whole processes, in pairs, each run from the same state with the disk written back
// (`sync`) before it. Prints the medians, Tidewick's throughput as a share of the baseline's and
// the spread of the pairs' shares.
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <vector>

#include "cli_program.h"
#include "process_timing.h"
#include "take_folder.h"

namespace {

using tidewick::bench::median;
using tidewick::bench::timeRun;

constexpr int kFiles = 1000;
constexpr qint64 kFileSize = 1 << 20;
constexpr int kPairs = 9;  // single runs swing severalfold with a virtual disk's writeback

// The session folder, and for each run a target and a trash of its own. Nothing is deleted
// until the end: ext4 passes over the inodes of files deleted in the last minute when it makes
// new ones, which would bill each run for the cleaning up after the one before.
struct Studio {
    QTemporaryDir root;
    QString song = root.filePath(QStringLiteral("Song"));
    int runs = 0;

    QString target() const { return root.filePath(QStringLiteral("Old%1").arg(runs)); }
    QString data() const { return root.filePath(QStringLiteral("data%1").arg(runs)); }
    QString trash() const { return data() + QStringLiteral("/Trash/files"); }

    bool make() const { return tidewick::bench::writeTakes(song, kFiles, kFileSize); }

    // The originals back from the last run's trash, and a fresh target and trash for the next.
    void next() {
        const QDir trashed(trash());
        for (const QString& name : trashed.entryList(QDir::Files)) {
            QFile::rename(trashed.filePath(name), song + QLatin1Char('/') + name);
        }
        ++runs;
        QDir().mkpath(target());
        QDir().mkpath(trash());
        QDir().mkpath(data() + QStringLiteral("/Trash/info"));
        timeRun(QStringLiteral("sync"), {});
    }
};

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    Studio studio;
    if (!studio.make()) {
        std::fprintf(stderr, "cannot write the files to move\n");
        return 1;
    }
    const QString cli = tidewick::bench::cliProgram();
    std::vector<double> moves, copies, shares;
    for (int pair = 0; pair < kPairs; ++pair) {
        studio.next();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_DATA_HOME"), studio.data());
        const double m =
            timeRun(cli,
                    {QStringLiteral("move"), studio.song, QStringLiteral("--kind"),
                     QStringLiteral("sesx"), QStringLiteral("--session"),
                     QStringLiteral("session.sesx"), QStringLiteral("--to"), studio.target()},
                    environment);
        const bool allMoved = QDir(studio.target()).entryList(QDir::Files).size() == kFiles;
        studio.next();
        const QString script = QStringLiteral("cd '%1' && cp -- *.wav '%2'/ && mv -- *.wav '%3'/")
                                   .arg(studio.song, studio.target(), studio.trash());
        const double c = timeRun(QStringLiteral("sh"), {QStringLiteral("-c"), script});
        if (m < 0 || c < 0 || !allMoved) {
            std::fprintf(stderr, "a run failed: %s\n", m < 0 || !allMoved ? qPrintable(cli) : "cp");
            return 1;
        }
        moves.push_back(m);
        copies.push_back(c);
        shares.push_back(c / m);
    }
    const double share = median(shares);
    std::printf("%d files of %lld bytes; %d paired runs\n", kFiles, kFileSize, kPairs);
    std::printf("tidewick-cli move:  median %.3f s\ncp + mv to a trash: median %.3f s\n",
                median(moves), median(copies));
    std::printf("move throughput / cp+mv: %.2fx (median of pair ratios; target 0.9x) %s\n", share,
                share >= 0.9 ? "ok" : "MISSED");
    // How far the pairs spread says how much the verdict can be trusted on this disk.
    std::printf("the pairs' ratios: %.2fx to %.2fx\n",
                *std::min_element(shares.begin(), shares.end()),
                *std::max_element(shares.begin(), shares.end()));
    return 0;
}
