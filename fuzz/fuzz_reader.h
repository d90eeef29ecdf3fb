#pragma once

#include <QByteArrayView>
#include <QDir>

#include <cstddef>
#include <cstdint>

#include "platform/recording_interaction.h"
#include "readers/reader_contract.h"

// What every fuzz target needs: the bytes as a view and a reader context whose user answers
// every message with its default button.
namespace tidewick::fuzz {

struct Input {
    Input(const std::uint8_t* data, std::size_t size)
        : bytes(reinterpret_cast<const char*>(data), qsizetype(size)) {}

    QByteArrayView bytes;
    ProgramState state;
    RecordingInteraction ui;
    FileSystem fs;
    ReaderContext context{state, ui, fs, QDir::tempPath()};
};

}  // namespace tidewick::fuzz
