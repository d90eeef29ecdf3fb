// `tidewick-cli restore` of a move of 1,000 files of 1 MiB on one file system, as a user runs
// it, against the same work by hand: `mv` of the trashed files back into the session folder,
// then `mv` of the target's copies into a trash folder. Whole processes, in pairs; each run
// starts from a fresh move (not timed) with the disk written back (`sync`) before it. Prints
// the medians and the restore's time as a multiple of the baseline's.
#include <QCoreApplication>
#include <QDir>
#include <QProcessEnvironment>
#include <QTemporaryDir>
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
constexpr int kPairs = 11;

// The session folder, and for each move a target and a data folder (records and trash) of its
// own, so that `restore --last` finds the move just made.
struct Studio {
    QTemporaryDir root;
    QString song = root.filePath(QStringLiteral("Song"));
    QString cli = tidewick::bench::cliProgram();
    int moves = 0;

    QString target() const { return root.filePath(QStringLiteral("Old%1").arg(moves)); }
    QString data() const { return root.filePath(QStringLiteral("data%1").arg(moves)); }
    QProcessEnvironment environment() const {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_DATA_HOME"), data());
        return environment;
    }
    bool whole() const { return QDir(song).entryList(QDir::Files).size() == kFiles + 1; }

    // Every take moved to a fresh target, the originals to a fresh trash; then the disk settles.
    bool move() {
        ++moves;
        QDir().mkpath(target());
        const bool moved =
            timeRun(cli,
                    {QStringLiteral("move"), song, QStringLiteral("--kind"), QStringLiteral("sesx"),
                     QStringLiteral("--session"), QStringLiteral("session.sesx"),
                     QStringLiteral("--to"), target()},
                    environment()) >= 0;
        timeRun(QStringLiteral("sync"), {});
        return moved && QDir(song).entryList(QDir::Files).size() == 1;
    }
};

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    Studio studio;
    if (!tidewick::bench::writeTakes(studio.song, kFiles, kFileSize)) {
        std::fprintf(stderr, "cannot write the files to move\n");
        return 1;
    }
    std::vector<double> restores, byHand, ratios;
    for (int pair = 0; pair < kPairs; ++pair) {
        if (!studio.move()) {
            std::fprintf(stderr, "the move before the restore failed\n");
            return 1;
        }
        const double r = timeRun(studio.cli, {QStringLiteral("restore"), QStringLiteral("--last")},
                                 studio.environment());
        const bool restored = studio.whole();
        if (!studio.move()) {
            std::fprintf(stderr, "the move before the baseline failed\n");
            return 1;
        }
        const QString trash = studio.data() + QStringLiteral("/Trash");
        QDir().mkpath(trash + QStringLiteral("/copies"));
        const QString script =
            QStringLiteral(
                "cd '%1/files' && mv -- *.wav '%2'/ && cd '%3' && mv -- *.wav '%1/copies'/")
                .arg(trash, studio.song, studio.target());
        const double m = timeRun(QStringLiteral("sh"), {QStringLiteral("-c"), script});
        if (r < 0 || m < 0 || !restored || !studio.whole()) {
            std::fprintf(stderr, "a run failed: %s\n", r < 0 || !restored ? "restore" : "mv");
            return 1;
        }
        restores.push_back(r);
        byHand.push_back(m);
        ratios.push_back(r / m);
    }
    const double ratio = median(ratios);
    std::printf("%d files of %lld bytes; %d paired runs\n", kFiles, kFileSize, kPairs);
    std::printf("tidewick-cli restore: median %.3f s\nmv back + mv to a trash: median %.3f s\n",
                median(restores), median(byHand));
    std::printf(
        "restore time / mv by hand: %.2fx (median of pair ratios; target at most 1.5x) %s\n", ratio,
        ratio <= 1.5 ? "ok" : "MISSED");
    return 0;
}
