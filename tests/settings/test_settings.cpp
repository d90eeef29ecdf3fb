#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>

#include "settings/settings.h"
#include "settings/settings_store.h"
#include "support/recording_interaction.h"
#include "sweep/main_form.h"

namespace tidewick {
namespace {

// A main window over the real QSettings store, kept in an INI file of a temporary folder.
class SettingsTest : public ::testing::Test {
protected:
    struct Run {
        explicit Run(const QString& file) : store(file), settings(store), form(ui, &settings) {
            form.Form_Load();
        }
        QSettingsStore store;
        StoredSettings settings;
        RecordingInteraction ui;
        MainForm form;
    };

    std::unique_ptr<Run> start() { return std::make_unique<Run>(storeFile); }
    void write(const QString& key, const QString& text) {
        QSettings(storeFile, QSettings::IniFormat).setValue(key, text);
    }
    QString stored(const QString& key) const {
        return QSettings(storeFile, QSettings::IniFormat).value(key).toString();
    }

    // What an empty store gives; a hand-edited value that cannot be read gives the same.
    void expectDefaults(const MainForm& form) {
        EXPECT_EQ(form.Main.geometry().topLeft(), QPoint(0, 0));
        EXPECT_FALSE(form.TrimFoldersFlag);
        EXPECT_FALSE(form.CheckAllFiles);
        EXPECT_FALSE(form.KeepPKCheck.checked());
        EXPECT_FALSE(form.StoreInSubFolderCheck.checked());
        EXPECT_EQ(form.selectedTabKey(), "SESFiles");
        EXPECT_EQ(form.ActiveFileTab, 1);
    }

