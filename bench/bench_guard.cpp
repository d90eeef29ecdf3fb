// The cost of the guard: a load of one session of a folder that holds 100 sessions of all five
// kinds (1 MB each, each naming 200 of the folder's files) and 20 000 files, with the other
// sessions guarding their media and without, against a plain read of the 100 session files.
// Each iteration times the three side by side (plain reads, the load without the guard, the load
// with it), so every ratio has a denominator measured as often as its load, under the same
// conditions; the figures are medians of the iterations' own ratios. The first load reads every
// session; a steady load finds them known. Target: what the guard adds is at most 1.3 times the
// plain reads once the sessions are known.
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "median.h"
#include "platform/process_setup.h"
#include "readers/session_kinds.h"
#include "support/ses_writer.h"
#include "support/session_files.h"
#include "sweep/sweep.h"

namespace {

using namespace tidewick;
using bench::median;

constexpr int kFiles = 20000;
constexpr int kSessions = 100;
constexpr int kNamed = 200;  // files each session names
constexpr qsizetype kSessionBytes = 1024 * 1024;

// Pads the bytes of a session of `kind` to about a megabyte the way its editor fills a session:
// clips, track settings, a header chunk.
QByteArray padded(SessionKindId kind, const QStringList& paths) {
    QByteArray bytes = test::sessionBytes(kind, paths);
    const qsizetype missing = std::max<qsizetype>(kSessionBytes - bytes.size(), 0);
    const auto lines = [missing](const QByteArray& line) {
        return line.repeated(missing / line.size() + 1);
    };
    switch (kind) {
        case SessionKindId::Ses: {
            QList<test::SesEntry> entries;
            for (const QString& path : paths) {
                entries.append({path.toUtf8()});
            }
            return test::SesWriter()
                .chunk("hdr ", QByteArray(missing, '\0'))
                .version("Audition 3.0")
                .list(entries, "Audition 3.0")
                .bytes();
        }
        case SessionKindId::Sesx:
            return bytes.insert(
                bytes.indexOf("  <files>"),
                lines("    <audioClip id=\"7\" name=\"Take 7\" startPoint=\"0\"/>\r\n"));
        case SessionKindId::Xml:
            return bytes.insert(bytes.indexOf("  <Session>"),
                                lines("    <Gain>0.000000</Gain>\r\n"));
        case SessionKindId::Rpp:
            return bytes.insert(bytes.indexOf("  <TRACK") + 10,
                                lines("    VOLPAN 1 0 -1 -1 1\r\n"));
        case SessionKindId::Veg:
            return QByteArray(missing, 'x') + bytes;
        case SessionKindId::Als:
        case SessionKindId::Aup:
        case SessionKindId::Ardour:
        case SessionKindId::Flp:
        case SessionKindId::Mlt:
            break;  // the project kinds' own benchmark pads theirs
    }
    return bytes;
}

struct Folder {
    QTemporaryDir dir;
    QStringList sessions;

