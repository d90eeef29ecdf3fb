// Feeds arbitrary bytes to the Audacity project reader.
#include "fuzz_reader.h"
#include "readers/import_aup.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tidewick::fuzz::Input input(data, size);
    tidewick::readAupSession(input.bytes, input.place);
    return 0;
}
