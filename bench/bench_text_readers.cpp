// The Audition XML and SESX readers against a plain read of the same file: a generated XML
// session (CR LF line ends, as Audition 3 wrote it) and a SESX session (LF line ends, as
// Audition CS5.5 and later write it) of about 100 MB each, mostly clip lines, listing 20 000
// media files.
#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>
#include <functional>

#include "plain_read.h"
#include "platform/process_setup.h"
#include "ratio_reporter.h"
#include "readers/session_kinds.h"

namespace {

using namespace tidewick;

constexpr qint64 kTargetBytes = 100 * 1024 * 1024;
// A session lists each media file once, however many clips use it; this is a very large one.
constexpr int kMediaFiles = 20000;

QByteArray mediaPath(int k, char separator) {
    const QByteArray song = QByteArray::number(k % 60);
    QByteArray path = "C:/Users/Producer/Music/Audition Sessions/2011 Live Album/Song " + song +
                      "/Song " + song + "_Recorded/Lead Vocal &amp; Harmony Take " +
                      QByteArray::number(k) + ".wav";
    if (separator != '/') {
        path.replace('/', separator);
    }
    return path;
}

// Writes the head, clip lines up to about the target size, the list of media files and the
// tail, a megabyte at a time, so that the session is never held in memory whole.
bool writeSession(const QString& path, const QByteArray& head,
                  const std::function<QByteArray(int)>& clip, const QByteArray& media,
                  const QByteArray& tail) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(head) != head.size()) {
        return false;
    }
    qint64 written = head.size() + media.size() + tail.size();
    QByteArray buffer;
    for (int i = 0; written < kTargetBytes; ++i) {
        const QByteArray lines = clip(i);
        buffer += lines;
        written += lines.size();
        if (buffer.size() > (1 << 20)) {
            file.write(buffer);
            buffer.clear();
        }
    }
    buffer += media + tail;
    return file.write(buffer) == buffer.size();
}

QByteArray mediaList(QByteArray (*element)(int)) {
    QByteArray list;
    for (int k = 0; k < kMediaFiles; ++k) {
        list += element(k);
    }
    return list;
}

// One wave entry as the Audition 3 export lays it out: 22 lines, the path on the 19th.
QByteArray xmlEntry(int i) {
    const QByteArray n = QByteArray::number(i + 1);
    QByteArray entry = "      <EntityInfo_Wave_" + n + ">\r\n";
    for (int line = 1; line < 18; ++line) {
        entry += "        <Property" + QByteArray::number(line) + ">" + QByteArray::number(i) +
                 "</Property" + QByteArray::number(line) + ">\r\n";
    }
    entry += "        " + mediaPath(i, '\\') + "\r\n";
    entry += "        <SampleRate>48000</SampleRate>\r\n        <Channels>2</Channels>\r\n";
    entry += "      </EntityInfo_Wave_" + n + ">\r\n";
    return entry;
}

// One clip of the session as the Audition 3 export lays it out, outside the wave list.
QByteArray xmlClip(int i) {
    const QByteArray n = QByteArray::number(i);
    return "    <EntityInfo_Clip_" + n + ">\r\n      <WaveID>" +
           QByteArray::number(i % kMediaFiles) + "</WaveID>\r\n      <Track>" +
           QByteArray::number(i % 32) + "</Track>\r\n      <Start>" + n +
           "000</Start>\r\n      <Length>44100</Length>\r\n" +
           "      <Gain>0.000000</Gain>\r\n      <Pan>0.000000</Pan>\r\n    </EntityInfo_Clip_" +
           n + ">\r\n";
}

// One clip of a track with its parameters, as Audition CS5.5 and later write it.
QByteArray sesxClip(int i) {
    const QByteArray n = QByteArray::number(i);
    return R"(        <audioClip clipAutoCrossfade="true" crossFadeHeadClipID="-1" fileID=")" +
           QByteArray::number(i % kMediaFiles) + R"(" id=")" + n + R"(" name="Take )" + n +
           R"(" offset="0" sourceInPoint="0" sourceOutPoint="441000" startPoint=")" + n +
           R"(000"/>)" + "\n          <clipParameters gain=\"1\" mute=\"false\" pan=\"0\"/>\n";
}

QByteArray sesxFileElement(int k) {
    const QByteArray n = QByteArray::number(k);
    return R"(    <file absolutePath=")" + mediaPath(k, '/') + R"(" id=")" + n +
           R"(" mediaHandler="AmioWav" relativePath="Imported Files/Take )" + n + R"(.wav"/>)" +
           "\n";
}

struct Session {
    QString path;
    double megabytes = 0;
};

struct Fixture {
    QTemporaryDir dir;
    Session xml{dir.filePath(QStringLiteral("album.xml"))};
    Session sesx{dir.filePath(QStringLiteral("album.sesx"))};

    Fixture() {
        const bool written =
            writeSession(
                xml.path, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<AuditionSession>\r\n",
                xmlClip,
                "  <EntityInfo_Wave>\r\n" + mediaList(xmlEntry) + "  </EntityInfo_Wave>\r\n",
                "</AuditionSession>\r\n") &&
            writeSession(sesx.path,
                         "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" "
                         "?>\n<!DOCTYPE sesx>\n<sesx version=\"1.7\">\n  <session>\n    <tracks>\n",
                         sesxClip,
                         "    </tracks>\n  </session>\n  <files>\n" + mediaList(sesxFileElement) +
                             "  </files>\n",
                         "</sesx>\n");
        if (!written) {
            std::fprintf(stderr, "cannot write the sessions in %s\n", qPrintable(dir.path()));
            std::exit(1);
        }
        xml.megabytes = bench::megabytesOf(xml.path);
        sesx.megabytes = bench::megabytesOf(sesx.path);
    }
};

Fixture& fixture() {
    static Fixture f;
    return f;
}

void readSession(benchmark::State& state, const Session& session, SessionKindId kind) {
    for (auto _ : state) {
        const SessionRead read = readSessionFile(sessionKind(kind), session.path, {});
        if (read.paths.size() != kMediaFiles) {
            state.SkipWithError("the reader did not find every media path");
        }
    }
}

void BM_PlainReadXml(benchmark::State& state) {
    bench::plainRead(state, fixture().xml.path);
}
void BM_ReadXmlSession(benchmark::State& state) {
    readSession(state, fixture().xml, SessionKindId::Xml);
}
void BM_PlainReadSesx(benchmark::State& state) {
    bench::plainRead(state, fixture().sesx.path);
}
void BM_ReadSesxSession(benchmark::State& state) {
    readSession(state, fixture().sesx, SessionKindId::Sesx);
}

BENCHMARK(BM_PlainReadXml)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_ReadXmlSession)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_PlainReadSesx)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_ReadSesxSession)->Unit(benchmark::kMillisecond)->MinTime(2.0);

}  // namespace

int main(int argc, char** argv) {
    tidewick::prepareProcess();  // the process set up as the programs set theirs up
    benchmark::Initialize(&argc, argv);
    const Fixture& f = fixture();
    std::printf("xml: %.1f MB, sesx: %.1f MB, each listing %d media files among its clips\n",
                f.xml.megabytes, f.sesx.megabytes, kMediaFiles);
    tidewick::bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatio("xml (readSessionFile)", "BM_ReadXmlSession", "BM_PlainReadXml",
                        f.xml.megabytes, 3.0);
    reporter.printRatio("sesx (readSessionFile)", "BM_ReadSesxSession", "BM_PlainReadSesx",
                        f.sesx.megabytes, 3.0);
    benchmark::Shutdown();
    return 0;
}
