// Feeds arbitrary bytes to the Audition XML session reader.
#include "fuzz_reader.h"
#include "readers/import_xml.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tidewick::fuzz::Input input(data, size);
    tidewick::readXmlSession(input.bytes, input.place);
    return 0;
}
