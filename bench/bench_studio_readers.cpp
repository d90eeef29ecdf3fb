// The Ardour session, FL Studio project and MLT project readers against a plain read of the same
// file, and the peak memory of `tidewick-cli media` reading each over the file's size. Writes a
// session or project of about 64 MB of each kind in a temporary folder, the media-naming parts a
// small share of it as in real ones; TIDEWICK_CLI names the program.
#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <cstdio>
#include <vector>

#include "cli_program.h"
#include "peak_memory.h"
#include "plain_read.h"
#include "platform/process_setup.h"
#include "ratio_reporter.h"
#include "readers/session_kinds.h"
#include "support/session_files.h"

namespace {

using namespace tidewick;

constexpr qsizetype kSize = 64 << 20;

QTemporaryDir& folder() {
    static QTemporaryDir dir;
    return dir;
}

// Writes `head`, pieces up to about kSize bytes and `tail` to `name`, a megabyte at a time so
// that this process never holds the file; its path.
QString write(const char* name, const QByteArray& head, QByteArray (*piece)(qsizetype),
              const QByteArray& tail) {
    const QString path = folder().filePath(QString::fromLatin1(name));
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    QByteArray chunk = head;
    qsizetype written = 0;
    for (qsizetype i = 0; written + chunk.size() < kSize; ++i) {
        chunk += piece(i);
        if (chunk.size() > (1 << 20)) {
            written += file.write(chunk);
            chunk.clear();
        }
    }
    file.write(chunk + tail);
    return path;
}

// An Ardour session's Sources: `count` takes.
QByteArray ardourSources(int count) {
    QByteArray text = "  <Sources>\n";
    for (int i = 0; i < count; ++i) {
        const QByteArray n = QByteArray::number(i);
        text += "    <Source name=\"Take" + n + "%L.wav\" type=\"audio\" flags=\"\" id=\"" + n +
                "\" channel=\"0\" origin=\"\"/>\n";
    }
    return text + "  </Sources>\n";
}

// The rest of an Ardour session: its regions (and the routes and playlists like them).
QByteArray ardourPiece(qsizetype i) {
    const QByteArray n = QByteArray::number(i);
    QByteArray piece = "  <Regions>\n";
    for (int r = 0; r < 40; ++r) {
        piece += "    <Region id=\"" + n + "\" name=\"Take" + n +
                 "\" start=\"0\" length=\"4410000\" position=\"0\" layer=\"0\" "
                 "flags=\"Opaque,DefaultFadeIn\" source-0=\"" +
                 n + "\"><FadeIn default=\"yes\" active=\"yes\"/></Region>\n";
    }
    return piece + "  </Regions>\n";
}

// An MLT project: a producer now and then among playlists of entries and filters.
QByteArray mltPiece(qsizetype i) {
    const QByteArray n = QByteArray::number(i);
    QByteArray piece = " <producer id=\"producer" + n +
                       "\" in=\"0\" out=\"999\">\n  <property name=\"resource\">clips/shot" + n +
                       ".mp4</property>\n  <property name=\"mlt_service\">avformat</property>\n"
                       "  <property name=\"kdenlive:proxy\">proxy/shot" +
                       n + ".mkv</property>\n </producer>\n <playlist id=\"playlist" + n + "\">\n";
    for (int e = 0; e < 40; ++e) {
        piece += "  <entry producer=\"producer" + n +
                 "\" in=\"0\" out=\"99\">\n   <filter id=\"f\"><property name=\"mlt_service\">"
                 "volume</property><property name=\"level\">0.5</property></filter>\n"
                 "  </entry>\n";
    }
    return piece + " </playlist>\n";
}

// An FL Studio project: a channel's sample path, plugin state and the notes of a pattern.
QByteArray flpPiece(qsizetype i) {
    QByteArray state(8192, '\0');
    for (qsizetype at = 0; at < state.size(); ++at) {
        state[at] = char((at * 7 + i) % 251);
    }
    QList<test::FlpEvent> events = {
        {196, test::utf16(QStringLiteral("C:\\Users\\me\\Samples\\kick %1.wav").arg(i))},
        {213, state},
        {224, QByteArray(20000, '\x01')}};
    const QByteArray project = test::flpProject(events);
    return project.mid(22);  // the events alone, after the header and the data chunk's length
}

void readerRead(benchmark::State& state, const QString& path, SessionKindId id) {
    const SessionKind& kind = sessionKind(id);
    for (auto _ : state) {
        const SessionRead read = readSessionFile(kind, path, {folder().path(), nullptr});
        benchmark::DoNotOptimize(read.references.size());
    }
}

// The FL Studio project's data chunk says how long it is: written once the file is.
void fixFlpLength(const QString& path) {
    QFile file(path);
    file.open(QIODevice::ReadWrite);
    const quint32 length = quint32(file.size() - 22);
    file.seek(18);
    const char bytes[4] = {char(length), char(length >> 8), char(length >> 16), char(length >> 24)};
    file.write(bytes, 4);
}

}  // namespace

int main(int argc, char** argv) {
    tidewick::prepareProcess();  // the process set up as the programs set theirs up
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    const QString ardour = write("big.ardour",
                                 "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Session "
                                 "version=\"7003\" name=\"big\">\n" +
                                     ardourSources(5000),
                                 ardourPiece, "</Session>\n");
    const QString mlt =
        write("big.kdenlive", "<?xml version='1.0' encoding='utf-8'?>\n<mlt root=\"/tmp\">\n",
              mltPiece, "</mlt>\n");
    const QString flp =
        write("big.flp", test::flpProject({{199, "20.9.2.2907"}}), flpPiece, QByteArray());
    fixFlpLength(flp);
    const std::tuple<const char*, QString, SessionKindId> kinds[] = {
        {"ardour", ardour, SessionKindId::Ardour},
        {"flp", flp, SessionKindId::Flp},
        {"mlt", mlt, SessionKindId::Mlt}};
    for (const auto& [label, path, id] : kinds) {
        const qint64 peak = bench::peakMemory(bench::cliProgram(), {QStringLiteral("media"), path});
        const double size = double(QFile(path).size());
        const double ratio = double(peak) / size;
        std::printf("%-8s media: %8.1f MiB peak / %8.1f MiB file = %.2fx (target 2.0x) %s\n", label,
                    double(peak) / (1 << 20), size / (1 << 20), ratio,
                    peak > 0 && ratio <= 2.0 ? "ok" : "MISSED");
        const std::string name = label;
        benchmark::RegisterBenchmark((name + "/plain_read").c_str(), bench::plainRead, path)
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark((name + "/reader").c_str(), readerRead, path, id)
            ->Unit(benchmark::kMillisecond);
    }
    bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    for (const auto& [label, path, id] : kinds) {
        const std::string name = label;
        reporter.printRatio(name, name + "/reader", name + "/plain_read", bench::megabytesOf(path),
                            3.0);
    }
    benchmark::Shutdown();
    return 0;
}
