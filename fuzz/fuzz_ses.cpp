// Feeds arbitrary bytes to the binary session reader.
#include "fuzz_reader.h"
#include "readers/import_ses.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tidewick::fuzz::Input input(data, size);
    tidewick::readSesSession(input.bytes, input.place);
    return 0;
}
