// Feeds arbitrary bytes to the REAPER project reader, as a single project and as one of a
// whole-folder scan.
#include <cstddef>
#include <cstdint>

#include <QDir>

#include "platform/recording_interaction.h"
#include "readers/import_rpp.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tidewick;
    const QByteArrayView bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    ProgramState state;
    RecordingInteraction ui;
    FileSystem fs;
    ReaderContext context{state, ui, fs, QDir::tempPath()};
    ImportRppBytes(bytes, context);
    state.CheckAllFiles = true;
    ImportRppBytes(bytes, context);
    return 0;
}
