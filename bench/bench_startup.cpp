#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <cstdio>

// Start-up of the desktop program, from process start until its window has been shown, as a
// ratio to a main window that shows one label, started by the same binary in the same way (a
// window that draws text pays for the font database as Tidewick does; an empty one never loads
// it). Both run on the offscreen platform with a fresh settings folder. The program is found
// beside this benchmark's build folder, or at the path in TIDEWICK_PROGRAM.

namespace {

QString programPath() {
    const QString given = qEnvironmentVariable("TIDEWICK_PROGRAM");
    if (!given.isEmpty()) {
        return given;
    }
    return QDir(QCoreApplication::applicationDirPath())
        .absoluteFilePath(QStringLiteral("../src/app/tidewick"));
}

QTemporaryDir& settingsFolder() {
    static QTemporaryDir folder;
    return folder;
}

// Runs the program once with `arguments`; returns the wall time in seconds, or a negative value
// when it did not end well.
double runOnce(const QStringList& arguments) {
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), settingsFolder().path());
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(settingsFolder().path());
    QElapsedTimer timer;
    timer.start();
    process.start(programPath(), arguments);
    if (!process.waitForFinished(30000) || process.exitCode() != 0) {
        return -1;
    }
    return static_cast<double>(timer.nsecsElapsed()) / 1e9;
}

void run(benchmark::State& state, const QStringList& arguments) {
    for (auto _ : state) {
        const double seconds = runOnce(arguments);
        if (seconds < 0) {
            state.SkipWithError("the program did not start and end cleanly");
            return;
        }
        state.SetIterationTime(seconds);
    }
}

const QStringList kLabelWindow = {QStringLiteral("--label-window"),
                                  QStringLiteral("--quit-when-shown")};

void BM_LabelWindowStartup(benchmark::State& state) {
    run(state, kLabelWindow);
}

void BM_MainWindowStartup(benchmark::State& state) {
    run(state, {QStringLiteral("--quit-when-shown")});
}

BENCHMARK(BM_LabelWindowStartup)->UseManualTime()->Iterations(10)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MainWindowStartup)->UseManualTime()->Iterations(10)->Unit(benchmark::kMillisecond);

// The median of `runs` alternating runs of each, so both see the same machine load.
void printRatio(int runs) {
    QList<double> label;
    QList<double> main;
    for (int run = 0; run < runs; ++run) {
        label.append(runOnce(kLabelWindow));
        main.append(runOnce({QStringLiteral("--quit-when-shown")}));
    }
    std::sort(label.begin(), label.end());
    std::sort(main.begin(), main.end());
    const double labelMedian = label.at(runs / 2);
    const double mainMedian = main.at(runs / 2);
    if (labelMedian <= 0 || mainMedian <= 0) {
        std::printf("start-up ratio: the program did not run (%s)\n",
                    qPrintable(QFileInfo(programPath()).absoluteFilePath()));
        return;
    }
    const double ratio = mainMedian / labelMedian;
    std::printf(
        "start-up: main window %.1f ms, one-label window %.1f ms, ratio %.2f (target 2.00) %s\n",
        mainMedian * 1000, labelMedian * 1000, ratio, ratio <= 2 ? "ok" : "MISSED");
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    printRatio(15);
    return 0;
}
