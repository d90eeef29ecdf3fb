#include "support/session_files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "support/ses_writer.h"

namespace tidewick::test {

namespace {

QByteArray lines(const QByteArrayList& list) {
    return list.join("\r\n") + "\r\n";
}

// An Audition 3 XML export: the path sits on the 18th line after each entry's opening line.
QByteArray xmlSession(const QStringList& paths) {
    QByteArrayList out{R"(<?xml version="1.0" encoding="UTF-8" standalone="no"?>)",
                       "<AuditionSession>", "  <Session>", "    <EntityInfo_Wave>"};
    int number = 0;
    for (const QString& path : paths) {
        const QByteArray n = QByteArray::number(++number);
        out.append("      <EntityInfo_Wave_" + n + ">");
        for (int i = 1; i < 18; ++i) {
            out.append("        <Field" + QByteArray::number(i) + ">0</Field>");
        }
        out.append(path.toUtf8());
        out += QByteArrayList{"        <Flags>0</Flags>", "        <Peak>0</Peak>",
                              "      </EntityInfo_Wave_" + n + ">"};
    }
    out += QByteArrayList{"    </EntityInfo_Wave>", "  </Session>", "</AuditionSession>"};
    return lines(out);
}

QByteArray sesxSession(const QStringList& paths) {
    QByteArrayList out{R"(<?xml version="1.0" encoding="UTF-8" standalone="no" ?>)",
                       "<!DOCTYPE sesx>", R"(<sesx version="1.7">)", "  <files>"};
    for (const QString& path : paths) {
        out.append(R"(    <file absolutePath=")" + path.toUtf8() +
                   R"(" id="0" mediaHandler="AmioWav"/>)");
    }
    out += QByteArrayList{"  </files>", "</sesx>"};
    return lines(out);
}

QByteArray rppProject(const QStringList& paths) {
    QByteArrayList out{"<REAPER_PROJECT 0.1 \"6.0\"", "  <TRACK", "    <ITEM"};
    for (const QString& path : paths) {
        out += QByteArrayList{"      <SOURCE WAVE", "        FILE \"" + path.toUtf8() + "\"",
                              "      >"};
    }
    out += QByteArrayList{"    >", "  >", ">"};
    return lines(out);
}

// Vegas keeps each media path, in UTF-16LE, behind the fourth run of four 0xFF bytes and a
// record of type 1.
QByteArray vegProject(const QStringList& paths) {
    const QByteArray run("\xFF\xFF\xFF\xFF", 4);
    QByteArray out = run + "." + run + "." + run + ".";
    for (const QString& path : paths) {
        QByteArray utf16;
        for (const QChar c : path) {
            utf16 += char(c.unicode() & 0xFF);
            utf16 += char(c.unicode() >> 8);
        }
        out += run + "iiii" + SesWriter::i32(1) + QByteArray(36, 'x') + utf16 + QByteArray(2, '\0');
    }
    return out;
}

QByteArray sesSession(const QStringList& paths) {
    SesWriter writer;
    writer.version("Audition 3.0");
    if (!paths.isEmpty()) {
        QList<SesEntry> entries;
        for (const QString& path : paths) {
            entries.append({path.toUtf8()});
        }
        writer.list(entries, "Audition 3.0");
    }
    return writer.bytes();
}

}  // namespace

QByteArray sessionBytes(SessionKindId kind, const QStringList& paths) {
    switch (kind) {
        case SessionKindId::Ses:
            return sesSession(paths);
        case SessionKindId::Sesx:
            return sesxSession(paths);
        case SessionKindId::Xml:
            return xmlSession(paths);
        case SessionKindId::Rpp:
            return rppProject(paths);
        case SessionKindId::Veg:
            return vegProject(paths);
    }
    return {};
}

bool writeFile(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

}  // namespace tidewick::test
