#include <gtest/gtest.h>

#include <QObject>

#include "support/recording_interaction.h"
#include "sweep/check_list_model.h"
#include "sweep/main_form.h"
#include "sweep/media_types.h"

namespace tidewick {
namespace {

TEST(VersionCaption, WritesTheRevisionStraightAfterTheMinorVersion) {
    EXPECT_EQ(versionCaption("Tidewick", 6, 0, 0), "Tidewick - Version 6.00");
    EXPECT_EQ(versionCaption("Tidewick", 2, 10, 11), "Tidewick - Version 2.1011");
}

TEST(MediaTypes, PatternListsSplitAtTheSemicolonAndDropTheBlank) {
    EXPECT_EQ(splitPatternList("*.*"), QStringList({"*.*"}));
    EXPECT_EQ(splitPatternList("*.au;*.snd; "), QStringList({"*.au", "*.snd"}));
}

class MainFormTest : public ::testing::Test {
protected:
    void SetUp() override { form.Form_Load(); }
    RecordingInteraction ui;
    MainForm form{ui};
};

// Opening on the first tab gives the same values as switching to it: its recordings folder
// is what the other-files list gathers for each session.
TEST_F(MainFormTest, OpensWithTheActiveTabsValues) {
    EXPECT_EQ(form.RecordFolder, "_Recorded");
    EXPECT_FALSE(form.SubFolderCheck.visible());
}

TEST_F(MainFormTest, CentrePutsTheWindowsMiddleOnTheScreensMiddle) {
    form.screenSize = QSize(12000, 9000);  // smaller than the window
    form.mnuWindowCentre.click();
    EXPECT_EQ(form.Main.geometry(), QRect(-1200, -862, 14400, 10725));
}

// A position stored for another screen (or damaged) would open the window out of sight.
TEST(MainFormStart, AWindowStoredOffTheScreenOpensInItsMiddle) {
    struct Stored : FormSettings {
        QPoint at;
        void LoadSettings(MainForm& form) override {
            form.Main.setGeometry(QRect(at, form.Main.geometry().size()));
        }
        void SaveSettings(MainForm&) override {}
    };
    for (const auto& [stored, opened] : {std::pair{QPoint(900000, 900000), QPoint(7800, 4637)},
                                         {QPoint(-20000, 300), QPoint(7800, 4637)},
                                         {QPoint(1500, 300), QPoint(1500, 300)}}) {
        Stored settings;
        settings.at = stored;
        RecordingInteraction ui;
        MainForm form(ui, &settings);
        form.screenSize = QSize(30000, 20000);
        form.Form_Load();
        EXPECT_EQ(form.Main.geometry().topLeft(), opened);
    }
}

TEST_F(MainFormTest, DonateOpensTheWebPageAndAboutShowsTheDialog) {
    QStringList heard;
    QObject::connect(&form, &MainForm::webPageRequested,
                     [&heard](const QString& url) { heard << url; });
    QObject::connect(&form, &MainForm::aboutRequested, [&heard] { heard << "about"; });
    form.mnuHelpDonate.click();
    form.mnuHelpAbout.click();
    EXPECT_EQ(heard, QStringList({TIDEWICK_WEB_PAGE, "about"}));
}

TEST(CheckList, OnlyTheUsersCheckRaisesItemCheck) {
    CheckListModel list;
    list.addItems({{"a.wav", false}, {"b.wav", true}});
    QList<int> raised;
    QObject::connect(&list, &CheckListModel::itemCheck, [&raised](int row) { raised << row; });
    list.setChecked(0, true);
    list.setAllChecked(false);
    EXPECT_TRUE(list.setData(list.index(1), Qt::Checked, Qt::CheckStateRole));
    EXPECT_EQ(raised, QList<int>({1}));
    EXPECT_TRUE(list.isChecked(1));
}

TEST(CheckList, FindsTheFirstExactLineAndTakesManyLinesInOneInsertion) {
    CheckListModel list;
    int insertions = 0;
    QObject::connect(&list, &QAbstractItemModel::rowsInserted, [&insertions] { ++insertions; });
    QList<CheckItem> items = {{"Take.wav", false}};
    for (int row = 0; row < 100000; ++row) {
        items.append({QStringLiteral("take%1.wav").arg(row % 50000), row % 2 == 0});
    }
    list.addItems(items);
    EXPECT_EQ(insertions, 1);
    EXPECT_EQ(list.indexOf("take49999.wav"), 50000);
    EXPECT_EQ(list.indexOf("TAKE.WAV"), -1);
    EXPECT_EQ(list.data(list.index(99999), Qt::CheckStateRole).toInt(), Qt::Checked);
    list.clear();
    EXPECT_FALSE(list.contains("take1.wav"));
}

TEST(Control, ANewValueRaisesClickAndTheSameValueDoesNot) {
    Control box("ScanAll", ControlKind::CheckBox, QString(), QRect());
    int clicks = 0;
    QObject::connect(&box, &Control::clicked, [&clicks] { ++clicks; });
    box.setChecked(false);
    box.setChecked(true);
    box.setChecked(true);
    EXPECT_EQ(clicks, 1);
}

}  // namespace
}  // namespace tidewick
