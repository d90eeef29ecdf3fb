// Feeds arbitrary bytes to the REAPER project reader, as a single project and as one of a
// whole-folder scan.
#include "fuzz_reader.h"
#include "readers/import_rpp.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tidewick::fuzz::Input input(data, size);
    tidewick::ImportRppBytes(input.bytes, input.context);
    input.state.CheckAllFiles = true;
    tidewick::ImportRppBytes(input.bytes, input.context);
    return 0;
}
