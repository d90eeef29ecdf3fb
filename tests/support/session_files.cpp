#include "support/session_files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include "support/ses_writer.h"

namespace tidewick::test {

QByteArrayList xmlWaveBlock(const QByteArrayList& pathLines) {
    QByteArrayList out{"    <EntityInfo_Wave>"};
    for (const QByteArray& pathLine : pathLines) {
        out.append("      <EntityInfo_Wave_1>");
        for (int i = 1; i < 18; ++i) {
            out.append("        <Field>0</Field>");
        }
        out +=
            {pathLine, "        <Flags>0</Flags>", "        <Peak/>", "      </EntityInfo_Wave_1>"};
    }
    return out << "    </EntityInfo_Wave>";
}

QByteArray sesxFileElement(const QByteArray& path, const QByteArray& indent) {
    return indent + R"(<file absolutePath=")" + path + R"(" id="0" mediaHandler="AmioWav"/>)";
}

QByteArray vegRecord(qint32 type, const QByteArray& path) {
    return "iiii" + SesWriter::i32(type) + QByteArray(36, 'x') + path;
}

QByteArray sessionBytesOf(SessionKindId kind, const QByteArrayList& paths) {
    const QByteArray run("\xFF\xFF\xFF\xFF", 4);
    QByteArray bytes = run + "." + run + "." + run + ".";  // three runs; a record follows a 4th
    QList<SesEntry> entries;
    QByteArrayList lines;
    switch (kind) {
        case SessionKindId::Ses:
            for (const QByteArray& path : paths) {
                entries.append({path});
            }
            return SesWriter().version("Audition 3.0").list(entries, "Audition 3.0").bytes();
        case SessionKindId::Veg:
            for (const QByteArray& path : paths) {
                bytes += run + vegRecord(1, path + QByteArray(2, '\0'));
            }
            return bytes;
        case SessionKindId::Sesx:
            lines = {R"(<?xml version="1.0" encoding="UTF-8" standalone="no" ?>)",
                     R"(<sesx version="1.7">)", "  <files>"};
            for (const QByteArray& path : paths) {
                lines.append(sesxFileElement(path));
            }
            lines += {"  </files>", "</sesx>"};
            break;
        case SessionKindId::Xml:
            lines = QByteArrayList{R"(<?xml version="1.0" encoding="UTF-8" standalone="no"?>)",
                                   "<AuditionSession>", "  <Session>"} +
                    xmlWaveBlock(paths) + QByteArrayList{"  </Session>", "</AuditionSession>"};
            break;
        case SessionKindId::Rpp:
            lines = {"<REAPER_PROJECT 0.1 \"6.0\"", "  <TRACK"};
            for (const QByteArray& path : paths) {
                lines += {"    <SOURCE WAVE", "      FILE \"" + path + "\"", "    >"};
            }
            lines += {"  >", ">"};
            break;
        case SessionKindId::Als:
            // Live 11's form: a path relative to the set's folder, or an absolute one alone.
            lines = {R"(<?xml version="1.0" encoding="UTF-8"?>)", R"(<Ableton MajorVersion="5">)"};
            for (const QByteArray& path : paths) {
                const bool rooted = path.startsWith('/') || path.contains(':');
                lines.append(R"(<FileRef><RelativePathType Value=")" +
                             QByteArray(rooted ? "0" : "1") + R"("/><)" +
                             QByteArray(rooted ? "Path" : "RelativePath") + R"( Value=")" + path +
                             R"("/></FileRef>)");
            }
            lines.append("</Ableton>");
            break;
        case SessionKindId::Aup:
            // Files beside the project, as a compressed copy names them.
            lines = {R"(<?xml version="1.0"?>)", R"(<project version="1.3.0">)"};
            for (const QByteArray& path : paths) {
                lines.append(R"(<import filename=")" + path + R"("/>)");
            }
            lines.append("</project>");
            break;
        case SessionKindId::Ardour:
            lines = {R"(<?xml version="1.0" encoding="UTF-8"?>)", R"(<Session version="6000">)",
                     "  <Sources>"};
            for (const QByteArray& path : paths) {
                lines.append(R"(    <Source name=")" + path + R"(" type="audio" channel="0"/>)");
            }
            lines += {"  </Sources>", "</Session>"};
            break;
        case SessionKindId::Flp: {
            QList<FlpEvent> events = {{199, "20.0.0"}};
            for (const QByteArray& path : paths) {
                events.append({196, utf16(QString::fromUtf8(path))});
            }
            return flpProject(events);
        }
        case SessionKindId::Mlt:
            lines = {R"(<?xml version="1.0" encoding="utf-8"?>)", R"(<mlt version="7.0.0">)"};
            for (const QByteArray& path : paths) {
                lines.append(R"(  <producer id="p"><property name="resource">)" + path +
                             "</property></producer>");
            }
            lines.append("</mlt>");
            break;
    }
    return lines.join("\r\n") + "\r\n";
}

QByteArray utf16(const QString& text) {
    QByteArray bytes(text.size() * 2 + 2, '\0');
    qToLittleEndian<char16_t>(text.utf16(), text.size(), bytes.data());
    return bytes;
}

QByteArray flpProject(const QList<FlpEvent>& events) {
    QByteArray data;
    for (const auto& [id, bytes] : events) {
        data += char(id);
        for (quint32 length = quint32(bytes.size()); id >= 192; length >>= 7) {
            data += char((length & 0x7F) | (length > 0x7F ? 0x80 : 0));
            if (length <= 0x7F) {
                break;
            }
        }
        data += bytes;
    }
    return "FLhd" + SesWriter::i32(6) + QByteArray("\0\0\x01\0\x60\0", 6) + "FLdt" +
           SesWriter::i32(qint32(data.size())) + data;
}

QByteArray sessionBytes(SessionKindId kind, const QStringList& paths) {
    QByteArrayList bytes;
    for (const QString& path : paths) {
        bytes.append(kind == SessionKindId::Veg ? QByteArray(path.size() * 2, '\0')
                                                : path.toUtf8());
        if (kind == SessionKindId::Veg) {
            qToLittleEndian<char16_t>(path.utf16(), path.size(), bytes.last().data());
        }
    }
    return sessionBytesOf(kind, bytes);
}

bool writeFile(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QByteArray readFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace tidewick::test
