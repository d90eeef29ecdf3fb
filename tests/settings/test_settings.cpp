#include <gtest/gtest.h>

#include <QSettings>
#include <QTemporaryDir>

#include "forms/core_messages.h"
#include "settings/preferences.h"
#include "settings/settings_store.h"
#include "support/reader_fixture.h"  // prints texts in failures

namespace tidewick {
namespace {

// The preferences over the real QSettings store, kept in an INI file of a temporary folder.
class SettingsTest : public ::testing::Test {
protected:
    Preferences load() {
        QSettingsStore store(storeFile);
        return loadPreferences(store, fs);
    }
    // The message the window shows when the save fails.
    std::optional<MessageBoxRequest> save(const Preferences& preferences) {
        QSettingsStore store(storeFile);
        const Result<void> saved = savePreferences(store, preferences);
        return saved ? std::nullopt : std::optional(settingsNotSavedMessage(saved.error()));
    }
    QSettings ini() const { return QSettings(storeFile, QSettings::IniFormat); }

    QTemporaryDir dir;
    QString storeFile = dir.filePath("Tidewick.conf");
    FileSystem fs;
};

// The preferences on one line: position, the trim, check-all, keep-peaks and sub-folder flags
// ("x" set), the tab number, the last, move and copy folders (the current directory as "cwd")
// and the exclusions.
QString shown(const Preferences& p, const FileSystem& fs) {
    QString flags;
    for (const bool flag : {p.trimFolders, p.checkAllFiles, p.keepPeaks, p.storeInSubFolder}) {
        flags += flag ? 'x' : '-';
    }
    return QStringLiteral("%1,%2 %3 %4 %5 %6 %7 [%8]")
        .arg(QString::number(p.windowPlace.x()), QString::number(p.windowPlace.y()), flags,
             QString::number(p.activeFileTab), p.lastFolder, p.moveFolder, p.copyFolder,
             p.excludedFiles.join('|'))
        .replace(fs.currentDirectory(), "cwd");
}

// Every preference is stored in the form the store has always had, and comes back; the
// overwrite answer lasts one run only.
TEST_F(SettingsTest, EveryPreferenceSurvivesARoundTripInItsStoredForm) {
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
    EXPECT_EQ(save(p), std::nullopt);
    EXPECT_EQ(ini().value("WINDOW/Top").toString(), "3000");
    EXPECT_EQ(ini().value("SETTINGS/TrimFolders").toString(), "1");
    EXPECT_EQ(ini().value("SETTINGS/KeepPKFiles").toString(), "1");
    EXPECT_EQ(ini().value("SETTINGS/ActiveFileTab").toString(), "3");
    Preferences back = p;
    back.lastOverwriteAnswer = OverwriteAnswer::Yes;
    EXPECT_EQ(load(), back);

    // A save that changes nothing leaves the file as it is (here a key the save would drop);
    // one that removes an exclusion writes it.
    ini().setValue("SETTINGS/Other", "kept");
    save(back);
    EXPECT_EQ(ini().value("SETTINGS/Other").toString(), "kept");
    back.excludedFiles.removeLast();
    save(back);
    EXPECT_EQ(ini().allKeys().size(), 10 + 1);
}

// A hand-edited store: what it gives, and a save that leaves only what it wrote.
TEST_F(SettingsTest, AHandEditedStoreReadsAsFarAsItCanAndTheSaveTidiesIt) {
    const QString defaults = "0,0 ---- 1 cwd cwd cwd []";
    // Each row: the preferences read, and the entries written ("section/key=text", ";"
    // between). A setting that is not written reads as its default.
    const QString rows[][2] = {
        // A text that is no value of its setting leaves the default: a position is a whole
        // number of twips within reach of a screen.
        {defaults,
         "WINDOW/Top=high;WINDOW/Left=1,5;SETTINGS/TrimFolders=yes;"
         "SETTINGS/CheckAllFiles=;SETTINGS/KeepPKFiles=on;SETTINGS/ActiveFileTab=0"},
        {defaults, "WINDOW/Left=1500.4;WINDOW/Top=1e30;SETTINGS/ActiveFileTab=7"},
        {defaults, "WINDOW/Left=inf;WINDOW/Top=nan;SETTINGS/ActiveFileTab=XML"},
        // Any other number switches a flag on.
        {"1500,-300 xx-- 1 cwd cwd cwd []",
         "WINDOW/Left=1500;WINDOW/Top=-300;SETTINGS/TrimFolders=-1;SETTINGS/CheckAllFiles=2.5"},
        // A check box is 1 or nothing. The exclusions stop at the first gap. A folder that no
        // longer exists becomes the current directory.
        {"0,0 ---- 5 cwd cwd " + dir.path() + " [a.doc|*.bak]",
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
        const Preferences read = load();
        EXPECT_EQ(shown(read, fs), expected);
        EXPECT_EQ(save(read), std::nullopt);
        // Ten settings and the exclusions; the stale exclusion after the gap is gone.
        EXPECT_EQ(ini().allKeys().size(), 10 + read.excludedFiles.size());
    }
}

TEST_F(SettingsTest, AStoreThatRefusesWritesGivesOneMessage) {
    // A folder in the store's path is a regular file: no write can succeed, not even as root.
    ASSERT_TRUE(test::writeFile(dir.filePath("not-a-folder")));
    storeFile = dir.filePath("not-a-folder/Tidewick.conf");
    Preferences p;
    p.excludedFiles = {"a.doc", "b.doc"};
    const QString text = "Access to the settings file " + storeFile +
                         " failed and the current Tidewick settings could not be saved.";
    EXPECT_EQ(save(p), MessageBoxRequest({text, "For Information..."}));
}

}  // namespace
}  // namespace tidewick
