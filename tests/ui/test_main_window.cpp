#include <gtest/gtest.h>

#include <QTest>
#include <QtWidgets>
#include <functional>
#include <memory>

#include "app/cli/cli.h"
#include "forms/kind_texts.h"
#include "forms/move_form.h"
#include "settings/settings_store.h"
#include "support/reader_fixture.h"  // prints texts in failures; writes sessions
#include "support/recording_interaction.h"
#include "ui/folder_tree_model.h"
#include "ui/main_window.h"
#include "ui/twips.h"

namespace tidewick {
namespace {

// The window as the program starts it, over a store in a temporary folder, used the way a user
// uses it: through the widgets.
class MainWindowTest : public ::testing::Test {
protected:
    struct Run {
        explicit Run(const QString& file) : store(file) { window.load(); }
        RecordingInteraction ui;
        QSettingsStore store;
        MainForm form{ui};
        MainWindow window{form, &store};
    };

    template <typename T = QWidget>
    T* find(const QString& name) const {
        return run->window.findChild<T*>(name);
    }
    // The caption of the used or unused frame and its list's lines, as the scan command prints
    // them.
    QString shown(const QString& side) const {
        QString text = side.toLower() + ": " + find<QGroupBox>(side + "Frame")->title() + '\n';
        const QAbstractItemModel* model = find<QListView>(side + "Files")->model();
        for (int row = 0; row < model->rowCount(); ++row) {
            const QModelIndex index = model->index(row, 0);
            text += index.data(Qt::CheckStateRole).toInt() == Qt::Checked ? "[x] " : "[ ] ";
            text += index.data().toString() + '\n';
        }
        return text;
    }

    QTemporaryDir dir, home;  // the session folder, and the store's
    QString storeFile = home.filePath("Tidewick.conf");
    std::unique_ptr<Run> run = std::make_unique<Run>(storeFile);
};

// The window has the version caption and a fixed size. Each control of the form has its widget,
// by name, in its container at its place, showing its whole caption and its tooltip; the tabs
// stand in their own order, which is not the order of the stored numbers.
TEST_F(MainWindowTest, EveryControlStandsInPlaceWithItsWholeCaptionAndTooltip) {
    EXPECT_EQ(run->window.windowTitle(),
              versionCaption("Tidewick", TIDEWICK_VERSION_MAJOR, TIDEWICK_VERSION_MINOR,
                             TIDEWICK_VERSION_PATCH));
    EXPECT_EQ(run->window.centralWidget()->size(), QSize(954, 663));
    EXPECT_EQ(run->window.minimumSize(), run->window.maximumSize());
    using enum ControlKind;
    for (const auto& control : run->form.controls()) {
        if (QList{Window, Menu, MenuItem}.contains(control->kind())) {
            continue;
        }
        SCOPED_TRACE(control->name().toStdString());
        QWidget* widget = find(control->name());
        ASSERT_NE(widget, nullptr);
        EXPECT_EQ(widget->parentWidget()->objectName(),
                  control->container().isEmpty() ? "MainClient" : control->container());
        EXPECT_EQ(widget->geometry(), twipsToPixels(control->geometry()));
        EXPECT_EQ(widget->toolTip(), control->tooltip());
        EXPECT_EQ(widget->isVisible(), control->visible());
        if (widget->inherits("QCheckBox") || widget->inherits("QPushButton")) {
            EXPECT_EQ(widget->property("text").toString(), control->text());
            EXPECT_LE(widget->sizeHint().width(), widget->width());  // the caption is not cut
        }
    }
    EXPECT_EQ(find<QTabBar>("FileTypeTab")->tabToolTip(3), "Reaper Session Files");
}

TEST_F(MainWindowTest, TheTypeListTheTargetBoxAndTheFolderButtonDriveTheirControls) {
    auto* combo = find<QComboBox>("FileTypesCombo");
    EXPECT_EQ(combo->count(), 24);
    auto* keep = find<QAbstractButton>("KeepPKCheck");
    keep->click();
    for (int index : {1, 0, 5}) {  // only "All Files" lets peak files be kept
        combo->setCurrentIndex(index);
        Q_EMIT combo->activated(index);
        EXPECT_EQ(keep->isEnabled(), index == 0) << index;
        EXPECT_TRUE(keep->isChecked()) << index;
    }
    auto* target = find<QLineEdit>("TargetFolderName");
    for (const QString& picked : {dir.path(), QString()}) {  // a folder picked, then a cancel
        target->clear();
        QTest::keyClicks(target, "/typed");
        run->ui.folderAnswers = {picked};
        find<QAbstractButton>("FolderButton")->click();
        EXPECT_EQ(std::exchange(run->ui.folderRequests, {}),
                  QList<RecordingInteraction::FolderRequest>(
                      {{"Please select a folder to move the unused files.", "/typed"}}));
        EXPECT_EQ(target->text(), picked.isEmpty() ? "/typed" : picked);
        EXPECT_EQ(run->form.moveFolder(), target->text());
    }
}

// Each way takes the window from its stored position and closes it, saving the settings.
TEST_F(MainWindowTest, EscapeCloseAndExitCloseTheWindowAndSaveTheSettings) {
    const std::function<void()> ways[] = {
        [this] { QTest::keyClick(find("TargetFolderName"), Qt::Key_Escape); },
        [this] { find<QAbstractButton>("CloseButton")->click(); },
        [this] { find<QAction>("mnuFileExit")->trigger(); }};
    for (const auto& close : ways) {
        QFile::remove(storeFile);
        QSettings(storeFile, QSettings::IniFormat).setValue("WINDOW/Left", "1500");
        run.reset();
        run = std::make_unique<Run>(storeFile);
        EXPECT_EQ(run->window.pos(), QPoint(100, 0));  // 15 twips a pixel
        run->window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&run->window));
        close();
        EXPECT_FALSE(run->window.isVisible());
        QSettings ini(storeFile, QSettings::IniFormat);
        EXPECT_EQ(ini.value("SETTINGS/ActiveFileTab").toString(), "1");
        EXPECT_EQ(ini.value("WINDOW/Left").toString(), "1500");
    }
}

