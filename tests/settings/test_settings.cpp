#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QMap>
#include <QSettings>
#include <QTemporaryDir>

#include "platform/recording_interaction.h"
#include "settings/settings.h"
#include "settings/settings_store.h"
#include "sweep/main_form.h"

namespace tidewick {
namespace {

// An in-memory store that logs every call and can refuse the n-th write.
class LoggingStore : public SettingsStore {
public:
    QString GetSetting(const QString& section, const QString& key,
                       const QString& defaultText) override {
        log.append(QStringLiteral("get ") + section + QLatin1Char('/') + key);
        return values.value(section + QLatin1Char('/') + key, defaultText);
    }
    bool SaveSetting(const QString& section, const QString& key, const QString& text) override {
        log.append(QStringLiteral("save ") + section + QLatin1Char('/') + key);
        if (--writesUntilRefusal == 0) {
            return false;
        }
        values.insert(section + QLatin1Char('/') + key, text);
        return true;
    }
    bool DeleteSetting(const QString& section) override {
        log.append(QStringLiteral("delete ") + section);
        bool found = false;
        for (auto it = values.begin(); it != values.end();) {
            if (it.key().startsWith(section + QLatin1Char('/'))) {
                it = values.erase(it);
                found = true;
            } else {
                ++it;
            }
        }
        return found;
    }

    QMap<QString, QString> values;
    QStringList log;
    int writesUntilRefusal = -1;
};

// A main window over the real QSettings store, kept in an INI file of a temporary folder.
class SettingsTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    QString storeFile = dir.filePath(QStringLiteral("Tidewick.conf"));

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
        QSettings ini(storeFile, QSettings::IniFormat);
        ini.setValue(key, text);
    }
    QString stored(const QString& key) const {
        return QSettings(storeFile, QSettings::IniFormat).value(key).toString();
    }
    QStringList keys(const QString& section) const {
        QSettings ini(storeFile, QSettings::IniFormat);
        ini.beginGroup(section);
        return ini.childKeys();
    }
};

TEST_F(SettingsTest, EmptyStoreGivesTheDefaults) {
    auto run = start();
    MainForm& form = run->form;
    EXPECT_EQ(form.Main.geometry().topLeft(), QPoint(0, 0));
    EXPECT_FALSE(form.state.TrimFoldersFlag);
    EXPECT_FALSE(form.state.CheckAllFiles);
    for (Control* box : {&form.KeepPKCheck, &form.StoreInSubFolderCheck, &form.IgnoreFoldersCheck,
                         &form.ScanAll, &form.ExcludedCheck, &form.SubFolderCheck}) {
        EXPECT_FALSE(box->checked()) << box->name().toStdString();
    }
    EXPECT_EQ(form.LastFolder, QDir::currentPath());
    EXPECT_EQ(form.MoveFolder, QDir::currentPath());
    EXPECT_EQ(form.CopyFolder, QDir::currentPath());
    EXPECT_EQ(form.TargetFolderName.text(), QDir::currentPath());
    EXPECT_EQ(form.SESDir.text(), QDir::currentPath());
    EXPECT_EQ(form.SESFile.text(), QDir::currentPath());
    EXPECT_TRUE(form.ExcludedFiles.isEmpty());
    EXPECT_EQ(form.selectedTabKey(), QStringLiteral("SESFiles"));
    EXPECT_EQ(form.ActiveFileTab, 1);
    EXPECT_TRUE(run->ui.messages.isEmpty());
}

