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

#include "settings/settings.h"
#include "settings/settings_store.h"
#include "support/recording_interaction.h"
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

// Each control of the form has its widget, by name, in its container at its place, showing its
// whole caption and its tooltip.
TEST_F(MainWindowTest, EveryControlStandsInPlaceWithItsWholeCaptionAndTooltip) {
    for (const auto& control : run->form.controls()) {
        const ControlKind kind = control->kind();
        if (kind == ControlKind::Window || kind == ControlKind::Menu ||
            kind == ControlKind::MenuItem) {
            continue;
        }
        SCOPED_TRACE(control->name().toStdString());
        QWidget* widget = find(control->name().toLatin1().constData());
        ASSERT_NE(widget, nullptr);
        const QString container =
            control->container().isEmpty() ? "MainClient" : control->container();
        EXPECT_EQ(widget->parentWidget()->objectName(), container);
        EXPECT_EQ(widget->geometry(), twipsToPixels(control->geometry()));
        EXPECT_EQ(widget->toolTip(), control->tooltip());
        EXPECT_EQ(widget->isVisible(), control->visible());
        if (widget->inherits("QCheckBox") || widget->inherits("QPushButton")) {
            EXPECT_EQ(widget->property("text").toString(), control->text());
            EXPECT_LE(widget->sizeHint().width(), widget->width());  // the caption is not cut
        }
    }
    // The sub-folder row serves REAPER and Vegas only; the window opens on the SES tab.
    EXPECT_FALSE(find("SubFolderCheck")->isVisible());
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
        run->window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&run->window));
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
