// The cost of the guard: a load of one session of a folder that holds 100 sessions of all five
// kinds (1 MB each, each naming 200 of the folder's files) and 20 000 files, with the other
// sessions guarding their media and without, against a plain read of the 100 session files.
// Target: what the guard adds is at most 1.3 times the plain reads.
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <cstdio>

#include "plain_read.h"
#include "ratio_reporter.h"
#include "readers/session_kinds.h"
#include "support/ses_writer.h"
#include "support/session_files.h"
#include "sweep/sweep.h"

namespace {

using namespace tidewick;

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
            const SessionKind& kind = sessionKinds().at(s % sessionKinds().size());
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

// With `cache`, the sessions read at the first load are kept, as the window keeps them for its
// next loads (another session, media type or sub-folder); without, every load reads them all.
void load(benchmark::State& state, bool guarded, SessionCache* cache = nullptr) {
    const SweepRequest r = request(guarded);
    const FileSystem fs;
    for (auto _ : state) {
        const Sweep sweep = sweepFolder(r, fs, {}, cache);
        benchmark::DoNotOptimize(sweep.others.size());
    }
}

void BM_PlainReads(benchmark::State& state) {
    for (auto _ : state) {
        qint64 total = 0;
        for (const QString& path : folder().sessions) {
            QFile file(path);
            file.open(QIODevice::ReadOnly);
            total += file.readAll().size();
        }
        benchmark::DoNotOptimize(total);
    }
}
void BM_UnguardedLoad(benchmark::State& state) {
    load(state, false);
}
void BM_GuardedLoad(benchmark::State& state) {
    load(state, true);
}
void BM_GuardedLoadSessionsKnown(benchmark::State& state) {
    SessionCache cache;
    load(state, true, &cache);
}

BENCHMARK(BM_PlainReads)->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK(BM_UnguardedLoad)->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK(BM_GuardedLoad)->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK(BM_GuardedLoadSessionsKnown)->Unit(benchmark::kMillisecond)->MinTime(2);

}  // namespace

int main(int argc, char** argv) {
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
    tidewick::bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    const double plain = reporter.seconds("BM_PlainReads");
    const double without = reporter.seconds("BM_UnguardedLoad");
    const double first = reporter.seconds("BM_GuardedLoad");
    const double known = reporter.seconds("BM_GuardedLoadSessionsKnown");
    if (plain > 0) {
        const double firstRatio = (first - without) / plain;
        const double knownRatio = (known - without) / plain;
        std::printf(
            "without the guard %.1f ms, plain reads of the 100 sessions %.1f ms\n"
            "first load (every session read)  %.1f ms: guard / plain reads %.2fx\n"
            "a load with the sessions known   %.1f ms: guard / plain reads %.2fx "
            "(target 1.3x) %s\n",
            without * 1e3, plain * 1e3, first * 1e3, firstRatio, known * 1e3, knownRatio,
            knownRatio <= 1.3 ? "ok" : "MISSED");
    }
    return 0;
}
