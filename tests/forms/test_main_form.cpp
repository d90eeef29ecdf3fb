#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "forms/check_list_model.h"
#include "forms/main_form.h"
#include "support/recording_interaction.h"

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
    const QSize screen(30000, 20000), small(12000, 9000);
    const std::tuple<QPoint, QSize, QPoint> cases[] = {{{900000, 900000}, screen, {7800, 4637}},
                                                       {{-20000, 300}, screen, {7800, 4637}},
                                                       {{1500, 300}, screen, {1500, 300}},
                                                       {{0, 9000}, small, {-1200, -862}}};
    for (const auto& [stored, size, opened] : cases) {
        Preferences preferences;
        preferences.windowPlace = stored;
        RecordingInteraction ui;
        MainForm form(ui);
        form.screenSize = size;
        form.Form_Load(preferences);
        EXPECT_EQ(form.control(u"Main").geometry(), QRect(opened, QSize(14400, 10725)));
        EXPECT_EQ(form.lists().recordFolder(), "_Recorded");
    }
}

// The window shows the preferences it loads with, and gives back what the user left: the
// session browser's folder, the boxes, the tab by its stored number (which is not the tab
// order) and the overwrite answer of the run.
TEST(MainFormStart, ShowsThePreferencesItLoadsAndGivesThemBack) {
    QTemporaryDir last, move, copy;
    Preferences p;
    p.windowPlace = {1500, 3000};
    p.trimFolders = p.checkAllFiles = p.keepPeaks = p.storeInSubFolder = true;
    p.lastFolder = last.path();
    p.moveFolder = move.path();
    p.copyFolder = copy.path();
    p.excludedFiles = {"lyrics.doc", "*.txt"};
    p.activeFileTab = 3;
    p.lastOverwriteAnswer = OverwriteAnswer::No;
    RecordingInteraction ui;
    MainForm form(ui);
    form.Form_Load(p);
    EXPECT_EQ(form.browser().selectedTabKey(), "SESXFiles");
    EXPECT_EQ(form.control(u"SESFile").text(), last.path());
    EXPECT_EQ(form.control(u"TargetFolderName").text(), move.path());
    for (const Control* box :
         {&form.control(u"IgnoreFoldersCheck"), &form.control(u"ScanAll"),
          &form.control(u"KeepPKCheck"), &form.control(u"StoreInSubFolderCheck")}) {
        EXPECT_TRUE(box->checked()) << box->name().toStdString();
    }
    EXPECT_EQ(form.Form_Unload(), p);
    form.browser().selectTabByKey("XMLFiles");
    form.control(u"SESFile").setText(copy.path());
    p.activeFileTab = 2;
    p.lastFolder = copy.path();
    EXPECT_EQ(form.Form_Unload(), p);
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