// The drive list holds the user's places, home first and no pseudo file system (the home of
// this test may lie on one); the folder tree shows the folders of the chosen place.
TEST_F(MainWindowTest, TheDrivesAreTheUsersPlacesAndTheTreeShowsTheChosenOne) {
    const QByteArray realHome = qgetenv("HOME");
    qputenv("HOME", dir.path().toUtf8());
    run = std::make_unique<Run>(storeFile);
    qputenv("HOME", realHome);
    auto* drives = find<QComboBox>("SESDrive");
    EXPECT_EQ(drives->itemText(0), dir.path());
    for (int index = 1; index < drives->count(); ++index) {
        const QString type = QStorageInfo(drives->itemText(index)).fileSystemType();
        EXPECT_FALSE(QStringList({"proc", "sysfs", "tmpfs", "overlay"}).contains(type)) << index;
    }
    Q_EMIT drives->activated(0);
    auto* tree = find<QTreeView>("SESDir");
    // The tree lists the folders that lie in the chosen place, hidden ones left out. Folders
    // made or removed meanwhile appear or go when it is listed again; what it has opened stays.
    for (const char* folder : {"Music/Band", "Music/Choir", ".config"}) {
        ASSERT_TRUE(QDir(dir.path()).mkpath(folder));
    }
    auto* folders = static_cast<FolderTreeModel*>(tree->model());
    folders->refresh();
    EXPECT_EQ(folders->rootPath(), dir.path());
    const QPersistentModelIndex music = folders->index(dir.filePath("Music"));
    const auto names = [&](const QModelIndex& parent) {
        QStringList listed;
        for (int row = 0; row < folders->rowCount(parent); ++row) {
            listed << folders->index(row, 0, parent).data().toString();
        }
        return listed.join(' ');
    };
    EXPECT_EQ(names({}), "Music");
    EXPECT_EQ(folders->index(dir.filePath("Music/Band")).data(FolderTreeModel::PathRole),
              dir.filePath("Music/Band"));
    ASSERT_TRUE(QDir(dir.path()).rmdir("Music/Band") && QDir(dir.path()).mkpath("Music/Alto") &&
                QDir(dir.path()).mkpath("Music/Drums"));
    folders->refresh();
    EXPECT_EQ(names(music), "Alto Choir Drums");
    EXPECT_EQ(music.data(FolderTreeModel::PathRole), dir.filePath("Music"));
}

