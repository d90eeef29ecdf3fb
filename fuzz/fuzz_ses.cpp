// Feeds arbitrary bytes to the binary session reader, as a probe and as a full read.
#include <cstddef>
#include <cstdint>

#include "platform/recording_interaction.h"
#include "readers/import_ses.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tidewick;
    const QByteArrayView bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    ProgramState state;
    RecordingInteraction ui;
    FileSystem fs;
    ReaderContext context{state, ui, fs, QString()};
    QString version;
    ImportSesBytes(bytes, version, true, context);
    ImportSesBytes(bytes, version, false, context);
    return 0;
}
