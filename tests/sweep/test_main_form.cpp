#include <gtest/gtest.h>

#include "support/recording_interaction.h"
#include "sweep/check_list_model.h"
#include "sweep/main_form.h"

namespace tidewick {
namespace {

TEST(VersionCaption, WritesTheRevisionStraightAfterTheMinorVersion) {
    EXPECT_EQ(versionCaption("Tidewick", 6, 0, 0), "Tidewick - Version 6.00");
    EXPECT_EQ(versionCaption("Tidewick", 2, 10, 11), "Tidewick - Version 2.1011");
}

// A position stored for another screen (or damaged) would open the window out of sight: it
// opens in the middle of the screen instead, also of a screen smaller than the window. The
// window opens with the values of its first tab (its recordings folder), as a switch to it
// gives them.
TEST(MainFormStart, AWindowStoredOffTheScreenOpensInItsMiddle) {
    struct Stored : FormSettings {
        QPoint at;
        void LoadSettings(MainForm& form) override {
            form.Main.setGeometry(QRect(at, form.Main.geometry().size()));
        }
        void SaveSettings(MainForm&) override {}
    };
    const QSize screen(30000, 20000), small(12000, 9000);
    const std::tuple<QPoint, QSize, QPoint> cases[] = {{{900000, 900000}, screen, {7800, 4637}},
                                                       {{-20000, 300}, screen, {7800, 4637}},
                                                       {{1500, 300}, screen, {1500, 300}},
                                                       {{0, 9000}, small, {-1200, -862}}};
    for (const auto& [stored, size, opened] : cases) {
        Stored settings;
        settings.at = stored;
        RecordingInteraction ui;
        MainForm form(ui, &settings);
        form.screenSize = size;
        form.Form_Load();
        EXPECT_EQ(form.Main.geometry(), QRect(opened, QSize(14400, 10725)));
        EXPECT_EQ(form.RecordFolder, "_Recorded");
    }
}

TEST(CheckList, FindsTheFirstExactLineTakesManyAtOnceAndRaisesItemCheckOnlyForTheUser) {
    CheckListModel list;
    QList<int> raised, inserted;
    QObject::connect(&list, &QAbstractItemModel::rowsInserted, [&] { inserted << 1; });
    QObject::connect(&list, &CheckListModel::itemCheck, [&raised](int row) { raised << row; });
    list.addItems({{"Take.wav", false}, {"b.wav", true}, {"c.wav", false}, {"b.wav", false}});
    EXPECT_EQ(inserted.size(), 1);
    EXPECT_EQ(list.indexOf("b.wav"), 1);
    EXPECT_EQ(list.indexOf("TAKE.WAV"), -1);
    list.setChecked(2, true);
    list.setAllChecked(false);
    EXPECT_TRUE(list.setData(list.index(1), Qt::Checked, Qt::CheckStateRole));
    EXPECT_EQ(raised, QList<int>({1}));
    list.clear();
    EXPECT_FALSE(list.contains("b.wav"));
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
