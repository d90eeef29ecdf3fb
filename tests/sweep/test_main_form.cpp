#include <gtest/gtest.h>

#include <QObject>

#include "platform/recording_interaction.h"
#include "sweep/check_list_model.h"
#include "sweep/main_form.h"
#include "sweep/media_types.h"

namespace tidewick {
namespace {

// Counts a signal's emissions and keeps the arguments of the last one.
template <typename Sender, typename... Args>
struct Spy {
    Spy(Sender* sender, void (Sender::*signal)(Args...)) {
        QObject::connect(sender, signal, [this](Args... args) {
            ++count;
            last = {QVariant::fromValue(std::decay_t<Args>(args))...};
        });
    }
    int count = 0;
    QVariantList last;
};

struct CaptionCase {
    int major, minor, revision;
    const char* caption;
};

class VersionCaption : public ::testing::TestWithParam<CaptionCase> {};

TEST_P(VersionCaption, WritesTheRevisionStraightAfterTheMinorVersion) {
    const CaptionCase& c = GetParam();
    EXPECT_EQ(versionCaption(QStringLiteral("Tidewick"), c.major, c.minor, c.revision),
              QString::fromLatin1(c.caption));
}

INSTANTIATE_TEST_SUITE_P(Versions, VersionCaption,
                         ::testing::Values(CaptionCase{6, 0, 0, "Tidewick - Version 6.00"},
                                           CaptionCase{1, 2, 3, "Tidewick - Version 1.23"},
                                           CaptionCase{0, 1, 0, "Tidewick - Version 0.10"},
                                           CaptionCase{2, 10, 11, "Tidewick - Version 2.1011"}));

class MainFormTest : public ::testing::Test {
protected:
    void SetUp() override { form.Form_Load(); }