    QTemporaryDir dir;
    QString storeFile = dir.filePath("Tidewick.conf");
};

TEST_F(SettingsTest, EmptyStoreGivesTheDefaults) {
    auto run = start();
    expectDefaults(run->form);
    for (const QString& folder : {run->form.LastFolder, run->form.MoveFolder, run->form.CopyFolder,
                                  run->form.TargetFolderName.text()}) {
        EXPECT_EQ(folder, QDir::currentPath());
    }
    EXPECT_TRUE(run->form.ExcludedFiles.isEmpty());
    EXPECT_TRUE(run->ui.messages.isEmpty());
}

TEST_F(SettingsTest, EverySettingSurvivesARoundTripInItsStoredForm) {
    QTemporaryDir last, move, copy;
    {
        auto run = start();
        MainForm& form = run->form;
        form.Main.setGeometry(QRect(QPoint(1500, 3000), form.Main.geometry().size()));
        form.TrimFoldersFlag = true;
        form.CheckAllFiles = true;
        form.KeepPKCheck.setChecked(true);
        form.StoreInSubFolderCheck.setChecked(true);
        form.SESFile.setText(last.path());
        form.MoveFolder = move.path();
        form.CopyFolder = copy.path();
        form.ExcludedFiles = {"lyrics.doc", "*.txt"};
        form.selectTabByKey("RPPFiles");
        form.Form_Unload();
        EXPECT_TRUE(run->ui.messages.isEmpty());
    }
    const char* const forms[][2] = {{"WINDOW/Top", "3000"},
                                    {"SETTINGS/TrimFolders", "1"},
                                    {"SETTINGS/KeepPKFiles", "1"},
                                    {"SETTINGS/ActiveFileTab", "4"},
                                    {"EXCLUDED/File00002", "*.txt"}};
    for (const auto& [key, text] : forms) {
        EXPECT_EQ(stored(key), text) << key;
    }

    auto run = start();
    MainForm& form = run->form;
    EXPECT_EQ(form.Main.geometry().topLeft(), QPoint(1500, 3000));
    EXPECT_TRUE(form.IgnoreFoldersCheck.checked());
    EXPECT_TRUE(form.ScanAll.checked());
    EXPECT_TRUE(form.KeepPKCheck.checked());
    EXPECT_TRUE(form.StoreInSubFolderCheck.checked());
    EXPECT_EQ(form.SESFile.text(), last.path());
    EXPECT_EQ(form.TargetFolderName.text(), move.path());
    EXPECT_EQ(form.CopyFolder, copy.path());
    EXPECT_EQ(form.ExcludedFiles, QStringList({"lyrics.doc", "*.txt"}));
    EXPECT_EQ(form.sessionFilePattern(), "*.rpp");
}

TEST_F(SettingsTest, ExclusionsStopAtTheFirstGapAndTheSaveDropsTheRest) {
    write("EXCLUDED/File00001", "a.doc");
    write("EXCLUDED/File00002", "*.bak");
    write("EXCLUDED/File00004", "lost.txt");
    auto run = start();
    EXPECT_EQ(run->form.ExcludedFiles, QStringList({"a.doc", "*.bak"}));
    run->form.Form_Unload();
    QSettings ini(storeFile, QSettings::IniFormat);
    ini.beginGroup("EXCLUDED");
    EXPECT_EQ(ini.childKeys(), QStringList({"File00001", "File00002"}));
}

TEST_F(SettingsTest, AFolderThatNoLongerExistsBecomesTheCurrentDirectory) {
    QTemporaryDir copy;
    write("PATHS/MoveFolder", dir.filePath("deleted"));
    write("PATHS/CopyFolder", copy.path());
    auto run = start();
    EXPECT_EQ(run->form.MoveFolder, QDir::currentPath());
    EXPECT_EQ(run->form.CopyFolder, copy.path());
    run->form.Form_Unload();
    EXPECT_EQ(stored("PATHS/MoveFolder"), QDir::currentPath());
}

TEST_F(SettingsTest, TheActiveTabIsStoredByItsNumberAndRestoredByItsKey) {
    const char* const tabs[][2] = {{"SESFiles", "1"},
                                   {"XMLFiles", "2"},
                                   {"SESXFiles", "3"},
                                   {"RPPFiles", "4"},
                                   {"VEGFiles", "5"}};
    for (const auto& [key, number] : tabs) {
        auto run = start();
        ASSERT_TRUE(run->form.selectTabByKey(key));
        run->form.Form_Unload();
        run.reset();
        EXPECT_EQ(stored("SETTINGS/ActiveFileTab"), number) << key;
        EXPECT_EQ(start()->form.selectedTabKey(), key);
    }
}

TEST_F(SettingsTest, AnUnreadableNumberFallsBackToTheDefault) {
    const char* const values[][2] = {
        {"WINDOW/Top", "high"},           {"WINDOW/Left", "1,5"},
        {"SETTINGS/TrimFolders", "yes"},  {"SETTINGS/CheckAllFiles", ""},
        {"SETTINGS/KeepPKFiles", "on"},   {"SETTINGS/KeepPKFiles", "2"},
        {"SETTINGS/ActiveFileTab", "0"},  {"SETTINGS/ActiveFileTab", "6"},
        {"SETTINGS/ActiveFileTab", "XML"}};
    for (const auto& [key, text] : values) {
        SCOPED_TRACE(key + std::string("=") + text);
        QFile::remove(storeFile);
        write(key, text);
        expectDefaults(start()->form);
    }
    write("SETTINGS/TrimFolders", "-1");  // any other number switches a flag on
    write("SETTINGS/CheckAllFiles", "2.5");
    auto run = start();
    EXPECT_TRUE(run->form.TrimFoldersFlag);
    EXPECT_TRUE(run->form.CheckAllFiles);
}

TEST_F(SettingsTest, AStoreThatRefusesWritesGivesOneMessage) {
    // A folder in the store's path is a regular file: no write can succeed, not even as root.
    QFile blocker(dir.filePath("not-a-folder"));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    storeFile = dir.filePath("not-a-folder/Tidewick.conf");
    auto run = start();
    run->form.ExcludedFiles = {"a.doc", "b.doc"};
    run->form.Form_Unload();
    run->form.Form_Unload();  // a second close does not save again
    ASSERT_EQ(run->ui.messages.size(), 1);
    EXPECT_EQ(
        run->ui.messages.first(),
        (MessageBoxRequest{"Access to the settings file " + storeFile +
                               " failed and the current Tidewick settings could not be saved.",
                           "For Information...", MessageIcon::Information, MessageButtons::Ok,
                           MessageAnswer::Ok}));
}

}  // namespace
}  // namespace tidewick
