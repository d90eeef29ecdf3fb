#include <gtest/gtest.h>

#include <QLocale>

#include "forms/captions.h"
#include "support/reader_fixture.h"  // prints texts in failures

namespace tidewick {
namespace {

// Counts with their frame's caption; bytes in the locale's grouping, also past 2 GB.
TEST(SweepCaptions, CountTheLinesAndTheBytes) {
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    const QString caption = "Media File(s) Used  (NB: Files with a check mark exist on Disk)";
    EXPECT_EQ(usedFrameText(1, true, false, "mix.ses"), "0 " + caption);
    EXPECT_EQ(usedFrameText(3, false, false, "mix.ses", true),
              "Reading stopped: mix.ses: 3 " + caption);
    EXPECT_EQ(usedFrameText(3, false, true, "mix.xml"), " Multiple SES files: 3 " + caption);
    EXPECT_EQ(unusedFrameText(2, 5), "Files to be Moved - [2/5]");
    EXPECT_EQ(usedLineTooltip({"D:/Song/take1.wav", false, {}, {}, "take1.wav"}),
              "Not found as written; kept: take1.wav in the session folder has its name");
    EXPECT_EQ(sizesText(3221225472, 1024),
              "Listed Other Files: 3,221,225,472 bytes (3,072.00Mb) - Selected Other Files: "
              "1,024 bytes (0.00Mb)");
    QLocale::setDefault(QLocale::c());
}

}  // namespace
}  // namespace tidewick
