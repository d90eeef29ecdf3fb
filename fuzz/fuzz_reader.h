#pragma once

#include <QByteArrayView>
#include <QDir>

#include <cstddef>
#include <cstdint>

#include "platform/file_system.h"
#include "readers/reader_contract.h"

// What every fuzz target needs: the bytes as a view, and a place for the session beside the
// real disk.
namespace tidewick::fuzz {

struct Input {
    Input(const std::uint8_t* data, std::size_t size)
        : bytes(reinterpret_cast<const char*>(data), qsizetype(size)) {}

    QByteArrayView bytes;
    FileSystem fs;
    SessionPlace place{QDir::tempPath(), &fs};
};

}  // namespace tidewick::fuzz
