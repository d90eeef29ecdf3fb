#pragma once

#include <QFile>
#include <QTemporaryDir>
#include <cstdio>
#include <cstdlib>

// The folder the sweep benchmarks work on: many small media files and a SESX session that names
// every fifth of them.
namespace tidewick::bench {

constexpr int kFiles = 50000;
constexpr int kUsedEvery = 5;  // 10 000 of 50 000

// A session folder: `files` media files of a few bytes each, and session.sesx naming every
// fifth of them; with `used` false the session names none, so every file is an other file.
struct SessionFolder {
    QTemporaryDir dir;

    SessionFolder(int files, bool used) {
        QByteArray session =
            "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>\r\n"
            "<!DOCTYPE sesx>\r\n<sesx version=\"1.7\">\r\n  <files>\r\n";
        for (int i = 0; i < files; ++i) {
            const QString name = QStringLiteral("take %1.wav").arg(i, 6, 10, QLatin1Char('0'));
            QFile file(dir.filePath(name));
            if (!file.open(QIODevice::WriteOnly) || file.write(QByteArray(i % 64, 'x')) < 0) {
                std::fprintf(stderr, "cannot write %s\n", qPrintable(file.fileName()));
                std::exit(1);
            }
            if (used && i % kUsedEvery == 0) {
                session += "    <file absolutePath=\"" + dir.filePath(name).toUtf8() + "\" id=\"" +
                           QByteArray::number(i) + "\" mediaHandler=\"AmioWav\"/>\r\n";
            }
        }
        session += "  </files>\r\n</sesx>\r\n";
        QFile file(dir.filePath(QStringLiteral("session.sesx")));
        if (!file.open(QIODevice::WriteOnly) || file.write(session) != session.size()) {
            std::exit(1);
        }
    }
};

}  // namespace tidewick::bench
