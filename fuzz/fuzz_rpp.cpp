// Feeds arbitrary bytes to the REAPER project reader, and folds its record path lines as a
// single project and as one of a whole-folder scan.
#include "fuzz_reader.h"
#include "readers/import_rpp.h"
#include "text/path_text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tidewick::fuzz::Input input(data, size);
    const tidewick::SessionRead read = tidewick::readRppSession(input.bytes, input.place);
    QString projectFolder = input.place.folder;
    tidewick::AddBackslash(projectFolder);
    for (const bool wholeFolder : {false, true}) {
        QString recordFolder;
        if (read.reaper) {
            for (const tidewick::RecordPathLine& line : read.reaper->recordPaths) {
                recordFolder =
                    tidewick::foldRecordPath(recordFolder, line, projectFolder, wholeFolder);
            }
        }
    }
    return 0;
}
