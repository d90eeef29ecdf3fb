#include "sweep/media_types.h"

namespace tidewick {

const MediaTypeTable& mediaTypeTable() {
    struct Entry {
        const char* name;
        const char* patterns;
    };
    // Creative Sound Blaster stands twice, at 11 and 14; the list shows both.
    static constexpr Entry entries[] = {
        {"All Files", "*.*"},
        {"Wave Form", "*.wav"},
        {"MP3 Compression", "*.mp3"},
        {"Midi Sequence", "*.mid; *.rmi"},
        {"8-bit Signed", "*.sam"},
        {"64-bit Doubles [RAW]", "*.dbl"},
        {"Amiga IFF-8SVX", "*.iff; *.svx"},
        {"Apple AIFF", "*.aif; *.snd"},
        {"ASCII Text Data", "*.txt"},
        {"Audition Loop", "*.cel"},
        {"CD Digital Audio", "*.cda"},
        {"Creative Sound Blaster", "*.voc"},
        {"Dialogic ADPCM", "*.vox"},
        {"DiamondWare Digitized", "*.dwd"},
        {"Creative Sound Blaster", "*.voc"},
        {"NeXT/Sun", "*.au; *.snd"},
        {"Ogg Vorbis", "*.ogg"},
        {"SampleVision", "*.smp"},
        {"Windows Media Audio", "*.wma"},
        {"Windows PCM", "*.wav; *.bwf"},
        {"PCM Raw Data", "*.pcm; *.raw"},
        {"AVI Video", "*.avi"},
        {"WMV/ASF Video", "*.wmv; *.asf"},
        {"QuickTime Video", "*.mov"},
    };
    static const MediaTypeTable table = [] {
        MediaTypeTable made;
        for (const Entry& entry : entries) {
            made.FileTypeNames.append(QString::fromLatin1(entry.name));
            made.FileTypePatterns.append(QString::fromLatin1(entry.patterns));
        }
        return made;
    }();
    return table;
}

QString mediaTypeItemText(const MediaTypeTable& table, int index) {
    return table.FileTypeNames.at(index) + QStringLiteral(" (") + table.FileTypePatterns.at(index) +
           QStringLiteral(")");
}

}  // namespace tidewick
