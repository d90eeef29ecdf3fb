// The binary session reader against a plain read of the same file: a generated session of
// about 50 MB with 200 000 file entries.
#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>

#include "plain_read.h"
#include "platform/process_setup.h"
#include "ratio_reporter.h"
#include "readers/session_kinds.h"

namespace {

using namespace tidewick;

constexpr int kEntries = 200000;

QByteArray i32(qint64 value) {
    const auto v = quint32(value);
    const char b[4] = {char(v), char(v >> 8), char(v >> 16), char(v >> 24)};
    return QByteArray(b, 4);
}

// A session laid out as Audition 3 writes it: header, version, one LIST of file entries.
QByteArray makeSession() {
    QByteArray entries;
    entries.reserve(kEntries * 260);
    for (int i = 0; i < kEntries; ++i) {
        const QByteArray name = "D:\\Projects\\2009 Album Sessions\\Song " +
                                QByteArray::number(i % 40) +
                                "\\Recorded\\Lead Vocal Takes Comped And Edited By Hand\\Take " +
                                QByteArray::number(i) + " - " + QByteArray(120, 'x') + ".wav";
        const QByteArray buffer = name + QByteArray(9, '\0');
        entries += "FILE" + i32(16 + buffer.size()) + i32(i) + i32(0) + buffer;
    }
    QByteArray body = "hdr " + i32(16) + QByteArray(16, '\0');
    body += "vers" + i32(13) + QByteArray("Audition 3.0", 13);
    body += "LIST" + i32(4 + entries.size()) + i32(entries.size()) + entries;
    return "COOLNESS" + i32(12 + body.size()) + body;
}

struct Fixture {
    QTemporaryDir dir;
    QString path = dir.filePath(QStringLiteral("album.ses"));
    double megabytes = 0;

    Fixture() {
        const QByteArray bytes = makeSession();
        megabytes = double(bytes.size()) / (1024.0 * 1024.0);
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
            std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
            std::exit(1);
        }
    }
};

Fixture& fixture() {
    static Fixture f;
    return f;
}

void BM_PlainRead(benchmark::State& state) {
    bench::plainRead(state, fixture().path);
}

void BM_ReadSesSession(benchmark::State& state) {
    const SessionKind& kind = sessionKind(SessionKindId::Ses);
    for (auto _ : state) {
        const SessionRead read = readSessionFile(kind, fixture().path, {});
        if (!read.ses || read.ses->records.size() != kEntries) {
            state.SkipWithError("the reader did not read every entry");
        }
    }
}

BENCHMARK(BM_PlainRead)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_ReadSesSession)->Unit(benchmark::kMillisecond)->MinTime(2.0);

}  // namespace

int main(int argc, char** argv) {
    tidewick::prepareProcess();  // the process set up as the programs set theirs up
    benchmark::Initialize(&argc, argv);
    std::printf("session: %.1f MB, %d entries\n", fixture().megabytes, kEntries);
    tidewick::bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatio("ses (readSessionFile)", "BM_ReadSesSession", "BM_PlainRead",
                        fixture().megabytes, 3.0);
    benchmark::Shutdown();
    return 0;
}