// mix.sesx uses a.wav, whose peak file is a.pkf, and a missing take; b.wav, b.pkf, a take in the
// recordings folder, z.sesx (no session) and a name wider than the list are the other files. A
// REAPER project with its sub-folder row on also lists its record folder, and keeps what
// mix.sesx uses, with the frame's tooltip saying so.
TEST_F(MainWindowTest, TheScanCommandPrintsWhatTheWindowShows) {
    const QString wide = QString(120, 'w') + ".wav";
    for (const QString& name : QStringList{"a.wav", "a.pkf", "b.wav", "b.pkf", "z.sesx",
                                           "mix_Recorded/t.wav", "Media/m.wav", wide}) {
        ASSERT_TRUE(test::writeFile(dir.filePath(name), QByteArray(1000, 'x')));
    }
    ASSERT_TRUE(test::writeFile(
        dir.filePath("mix.sesx"),
        test::sessionBytes(SessionKindId::Sesx, {dir.filePath("a.wav"), "Audio\\gone.wav"})));
    ASSERT_TRUE(test::writeFile(dir.filePath("s.rpp"),
                                "<REAPER_PROJECT\n\nRECORD_PATH \"Media\" \"\"\n>\n"));
    find<QAbstractButton>("KeepPKCheck")->click();
    run->form.browser().pointBrowserAt(dir.path());
    const auto compare = [this](int tab, QStringList args) {
        find<QTabBar>("FileTypeTab")->setCurrentIndex(tab);
        auto* sessions = find<QListView>("SESFile");
        sessions->setCurrentIndex(sessions->model()->index(0, 0));  // mix.sesx before z.sesx
        const QString kept = find<QGroupBox>("UnusedFrame")->toolTip();
        const QString onScreen = shown("Used") + shown("Unused") +
                                 (kept.isEmpty() ? "" : kept + '\n') +
                                 "info: " + find<QLabel>("InfoLabel")->text() + '\n';
        QString out;
        QTextStream stream(&out);  // a message on the error stream shows as a difference
        EXPECT_EQ(cli::run(QStringList{"scan", dir.path(), "--session"} + args, stream, stream), 0);
        stream.flush();
        EXPECT_EQ(out, onScreen);
        return onScreen;
    };
    const QString sesx = compare(1, {"mix.sesx", "--kind", "sesx", "--keep-peaks"});
    EXPECT_TRUE(sesx.contains("Files to be Moved - [0/5]")) << sesx.toStdString();
    QApplication::processEvents();  // the list lays its lines out
    EXPECT_GT(find<QListView>("UnusedFiles")->horizontalScrollBar()->maximum(), 0);
    find<QTabBar>("FileTypeTab")->setCurrentIndex(3);
    find<QAbstractButton>("SubFolderCheck")->click();
    const QString rpp = compare(3, {"s.rpp", "--kind", "rpp", "--keep-peaks", "--add-folder"});
    EXPECT_TRUE(rpp.contains(dir.filePath("Media/m.wav"))) << rpp.toStdString();
}

// "Check All" hides the version label below it.
TEST_F(MainWindowTest, ScanAllHidesTheLabelBelow) {
    const QRect scanAll = find("ScanAll")->geometry();
    const QImage before = find("UsedFrame")->grab(scanAll).toImage();
    run->form.control(u"SESVersionLabel").setText("Audition 3.0 Audition 3.0");
    EXPECT_EQ(find("UsedFrame")->grab(scanAll).toImage(), before);
}

