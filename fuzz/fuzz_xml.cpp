// Feeds arbitrary bytes to the Audition XML session reader.
#include <cstddef>
#include <cstdint>

#include "platform/recording_interaction.h"
#include "readers/import_xml.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tidewick;
    const QByteArrayView bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    ProgramState state;
    RecordingInteraction ui;
    FileSystem fs;
    ReaderContext context{state, ui, fs, QString()};
    ImportXmlBytes(bytes, context);
    return 0;
}
