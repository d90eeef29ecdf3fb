// Feeds arbitrary bytes to the Ableton Live set reader, packed or not.
#include "fuzz_reader.h"
#include "readers/import_als.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tidewick::fuzz::Input input(data, size);
    tidewick::readAlsSession(input.bytes, input.place);
    return 0;
}
