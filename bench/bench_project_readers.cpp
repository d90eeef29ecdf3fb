// The REAPER and Vegas readers against a plain read of the same file. Each reader reads its file
// in one go and then walks the bytes in memory, so it should stay within a small factor of the
// read itself. Generates a project of about 100 MB per kind in a temporary folder.
#include <benchmark/benchmark.h>

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QTemporaryDir>
#include <QtEndian>

#include <cstdio>
#include <random>
#include <string>

#include "plain_read.h"
#include "platform/process_setup.h"
#include "ratio_reporter.h"
#include "readers/session_kinds.h"

namespace {

using namespace tidewick;

constexpr qsizetype kTargetSize = 100 * 1024 * 1024;

// A REAPER project as REAPER writes it: tracks of items whose sources name files in a record
// folder, plug-in state as long base64 lines, CR LF line ends.
QByteArray makeRpp() {
    std::mt19937 random(7);
    const char* alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    QByteArray out;
    out.reserve(kTargetSize + 65536);
    out +=
        "<REAPER_PROJECT 0.1 \"7.14/win64\" 1712345678\r\n  RIPPLE 0 0\r\n"
        "  RECORD_PATH \"Media\" \"\"\r\n";
    const char* kinds[] = {"WAVE", "FLAC", "MP3", "VORBIS", "MIDI"};
    for (int track = 0; out.size() < kTargetSize; ++track) {
        out += "  <TRACK {0F8A42C1-7E1D-4B5C-9F3A-" +
               QByteArray::number(track).rightJustified(12, '0') + "}\r\n    NAME \"Track " +
               QByteArray::number(track) +
               "\"\r\n    PEAKCOL 16576\r\n    VOLPAN 1 0 -1 -1 1\r\n    MUTESOLO 0 0 0\r\n"
               "    <FXCHAIN\r\n      <VST \"VST: ReaEQ (Cockos)\" reaeq.dll 0 \"\" 1919247729\r\n";
        for (int line = 0; line < 8; ++line) {
            out += "        ";
            for (int c = 0; c < 88; ++c) {
                out += alphabet[random() % 64];
            }
            out += "\r\n";
        }
        out += "      >\r\n    >\r\n";
        // Items as REAPER writes them: about 1.5 KB each, one source with its file.
        for (int item = 0; item < 40; ++item) {
            const char* kind = kinds[random() % 5];
            const QByteArray guid =
                "{6B7C1D2E-3F40-4A5B-8C9D-" +
                QByteArray::number(qulonglong(random()), 16).rightJustified(12, '0') + "}";
            out += "    <ITEM\r\n      POSITION " + QByteArray::number(item * 3.25) +
                   "\r\n      SNAPOFFS 0\r\n      LENGTH 3.25\r\n      LOOP 1\r\n"
                   "      ALLTAKES 0\r\n      FADEIN 1 0.01 0 1 0 0 0\r\n"
                   "      FADEOUT 1 0.01 0 1 0 0 0\r\n      MUTE 0 0\r\n      SEL 0\r\n"
                   "      IGUID " +
                   guid + "\r\n      IID " + QByteArray::number(item) + "\r\n      NAME \"Track " +
                   QByteArray::number(track) +
                   " take\"\r\n"
                   "      VOLPAN 1 0 1 -1\r\n      SOFFS 0\r\n      PLAYRATE 1 1 0 -1 0 0.0025\r\n"
                   "      CHANMODE 0\r\n      GUID " +
                   guid +
                   "\r\n"
                   "      <SOURCE " +
                   kind + "\r\n";
            if (QByteArrayView(kind) == "MIDI") {
                out +=
                    "        HASDATA 1 960 QN\r\n        CCINTERP 32\r\n        POOLEDEVTS "
                    "{1F2E3D4C-5B6A-4978-8695-A4B3C2D1E0F9}\r\n";
                for (int event = 0; event < 24; ++event) {
                    out += "        E " + QByteArray::number(event * 240) + " 90 3c 60\r\n";
                }
            } else {
                out += "        FILE \"Media\\Track " + QByteArray::number(track % 64) + "-take-" +
                       QByteArray::number(int(random() % 500)) + ".wav\"\r\n";
            }
            out +=
                "      >\r\n      <TAKEFX\r\n        WNDRECT 24 52 655 408\r\n"
                "        SHOW 0\r\n        LASTSEL 0\r\n        DOCKED 0\r\n"
                "        BYPASS 0 0 0\r\n        <VST \"VST: ReaComp (Cockos)\" reacomp.dll 0 \"\" "
                "1919247213\r\n";
            for (int line = 0; line < 8; ++line) {
                out += "          ";
                for (int c = 0; c < 88; ++c) {
                    out += alphabet[random() % 64];
                }
                out += "\r\n";
            }
            out += "        >\r\n        FLOATPOS 0 0 0 0\r\n        FXID " + guid +
                   "\r\n        WAK 0 0\r\n      >\r\n    >\r\n";
        }
        out += "  >\r\n";
    }
    out += ">\r\n";
    return out;
}

// A Vegas project: long binary stretches (random bytes, zeros, small numbers) with an
// occasional run of four 0xFF bytes and a media record with a UTF-16 path.
QByteArray makeVeg() {
    std::mt19937 random(11);
    QByteArray out;
    out.reserve(kTargetSize + 65536);
    auto le32 = [&out](qint32 value) {
        char bytes[4];
        qToLittleEndian(value, bytes);
        out.append(bytes, 4);
    };
    auto run = [&out] { out.append(4, '\xFF'); };
    for (int i = 0; out.size() < kTargetSize; ++i) {
        const int stretch = 4096 + int(random() % 60000);
        for (int b = 0; b < stretch; ++b) {
            const unsigned r = random();
            switch (r % 4) {
                case 0:
                    out += char(r >> 8);
                    break;
                case 1:
                    out += '\0';
                    break;
                default:
                    out += char((r >> 8) % 16);
                    break;
            }
        }
        run();
        out.append(4, '\0');
        if (i % 3 == 0) {
            le32(0);  // a run with no media record
            continue;
        }
        le32(1 + i % 2);
        out.append(36, '\0');
        const QString path = QStringLiteral("C:\\Users\\Ana\\Vídeos\\Projeto %1\\clip-%2.mp4")
                                 .arg(i % 40)
                                 .arg(int(random() % 300));
        for (const QChar c : path) {
            out += char(c.unicode() & 0xFF);
            out += char(c.unicode() >> 8);
        }
        out.append(2, '\0');
    }
    // Random bytes may spell the end tag by chance; the scan must see the whole file.
    for (qsizetype at = out.indexOf("list"); at >= 0; at = out.indexOf("list", at)) {
        out[at] = 'L';
    }
    return out;
}

QTemporaryDir& folder() {
    static QTemporaryDir dir;
    return dir;
}

QString writeFile(const QString& name, const QByteArray& bytes) {
    const QString path = folder().filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
        std::exit(1);
    }
    return path;
}