    RecordingInteraction ui;
    MainForm form{ui};
};

TEST_F(MainFormTest, LoadSetsTheFrameTextsAndStartsOnAllFiles) {
    EXPECT_EQ(form.UsedFrame.text(),
              QStringLiteral("Media File(s) Used  (NB: Files with a check mark exist on Disk)"));
    EXPECT_EQ(form.UnusedFrame.text(), QStringLiteral("Files to be Moved"));
    EXPECT_EQ(form.NoMediaText, QStringLiteral("<no media files found>"));
    EXPECT_EQ(form.WebPage, QStringLiteral(TIDEWICK_WEB_PAGE));
    EXPECT_EQ(form.Main.geometry().size(), QSize(14400, 10725));
    EXPECT_EQ(form.FileTypesCombo.listIndex(), 0);
    EXPECT_EQ(form.FileTypeNames.size(), 24);
    EXPECT_EQ(form.FileTypePatterns.size(), 24);
    EXPECT_TRUE(form.KeepPKCheck.enabled());
    EXPECT_EQ(form.SESFile.listIndex(), -1);
}

TEST_F(MainFormTest, ChoosingAMediaTypeEnablesKeepPeakFilesForAllFilesOnly) {
    form.KeepPKCheck.setChecked(true);
    for (int index = 0; index < 24; ++index) {
        form.FileTypesCombo.setListIndex(index);
        EXPECT_EQ(form.KeepPKCheck.enabled(), index == 0) << index;
        EXPECT_TRUE(form.KeepPKCheck.checked()) << index;
    }
    form.FileTypesCombo.setListIndex(0);
    EXPECT_TRUE(form.KeepPKCheck.enabled());
}

struct FolderCase {
    const char* name;
    QStringList answers;    // what the picker gives back; empty text is a cancel
    const char* typed;      // the text box before the click
    const char* afterText;  // the text box and MoveFolder after it
};

class FolderButton : public MainFormTest, public ::testing::WithParamInterface<FolderCase> {};

TEST_P(FolderButton, PutsThePickedFolderIntoTheTargetAndMoveFolder) {
    const FolderCase& c = GetParam();
    ui.folderAnswers = c.answers;
    form.TargetFolderName.setText(QString::fromLatin1(c.typed));
    form.FolderButton.click();

    ASSERT_EQ(ui.folderRequests.size(), 1);
    EXPECT_EQ(ui.folderRequests.first().prompt,
              QStringLiteral("Please select a folder to move the unused files."));
    EXPECT_EQ(ui.folderRequests.first().startFolder, QString::fromLatin1(c.typed));
    EXPECT_EQ(form.TargetFolderName.text(), QString::fromLatin1(c.afterText));
    EXPECT_EQ(form.MoveFolder, QString::fromLatin1(c.afterText));
}

INSTANTIATE_TEST_SUITE_P(
    Picker, FolderButton,
    ::testing::Values(FolderCase{"Chosen", {QStringLiteral("/music/old")}, "/music", "/music/old"},
                      FolderCase{"Cancelled", {QString()}, "/typed/by/hand", "/typed/by/hand"},
                      FolderCase{"NoPicker", {}, "", ""}),
    [](const auto& info) { return std::string(info.param.name); });

struct CentreCase {
    QSize screen;
    QPoint topLeft;
};

class Centre : public MainFormTest, public ::testing::WithParamInterface<CentreCase> {};

TEST_P(Centre, PutsTheWindowsMiddleOnTheScreensMiddle) {
    form.screenSize = GetParam().screen;
    form.mnuWindowCentre.click();
    EXPECT_EQ(form.Main.geometry().topLeft(), GetParam().topLeft);
    EXPECT_EQ(form.Main.geometry().size(), QSize(14400, 10725));
}

INSTANTIATE_TEST_SUITE_P(Screens, Centre,
                         ::testing::Values(CentreCase{{28800, 16200}, {7200, 2737}},
                                           CentreCase{{12000, 9000}, {-1200, -862}},
                                           CentreCase{{}, {0, 0}}));

TEST_F(MainFormTest, EscapeAndTheCloseCommandsAskTheWindowToClose) {
    Spy close(&form, &MainForm::closeRequested);
    EXPECT_FALSE(form.Form_KeyDown(13, 0));
    EXPECT_EQ(close.count, 0);
    EXPECT_TRUE(form.Form_KeyDown(MainForm::EscapeKey, 0));
    form.CloseButton.click();
    form.mnuFileExit.click();
    EXPECT_EQ(close.count, 3);
}

TEST_F(MainFormTest, DonateOpensTheWebPageAndAboutShowsTheDialog) {
    Spy page(&form, &MainForm::webPageRequested);
    Spy about(&form, &MainForm::aboutRequested);
    form.mnuHelpDonate.click();
    form.mnuHelpAbout.click();
    ASSERT_EQ(page.count, 1);
    EXPECT_EQ(page.last.first().toString(), QStringLiteral(TIDEWICK_WEB_PAGE));
    EXPECT_EQ(about.count, 1);
}

TEST(MediaTypes, PatternListsSplitAtTheSemicolonAndDropTheBlank) {
    EXPECT_EQ(splitPatternList(QStringLiteral("*.wav; *.bwf")),
              QStringList({QStringLiteral("*.wav"), QStringLiteral("*.bwf")}));
    EXPECT_EQ(splitPatternList(QStringLiteral("*.*")), QStringList({QStringLiteral("*.*")}));
    EXPECT_EQ(splitPatternList(QStringLiteral("*.au;*.snd; ")),
              QStringList({QStringLiteral("*.au"), QStringLiteral("*.snd")}));
}

TEST(CheckList, OnlyTheUsersCheckRaisesItemCheck) {
    CheckListModel list;
    list.addItems({{QStringLiteral("a.wav"), false}, {QStringLiteral("b.wav"), true}});
    Spy itemCheck(&list, &CheckListModel::itemCheck);

    list.setChecked(0, true);
    list.setAllChecked(false);
    EXPECT_EQ(itemCheck.count, 0);

    EXPECT_TRUE(list.setData(list.index(1), Qt::Checked, Qt::CheckStateRole));
    ASSERT_EQ(itemCheck.count, 1);
    EXPECT_EQ(itemCheck.last.first().toInt(), 1);
    EXPECT_TRUE(list.isChecked(1));
    EXPECT_EQ(list.data(list.index(1), Qt::CheckStateRole).toInt(), Qt::Checked);
    EXPECT_FALSE(list.setData(list.index(1), QStringLiteral("x"), Qt::EditRole));
}

TEST(CheckList, FindsTheFirstLineOfATextAndForgetsEverythingOnClear) {
    CheckListModel list;
    list.addItem(QStringLiteral("take.wav"));
    list.addItem(QStringLiteral("Take.wav"));
    list.addItem(QStringLiteral("take.wav"));
    EXPECT_EQ(list.indexOf(QStringLiteral("take.wav")), 0);
    EXPECT_EQ(list.indexOf(QStringLiteral("Take.wav")), 1);
    EXPECT_EQ(list.indexOf(QStringLiteral("TAKE.WAV")), -1);
    list.clear();
    EXPECT_EQ(list.rowCount(), 0);
    EXPECT_FALSE(list.contains(QStringLiteral("take.wav")));
}

TEST(CheckList, TakesAHundredThousandLinesInOneInsertion) {
    CheckListModel list;
    int inserted = 0;
    QObject::connect(&list, &QAbstractItemModel::rowsInserted, [&inserted] { ++inserted; });
    QList<CheckItem> items;
    for (int row = 0; row < 100000; ++row) {
        items.append({QStringLiteral("take%1.wav").arg(row), row % 2 == 0});
    }
    list.addItems(items);
    EXPECT_EQ(inserted, 1);
    EXPECT_EQ(list.rowCount(), 100000);
    EXPECT_EQ(list.indexOf(QStringLiteral("take99999.wav")), 99999);
    EXPECT_EQ(list.data(list.index(99998), Qt::CheckStateRole).toInt(), Qt::Checked);
}

TEST(Control, ANewValueRaisesClickAndTheSameValueDoesNot) {
    Control box(QStringLiteral("ScanAll"), ControlKind::CheckBox, QString(), QRect());
    Spy clicked(&box, &Control::clicked);
    box.setChecked(false);
    box.setChecked(true);
    box.setChecked(true);
    EXPECT_EQ(clicked.count, 1);

    Control list(QStringLiteral("SESFile"), ControlKind::FileList, QString(), QRect());
    Spy listClicked(&list, &Control::clicked);
    list.setItems({QStringLiteral("a.ses"), QStringLiteral("b.ses")});
    list.setListIndex(1);
    list.setListIndex(5);  // out of range: no line is current
    EXPECT_EQ(list.listIndex(), -1);
    EXPECT_EQ(listClicked.count, 2);
}

}  // namespace
}  // namespace tidewick
