// Feeds arbitrary bytes to the binary session reader, as a probe and as a full read.
#include "fuzz_reader.h"
#include "readers/import_ses.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tidewick::fuzz::Input input(data, size);
    QString version;
    tidewick::ImportSesBytes(input.bytes, version, true, input.context);
    tidewick::ImportSesBytes(input.bytes, version, false, input.context);
    return 0;
}