TEST_F(SettingsTest, EverySettingSurvivesARoundTrip) {
    QTemporaryDir last, move, copy;
    {
        auto run = start();
        MainForm& form = run->form;
        form.Main.setGeometry(
            QRect(1500, 3000, form.Main.geometry().width(), form.Main.geometry().height()));
        form.state.TrimFoldersFlag = true;
        form.state.CheckAllFiles = true;
        form.KeepPKCheck.setChecked(true);
        form.StoreInSubFolderCheck.setChecked(true);
        form.SESFile.setText(last.path());
        form.MoveFolder = move.path();
        form.CopyFolder = copy.path();
        form.ExcludedFiles = {QStringLiteral("lyrics.doc"), QStringLiteral("*.txt")};
        form.selectTabByKey(QStringLiteral("RPPFiles"));
        form.Form_Unload();
        EXPECT_TRUE(run->ui.messages.isEmpty());
    }
    // The stored forms.
    EXPECT_EQ(stored(QStringLiteral("WINDOW/Top")), QStringLiteral("3000"));
    EXPECT_EQ(stored(QStringLiteral("WINDOW/Left")), QStringLiteral("1500"));
    EXPECT_EQ(stored(QStringLiteral("SETTINGS/TrimFolders")), QStringLiteral("1"));
    EXPECT_EQ(stored(QStringLiteral("SETTINGS/KeepPKFiles")), QStringLiteral("1"));
    EXPECT_EQ(stored(QStringLiteral("SETTINGS/CheckAllFiles")), QStringLiteral("1"));
    EXPECT_EQ(stored(QStringLiteral("SETTINGS/StoreInSubFolder")), QStringLiteral("1"));
    EXPECT_EQ(stored(QStringLiteral("SETTINGS/ActiveFileTab")), QStringLiteral("4"));
    EXPECT_EQ(stored(QStringLiteral("PATHS/LastFolder")), last.path());
    EXPECT_EQ(stored(QStringLiteral("EXCLUDED/File00002")), QStringLiteral("*.txt"));

    auto run = start();
    MainForm& form = run->form;
    EXPECT_EQ(form.Main.geometry().topLeft(), QPoint(1500, 3000));
    EXPECT_TRUE(form.state.TrimFoldersFlag);
    EXPECT_TRUE(form.state.CheckAllFiles);
    EXPECT_TRUE(form.IgnoreFoldersCheck.checked());
    EXPECT_TRUE(form.ScanAll.checked());
    EXPECT_TRUE(form.KeepPKCheck.checked());
    EXPECT_TRUE(form.StoreInSubFolderCheck.checked());
    EXPECT_EQ(form.LastFolder, last.path());
    EXPECT_EQ(form.SESFile.text(), last.path());
    EXPECT_EQ(form.MoveFolder, move.path());
    EXPECT_EQ(form.TargetFolderName.text(), move.path());
    EXPECT_EQ(form.CopyFolder, copy.path());
    EXPECT_EQ(form.ExcludedFiles,
              QStringList({QStringLiteral("lyrics.doc"), QStringLiteral("*.txt")}));
    EXPECT_EQ(form.selectedTabKey(), QStringLiteral("RPPFiles"));
    EXPECT_EQ(form.sessionFilePattern(), QStringLiteral("*.rpp"));
}

TEST_F(SettingsTest, ExclusionsStopAtTheFirstMissingKeyAndTheSaveDropsTheRest) {
    write(QStringLiteral("EXCLUDED/File00001"), QStringLiteral("a.doc"));
    write(QStringLiteral("EXCLUDED/File00002"), QStringLiteral("*.bak"));
    write(QStringLiteral("EXCLUDED/File00004"), QStringLiteral("lost.txt"));
    auto run = start();
    EXPECT_EQ(run->form.ExcludedFiles,
              QStringList({QStringLiteral("a.doc"), QStringLiteral("*.bak")}));
    run->form.Form_Unload();
    EXPECT_EQ(keys(QStringLiteral("EXCLUDED")),
              QStringList({QStringLiteral("File00001"), QStringLiteral("File00002")}));
}

TEST_F(SettingsTest, AnEmptyExclusionEndsTheList) {
    write(QStringLiteral("EXCLUDED/File00001"), QStringLiteral("a.doc"));
    write(QStringLiteral("EXCLUDED/File00002"), QString());
    write(QStringLiteral("EXCLUDED/File00003"), QStringLiteral("c.doc"));
    EXPECT_EQ(start()->form.ExcludedFiles, QStringList({QStringLiteral("a.doc")}));
}

