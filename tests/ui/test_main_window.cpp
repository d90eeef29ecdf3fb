#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QSettings>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTest>
#include <functional>
#include <memory>

#include "platform/recording_interaction.h"
#include "settings/settings.h"
#include "settings/settings_store.h"
#include "sweep/main_form.h"
#include "ui/main_window.h"
#include "ui/twips.h"

namespace tidewick {
namespace {

// The window as the program starts it, over a store in a temporary folder.
class MainWindowTest : public ::testing::Test {
protected:
    struct Run {
        Run(const QString& file, UserInteraction& ui)
            : store(file), settings(store), form(ui, &settings) {
            window.load();
        }
        QSettingsStore store;
        StoredSettings settings;
        MainForm form;
        MainWindow window{form};
    };

    void SetUp() override { start(); }
    void start() {
        run.reset();
        run = std::make_unique<Run>(storeFile, ui);
    }
    template <typename T = QWidget>
    T* find(const char* name) const {
        return run->window.findChild<T*>(QString::fromLatin1(name));
    }

    QTemporaryDir dir;
    QString storeFile = dir.filePath("Tidewick.conf");
    RecordingInteraction ui;
    std::unique_ptr<Run> run;
};

struct ControlRow {
    const char *name, *className, *container;
    QRect twips;
    const char *text, *tooltip;  // a null text varies from run to run
};

// clang-format off
const ControlRow kControls[] = {
    {"FilesFrame", "QGroupBox", "MainClient", {30, 90, 4425, 9495}, "Files", ""},
    {"UsedFrame", "QGroupBox", "MainClient", {4500, 90, 9700, 4095},
     "Media File(s) Used  (NB: Files with a check mark exist on Disk)", ""},
    {"UnusedFrame", "QGroupBox", "MainClient", {4500, 4200, 9700, 5385}, "Files to be Moved", ""},
    {"InfoLabel", "QLabel", "MainClient", {210, 9690, 13785, 195}, nullptr, ""},
    {"SESDrive", "QComboBox", "FilesFrame", {120, 300, 4150, 315}, "", ""},
    {"SESDir", "QTreeView", "FilesFrame", {120, 712, 4150, 4140}, "", ""},
    {"FileTypeTab", "QTabBar", "FilesFrame", {120, 4995, 4155, 4395}, "", ""},
    {"SESFile", "QListView", "FilesFrame", {210, 5460, 3975, 3795}, "", ""},
    {"UsedFiles", "QListView", "UsedFrame", {90, 270, 9525, 3210}, "", ""},
    {"IgnoreFoldersCheck", "QCheckBox", "UsedFrame", {90, 3660, 6255, 315},
     "Ignore Leading &Folder names (except sub-folder)\"", ""},
    {"SESVersionLabel", "QLabel", "UsedFrame", {6270, 3690, 1845, 255}, "", ""},
    {"ScanAll", "QCheckBox", "UsedFrame", {6450, 3690, 1755, 255}, "Check All &SES files", ""},
    {"CopyFilesButton", "QPushButton", "UsedFrame", {8280, 3630, 1335, 375}, "Cop&y Files",
     "Copy files present on disk to a specific location"},
    {"SubFolderCheck", "QCheckBox", "UnusedFrame", {90, 300, 1905, 315},
     "Add Files from Folder...", ""},
    {"SubFolderName", "QLineEdit", "UnusedFrame", {2160, 270, 6975, 345}, nullptr, ""},
    {"SubFolderButton", "QToolButton", "UnusedFrame", {9180, 270, 375, 345}, "", "Select Folder"},
    {"UnusedFiles", "QListView", "UnusedFrame", {90, 270, 9525, 2985}, "", ""},  // SES tab
    {"Frame2", "QGroupBox", "UnusedFrame", {90, 3420, 4400, 795}, "File Types", ""},
    {"Frame1", "QGroupBox", "UnusedFrame", {4530, 3420, 5055, 795}, "Selections", ""},
    {"MoveFrame", "QGroupBox", "UnusedFrame", {90, 4260, 7935, 1005},
     "Move the Selected Files to...", ""},
    {"MoveButton", "QPushButton", "UnusedFrame", {8130, 4350, 1455, 435}, "&Move Files", ""},
    {"CloseButton", "QPushButton", "UnusedFrame", {8130, 4830, 1455, 435}, "&Close", ""},
    {"FileTypesCombo", "QComboBox", "Frame2", {120, 300, 1845, 315}, "", ""},
    {"KeepPKCheck", "QCheckBox", "Frame2", {2000, 150, 2350, 255}, "&Keep Used PK Files",
     "Toggle whether to keep PK files that are associated with used WAV audio files"},
    {"ExcludedCheck", "QCheckBox", "Frame2", {2000, 480, 2350, 255}, "&Keep other files...",
     "Toggle whether to Quarantine designated file specifications"},
    {"SelectButton0", "QPushButton", "Frame1", {120, 300, 1500, 345}, "Select &All", ""},
    {"SelectButton1", "QPushButton", "Frame1", {1740, 300, 1500, 345}, "Select &None", ""},
    {"SelectButton2", "QPushButton", "Frame1", {3390, 300, 1500, 345}, "&Invert", ""},
    {"TargetFolderName", "QLineEdit", "MoveFrame", {60, 210, 7335, 375}, nullptr, ""},
    {"FolderButton", "QToolButton", "MoveFrame", {7440, 210, 375, 345}, "", "Browse"},
    {"StoreInSubFolderCheck", "QCheckBox", "MoveFrame", {60, 630, 6465, 285},
     "Store in sub-folder...", ""},
};
// clang-format on

TEST_F(MainWindowTest, EveryControlStandsInPlaceWithItsWholeCaptionAndTooltip) {
    for (const ControlRow& c : kControls) {
        SCOPED_TRACE(c.name);
        QWidget* widget = find(c.name);
        ASSERT_NE(widget, nullptr);
        EXPECT_TRUE(widget->inherits(c.className)) << widget->metaObject()->className();
        EXPECT_EQ(widget->parentWidget()->objectName(), QString::fromLatin1(c.container));
        EXPECT_EQ(widget->geometry(), twipsToPixels(c.twips));
        const char* caption = widget->inherits("QGroupBox") ? "title" : "text";
        if (c.text) {
            EXPECT_EQ(widget->property(caption).toString(), QString::fromUtf8(c.text));
        }
        EXPECT_EQ(widget->toolTip(), QString::fromUtf8(c.tooltip));
        // The sub-folder row serves REAPER and Vegas only; the window opens on the SES tab.
        EXPECT_EQ(widget->isVisible(), !QByteArray(c.name).startsWith("SubFolder"));
        if (widget->inherits("QCheckBox") || widget->inherits("QPushButton")) {
            EXPECT_LE(widget->sizeHint().width(), widget->width());  // the caption is not cut
        }
    }
}

TEST_F(MainWindowTest, HasTheVersionCaptionAFixedSizeAndOneTabPerSessionKind) {
    EXPECT_EQ(run->window.windowTitle(),
              versionCaption("Tidewick", TIDEWICK_VERSION_MAJOR, TIDEWICK_VERSION_MINOR,
                             TIDEWICK_VERSION_PATCH));
    EXPECT_EQ(run->window.centralWidget()->size(), QSize(954, 663));
    EXPECT_EQ(run->window.minimumSize(), run->window.maximumSize());
    auto* tabs = find<QTabBar>("FileTypeTab");
    QStringList kinds;  // the tab order, which is not the order of the stored numbers
    for (int index = 0; index < tabs->count(); ++index) {
        kinds << tabs->tabText(index) + "|" + tabs->tabData(index).toString() + "|" +
                     tabs->tabToolTip(index);
    }
    EXPECT_EQ(kinds, QStringList({"SES|SESFiles|Audition/CEP Session Files",
                                  "SESX|SESXFiles|Audition CS5.5 Session Files",
                                  "XML|XMLFiles|Audition v3 XML Session Files",
                                  "RPP|RPPFiles|Reaper Session Files",
                                  "VEG|VEGFiles|Vegas Session Files"}));
}

TEST_F(MainWindowTest, TheComboListsTwentyFourTypesAndOnlyAllFilesEnablesKeepPeakFiles) {
    auto* combo = find<QComboBox>("FileTypesCombo");
    ASSERT_EQ(combo->count(), 24);
    EXPECT_EQ(combo->itemText(0), "All Files (*.*)");
    EXPECT_EQ(combo->itemText(3), "Midi Sequence (*.mid; *.rmi)");
    EXPECT_EQ(combo->itemText(23), "QuickTime Video (*.mov)");
    auto* keep = find<QAbstractButton>("KeepPKCheck");
    keep->click();
    for (int index : {1, 23, 0, 5}) {
        combo->setCurrentIndex(index);
        Q_EMIT combo->activated(index);
        EXPECT_EQ(keep->isEnabled(), index == 0) << index;
        EXPECT_TRUE(keep->isChecked()) << index;
    }
}

TEST_F(MainWindowTest, EscapeCloseAndExitCloseTheWindowAndSaveTheSettings) {
    const std::function<void()> ways[] = {
        [this] { QTest::keyClick(find("TargetFolderName"), Qt::Key_Escape); },
        [this] { find<QAbstractButton>("CloseButton")->click(); },
        [this] { run->window.findChild<QAction*>("mnuFileExit")->trigger(); }};
    for (const auto& close : ways) {
        QFile::remove(storeFile);
        start();
        close();
        EXPECT_FALSE(run->window.isVisible());
        QSettings ini(storeFile, QSettings::IniFormat);
        EXPECT_EQ(ini.value("SETTINGS/ActiveFileTab").toString(), "1");
        EXPECT_EQ(ini.value("PATHS/LastFolder").toString(), run->form.SESFile.text());
    }
}

TEST_F(MainWindowTest, TakesItsStoredPositionAndTheFolderButtonFillsTheTargetBox) {
    {
        QSettings ini(storeFile, QSettings::IniFormat);
        ini.setValue("WINDOW/Left", "1500");
        ini.setValue("WINDOW/Top", "750");
    }
    start();
    EXPECT_EQ(run->window.pos(), QPoint(100, 50));
    ui.folderAnswers = {dir.path()};
    find<QAbstractButton>("FolderButton")->click();
    EXPECT_EQ(find<QLineEdit>("TargetFolderName")->text(), dir.path());
    EXPECT_EQ(run->form.MoveFolder, dir.path());
}

}  // namespace
}  // namespace tidewick
