#pragma once

#include <benchmark/benchmark.h>

#include <QByteArray>
#include <QFile>
#include <QString>

namespace tidewick::bench {

/// The baseline of the reader benchmarks: the whole file read into memory, nothing else.
inline void plainRead(benchmark::State& state, const QString& path) {
    qint64 size = 0;
    for (auto _ : state) {
        QFile file(path);
        file.open(QIODevice::ReadOnly);
        const QByteArray bytes = file.readAll();
        benchmark::DoNotOptimize(bytes.data());
        size = bytes.size();
    }
    state.SetBytesProcessed(state.iterations() * size);
}

/// The file's size in megabytes of 1048576 bytes.
inline double megabytesOf(const QString& path) {
    return double(QFile(path).size()) / (1024.0 * 1024.0);
}

}  // namespace tidewick::bench
