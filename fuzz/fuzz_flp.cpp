// Feeds arbitrary bytes to the reader of an FL Studio project.
#include "fuzz_reader.h"
#include "readers/import_flp.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tidewick::fuzz::Input input(data, size);
    tidewick::readFlpSession(input.bytes, input.place);
    return 0;
}
