#pragma once

#include <QCoreApplication>
#include <QDir>
#include <QString>

// The command-line program the whole-process benchmarks run: the one at TIDEWICK_CLI, or the
// one built beside the benchmarks.
namespace tidewick::bench {

inline QString cliProgram() {
    const QString given = qEnvironmentVariable("TIDEWICK_CLI");
    if (!given.isEmpty()) {
        return given;
    }
    return QDir(QCoreApplication::applicationDirPath())
        .absoluteFilePath(QStringLiteral("../src/app/tidewick-cli"));
}

}  // namespace tidewick::bench
