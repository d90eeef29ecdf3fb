// Feeds arbitrary bytes to the reader of an Ardour session.
#include "fuzz_reader.h"
#include "readers/import_ardour.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tidewick::fuzz::Input input(data, size);
    tidewick::readArdourSession(input.bytes, input.place);
    return 0;
}