// "Keep other files..." opens "Exclude Files" when the click checks it. Enter adds the box's
// text; a typed or pasted path keeps only what a name may hold; OK makes the list, which the
// window saves as it closes. Escape with nothing changed closes at once, and the keyboard goes
// back to the list of other files.
TEST_F(MainWindowTest, KeepOtherFilesEditsTheExclusionListThatTheWindowSaves) {
    run->window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&run->window));
    QStringList shownEntries;
    std::function<void(QDialog*)> act;  // what the user does once the editor is open
    QTimer user;
    QObject::connect(&user, &QTimer::timeout, [&] {
        auto* editor = run->window.findChild<QDialog*>("Exclusion");
        if (editor != nullptr && editor->isVisible() && act) {
            auto* entries = editor->findChild<QListWidget*>("SpecList");
            shownEntries.clear();
            for (int row = 0; row < entries->count(); ++row) {
                shownEntries << entries->item(row)->text();
            }
            std::exchange(act, nullptr)(editor);
        }
    });
    user.start(20);
    auto* check = find<QAbstractButton>("ExcludedCheck");

    act = [](QDialog* editor) {
        EXPECT_EQ(editor->windowTitle(), "Exclude Files");
        EXPECT_EQ(editor->size(), QSize(449, 301));
        auto* spec = editor->findChild<QLineEdit*>("SpecText");
        QTest::keyClicks(spec, " *.TMP ");
        QTest::keyClick(spec, Qt::Key_Return);
        QTest::keyClicks(spec, "C:\\take;1.wav");
        QTest::keyClick(spec, Qt::Key_Return);
        QApplication::clipboard()->setText("lyrics/v2:final.doc");
        spec->paste();
        editor->findChild<QAbstractButton*>("ActionButton0")->click();
        QTest::keyClicks(spec, "kept.doc");  // a click back into the box selects its text
        editor->findChild<QListWidget*>("SpecList")->setFocus();
        QTest::mouseClick(spec, Qt::LeftButton);
        QApplication::processEvents();
        EXPECT_EQ(spec->selectedText(), "kept.doc");
        editor->findChild<QPushButton*>("OKButton")->click();
    };
    check->click();
    EXPECT_TRUE(shownEntries.isEmpty());
    EXPECT_EQ(run->form.lists().excludedFiles(),
              QStringList({"*.TMP", "Ctake1.wav", "lyricsv2final.doc"}));
    run->window.activateWindow();  // as the desktop does when a dialog closes; offscreen does not
    EXPECT_TRUE(QTest::qWaitFor([this] { return find("UnusedFiles")->hasFocus(); }));

    check->click();  // clearing the box opens nothing
    act = [](QDialog* editor) { QTest::keyClick(editor, Qt::Key_Escape); };
    check->click();
    EXPECT_EQ(shownEntries, run->form.lists().excludedFiles());
    EXPECT_TRUE(run->ui.messages.isEmpty());

    run->window.close();
    QSettings ini(storeFile, QSettings::IniFormat);
    EXPECT_EQ(ini.value("EXCLUDED/File00002").toString(), "Ctake1.wav");
    EXPECT_EQ(ini.value("EXCLUDED/File00003").toString(), "lyricsv2final.doc");
}

// "&Move Files" through the window: the confirmation, the overwrite question with the focus on
// the first answer of a program run, the results window that comes alive when its run is over,
// and the session read again after it closes. "&Restore a Move..." then undoes the move.
TEST_F(MainWindowTest, TheMoveButtonMovesTheCheckedFilesAndRestoreUndoesIt) {
    qputenv("XDG_DATA_HOME", home.filePath("data").toUtf8());
    QTemporaryDir target;
    for (const char* name : {"a.wav", "b.wav", "c.wav"}) {
        ASSERT_TRUE(test::writeFile(dir.filePath(name), QByteArray(1000, 'x')));
    }
    ASSERT_TRUE(test::writeFile(target.filePath("b.wav"), "old"));
    ASSERT_TRUE(test::writeFile(dir.filePath("mix.sesx"),
                                test::sessionBytes(SessionKindId::Sesx, {"a.wav"})));
    run->form.browser().pointBrowserAt(dir.path());
    find<QTabBar>("FileTypeTab")->setCurrentIndex(1);
    auto* sessions = find<QListView>("SESFile");
    sessions->setCurrentIndex(sessions->model()->index(0, 0));
    QAbstractItemModel* others = find<QListView>("UnusedFiles")->model();
    for (int row : {0, 1}) {  // b.wav, c.wav
        others->setData(others->index(row, 0), Qt::Checked, Qt::CheckStateRole);
    }
    auto* targetBox = find<QLineEdit>("TargetFolderName");
    targetBox->clear();
    QTest::keyClicks(targetBox, target.path());

    run->ui.answers = {MessageAnswer::Yes};
    run->ui.overwriteAnswers = {OverwriteAnswer::No};
    QString log;
    QTimer closer;  // the user, who reads the log and closes the window once they can
    QObject::connect(&closer, &QTimer::timeout, [&] {
        if (auto* chooser = run->window.findChild<QDialog*>("Restore");
            chooser && chooser->isVisible()) {
            chooser->findChild<QPushButton*>("RestoreButton")->click();
        }
        auto* results = run->window.findChild<QDialog*>("MoveForm");
        auto* close = results ? results->findChild<QPushButton*>("CloseButton") : nullptr;
        if (close != nullptr && close->isEnabled()) {
            log = results->findChild<QPlainTextEdit*>("ResultsBox")->toPlainText();
            close->click();
        }
    });
    closer.start(20);
    find<QAbstractButton>("MoveButton")->click();

    EXPECT_EQ(run->ui.messages.value(0).text,
              "Warning!  You are about to Move 2 file(s) as follows:-\r\n\r\nFrom : \"" +
                  dir.path() + "\"\r\nTo : \"" + target.path() +
                  "\"\r\n\r\nAre you sure you wish to proceed?");
    EXPECT_EQ(
        run->ui.overwriteQuestions,
        (QList<std::pair<QString, OverwriteAnswer>>{
            {"File '" + target.filePath("b.wav") + "' Already Exists.  Overwrite Existing File?",
             OverwriteAnswer::Yes}}));
    const QString from = "Moving..." + dir.path() + '/';
    EXPECT_TRUE(log.contains(from + "b.wavSkipped\n" + from +
                             "c.wav...OK - 1,000 bytes moved.\n\n" +
                             "Files Moved: 1 - Bytes Moved:  1,000 (0.00Mb)\n"))
        << log.toStdString();
    EXPECT_EQ(shown("Unused"), "unused: Files to be Moved - [0/1]\n[ ] b.wav\n");
    EXPECT_EQ(run->form.Form_Unload().lastOverwriteAnswer, OverwriteAnswer::No);

    run->ui.answers = {MessageAnswer::Yes};
    run->window.findChild<QAction*>("mnuFileRestore")->trigger();
    EXPECT_TRUE(run->ui.messages.value(1).text.startsWith("Put the 1 file(s) of the move of "));
    EXPECT_TRUE(
        log.contains("Restoring..." + dir.filePath("c.wav") + "...OK - 1,000 bytes restored."))
        << log.toStdString();
    EXPECT_EQ(shown("Unused"), "unused: Files to be Moved - [0/2]\n[ ] b.wav\n[ ] c.wav\n");
}

