#include <gtest/gtest.h>

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
        explicit Run(const QString& file) : store(file) { form.Form_Load(); }
        QSettingsStore store;
        StoredSettings settings{store};
        RecordingInteraction ui;
        MainForm form{ui, &settings};
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
    QString boxes;
    for (const Control* box : {&form.IgnoreFoldersCheck, &form.ScanAll, &form.KeepPKCheck,
                               &form.StoreInSubFolderCheck}) {
        boxes += box->checked() ? 'x' : '-';
    }
    const QPoint at = form.Main.geometry().topLeft();
    return QStringLiteral("%1,%2 %3 %4/%5 %6 %7 %8 [%9]")
        .arg(QString::number(at.x()), QString::number(at.y()), boxes, form.selectedTabKey(),
             QString::number(form.ActiveFileTab), form.SESFile.text(), form.TargetFolderName.text(),
             form.CopyFolder, form.ExcludedFiles.join('|'))
        .replace(form.FSO.currentDirectory(), "cwd");
}

// Set through the window, every setting is stored in the form the store has always had, and
// comes back.
TEST_F(SettingsTest, EverySettingSurvivesARoundTripInItsStoredForm) {
    QTemporaryDir last, move, copy;
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
    EXPECT_EQ(ini().value("WINDOW/Top").toString(), "3000");
    EXPECT_EQ(ini().value("SETTINGS/TrimFolders").toString(), "1");
    EXPECT_EQ(ini().value("SETTINGS/KeepPKFiles").toString(), "1");
    EXPECT_EQ(ini().value("SETTINGS/ActiveFileTab").toString(), "3");
    EXPECT_EQ(shown(start()->form), "1500,3000 xxxx SESXFiles/3 " + last.path() + ' ' +
                                        move.path() + ' ' + copy.path() + " [lyrics.doc|*.txt]");

    // A run that changes nothing leaves the file as it is (here a key the save would drop); one
    // that removes an exclusion writes it.
    ini().setValue("SETTINGS/Other", "kept");
    start()->form.Form_Unload();
    EXPECT_EQ(ini().value("SETTINGS/Other").toString(), "kept");
    auto shorter = start();
    shorter->form.ExcludedFiles.removeLast();
    shorter->form.Form_Unload();
    EXPECT_EQ(ini().allKeys().size(), 10 + 1);
}

// A hand-edited store: what it gives the window, and a save that leaves only what it wrote.
TEST_F(SettingsTest, AHandEditedStoreReadsAsFarAsItCanAndTheSaveTidiesIt) {
    const QString defaults = "0,0 ---- SESFiles/1 cwd cwd cwd []";
    // Each row: what the window shows, and the entries written ("section/key=text", ";"
    // between). A setting that is not written shows its default.
    const QString rows[][2] = {
        // A text that is no value of its setting leaves the default: a position is a whole
        // number of twips within reach of a screen.
        {defaults,
         "WINDOW/Top=high;WINDOW/Left=1,5;SETTINGS/TrimFolders=yes;"
         "SETTINGS/CheckAllFiles=;SETTINGS/KeepPKFiles=on;SETTINGS/ActiveFileTab=0"},
        {defaults, "WINDOW/Left=1500.4;WINDOW/Top=1e30;SETTINGS/ActiveFileTab=6"},
        {defaults, "WINDOW/Left=inf;WINDOW/Top=nan;SETTINGS/ActiveFileTab=XML"},
        // Any other number switches a flag on.
        {"1500,-300 xx-- SESFiles/1 cwd cwd cwd []",
         "WINDOW/Left=1500;WINDOW/Top=-300;SETTINGS/TrimFolders=-1;SETTINGS/CheckAllFiles=2.5"},
        // A check box is 1 or nothing. The exclusions stop at the first gap. A folder that no
        // longer exists becomes the current directory.
        {"0,0 ---- VEGFiles/5 cwd cwd " + dir.path() + " [a.doc|*.bak]",
         "PATHS/CopyFolder=" + dir.path() + ";PATHS/MoveFolder=" + dir.filePath("gone") +
             ";WINDOW/Left=-2147483648;SETTINGS/KeepPKFiles=2;SETTINGS/ActiveFileTab=5;"
             "EXCLUDED/File00001=a.doc;EXCLUDED/File00002=*.bak;EXCLUDED/File00004=lost.txt"},
    };
    for (const auto& [expected, written] : rows) {
        SCOPED_TRACE(written.toStdString());
        ini().clear();
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
    ASSERT_TRUE(test::writeFile(dir.filePath("not-a-folder")));
    storeFile = dir.filePath("not-a-folder/Tidewick.conf");
    auto run = start();
    run->form.ExcludedFiles = {"a.doc", "b.doc"};
    run->form.Form_Unload();
    run->form.Form_Unload();  // a second close does not save again
    const QString text = "Access to the settings file " + storeFile +
                         " failed and the current Tidewick settings could not be saved.";
    EXPECT_EQ(run->ui.messages, QList<MessageBoxRequest>({{text, "For Information..."}}));
}

}  // namespace
}  // namespace tidewick