void readerRead(benchmark::State& state, const QString& path, SessionKindId kind) {
    const FileSystem fs;
    const SessionPlace place{folder().path(), &fs};
    qsizetype found = 0;
    for (auto _ : state) {
        found = readSessionFile(sessionKind(kind), path, place).paths.size();
        benchmark::DoNotOptimize(found);
    }
    state.SetBytesProcessed(state.iterations() * QFile(path).size());
    state.counters["paths"] = double(found);
}

}  // namespace

int main(int argc, char** argv) {
    tidewick::prepareProcess();  // the process set up as the programs set theirs up
    benchmark::Initialize(&argc, argv);
    if (!folder().isValid()) {
        std::fprintf(stderr, "no temporary folder\n");
        return 1;
    }
    struct Kind {
        const char* name;
        QString path;
        SessionKindId kind;
    };
    const Kind kinds[] = {
        {"rpp", writeFile(QStringLiteral("big.rpp"), makeRpp()), SessionKindId::Rpp},
        {"veg", writeFile(QStringLiteral("big.veg"), makeVeg()), SessionKindId::Veg},
    };
    for (const Kind& kind : kinds) {
        const std::string name = kind.name;
        benchmark::RegisterBenchmark((name + "/plain_read").c_str(), bench::plainRead, kind.path)
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark((name + "/reader").c_str(), readerRead, kind.path, kind.kind)
            ->Unit(benchmark::kMillisecond);
    }
    bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    for (const Kind& kind : kinds) {
        const std::string name = kind.name;
        reporter.printRatio(name, name + "/reader", name + "/plain_read",
                            bench::megabytesOf(kind.path), 3.0);
    }
    benchmark::Shutdown();
    return 0;
}
