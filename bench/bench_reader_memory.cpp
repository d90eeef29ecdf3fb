// Peak memory of reading one large session of each kind, as `tidewick-cli media` does it, as a
// ratio to the file's size (the baseline: the read itself must hold the whole file once). Each
// file is a plausible session grown large: a REAPER project with long envelope lines and a few
// hundred sources, an XML export and a SESX session with many entries, a Vegas project and a
// binary session with many file records; and the hostile form, one line of the whole size.
// TIDEWICK_MEMORY_MB sets the size (1024 by default); TIDEWICK_CLI the program.
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <cstdio>
#include <functional>

#include "cli_program.h"
#include "peak_memory.h"

namespace {

// Writes about `bytes` bytes: `head`, then `body(i)` again and again, then `tail`.
bool writeSession(const QString& path, qint64 bytes, const QByteArray& head,
                  const std::function<QByteArray(qint64)>& body, const QByteArray& tail) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(head) < 0) {
        return false;
    }
    QByteArray chunk;
    for (qint64 i = 0; file.size() + chunk.size() < bytes - tail.size(); ++i) {
        chunk += body(i);
        if (chunk.size() > (1 << 20)) {
            if (file.write(chunk) < 0) {
                return false;
            }
            chunk.clear();
        }
    }
    return file.write(chunk) >= 0 && file.write(tail) >= 0;
}

QByteArray number(qint64 i) {
    return QByteArray::number(i);
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QString cli = tidewick::bench::cliProgram();
    bool ok = false;
    qint64 megabytes = qEnvironmentVariableIntValue("TIDEWICK_MEMORY_MB", &ok);
    if (!ok || megabytes <= 0) {
        megabytes = 1024;
    }
    const qint64 size = megabytes << 20;
    QTemporaryDir dir;
    const QByteArray envelope = "PT 0.000000 1.000000 0 0 0 0.2 " + QByteArray(200, '7') + '\n';
    const struct {
        const char* label;
        const char* file;
        QByteArray head;
        std::function<QByteArray(qint64)> body;
        QByteArray tail;
    } sessions[] = {
        {"REAPER project", "big.rpp", "<REAPER_PROJECT 0.1\n  RIPPLE 0\n",
         [&](qint64 i) {
             return i % 5000 == 0
                        ? "<SOURCE WAVE\nFILE \"Audio/take " + number(i / 5000) + ".wav\"\n>\n"
                        : envelope;
         },
         ">\n"},
        {"REAPER project, one line", "line.rpp", "<REAPER_PROJECT ",
         [](qint64) { return QByteArray(4096, 'x'); }, "\n"},
        {"XML export", "big.xml", "<?xml version=\"1.0\"?>\r\n<AuditionSession>\r\n",
         [](qint64 i) {
             QByteArray entry = "<EntityInfo_Wave>\r\n<EntityInfo_Wave_1>\r\n";
             for (int line = 0; line < 17; ++line) {
                 entry += "  <Field>value</Field>\r\n";
             }
             return entry + "  C:\\Audio\\take " + number(i % 100000) + ".wav\r\n a\r\n b\r\n" +
                    " c\r\n</EntityInfo_Wave>\r\n";
         },
         "</AuditionSession>\r\n"},
        {"XML export, one line", "line.xml", "<?xml?>\r\n",
         [](qint64) { return QByteArray(4096, 'x'); }, "\r\n"},
        {"SESX session", "big.sesx", "<?xml version=\"1.0\"?>\r\n<sesx>\r\n<files>\r\n",
         [](qint64 i) {
             return "<file id=\"" + number(i) + "\" absolutePath=\"C%3a\\Audio\\take " +
                    number(i % 100000) + ".wav\" mediaHandler=\"AmioWav\"/>\r\n";
         },
         "</files>\r\n</sesx>\r\n"},
    };
    std::printf(
        "peak memory of `tidewick-cli media` over the size of the session it reads "
        "(%lld MiB each; target at most 2.0x)\n",
        static_cast<long long>(megabytes));
    for (const auto& session : sessions) {
        const QString path = dir.filePath(QString::fromLatin1(session.file));
        if (!writeSession(path, size, session.head, session.body, session.tail)) {
            std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
            return 1;
        }
        const qint64 fileSize = QFileInfo(path).size();
        const qint64 peak = tidewick::bench::peakMemory(cli, {QStringLiteral("media"), path});
        QFile::remove(path);
        if (peak < 0) {
            std::fprintf(stderr, "%s did not run\n", qPrintable(cli));
            return 1;
        }
        const double ratio = double(peak) / double(fileSize);
        std::printf("%-26s %8.1f MiB peak / %8.1f MiB file = %.2fx %s\n", session.label,
                    double(peak) / (1 << 20), double(fileSize) / (1 << 20), ratio,
                    ratio <= 2.0 ? "ok" : "MISSED");
    }
    return 0;
}
