#pragma once

#include <QDir>
#include <QFile>
#include <QString>

// The session folder the move and restore benchmarks work on: `files` takes of `size` bytes,
// no two alike, beside a session that uses none of them.
namespace tidewick::bench {

inline bool writeTakes(const QString& folder, int files, qint64 size) {
    QDir().mkpath(folder);
    QFile session(folder + QStringLiteral("/session.sesx"));
    if (!session.open(QIODevice::WriteOnly) ||
        session.write("<?xml version=\"1.0\"?>\n<sesx version=\"1.4\">\n</sesx>\n") < 0) {
        return false;
    }
    QByteArray bytes(size, 'x');
    for (int index = 0; index < files; ++index) {
        bytes[index % size] = char(index);
        QFile file(folder + QStringLiteral("/take%1.wav").arg(index, 4, 10, QLatin1Char('0')));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != size) {
            return false;
        }
    }
    return true;
}

}  // namespace tidewick::bench
