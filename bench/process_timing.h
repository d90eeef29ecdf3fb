#pragma once

#include <QElapsedTimer>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

#include "median.h"

// Whole processes timed as a user runs them, for the benchmarks that pair a Tidewick command
// with the system's own tool.
namespace tidewick::bench {

/// Wall seconds of one run of `program` with its output thrown away; negative on failure.
inline double timeRun(
    const QString& program, const QStringList& arguments,
    const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment()) {
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setStandardOutputFile(QProcess::nullDevice());
    QElapsedTimer timer;
    timer.start();
    process.start(program, arguments);
    if (!process.waitForFinished(600000) || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0) {
        return -1;
    }
    return double(timer.nsecsElapsed()) / 1e9;
}

}  // namespace tidewick::bench
