#include "support/session_files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include "support/ses_writer.h"

namespace tidewick::test {

namespace {

QByteArray lines(const QByteArrayList& list) {
    return list.join("\r\n") + "\r\n";
}

}  // namespace

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
    out.append("    </EntityInfo_Wave>");
    return out;
}

QByteArray sesxFileElement(const QByteArray& path, const QByteArray& indent) {
    return indent + R"(<file absolutePath=")" + path + R"(" id="0" mediaHandler="AmioWav"/>)";
}

QByteArray vegRecord(qint32 type, const QByteArray& path) {
    return "iiii" + SesWriter::i32(type) + QByteArray(36, 'x') + path;
}

QByteArray sessionBytesOf(SessionKindId kind, const QByteArrayList& paths) {
    QByteArrayList out;
    switch (kind) {
        case SessionKindId::Ses: {
            SesWriter writer;
            writer.version("Audition 3.0");
            QList<SesEntry> entries;
            for (const QByteArray& path : paths) {
                entries.append({path});
            }
            if (!entries.isEmpty()) {
                writer.list(entries, "Audition 3.0");
            }
            return writer.bytes();
        }
        case SessionKindId::Sesx:
            out = {R"(<?xml version="1.0" encoding="UTF-8" standalone="no" ?>)", "<!DOCTYPE sesx>",
                   R"(<sesx version="1.7">)", "  <files>"};
            for (const QByteArray& path : paths) {
                out.append(sesxFileElement(path));
            }
            return lines(out + QByteArrayList{"  </files>", "</sesx>"});
        case SessionKindId::Xml:
            out = {R"(<?xml version="1.0" encoding="UTF-8" standalone="no"?>)", "<AuditionSession>",
                   "  <Session>"};
            return lines(out + xmlWaveBlock(paths) +
                         QByteArrayList{"  </Session>", "</AuditionSession>"});
        case SessionKindId::Rpp:
            out = {"<REAPER_PROJECT 0.1 \"6.0\"", "  <TRACK", "    <ITEM"};
            for (const QByteArray& path : paths) {
                out += {"      <SOURCE WAVE", "        FILE \"" + path + "\"", "      >"};
            }
            return lines(out + QByteArrayList{"    >", "  >", ">"});
        case SessionKindId::Veg: {
            // Each path lies behind the fourth run of four 0xFF bytes, in a record of type 1.
            const QByteArray run("\xFF\xFF\xFF\xFF", 4);
            QByteArray bytes = run + "." + run + "." + run + ".";
            for (const QByteArray& path : paths) {
                bytes += run + vegRecord(1, path + QByteArray(2, '\0'));
            }
            return bytes;
        }
    }
    return {};
}

QByteArray sessionBytes(SessionKindId kind, const QStringList& paths) {
    QByteArrayList bytes;
    for (const QString& path : paths) {
        if (kind == SessionKindId::Veg) {
            bytes.append(QByteArray(path.size() * 2, '\0'));
            qToLittleEndian<char16_t>(path.utf16(), path.size(), bytes.last().data());
        } else {
            bytes.append(path.toUtf8());
        }
    }
    return sessionBytesOf(kind, bytes);
}

bool writeFile(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

}  // namespace tidewick::test
