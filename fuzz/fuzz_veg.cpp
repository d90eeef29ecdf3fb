// Feeds arbitrary bytes to the Vegas project reader.
#include <cstddef>
#include <cstdint>

#include "platform/recording_interaction.h"
#include "readers/import_veg.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tidewick;
    const QByteArrayView bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    ProgramState state;
    RecordingInteraction ui;
    FileSystem fs;
    ReaderContext context{state, ui, fs, QString()};
    ImportVegBytes(bytes, context);
    return 0;
}
