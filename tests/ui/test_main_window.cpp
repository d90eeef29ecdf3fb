#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QPushButton>
#include <QSettings>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>
#include <memory>

#include "platform/recording_interaction.h"
#include "settings/settings.h"
#include "settings/settings_store.h"
#include "sweep/main_form.h"
#include "ui/main_window.h"
#include "ui/twips.h"

namespace tidewick {
namespace {

// The application lives from before the first test to after the last, and is gone before the
// program's exit handlers run.
class Application : public ::testing::Environment {
public:
    void SetUp() override { app_ = std::make_unique<QApplication>(argc_, argv_); }
    void TearDown() override { app_.reset(); }

private:
    int argc_ = 1;
    char name_[32] = "test_main_window";
    char* argv_[2] = {name_, nullptr};
    std::unique_ptr<QApplication> app_;
};

[[maybe_unused]] ::testing::Environment* const application =
    ::testing::AddGlobalTestEnvironment(new Application);

// The window as the program starts it, over a store in a temporary folder.
class MainWindowTest : public ::testing::Test {
protected:
    void SetUp() override { start(); }

    void start() {
        window.reset();
        form.reset();
        settings.reset();
        store.reset();
        store = std::make_unique<QSettingsStore>(storeFile);
        settings = std::make_unique<StoredSettings>(*store);
        form = std::make_unique<MainForm>(ui, settings.get());
        window = std::make_unique<MainWindow>(*form);
        window->load();
    }

    template <typename T = QWidget>
    T* find(const char* name) const {
        return window->findChild<T*>(QString::fromLatin1(name));
    }