// "&Audit a Library...": the folder picker, the table sorted by a click on a heading, and a
// double-click that shows the folder on the tab of its session's kind.
TEST_F(MainWindowTest, TheAuditTableSortsAndGoesToTheFolderDoubleClicked) {
    qputenv("XDG_CACHE_HOME", home.filePath("cache").toUtf8());
    for (const auto& [name, kind, junk] : {std::tuple{"Big", SessionKindId::Veg, 3000},
                                           std::tuple{"Small", SessionKindId::Xml, 10}}) {
        const QString folder = dir.filePath(name) + '/';
        ASSERT_TRUE(test::writeFile(folder + "junk.wav", QByteArray(junk, 'x')));
        ASSERT_TRUE(test::writeFile(folder + "s." + sessionKind(kind).sessionPattern.mid(2),
                                    test::sessionBytes(kind, {"gone.wav"})));
    }
    run->ui.folderAnswers = {dir.path()};
    QStringList folders;
    QTimer user;
    QObject::connect(&user, &QTimer::timeout, [&] {
        auto* audit = run->window.findChild<QDialog*>("Audit");
        auto* table = audit ? audit->findChild<QTableWidget*>("FolderTable") : nullptr;
        if (table == nullptr || !audit->findChild<QPushButton*>("OpenButton")->isEnabled() ||
            !folders.isEmpty()) {
            return;
        }
        for (int column : {0, 0}) {  // by folder, then by folder the other way round
            QHeaderView* headings = table->horizontalHeader();
            QTest::mouseClick(headings->viewport(), Qt::LeftButton, {},
                              {headings->sectionViewportPosition(column) + 5, 5});
            folders << table->item(0, 0)->text() + " " + table->item(0, 3)->text();
        }
        const QPoint place = table->visualItemRect(table->item(1, 0)).center();
        QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(table->viewport(), Qt::LeftButton, {}, place);
    });
    user.start(20);
    run->window.findChild<QAction*>("mnuFileAudit")->trigger();
    EXPECT_EQ(folders, QStringList({dir.filePath("Big") + " 1", dir.filePath("Small") + " 1"}));
    EXPECT_EQ(run->form.control(u"SESFile").text(), dir.filePath("Big"));
    EXPECT_EQ(run->form.browser().selectedTabKey(), kindTexts(SessionKindId::Veg).tabKey);
    qunsetenv("XDG_CACHE_HOME");
}

}  // namespace
}  // namespace tidewick
