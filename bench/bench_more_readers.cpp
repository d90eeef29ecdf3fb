// The Ableton Live set and Audacity project readers against a plain read of the same file (for
// a Live set, the read and its gunzip), and the peak memory of `tidewick-cli media` reading each
// over the file's unpacked size. Writes a set of about 100 MB unpacked (gzip-packed as Live saves
// it) and a project of about 50 MB in a temporary folder; TIDEWICK_CLI names the program.
#include <benchmark/benchmark.h>
#include <zlib.h>

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
#include "readers/gzip_pieces.h"
#include "readers/session_kinds.h"

namespace {

using namespace tidewick;

QTemporaryDir& folder() {
    static QTemporaryDir dir;
    return dir;
}

// A Live set as Live writes one: tracks of clips, each with its sample's FileRef (Live 11's
// form), and long runs of device parameters between them; the piece of clip `clip`.
QByteArray setPiece(qsizetype clip) {
    static const QByteArray parameters = [] {
        QByteArray text;
        for (int i = 0; i < 40; ++i) {
            text += "\t\t\t<Parameter Id=\"" + QByteArray::number(i) +
                    "\"><Manual Value=\"0.5\" /><AutomationTarget Id=\"7\" /></Parameter>\n";
        }
        return text;
    }();
    const QByteArray take = QByteArray::number(clip % 5000);
    return "\t\t<AudioClip Time=\"" + QByteArray::number(clip) +
           "\"><SampleRef><FileRef><RelativePathType Value=\"3\" /><RelativePath "
           "Value=\"Samples/Recorded/take " +
           take + ".wav\" /><Path Value=\"C:/Users/me/Song Project/Samples/Recorded/take " + take +
           ".wav\" /><Type Value=\"1\" /></FileRef></SampleRef></AudioClip>\n" + parameters;
}

// An Audacity project of many short blocks; the piece of block `block`.
QByteArray projectPiece(qsizetype block) {
    return "\t\t\t<waveblock start=\"" + QByteArray::number(block * 262144) +
           "\">\n\t\t\t\t<simpleblockfile filename=\"e" +
           QByteArray::number(block % 0xFFFFFF, 16).rightJustified(7, '0') +
           ".au\" len=\"262144\" min=\"-0.5\" max=\"0.5\" rms=\"0.1\"/>\n\t\t\t</waveblock>\n";
}

// Writes `head`, pieces up to about `size` bytes and `tail` to `name`, packed with gzip when
// `packed`, a megabyte at a time so that this process never holds the file; the unpacked size.
qsizetype write(const char* name, qsizetype size, const QByteArray& head,
                QByteArray (*piece)(qsizetype), const QByteArray& tail, bool packed) {
    const QString path = folder().filePath(QString::fromLatin1(name));
    gzFile file = gzopen(QFile::encodeName(path).constData(), packed ? "wb6" : "wbT");
    qsizetype written = 0;
    QByteArray chunk = head;
    for (qsizetype i = 0; written + chunk.size() < size; ++i) {
        chunk += piece(i);
        if (chunk.size() > (1 << 20)) {
            written += gzwrite(file, chunk.constData(), unsigned(chunk.size()));
            chunk.clear();
        }
    }
    chunk += tail;
    written += gzwrite(file, chunk.constData(), unsigned(chunk.size()));
    gzclose(file);
    return written;
}

// The baseline of a packed set: the file read and unpacked whole, nothing else.
void readAndGunzip(benchmark::State& state, const QString& path) {
    for (auto _ : state) {
        QFile file(path);
        file.open(QIODevice::ReadOnly);
        const QByteArray packed = file.readAll();
        qsizetype unpacked = 0;
        GunzipPieces pieces(packed);
        for (QByteArrayView piece = pieces.next(); !piece.isEmpty(); piece = pieces.next()) {
            unpacked += piece.size();
        }
        benchmark::DoNotOptimize(unpacked);
    }
}

void readerRead(benchmark::State& state, const QString& path, SessionKindId id) {
    const SessionKind& kind = sessionKind(id);
    for (auto _ : state) {
        const SessionRead read = readSessionFile(kind, path, {folder().path(), nullptr});
        benchmark::DoNotOptimize(read.references.size());
    }
}

}  // namespace

int main(int argc, char** argv) {
    tidewick::prepareProcess();  // the process set up as the programs set theirs up
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    // Written a piece at a time: a child's peak memory counts its parent's from before its exec.
    const qsizetype setSize =
        write("big.als", 100 << 20,
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Ableton MajorVersion=\"5\">\n"
              "\t<LiveSet>\n",
              setPiece, "\t</LiveSet>\n</Ableton>\n", true);
    const qsizetype projectSize =
        write("big.aup", 50 << 20,
              "<?xml version=\"1.0\"?>\n<project version=\"1.3.0\">\n\t<wavetrack>\n", projectPiece,
              "\t</wavetrack>\n</project>\n", false);
    const QString setPath = folder().filePath(QStringLiteral("big.als"));
    const QString projectPath = folder().filePath(QStringLiteral("big.aup"));
    for (const auto& [label, path, unpacked] :
         {std::tuple{"Live set", setPath, setSize},
          std::tuple{"Audacity project", projectPath, projectSize}}) {
        const qint64 peak = bench::peakMemory(bench::cliProgram(), {QStringLiteral("media"), path});
        const double ratio = double(peak) / double(unpacked);
        std::printf("%-18s media: %8.1f MiB peak / %8.1f MiB unpacked = %.2fx (target 2.0x) %s\n",
                    label, double(peak) / (1 << 20), double(unpacked) / (1 << 20), ratio,
                    peak > 0 && ratio <= 2.0 ? "ok" : "MISSED");
    }
    benchmark::RegisterBenchmark("als/plain_read", readAndGunzip, setPath)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("als/reader", readerRead, setPath, SessionKindId::Als)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("aup/plain_read", bench::plainRead, projectPath)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("aup/reader", readerRead, projectPath, SessionKindId::Aup)
        ->Unit(benchmark::kMillisecond);
    bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatio("als (gunzip included)", "als/reader", "als/plain_read",
                        double(setSize) / (1 << 20), 3.0);
    reporter.printRatio("aup", "aup/reader", "aup/plain_read", bench::megabytesOf(projectPath),
                        3.0);
    benchmark::Shutdown();
    return 0;
}