TEST_F(SettingsTest, AFolderThatNoLongerExistsBecomesTheCurrentDirectory) {
    QTemporaryDir copy;
    write(QStringLiteral("PATHS/MoveFolder"), dir.filePath(QStringLiteral("deleted")));
    write(QStringLiteral("PATHS/LastFolder"), dir.filePath(QStringLiteral("also gone")));
    write(QStringLiteral("PATHS/CopyFolder"), copy.path());
    auto run = start();
    EXPECT_EQ(run->form.MoveFolder, QDir::currentPath());
    EXPECT_EQ(run->form.LastFolder, QDir::currentPath());
    EXPECT_EQ(run->form.CopyFolder, copy.path());
    run->form.Form_Unload();
    EXPECT_EQ(stored(QStringLiteral("PATHS/MoveFolder")), QDir::currentPath());
}

struct TabCase {
    const char* key;
    const char* number;
};

class ActiveFileTab : public SettingsTest, public ::testing::WithParamInterface<TabCase> {};

TEST_P(ActiveFileTab, IsStoredByItsNumberAndRestoredByItsKey) {
    const QString key = QString::fromLatin1(GetParam().key);
    {
        auto run = start();
        ASSERT_TRUE(run->form.selectTabByKey(key));
        run->form.Form_Unload();
    }
    EXPECT_EQ(stored(QStringLiteral("SETTINGS/ActiveFileTab")),
              QString::fromLatin1(GetParam().number));
    EXPECT_EQ(start()->form.selectedTabKey(), key);
}

INSTANTIATE_TEST_SUITE_P(EveryKind, ActiveFileTab,
                         ::testing::Values(TabCase{"SESFiles", "1"}, TabCase{"XMLFiles", "2"},
                                           TabCase{"SESXFiles", "3"}, TabCase{"RPPFiles", "4"},
                                           TabCase{"VEGFiles", "5"}));

struct UnreadableCase {
    const char* key;
    const char* text;
};

class UnreadableNumber : public SettingsTest,
                         public ::testing::WithParamInterface<UnreadableCase> {};

TEST_P(UnreadableNumber, FallsBackToTheDefault) {
    write(QString::fromLatin1(GetParam().key), QString::fromLatin1(GetParam().text));
    auto run = start();
    MainForm& form = run->form;
    EXPECT_EQ(form.Main.geometry().topLeft(), QPoint(0, 0));
    EXPECT_FALSE(form.state.TrimFoldersFlag);
    EXPECT_FALSE(form.state.CheckAllFiles);
    EXPECT_FALSE(form.KeepPKCheck.checked());
    EXPECT_FALSE(form.StoreInSubFolderCheck.checked());
    EXPECT_EQ(form.selectedTabKey(), QStringLiteral("SESFiles"));
    EXPECT_EQ(form.ActiveFileTab, 1);
}

INSTANTIATE_TEST_SUITE_P(HandEditedStore, UnreadableNumber,
                         ::testing::Values(UnreadableCase{"WINDOW/Top", "high"},
                                           UnreadableCase{"WINDOW/Left", "1,5"},
                                           UnreadableCase{"SETTINGS/TrimFolders", "yes"},
                                           UnreadableCase{"SETTINGS/CheckAllFiles", ""},
                                           UnreadableCase{"SETTINGS/KeepPKFiles", "checked"},
                                           UnreadableCase{"SETTINGS/KeepPKFiles", "2"},
                                           UnreadableCase{"SETTINGS/StoreInSubFolder", "-1"},
                                           UnreadableCase{"SETTINGS/ActiveFileTab", "0"},
                                           UnreadableCase{"SETTINGS/ActiveFileTab", "6"},
                                           UnreadableCase{"SETTINGS/ActiveFileTab", "XML"}));

TEST_F(SettingsTest, ANonZeroNumberSwitchesAFlagOn) {
    write(QStringLiteral("SETTINGS/TrimFolders"), QStringLiteral("-1"));
    write(QStringLiteral("SETTINGS/CheckAllFiles"), QStringLiteral("2.5"));
    auto run = start();
    EXPECT_TRUE(run->form.state.TrimFoldersFlag);
    EXPECT_TRUE(run->form.state.CheckAllFiles);
}

