#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

#include "platform/file_system.h"
#include "platform/recording_interaction.h"
#include "readers/reader_contract.h"

namespace tidewick::test {

/// What a reader test needs: the program state, a recording stand-in for the user, the real
/// disk and a temporary folder for session files written by the test.
struct ReaderFixture {
    ProgramState state;
    RecordingInteraction ui;
    FileSystem fs;
    QTemporaryDir dir;
    ReaderContext context{state, ui, fs, dir.path()};

    /// Writes `bytes` to `name` inside the temporary folder and returns the full path.
    QString write(const QString& name, const QByteArray& bytes) const;
};

/// The folder of real session files kept beside the project (shared/corpus).
QString corpusPath(const QString& relative);

}  // namespace tidewick::test