    QTemporaryDir dir;
    QString storeFile = dir.filePath(QStringLiteral("Tidewick.conf"));
    RecordingInteraction ui;
    std::unique_ptr<QSettingsStore> store;
    std::unique_ptr<StoredSettings> settings;
    std::unique_ptr<MainForm> form;
    std::unique_ptr<MainWindow> window;
};

// What a control shows: a button's or check box's text, a frame's title, a label's text.
QString shownText(QWidget* widget) {
    if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
        return button->text();
    }
    if (auto* frame = qobject_cast<QGroupBox*>(widget)) {
        return frame->title();
    }
    if (auto* label = qobject_cast<QLabel*>(widget)) {
        return label->text();
    }
    if (auto* edit = qobject_cast<QLineEdit*>(widget)) {
        return edit->text();
    }
    return {};
}

struct ControlCase {
    const char* name;
    const char* className;
    const char* container;
    QRect twips;
    const char* text;
    const char* tooltip;
};

const ControlCase kControls[] = {
    {"FilesFrame", "QGroupBox", "MainClient", {30, 90, 4425, 9495}, "Files", ""},
    {"UsedFrame",
     "QGroupBox",
     "MainClient",
     {4500, 90, 9700, 4095},
     "Media File(s) Used  (NB: Files with a check mark exist on Disk)",
     ""},
    {"UnusedFrame", "QGroupBox", "MainClient", {4500, 4200, 9700, 5385}, "Files to be Moved", ""},
    {"InfoLabel", "QLabel", "MainClient", {210, 9690, 13785, 195}, nullptr, ""},  // the sizes line
    {"SESDrive", "QComboBox", "FilesFrame", {120, 300, 4150, 315}, "", ""},
    {"SESDir", "QTreeView", "FilesFrame", {120, 712, 4150, 4140}, "", ""},
    {"FileTypeTab", "QTabBar", "FilesFrame", {120, 4995, 4155, 4395}, "", ""},
    {"SESFile", "QListView", "FilesFrame", {210, 5460, 3975, 3795}, "", ""},
    {"UsedFiles", "QListView", "UsedFrame", {90, 270, 9525, 3210}, "", ""},
    {"IgnoreFoldersCheck",
     "QCheckBox",
     "UsedFrame",
     {90, 3660, 6255, 315},
     "Ignore Leading &Folder names (except sub-folder)\"",
     ""},
    {"SESVersionLabel", "QLabel", "UsedFrame", {6270, 3690, 1845, 255}, "", ""},
    {"ScanAll", "QCheckBox", "UsedFrame", {6450, 3690, 1755, 255}, "Check All &SES files", ""},
    {"CopyFilesButton",
     "QPushButton",
     "UsedFrame",
     {8280, 3630, 1335, 375},
     "Cop&y Files",
     "Copy files present on disk to a specific location"},
    {"SubFolderCheck",
     "QCheckBox",
     "UnusedFrame",
     {90, 300, 1905, 315},
     "Add Files from Folder...",
     ""},
    {"SubFolderName", "QLineEdit", "UnusedFrame", {2160, 270, 6975, 345}, "", ""},
    {"SubFolderButton", "QToolButton", "UnusedFrame", {9180, 270, 375, 345}, "", "Select Folder"},
    {"UnusedFiles", "QListView", "UnusedFrame", {90, 690, 9525, 2535}, "", ""},
    {"Frame2", "QGroupBox", "UnusedFrame", {90, 3420, 4400, 795}, "File Types", ""},
    {"Frame1", "QGroupBox", "UnusedFrame", {4530, 3420, 5055, 795}, "Selections", ""},
    {"MoveFrame",
     "QGroupBox",
     "UnusedFrame",
     {90, 4260, 7935, 1005},
     "Move the Selected Files to...",
     ""},
    {"MoveButton", "QPushButton", "UnusedFrame", {8130, 4350, 1455, 435}, "&Move Files", ""},
    {"CloseButton", "QPushButton", "UnusedFrame", {8130, 4830, 1455, 435}, "&Close", ""},
    {"FileTypesCombo", "QComboBox", "Frame2", {120, 300, 1845, 315}, "", ""},
    {"KeepPKCheck",
     "QCheckBox",
     "Frame2",
     {2000, 150, 2350, 255},
     "&Keep Used PK Files",
     "Toggle whether to keep PK files that are associated with used WAV audio files"},
    {"ExcludedCheck",
     "QCheckBox",
     "Frame2",
     {2000, 480, 2350, 255},
     "&Keep other files...",
     "Toggle whether to Quarantine designated file specifications"},
    {"SelectButton0", "QPushButton", "Frame1", {120, 300, 1500, 345}, "Select &All", ""},
    {"SelectButton1", "QPushButton", "Frame1", {1740, 300, 1500, 345}, "Select &None", ""},
    {"SelectButton2", "QPushButton", "Frame1", {3390, 300, 1500, 345}, "&Invert", ""},
    {"TargetFolderName", "QLineEdit", "MoveFrame", {60, 210, 7335, 375}, nullptr, ""},
    {"FolderButton", "QToolButton", "MoveFrame", {7440, 210, 375, 345}, "", "Browse"},
    {"StoreInSubFolderCheck",
     "QCheckBox",
     "MoveFrame",
     {60, 630, 6465, 285},
     "Store in sub-folder...",
     ""},
};

void PrintTo(const ControlCase& c, std::ostream* os) {
    *os << c.name;
}

class EveryControl : public MainWindowTest, public ::testing::WithParamInterface<ControlCase> {};

TEST_P(EveryControl, StandsAtItsPlaceWithItsCaptionAndTooltip) {
    const ControlCase& c = GetParam();
    QWidget* widget = find(c.name);
    ASSERT_NE(widget, nullptr);
    EXPECT_TRUE(widget->inherits(c.className)) << widget->metaObject()->className();
    EXPECT_EQ(widget->parentWidget()->objectName(), QString::fromLatin1(c.container));
    EXPECT_EQ(widget->geometry(), twipsToPixels(c.twips));
    if (c.text) {
        EXPECT_EQ(shownText(widget), QString::fromUtf8(c.text));
    }
    EXPECT_EQ(widget->toolTip(), QString::fromUtf8(c.tooltip));
    EXPECT_TRUE(widget->isVisible());
}

TEST_P(EveryControl, ShowsItsWholeCaption) {
    QWidget* widget = find(GetParam().name);
    ASSERT_NE(widget, nullptr);
    if (qobject_cast<QCheckBox*>(widget) || qobject_cast<QPushButton*>(widget)) {
        EXPECT_LE(widget->sizeHint().width(), widget->width()) << shownText(widget).toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(Layout, EveryControl, ::testing::ValuesIn(kControls),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(MainWindowTest, HasItsMenusWithTheirAccessKeys) {
    const char* const menus[][2] = {
        {"mnuFileMain", "&File"}, {"mnuWindowMain", "&Window"}, {"mnuHelpMain", "&Help"}};
    for (const auto& [name, text] : menus) {
        auto* menu = find<QMenu>(name);
        ASSERT_NE(menu, nullptr) << name;
        EXPECT_EQ(menu->title(), QString::fromLatin1(text));
    }
    const char* const items[][3] = {{"mnuFileExit", "E&xit", "mnuFileMain"},
                                    {"mnuWindowCentre", "&Centre", "mnuWindowMain"},
                                    {"mnuHelpAbout", "&About", "mnuHelpMain"},
                                    {"mnuHelpDonate", "&Donate", "mnuHelpMain"}};
    for (const auto& [name, text, menuName] : items) {
        auto* action = window->findChild<QAction*>(QString::fromLatin1(name));
        ASSERT_NE(action, nullptr) << name;
        EXPECT_EQ(action->text(), QString::fromLatin1(text));
        EXPECT_TRUE(find<QMenu>(menuName)->actions().contains(action)) << name;
    }
}

TEST_F(MainWindowTest, HasAFixedSizeAndTheVersionCaption) {
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Tidewick - Version %1.%2%3")
                                         .arg(TIDEWICK_VERSION_MAJOR)
                                         .arg(TIDEWICK_VERSION_MINOR)
                                         .arg(TIDEWICK_VERSION_PATCH));
    EXPECT_EQ(window->centralWidget()->size(), QSize(954, 663));
    EXPECT_EQ(window->minimumSize(), window->maximumSize());
    EXPECT_TRUE(window->isVisible());
}

TEST_F(MainWindowTest, TheTabStripHasOneTabPerSessionKind) {
    auto* tabs = find<QTabBar>("FileTypeTab");
    ASSERT_NE(tabs, nullptr);
    const char* const expected[][3] = {{"SES", "SESFiles", "Audition/CEP Session Files"},
                                       {"SESX", "SESXFiles", "Audition CS5.5 Session Files"},
                                       {"XML", "XMLFiles", "Audition v3 XML Session Files"},
                                       {"RPP", "RPPFiles", "Reaper Session Files"},
                                       {"VEG", "VEGFiles", "Vegas Session Files"}};
    ASSERT_EQ(tabs->count(), 5);
    for (int index = 0; index < 5; ++index) {
        EXPECT_EQ(tabs->tabText(index), QString::fromLatin1(expected[index][0]));
        EXPECT_EQ(tabs->tabData(index).toString(), QString::fromLatin1(expected[index][1]));
        EXPECT_EQ(tabs->tabToolTip(index), QString::fromLatin1(expected[index][2]));
    }
    EXPECT_EQ(tabs->currentIndex(), 0);
}

TEST_F(MainWindowTest, TheMediaTypeComboListsTheTwentyFourTypesAndStartsOnAllFiles) {
    auto* combo = find<QComboBox>("FileTypesCombo");
    ASSERT_EQ(combo->count(), 24);
    EXPECT_EQ(combo->currentIndex(), 0);
    EXPECT_EQ(combo->itemText(0), QStringLiteral("All Files (*.*)"));
    EXPECT_EQ(combo->itemText(3), QStringLiteral("Midi Sequence (*.mid; *.rmi)"));
    EXPECT_EQ(combo->itemText(11), QStringLiteral("Creative Sound Blaster (*.voc)"));
    EXPECT_EQ(combo->itemText(14), combo->itemText(11));
    EXPECT_EQ(combo->itemText(23), QStringLiteral("QuickTime Video (*.mov)"));
}

TEST_F(MainWindowTest, OnlyAllFilesEnablesKeepPeakFilesAndItsStateStays) {
    auto* combo = find<QComboBox>("FileTypesCombo");
    auto* keep = find<QCheckBox>("KeepPKCheck");
    keep->click();
    ASSERT_TRUE(form->KeepPKCheck.checked());
    for (int index : {1, 19, 23, 0, 5}) {
        combo->setCurrentIndex(index);
        Q_EMIT combo->activated(index);
        EXPECT_EQ(keep->isEnabled(), index == 0) << index;
        EXPECT_TRUE(keep->isChecked()) << index;
    }
}

TEST_F(MainWindowTest, TheSessionListShowsTheLastFolderFilesOfTheActiveKind) {
    QTemporaryDir sessions;
    for (const char* name : {"b.ses", "A.SES", "song.rpp", "notes.txt"}) {
        QFile file(sessions.filePath(QString::fromLatin1(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    {
        QSettings ini(storeFile, QSettings::IniFormat);
        ini.setValue(QStringLiteral("PATHS/LastFolder"), sessions.path());
    }
    start();
    auto* list = find<QListView>("SESFile");
    QStringList shown;
    for (int row = 0; row < list->model()->rowCount(); ++row) {
        shown.append(list->model()->index(row, 0).data().toString());
    }
    EXPECT_EQ(shown, QStringList({QStringLiteral("A.SES"), QStringLiteral("b.ses")}));
    EXPECT_EQ(form->SESFile.listIndex(), -1);
    EXPECT_EQ(form->UsedFiles.count(), 0);
    EXPECT_EQ(form->UnusedFiles.count(), 0);
}

class EscapeIn : public MainWindowTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(EscapeIn, ClosesTheWindowAndSavesTheSettings) {
    QWidget* control = find(GetParam());
    ASSERT_NE(control, nullptr);
    control->setFocus();
    QTest::keyClick(control, Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
    QSettings ini(storeFile, QSettings::IniFormat);
    EXPECT_EQ(ini.value(QStringLiteral("SETTINGS/ActiveFileTab")).toString(), QStringLiteral("1"));
    EXPECT_EQ(ini.value(QStringLiteral("PATHS/LastFolder")).toString(), form->SESFile.text());
}

INSTANTIATE_TEST_SUITE_P(AnyControl, EscapeIn,
                         ::testing::Values("TargetFolderName", "UnusedFiles", "SESFile", "SESDir",
                                           "KeepPKCheck", "MoveButton", "FileTypeTab"));

TEST_F(MainWindowTest, CloseAndExitUnloadTheWindow) {
    find<QPushButton>("CloseButton")->click();
    EXPECT_FALSE(window->isVisible());
    EXPECT_TRUE(QFile::exists(storeFile));

    QFile::remove(storeFile);
    start();
    window->findChild<QAction*>(QStringLiteral("mnuFileExit"))->trigger();
    EXPECT_FALSE(window->isVisible());
    EXPECT_TRUE(QFile::exists(storeFile));
}

TEST_F(MainWindowTest, TheFolderButtonFillsTheTargetBox) {
    ui.folderAnswers = {dir.path()};
    find<QAbstractButton>("FolderButton")->click();
    EXPECT_EQ(find<QLineEdit>("TargetFolderName")->text(), dir.path());
    EXPECT_EQ(form->MoveFolder, dir.path());
}

TEST_F(MainWindowTest, TheWindowTakesItsStoredPosition) {
    {
        QSettings ini(storeFile, QSettings::IniFormat);
        ini.setValue(QStringLiteral("WINDOW/Left"), QStringLiteral("1500"));
        ini.setValue(QStringLiteral("WINDOW/Top"), QStringLiteral("750"));
    }
    start();
    EXPECT_EQ(window->pos(), QPoint(100, 50));
}

}  // namespace
}  // namespace tidewick
