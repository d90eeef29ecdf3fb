// Feeds arbitrary bytes to the reader of an MLT project of Kdenlive or Shotcut.
#include "fuzz_reader.h"
#include "readers/import_mlt.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tidewick::fuzz::Input input(data, size);
    tidewick::readMltSession(input.bytes, input.place);
    return 0;
}