    Folder() {
        QStringList names;
        for (int i = 0; i < kFiles; ++i) {
            names.append(QStringLiteral("take %1.wav").arg(i, 6, 10, QLatin1Char('0')));
            QFile file(dir.filePath(names.last()));
            if (!file.open(QIODevice::WriteOnly) || file.write("RIFF") != 4) {
                std::exit(1);
            }
        }
        for (int s = 0; s < kSessions; ++s) {
            // The five kinds of their own tabs in turn; the project kinds have a benchmark of
            // their own.
            constexpr qsizetype kTabKinds = 5;
            const SessionKind& kind = sessionKinds().at(s % kTabKinds);
            QStringList paths;
            for (int k = 0; k < kNamed; ++k) {
                paths.append(dir.filePath(names[(s * kNamed + k) % kFiles]));
            }
            const QString name =
                QStringLiteral("s%1").arg(s, 3, 10, QLatin1Char('0')) + kind.sessionPattern.mid(1);
            sessions.append(dir.filePath(name));
            if (!test::writeFile(sessions.last(), padded(kind.id, paths))) {
                std::exit(1);
            }
        }
    }
};

Folder& folder() {
    static Folder f;
    return f;
}

SweepRequest request(bool guarded) {
    SweepRequest r;
    r.kind = &sessionKind(SessionKindId::Sesx);
    r.folder = folder().dir.path();
    r.sessions = sessionFiles(FileSystem(), r.folder, r.kind->sessionPattern);
    r.selected = 0;
    r.recordFolder = QStringLiteral("_Recorded");
    r.guarded = guarded;
    return r;
}

// Seconds of one call of `work`.
template <typename Work>
double secondsOf(Work work) {
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e9;
}

void plainReads() {
    qint64 total = 0;
    for (const QString& path : folder().sessions) {
        QFile file(path);
        file.open(QIODevice::ReadOnly);
        total += file.readAll().size();
    }
    benchmark::DoNotOptimize(total);
}

// Each iteration: the plain reads, the load without the guard, the load with it; with `known`,
// from a cache that the first iteration filled, as the window keeps the sessions for its next
// loads (another session, media type or sub-folder); else every load reads them all. The
// iteration's time is the guarded load's; the counters are medians over the iterations.
void guardedLoads(benchmark::State& state, bool known) {
    const SweepRequest unguarded = request(false);
    const SweepRequest guarded = request(true);
    const FileSystem fs;
    SessionCache kept;
    if (known) {
        sweepFolder(guarded, fs, {}, &kept);
    }
    std::vector<double> plain, without, with, ratios, added;
    for (auto _ : state) {
        plain.push_back(secondsOf(plainReads));
        without.push_back(secondsOf([&] { sweepFolder(unguarded, fs); }));
        with.push_back(secondsOf([&] { sweepFolder(guarded, fs, {}, known ? &kept : nullptr); }));
        state.SetIterationTime(with.back());
        ratios.push_back(with.back() / plain.back());
        added.push_back((with.back() - without.back()) / plain.back());
    }
    state.counters["plain_ms"] = median(plain) * 1e3;
    state.counters["unguarded_ms"] = median(without) * 1e3;
    state.counters["load_ms"] = median(with) * 1e3;
    state.counters["load_per_plain"] = median(ratios);
    state.counters["guard_per_plain"] = median(added);
}

void BM_FirstLoad(benchmark::State& state) {
    guardedLoads(state, false);
}
void BM_SteadyLoad(benchmark::State& state) {
    guardedLoads(state, true);
}

BENCHMARK(BM_FirstLoad)->Unit(benchmark::kMillisecond)->UseManualTime()->MinTime(3);
BENCHMARK(BM_SteadyLoad)->Unit(benchmark::kMillisecond)->UseManualTime()->MinTime(3);

// Keeps the counters of each benchmark, for the summary.
class CounterReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            counters_[run.run_name.function_name] = run.counters;
        }
        ConsoleReporter::ReportRuns(runs);
    }
    double counter(const std::string& benchmark, const std::string& name) const {
        const auto found = counters_.find(benchmark);
        if (found == counters_.end() || !found->second.count(name)) {
            return 0.0;
        }
        return found->second.at(name).value;
    }

private:
    std::map<std::string, benchmark::UserCounters> counters_;
};

}  // namespace

int main(int argc, char** argv) {
    tidewick::prepareProcess();  // the process set up as the programs set theirs up
    benchmark::Initialize(&argc, argv);
    const Sweep check = sweepFolder(request(true), FileSystem());
    qint64 bytes = 0;
    for (const QString& path : folder().sessions) {
        bytes += QFileInfo(path).size();
    }
    std::printf(
        "folder: %d files, %d sessions of the five kinds, %.1f MB in all, each naming %d; "
        "kept by the guard: %lld\n",
        kFiles, kSessions, double(bytes) / 1048576.0, kNamed,
        static_cast<long long>(check.kept.size()));
    CounterReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("medians of each iteration's own figures; plain reads timed beside every load\n");
    for (const auto& run : {std::pair{"BM_FirstLoad", "first load (every session read)"},
                            std::pair{"BM_SteadyLoad", "steady load (sessions known)"}}) {
        const char* label = run.second;
        const auto counter = [&](const char* what) { return reporter.counter(run.first, what); };
        if (counter("plain_ms") <= 0) {
            continue;
        }
        std::printf(
            "%-32s %6.1f ms, without the guard %6.1f ms, plain reads %5.1f ms: "
            "load / plain reads %.2fx, guard / plain reads %.2fx\n",
            label, counter("load_ms"), counter("unguarded_ms"), counter("plain_ms"),
            counter("load_per_plain"), counter("guard_per_plain"));
    }
    const double steady = reporter.counter("BM_SteadyLoad", "guard_per_plain");
    std::printf("steady guard / plain reads: %.2fx (target 1.3x) %s\n", steady,
                steady <= 1.3 ? "ok" : "MISSED");
    return 0;
}
