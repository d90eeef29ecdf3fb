#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>

#include "settings/settings.h"
#include "settings/settings_store.h"
#include "support/reader_fixture.h"  // prints texts in failures
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
    QSettings ini() const { return QSettings(storeFile, QSettings::IniFormat); }

    QTemporaryDir dir;
    QString storeFile = dir.filePath("Tidewick.conf");
};

// What the window shows of its settings on one line: position, the trim, check-all, keep-peaks
// and sub-folder boxes ("x" checked), the tab key and number, the last, move and copy folders
// (the current directory as "cwd") and the exclusions.
QString shown(const MainForm& form) {
    const auto folder = [](const QString& path) {
        return path == QDir::currentPath() ? QStringLiteral("cwd") : path;
    };
    QString boxes;
    for (const Control* box : {&form.IgnoreFoldersCheck, &form.ScanAll, &form.KeepPKCheck,
                               &form.StoreInSubFolderCheck}) {
        boxes += box->checked() ? 'x' : '-';
    }
    const QPoint at = form.Main.geometry().topLeft();
    return QStringLiteral("%1,%2 %3 %4/%5 %6 %7 %8 [%9]")
        .arg(QString::number(at.x()), QString::number(at.y()), boxes, form.selectedTabKey(),
             QString::number(form.ActiveFileTab), folder(form.SESFile.text()),
             folder(form.TargetFolderName.text()), folder(form.CopyFolder),
             form.ExcludedFiles.join('|'));
}

TEST_F(SettingsTest, EverySettingSurvivesARoundTripInItsStoredForm) {
    QTemporaryDir last, move, copy;
    {
        auto run = start();
        MainForm& form = run->form;
        form.Main.setGeometry(QRect(QPoint(1500, 3000), form.Main.geometry().size()));
        for (Control* box : {&form.IgnoreFoldersCheck, &form.ScanAll, &form.KeepPKCheck,
                             &form.StoreInSubFolderCheck}) {
            box->setChecked(true);
        }
        form.SESFile.setText(last.path());
        form.MoveFolder = move.path();
        form.CopyFolder = copy.path();
        form.ExcludedFiles = {"lyrics.doc", "*.txt"};
        form.selectTabByKey("SESXFiles");  // third by number, second in the strip
        form.Form_Unload();
        EXPECT_TRUE(run->ui.messages.isEmpty());
    }
    const char* const forms[][2] = {{"WINDOW/Top", "3000"},
                                    {"SETTINGS/TrimFolders", "1"},
                                    {"SETTINGS/KeepPKFiles", "1"},
                                    {"SETTINGS/ActiveFileTab", "3"},
                                    {"EXCLUDED/File00002", "*.txt"}};
    for (const auto& [key, text] : forms) {
        EXPECT_EQ(ini().value(key).toString(), text) << key;
    }
    EXPECT_EQ(shown(start()->form), "1500,3000 xxxx SESXFiles/3 " + last.path() + ' ' +
                                        move.path() + ' ' + copy.path() + " [lyrics.doc|*.txt]");
}

// A hand-edited store: what it gives the window, and a save that leaves only what it wrote.
TEST_F(SettingsTest, AHandEditedStoreReadsAsFarAsItCanAndTheSaveTidiesIt) {
    const QString defaults = "0,0 ---- SESFiles/1 cwd cwd cwd []";
    // Each row: the entries written ("section/key=text", ";" between) and what the window shows.
    const QString rows[][2] = {
        {"", defaults},
        {"WINDOW/Top=high", defaults},
        {"WINDOW/Left=1,5", defaults},
        {"SETTINGS/TrimFolders=yes", defaults},
        {"SETTINGS/CheckAllFiles=", defaults},
        {"SETTINGS/KeepPKFiles=on", defaults},
        {"SETTINGS/KeepPKFiles=2", defaults},  // a check box is 1 or nothing
        {"SETTINGS/ActiveFileTab=0", defaults},
        {"SETTINGS/ActiveFileTab=6", defaults},
        {"SETTINGS/ActiveFileTab=XML", defaults},
        // A position is a whole number of twips within reach of a screen, or it is 0.
        {"WINDOW/Left=1500;WINDOW/Top=-300", "1500,-300 ---- SESFiles/1 cwd cwd cwd []"},
        {"WINDOW/Left=1500.4;WINDOW/Top=1e30", defaults},
        {"WINDOW/Left=inf;WINDOW/Top=nan", defaults},
        {"WINDOW/Left=-2147483648", defaults},
        // Any other number switches a flag on.
        {"SETTINGS/TrimFolders=-1;SETTINGS/CheckAllFiles=2.5",
         "0,0 xx-- SESFiles/1 cwd cwd cwd []"},
        {"SETTINGS/ActiveFileTab=5", "0,0 ---- VEGFiles/5 cwd cwd cwd []"},
        // The exclusions stop at the first gap.
        {"EXCLUDED/File00001=a.doc;EXCLUDED/File00002=*.bak;EXCLUDED/File00004=lost.txt",
         "0,0 ---- SESFiles/1 cwd cwd cwd [a.doc|*.bak]"},
        // A folder that no longer exists becomes the current directory.
        {"PATHS/MoveFolder=" + dir.filePath("gone") + ";PATHS/CopyFolder=" + dir.path(),
         "0,0 ---- SESFiles/1 cwd cwd " + dir.path() + " []"},
    };
    for (const auto& [written, expected] : rows) {
        SCOPED_TRACE(written.toStdString());
        QFile::remove(storeFile);
        for (const QString& entry : written.split(';', Qt::SkipEmptyParts)) {
            ini().setValue(entry.section('=', 0, 0), entry.section('=', 1));
        }
        auto run = start();
        EXPECT_EQ(shown(run->form), expected);
        run->form.Form_Unload();
        EXPECT_TRUE(run->ui.messages.isEmpty());
        // Ten settings and the exclusions; the stale exclusion after the gap is gone.
        EXPECT_EQ(ini().allKeys().size(), 10 + run->form.ExcludedFiles.size());
    }
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
