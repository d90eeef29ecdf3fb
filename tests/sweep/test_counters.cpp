#include <gtest/gtest.h>

#include <tuple>

#include "sweep_fixture.h"

namespace tidewick {
namespace {

const QString kUsed = "Media File(s) Used  (NB: Files with a check mark exist on Disk)";

QString sizes(const char* listed, const char* selected) {
    return QString("Listed Other Files: %1 - Selected Other Files: %2").arg(listed, selected);
}

class Counters : public test::SweepFixture {
protected:
    void SetUp() override {
        SweepFixture::SetUp();
        touch("mix.ses");
        open(SessionKindId::Ses);
        select("mix.ses");
    }
    void listWavFiles() {
        QString mpath = folder(), sFolder, extn = "*.wav", ignore;
        form.FillUnused(mpath, sFolder, extn, ignore);
    }
    void clickCheckMark(int row, bool checked) {  // as the user does in the list
        form.UnusedFiles.setData(form.UnusedFiles.index(row), checked ? Qt::Checked : Qt::Unchecked,
                                 Qt::CheckStateRole);
    }
};

TEST_F(Counters, TheCaptionsCountTheLinesAndEmptyListsShowZeroSizes) {
    ui.pointerChanges.clear();
    form.UpdateSelCounter();
    EXPECT_EQ(ui.pointerChanges, (QList<bool>{true, false}));
    EXPECT_EQ(form.UnusedFrame.text(), "Files to be Moved");
    EXPECT_EQ(form.InfoLabel.text(), sizes("0 bytes (0.00Mb)", "0 bytes (0.00Mb)"));
    const std::tuple<QStringList, bool, const char*> rows[] = {
        {{}, false, ""},
        {{"<no media files found>"}, false, "0 "},
        {{"/a.wav", "/b.wav"}, false, "mix.ses: 2 "},
        {{"/a.wav", "/b.wav"}, true, " Multiple SES files: 2 "},
    };
    for (const auto& [lines, all, caption] : rows) {
        form.UsedFiles.clear();
        for (const QString& line : lines) {
            form.UsedFiles.addItem(line);
        }
        form.state.CheckAllFiles = all;
        form.UpdateSelCounter();
        EXPECT_EQ(form.UsedFrame.text(), caption + kUsed);
    }
}

TEST_F(Counters, ACheckMarkMovesTheSelectedTotalAndTheClickTheCounter) {
    touch("a.wav", 3145728);
    touch("b.wav", 1024);
    listWavFiles();
    clickCheckMark(0, true);
    EXPECT_EQ(form.InfoLabel.text(), sizes("3,146,752 bytes (3.00Mb)", "3,145,728 bytes (3.00Mb)"));
    form.UnusedFiles_Click();
    EXPECT_EQ(form.UnusedFrame.text(), "Files to be Moved - [1/2]");
    clickCheckMark(1, true);
    clickCheckMark(0, false);
    EXPECT_EQ(form.InfoLabel.text(), sizes("3,146,752 bytes (3.00Mb)", "1,024 bytes (0.00Mb)"));
}

TEST_F(Counters, TotalsPastTwoGigabytesFollowTheLocaleAndAlwaysGroupDigits) {
    touch("long1.wav", 1610612736);
    touch("long2.wav", 1610612736);
    listWavFiles();
    form.UnusedFiles.setAllChecked(true);
    const std::pair<QLocale, const char*> locales[] = {
        {QLocale(QLocale::English, QLocale::UnitedStates), "3,221,225,472 bytes (3,072.00Mb)"},
        {QLocale(QLocale::German, QLocale::Germany), "3.221.225.472 bytes (3.072,00Mb)"},
        {QLocale::c(), "3,221,225,472 bytes (3,072.00Mb)"},
    };
    for (const auto& [locale, size] : locales) {
        QLocale::setDefault(locale);
        form.UpdateSizes();
        EXPECT_EQ(form.InfoLabel.text(), sizes(size, size));
    }
}

TEST_F(Counters, AVanishedFileCountsZeroOnceItsMarkChanges) {
    const QString gone = touch("gone.wav", 500);
    touch("kept.wav", 7);
    listWavFiles();
    ASSERT_TRUE(QFile::remove(gone));
    clickCheckMark(0, true);
    EXPECT_EQ(form.InfoLabel.text(), sizes("7 bytes (0.00Mb)", "0 bytes (0.00Mb)"));
}

}  // namespace
}  // namespace tidewick