TEST_F(SettingsTest, AStoreThatRefusesWritesGivesOneMessageAndTheWindowStillUnloads) {
    // A folder in the store's path is a regular file: no write can succeed, not even as root.
    QFile blocker(dir.filePath(QStringLiteral("not-a-folder")));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    storeFile = dir.filePath(QStringLiteral("not-a-folder/Tidewick.conf"));

    auto run = start();
    run->form.ExcludedFiles = {QStringLiteral("a.doc"), QStringLiteral("b.doc")};
    run->form.Form_Unload();
    ASSERT_EQ(run->ui.messages.size(), 1);
    EXPECT_EQ(run->ui.messages.first(),
              (MessageBoxRequest{QStringLiteral("Access to the Windows Registry failed and the "
                                                "current Tidewick settings could not be saved."),
                                 QStringLiteral("For Information..."), MessageIcon::Information,
                                 MessageButtons::Ok, MessageAnswer::Ok}));
    run->form.Form_Unload();  // a second close does not save again
    EXPECT_EQ(run->ui.messages.size(), 1);
}

// The order of reading and writing, and what a refused write leaves behind, seen in the store.
TEST(SettingsOrder, ReadsAndWritesInTheDocumentedOrder) {
    LoggingStore store;
    store.values.insert(QStringLiteral("EXCLUDED/File00001"), QStringLiteral("x.doc"));
    StoredSettings settings(store);
    RecordingInteraction ui;
    MainForm form(ui, &settings);
    form.Form_Load();
    form.Form_Unload();

    const QStringList expected = {
        QStringLiteral("get WINDOW/Top"),
        QStringLiteral("get WINDOW/Left"),
        QStringLiteral("get SETTINGS/TrimFolders"),
        QStringLiteral("get SETTINGS/KeepPKFiles"),
        QStringLiteral("get PATHS/LastFolder"),
        QStringLiteral("get PATHS/MoveFolder"),
        QStringLiteral("get PATHS/CopyFolder"),
        QStringLiteral("get SETTINGS/CheckAllFiles"),
        QStringLiteral("get EXCLUDED/File00001"),
        QStringLiteral("get EXCLUDED/File00002"),
        QStringLiteral("get SETTINGS/StoreInSubFolder"),
        QStringLiteral("get SETTINGS/ActiveFileTab"),
        QStringLiteral("delete WINDOW"),
        QStringLiteral("delete SETTINGS"),
        QStringLiteral("delete PATHS"),
        QStringLiteral("delete EXCLUDED"),
        QStringLiteral("save WINDOW/Top"),
        QStringLiteral("save WINDOW/Left"),
        QStringLiteral("save SETTINGS/TrimFolders"),
        QStringLiteral("save SETTINGS/KeepPKFiles"),
        QStringLiteral("save PATHS/LastFolder"),
        QStringLiteral("save PATHS/MoveFolder"),
        QStringLiteral("save PATHS/CopyFolder"),
        QStringLiteral("save SETTINGS/CheckAllFiles"),
        QStringLiteral("save EXCLUDED/File00001"),
        QStringLiteral("save SETTINGS/StoreInSubFolder"),
        QStringLiteral("save SETTINGS/ActiveFileTab"),
    };
    EXPECT_EQ(store.log, expected);
    EXPECT_TRUE(ui.messages.isEmpty());
}

TEST(SettingsOrder, TheFirstRefusedWriteEndsTheSaveAndKeepsWhatWentBefore) {
    LoggingStore store;
    store.writesUntilRefusal = 4;  // "KeepPKFiles" is refused
    StoredSettings settings(store);
    RecordingInteraction ui;
    MainForm form(ui, &settings);
    form.Form_Load();
    form.Form_Unload();

    EXPECT_EQ(store.log.last(), QStringLiteral("save SETTINGS/KeepPKFiles"));
    EXPECT_EQ(store.values.keys(),
              QStringList({QStringLiteral("SETTINGS/TrimFolders"), QStringLiteral("WINDOW/Left"),
                           QStringLiteral("WINDOW/Top")}));
    ASSERT_EQ(ui.messages.size(), 1);
    EXPECT_EQ(ui.messages.first().title, QStringLiteral("For Information..."));
}

TEST(ExclusionKey, HasFiveDigits) {
    EXPECT_EQ(exclusionKey(1), QStringLiteral("File00001"));
    EXPECT_EQ(exclusionKey(12), QStringLiteral("File00012"));
    EXPECT_EQ(exclusionKey(99999), QStringLiteral("File99999"));
}

}  // namespace
}  // namespace tidewick
