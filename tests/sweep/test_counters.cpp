#include <gtest/gtest.h>

#include "sweep_fixture.h"

namespace tidewick {
namespace {

using test::SweepFixture;

const QString kUsedCaption =
    QStringLiteral("Media File(s) Used  (NB: Files with a check mark exist on Disk)");

class Counters : public SweepFixture {
protected:
    void SetUp() override {
        SweepFixture::SetUp();
        touch(QStringLiteral("mix.ses"));
        open(SessionKindId::Ses);
        select(QStringLiteral("mix.ses"));
    }

    // Lists the files named in the session folder, as a rebuild of the list does.
    void listFiles(const QString& pattern = QStringLiteral("*.wav")) {
        form.UnusedFiles.clear();
        QString mpath = folder();
        QString sFolder;
        QString extn = pattern;
        QString ignore = QStringLiteral("mix.ses");
        form.FillUnused(mpath, sFolder, extn, ignore);
    }

    // Changes a check mark as the user does in the list.
    void clickCheckMark(int row, bool checked) {
        form.UnusedFiles.setData(form.UnusedFiles.index(row), checked ? Qt::Checked : Qt::Unchecked,
                                 Qt::CheckStateRole);
    }

    QTemporaryDir records;
};

TEST_F(Counters, EmptyListsShowThePlainCaptionsAndZeroSizes) {
    ui.pointerChanges.clear();
    form.UpdateSelCounter();
    EXPECT_EQ(form.UsedFrame.text(), kUsedCaption);
    EXPECT_EQ(form.UnusedFrame.text(), QStringLiteral("Files to be Moved"));
    EXPECT_EQ(form.InfoLabel.text(),
              QStringLiteral("Listed Other Files: 0 bytes (0.00Mb) - Selected Other Files: 0 bytes "
                             "(0.00Mb)"));
    EXPECT_EQ(ui.pointerChanges, (QList<bool>{true, false}));
}

struct UsedCaptionCase {
    const char* name;
    QStringList lines;
    bool allFiles;
    QString caption;
};

class UsedCaption : public Counters, public ::testing::WithParamInterface<UsedCaptionCase> {};

TEST_P(UsedCaption, CountsTheUsedLines) {
    for (const QString& line : GetParam().lines) {
        form.UsedFiles.addItem(line);
    }
    form.state.CheckAllFiles = GetParam().allFiles;
    form.UpdateSelCounter();
    EXPECT_EQ(form.UsedFrame.text(), GetParam().caption + kUsedCaption);
}

INSTANTIATE_TEST_SUITE_P(
    Modes, UsedCaption,
    ::testing::Values(UsedCaptionCase{"NoMedia",
                                      {QStringLiteral("<no media files found>")},
                                      false,
                                      QStringLiteral("0 ")},
                      UsedCaptionCase{"OneSession",
                                      {QStringLiteral("/a.wav"), QStringLiteral("/b.wav")},
                                      false,
                                      QStringLiteral("mix.ses: 2 ")},
                      UsedCaptionCase{"WholeFolder",
                                      {QStringLiteral("/a.wav"), QStringLiteral("/b.wav")},
                                      true,
                                      QStringLiteral(" Multiple SES files: 2 ")}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(Counters, ACheckMarkMovesTheSelectedTotalAndTheClickTheCounter) {
    touch(QStringLiteral("a.wav"), 3145728);
    touch(QStringLiteral("b.wav"), 1024);
    listFiles();
    form.UpdateSelCounter();
    EXPECT_EQ(form.UnusedFrame.text(), QStringLiteral("Files to be Moved - [0/2]"));

    clickCheckMark(0, true);
    EXPECT_EQ(form.InfoLabel.text(),
              QStringLiteral("Listed Other Files: 3,146,752 bytes (3.00Mb) - Selected Other Files: "
                             "3,145,728 bytes (3.00Mb)"));
    EXPECT_EQ(form.UnusedFrame.text(), QStringLiteral("Files to be Moved - [0/2]"));
    form.UnusedFiles_Click();
    EXPECT_EQ(form.UnusedFrame.text(), QStringLiteral("Files to be Moved - [1/2]"));

    clickCheckMark(1, true);
    clickCheckMark(0, false);
    EXPECT_EQ(form.InfoLabel.text(),
              QStringLiteral("Listed Other Files: 3,146,752 bytes (3.00Mb) - Selected Other Files: "
                             "1,024 bytes (0.00Mb)"));
}

// The number formats follow the locale the program runs in.
struct LocaleCase {
    const char* name;
    QLocale locale;
    QString line;
};

class Formats : public Counters, public ::testing::WithParamInterface<LocaleCase> {};

TEST_P(Formats, GroupDigitsAndShowTwoDecimals) {
    touch(QStringLiteral("one.wav"), 3145728);
    listFiles();
    form.UnusedFiles.setChecked(0, true);
    QLocale::setDefault(GetParam().locale);
    form.UpdateSizes();
    EXPECT_EQ(form.InfoLabel.text(), GetParam().line);
}

INSTANTIATE_TEST_SUITE_P(
    Locales, Formats,
    ::testing::Values(
        LocaleCase{"UnitedStates", QLocale(QLocale::English, QLocale::UnitedStates),
                   QStringLiteral("Listed Other Files: 3,145,728 bytes (3.00Mb) - Selected Other "
                                  "Files: 3,145,728 bytes (3.00Mb)")},
        LocaleCase{"Germany", QLocale(QLocale::German, QLocale::Germany),
                   QStringLiteral("Listed Other Files: 3.145.728 bytes (3,00Mb) - Selected Other "
                                  "Files: 3.145.728 bytes (3,00Mb)")},
        // "C" leaves group separators out unless asked; the format always groups.
        LocaleCase{"C", QLocale::c(),
                   QStringLiteral("Listed Other Files: 3,145,728 bytes (3.00Mb) - Selected Other "
                                  "Files: 3,145,728 bytes (3.00Mb)")}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(Counters, TotalsPastTwoGigabytesDoNotOverflow) {
    touch(QStringLiteral("long1.wav"), 1610612736);  // 1.5 GiB each, sparse
    touch(QStringLiteral("long2.wav"), 1610612736);
    listFiles();
    form.UnusedFiles.setAllChecked(true);
    form.UpdateSizes();
    EXPECT_EQ(form.InfoLabel.text(),
              QStringLiteral("Listed Other Files: 3,221,225,472 bytes (3,072.00Mb) - Selected "
                             "Other Files: 3,221,225,472 bytes (3,072.00Mb)"));
}

TEST_F(Counters, AVanishedFileCountsZeroOnceLookedAtAgain) {
    const QString gone = touch(QStringLiteral("gone.wav"), 500);
    touch(QStringLiteral("kept.wav"), 7);
    listFiles();
    ASSERT_TRUE(QFile::remove(gone));

    clickCheckMark(0, true);  // gone.wav: its mark changed, so it is read again
    EXPECT_EQ(form.InfoLabel.text(),
              QStringLiteral("Listed Other Files: 7 bytes (0.00Mb) - Selected Other Files: 0 "
                             "bytes (0.00Mb)"));
    listFiles();  // a rebuild reads every file
    form.UpdateSizes();
    EXPECT_EQ(form.UnusedFiles.count(), 1);
    EXPECT_TRUE(form.InfoLabel.text().startsWith(QStringLiteral("Listed Other Files: 7 bytes")));
}

TEST_F(Counters, LinesResolveAgainstTheSessionFolderWhoeverAddedThem) {
    touch(QStringLiteral("Sub/take.wav"), 40);
    const QString elsewhere = touchIn(records.path(), QStringLiteral("far.wav"), 900);
    form.UnusedFiles.addItem(QStringLiteral("Sub/take.wav"), true);
    form.UnusedFiles.addItem(QStringLiteral("missing.wav"), true);
    form.UnusedFiles.addItem(elsewhere, true);  // an absolute line names no file there
    form.UpdateSizes();
    EXPECT_EQ(form.InfoLabel.text(),
              QStringLiteral("Listed Other Files: 40 bytes (0.00Mb) - Selected Other Files: 40 "
                             "bytes (0.00Mb)"));
}

}  // namespace
}  // namespace tidewick
