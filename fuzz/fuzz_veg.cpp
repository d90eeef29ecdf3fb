// Feeds arbitrary bytes to the Vegas project reader.
#include "fuzz_reader.h"
#include "readers/import_veg.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tidewick::fuzz::Input input(data, size);
    tidewick::readVegSession(input.bytes, input.place);
    return 0;
}
