#include <gtest/gtest.h>

#include <QFile>
#include <QLocale>

#include <QTemporaryDir>
#include "forms/kind_texts.h"
#include "forms/main_form.h"
#include "readers/session_kinds.h"
#include "support/reader_fixture.h"  // prints texts in failures
#include "support/recording_interaction.h"
#include "support/session_files.h"
#include "text/path_text.h"

namespace tidewick::test {
namespace {

/// The main window's logic pointed at a fresh session folder, with a scripted user.
class SessionFolderTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        form.Form_Load();
        form.browser().pointBrowserAt(dir.path());
    }

    /// The session folder with a trailing separator.
    QString folder() const { return dir.path() + hostSeparator(); }

    /// Writes a session of `kind` naming `paths`, and switches to that kind's tab (also when it
    /// is the chosen one already).
    void writeSession(const QString& name, SessionKindId kind, const QStringList& paths) {
        ASSERT_TRUE(writeFile(dir.filePath(name), sessionBytes(kind, paths)));
        form.browser().selectTabByKey(kindTexts(kind).tabKey);
        form.browser().FileTypeTab_Click();
    }

    /// Lists the folder again and selects `name`, which loads it.
    void select(const QString& name) {
        form.browser().refreshSessionFiles();
        const auto index = form.control(u"SESFile").items().indexOf(name);
        ASSERT_GE(index, 0) << name.toStdString();
        form.control(u"SESFile").setListIndex(static_cast<int>(index));
    }

    /// The used list's lines, "[x] " before a checked one and "[ ] " before the others.
    QStringList usedLines() const {
        QStringList lines;
        for (int row = 0; row < form.lists().usedFiles().count(); ++row) {
            lines << (form.lists().usedFiles().isChecked(row) ? "[x] " : "[ ] ") +
                         form.lists().usedFiles().text(row);
        }
        return lines;
    }

    QTemporaryDir dir;
    RecordingInteraction ui;
    MainForm form{ui};
};

// The sub-folder row shows on the REAPER and Vegas tabs, whose record folder is the session's.
TEST_F(SessionFolderTest, ATabSwitchSetsTheKindsValuesAndEmptiesBothLists) {
    for (const SessionKind* tab : tabKinds()) {
        const SessionKind& kind = *tab;
        const KindTexts& texts = kindTexts(kind.id);
        SCOPED_TRACE(texts.tabKey.toStdString());
        const bool subFolderRow = kind.id == SessionKindId::Rpp || kind.id == SessionKindId::Veg;
        form.browser().selectTabByKey(kind.id == SessionKindId::Veg ? "SESFiles" : "VEGFiles");
        form.lists().usedFiles().addItem("old.wav", true);
        form.control(u"SESVersionLabel").setText("Audition 3.0");
        form.browser().selectTabByKey(texts.tabKey);
        EXPECT_EQ(form.browser().sessionFilePattern(), tabSessionPattern(kind));
        EXPECT_EQ(form.control(u"ScanAll").text(), texts.scanAllCaption);
        const QString record = subFolderRow || kind.projectScope ? dir.path() : "_Recorded";
        EXPECT_EQ(form.lists().recordFolder(), record);
        EXPECT_EQ(form.control(u"SubFolderName").text(), record);
        EXPECT_EQ(form.control(u"SubFolderName").visible(), subFolderRow);
        EXPECT_EQ(form.control(u"UnusedFiles").geometry().top(), subFolderRow ? 720 : 270);
        EXPECT_EQ(form.lists().usedFiles().count(), 0);
        EXPECT_EQ(form.control(u"SESVersionLabel").text(), QString());
    }
}

// Both boxes reload a selected session, and only a selected one; Scan All reads every session
// and, on the REAPER tab, empties the record folder before that load (so one folder level
// stays on a trimmed line).
TEST_F(SessionFolderTest, TheCheckBoxesReloadOnlyASelectedSession) {
    writeSession("a.rpp", SessionKindId::Rpp, {"C:\\x\\a.wav"});
    writeSession("b.rpp", SessionKindId::Rpp, {"D:\\y\\b.wav"});
    form.lists().usedFiles().addItem("untouched");
    form.control(u"IgnoreFoldersCheck").setChecked(true);
    EXPECT_EQ(usedLines(), QStringList{"[ ] untouched"});
    select("a.rpp");
    EXPECT_EQ(usedLines(), QStringList{"[ ] a.wav"});
    form.control(u"ScanAll").setChecked(true);
    EXPECT_EQ(usedLines(), QStringList({"[ ] x/a.wav", "[ ] y/b.wav"}));
    form.control(u"IgnoreFoldersCheck").setChecked(false);
    EXPECT_EQ(usedLines(), QStringList({"[ ] C:/x/a.wav", "[ ] D:/y/b.wav"}));
    EXPECT_EQ(form.lists().usedFiles().tooltip(1),
              "D:/y/b.wav\nUsed by b.rpp");  // which session uses it
}

// The "More" tab lists the sessions of the newer kinds together, and loads each with its own
// kind's reader; "Check All" reads them all.
TEST_F(SessionFolderTest, TheMoreTabListsTheNewerKindsTogetherAndReadsEachAsItsKind) {
    ASSERT_TRUE(writeFile(dir.filePath("Song.als"),
                          R"(<?xml version="1.0"?><Ableton><FileRef><RelativePathType Value="1"/>)"
                          R"(<RelativePath Value="take.wav"/></FileRef></Ableton>)"));
    ASSERT_TRUE(writeFile(dir.filePath("podcast.aup"),
                          R"(<?xml version="1.0"?><project version="1.3.0">)"
                          R"(<simpleblockfile filename="e0000001.au"/></project>)"));
    writeSession("mix.rpp", SessionKindId::Rpp, {"vox.wav"});
    form.browser().selectTabByKey("MoreFiles");
    form.browser().refreshSessionFiles();
    QStringList listed = form.control(u"SESFile").items();
    listed.sort(Qt::CaseInsensitive);
    EXPECT_EQ(listed, QStringList({"podcast.aup", "Song.als"}));
    const auto endings = [this] {
        QStringList found;
        for (const QString& line : usedLines()) {
            found << line.section('/', -1);
        }
        return found;
    };
    select("Song.als");
    EXPECT_EQ(endings(), QStringList{"take.wav"});
    select("podcast.aup");
    EXPECT_EQ(endings(), QStringList{"e0000001.au"});
    form.control(u"ScanAll").setChecked(true);
    QStringList all = endings();
    all.sort();
    EXPECT_EQ(all, QStringList({"e0000001.au", "take.wav"}));
}

// A drive that cannot be opened is reported and the browser stays; a folder that cannot be
// opened is passed over; any other folder is listed and empties both lists.
TEST_F(SessionFolderTest, TheBrowserGoesOnlyWhereItCanAndEmptiesTheListsWhenItGoes) {
    ASSERT_TRUE(writeFile(dir.filePath("sub/x.ses")));
    const QString missing = dir.filePath("gone"), drive = form.control(u"SESDrive").text();
    for (const auto& [to, name] : {std::pair<QString, QString>{"q:\\", "Q"}, {missing, missing}}) {
        ui.messages.clear();
        form.lists().usedFiles().addItem("a.wav");
        form.lists().unusedFiles().addItem("b.wav");
        form.control(u"SESDrive").setText(to);
        const QString text = "Error accessing drive " + name + ".  Device unavailable.";
        EXPECT_EQ(ui.messages, QList<MessageBoxRequest>({{text, "Drive Error"}}));
        EXPECT_EQ(form.control(u"SESDrive").text(), drive);
        EXPECT_EQ(form.control(u"SESDir").text(), dir.path());
        EXPECT_EQ(form.lists().usedFiles().count() + form.lists().unusedFiles().count(), 0);
    }
    form.lists().usedFiles().addItem("a.wav");
    form.lists().unusedFiles().addItem("b.wav");
    form.control(u"SESVersionLabel").setText("Audition 3.0");
    form.browser().SESDir_Click(missing);
    EXPECT_EQ(form.lists().usedFiles().count() + form.lists().unusedFiles().count(),
              2);  // the tree did not move
    form.browser().SESDir_Click(dir.filePath("sub"));
    EXPECT_EQ(form.control(u"SESDir").text(), dir.filePath("sub"));
    EXPECT_EQ(form.control(u"SESFile").items(),
              QStringList{"x.ses"});  // the file list follows the tree
    EXPECT_EQ(form.lists().usedFiles().count() + form.lists().unusedFiles().count(), 0);
    EXPECT_EQ(form.control(u"SESVersionLabel").text(), QString());
}

// A load names the file in the caption while it reads. A selection made while it lists the other
// files is loaded after it; a tab switch then leaves both lists empty.
TEST_F(SessionFolderTest, ALoadNamesItsFileAndAChoiceMadeDuringItWaitsForItsEnd) {
    writeSession("a.veg", SessionKindId::Veg, {"a.wav"});
    writeSession("b.veg", SessionKindId::Veg, {"b.wav"});
    const QString caption = form.control(u"Main").text();
    QStringList captions;
    QObject::connect(&form.control(u"Main"), &Control::textChanged,
                     [&] { captions.append(form.control(u"Main").text()); });
    form.control(u"UsedFiles").setItems({"x"});
    form.control(u"UsedFiles").setListIndex(0);
    select("a.veg");
    EXPECT_EQ(captions, QStringList({"Reading " + folder() + "a.veg...Please Wait", caption}));
    EXPECT_EQ(form.control(u"UsedFiles").listIndex(), -1);
    EXPECT_FALSE(ui.busyPointer);
    ui.whileBusy = [&] { form.control(u"SESFile").setListIndex(1); };
    select("a.veg");
    EXPECT_EQ(usedLines(), QStringList{"[ ] b.wav"});
    ui.whileBusy = [&] { form.browser().selectTabByKey("SESXFiles"); };
    select("b.veg");
    EXPECT_EQ(form.lists().usedFiles().count() + form.lists().unusedFiles().count(), 0);
    EXPECT_FALSE(form.lists().sessionLoadRunning());
}

// An other file's mark, set in the list by mouse or keyboard or by the selection buttons, moves
// the counters; sizes are those of the listing until the window is active again. A double-click
// opens a listed file that exists. A used line's mark snaps back to whether its file exists.
TEST_F(SessionFolderTest, CheckMarksMoveTheCountersOnOtherFilesAndSnapBackOnUsedLines) {
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    writeSession("s.xml", SessionKindId::Xml, {});
    ASSERT_TRUE(writeFile(dir.filePath("a.wav"), QByteArray(3145728, 'a')));
    ASSERT_TRUE(writeFile(dir.filePath("t.wav"), QByteArray(1024, 't')));
    select("s.xml");
    const QString sizes = "Listed Other Files: %1 - Selected Other Files: %2";
    form.lists().unusedFiles().setData(form.lists().unusedFiles().index(0), Qt::Checked,
                                       Qt::CheckStateRole);
    EXPECT_EQ(form.control(u"InfoLabel").text(),
              sizes.arg("3,146,752 bytes (3.00Mb)", "3,145,728 bytes (3.00Mb)"));
    EXPECT_EQ(form.control(u"UnusedFrame").text(), "Files to be Moved - [1/2]");
    ASSERT_TRUE(QFile::remove(dir.filePath("a.wav")));
    form.Form_Activate();
    EXPECT_EQ(form.control(u"InfoLabel").text(),
              sizes.arg("1,024 bytes (0.00Mb)", "0 bytes (0.00Mb)"));
    form.control(u"UnusedFiles").setListIndex(1);
    form.control(u"SelectButton2").click();
    EXPECT_EQ(form.control(u"UnusedFrame").text(), "Files to be Moved - [1/2]");
    EXPECT_EQ(form.control(u"InfoLabel").text(),
              sizes.arg("1,024 bytes (0.00Mb)", "1,024 bytes (0.00Mb)"));
    EXPECT_EQ(form.control(u"UnusedFiles").listIndex(), -1);
    for (const int row : {-1, 1, 0}) {  // no line current, a file, a file deleted meanwhile
        form.control(u"UnusedFiles").setListIndex(row);
        form.lists().UnusedFiles_DblClick();
    }
    EXPECT_EQ(ui.opened, QStringList{folder() + "t.wav"});
    EXPECT_EQ(ui.messages, QList<MessageBoxRequest>({{"The selected file could not be loaded into "
                                                      "an asociated program.",
                                                      "Launch Error"}}));
    QLocale::setDefault(QLocale::c());

    ASSERT_TRUE(writeFile(dir.filePath("Song_Recorded/t.wav")));
    ASSERT_TRUE(writeFile(dir.filePath("<no media files found>")));
    const std::tuple<QString, bool, bool> cases[] = {
        // the line, trimmed, the file exists
        {folder() + "t.wav", false, true},
        {folder() + "gone.wav", false, false},
        {"t.wav", false, true},  // a bare name lives in the session folder
        {"Song_Recorded/t.wav", true, true},
        {"<no media files found>", false, false}};
    for (const auto& [line, trim, exists] : cases) {
        form.control(u"IgnoreFoldersCheck")
            .setChecked(trim);  // reloads the session selected, if any
        form.lists().usedFiles().clear();
        form.lists().usedFiles().addItem(line, exists);
        form.lists().usedFiles().setData(form.lists().usedFiles().index(0),
                                         exists ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
        EXPECT_EQ(form.lists().usedFiles().isChecked(0), exists) << line.toStdString();
    }
    EXPECT_FALSE(ui.busyPointer);
}

// Checked without a session the row empties the list; browsing while it is off only changes its
// folder; checked with a REAPER session it reloads it and gathers that folder. The store option
// follows the selected session.
TEST_F(SessionFolderTest, TheSubFolderRowGathersItsFolderAndTheStoreOptionFollowsTheSession) {
    writeSession("mix.rpp", SessionKindId::Rpp, {});
    ASSERT_TRUE(writeFile(dir.filePath("Rec/take.wav")));
    form.lists().unusedFiles().addItem("old.wav");
    form.control(u"SubFolderCheck").setChecked(true);
    EXPECT_EQ(form.lists().unusedFiles().count(), 0);
    EXPECT_EQ(form.control(u"StoreInSubFolderCheck").text(), "Store in sub-folder...");
    EXPECT_FALSE(form.control(u"StoreInSubFolderCheck").enabled());
    form.control(u"SubFolderCheck").setChecked(false);
    form.control(u"TargetFolderName").setText("/old");
    select("mix.rpp");
    EXPECT_EQ(form.control(u"SubFolderName").text(), dir.path());
    EXPECT_EQ(form.control(u"StoreInSubFolderCheck").text(),
              "Store in sub-folder \"..." + folder().right(1) + "mix\"");
    EXPECT_EQ(form.control(u"StoreInSubFolderCheck").tooltip(),
              "Sub-folder: /old" + folder().right(1) + "mix");
    ui.folderAnswers = {dir.filePath("Rec")};
    form.control(u"SubFolderButton").click();
    EXPECT_EQ(form.lists().recordFolder(), dir.filePath("Rec"));
    EXPECT_EQ(form.lists().unusedFiles().count(), 0);
    form.control(u"SubFolderCheck").setChecked(true);
    ASSERT_EQ(form.lists().unusedFiles().count(), 1);
    EXPECT_EQ(form.lists().unusedFiles().text(0),
              folder() + "Rec" + folder().right(1) + "take.wav");
    EXPECT_EQ(form.control(u"UnusedFrame").text(), "Files to be Moved - [0/1]");
}

// A "Check All" load that stops at a session it cannot read lists no other files, says where it
// stopped, and a change of media type lists none either.
TEST_F(SessionFolderTest, AStoppedLoadSaysWhereAndOffersNothing) {
    writeSession("a.ses", SessionKindId::Ses, {"x.wav"});
    ASSERT_TRUE(
        writeFile(dir.filePath("b.ses"), sessionBytes(SessionKindId::Ses, {"y.wav"}).left(40)));
    ASSERT_TRUE(writeFile(dir.filePath("c.ses"), sessionBytes(SessionKindId::Ses, {})));
    ASSERT_TRUE(writeFile(dir.filePath("z.wav")));
    form.control(u"ScanAll").setChecked(true);
    select("a.ses");
    form.control(u"FileTypesCombo").setListIndex(1);
    EXPECT_EQ(form.lists().unusedFiles().count(), 0);
    EXPECT_TRUE(form.control(u"UsedFrame").text().startsWith("Reading stopped: "));
    EXPECT_EQ(form.control(u"UnusedFrame").text(), "Files to be Moved");
    EXPECT_EQ(form.control(u"InfoLabel").text(),
              "Reading stopped at \"b.ses\" (2 of 3 sessions not read): no other files are listed");
}

// "Cop&y Files" from the picker to the last message. In the target a folder holds the name of
// c.wav, so its copy fails until the scripted user takes that folder away.
TEST_F(SessionFolderTest, CopyFilesCopiesTheCheckedLinesAndAsksAtEachFailure) {
    using A = MessageAnswer;
    qputenv("XDG_DATA_HOME", dir.filePath("data").toUtf8());
    for (const char* file : {"A/take.wav", "B/take.wav", "c.wav"}) {
        ASSERT_TRUE(writeFile(dir.filePath(file), file));
    }
    writeSession("gone.sesx", SessionKindId::Sesx, {folder() + "missing.wav"});
    writeSession("s.sesx", SessionKindId::Sesx,
                 {folder() + "A/take.wav", folder() + "missing.wav", folder() + "B/take.wav",
                  folder() + "c.wav"});
    const QString target = dir.filePath("Collect"), shown = target + hostSeparator();
    const QString warning = "WARNING! You are about to copy 3 file(s) to " + target +
                            ".\r\nAny files with the same file names that are already in that "
                            "folder will be overwritten.\r\nAre you sure you wish to proceed?";
    const QString failure =
        "Error 21 (Is a directory) has occurreed while attempting to copy c.wav.";
    const auto result = [](const QString& line) {
        return line + "\r\nWould you like to open the target folder in Explorer?";
    };
    const struct {
        const char* session;
        QStringList folderAnswers;
        QList<A> answers;
        QStringList messages;
        QString copied;      // what the target's take.wav and c.wav hold afterwards
        QString copyFolder;  // empty: as it was before
    } rows[] = {
        {"gone.sesx", {}, {}, {"There are no used files found on disk.  Nothing to copy."}, "", ""},
        {"s.sesx", {""}, {}, {"Operation cancelled."}, "", ""},
        {"s.sesx",
         {target},
         {A::No, A::No},
         {warning, result("0 File(s) successfully copied to " + target + ".")},
         "",
         target},
        {"s.sesx",
         {target},
         {A::Yes, A::Ignore, A::No},
         {warning, failure, result("2 File(s) successfully copied to " + shown + ".")},
         "B/take.wav|",
         shown},
        {"s.sesx",
         {target},
         {A::Yes, A::Retry, A::Retry, A::No},
         {warning, failure, failure, result("3 File(s) successfully copied to " + shown + ".")},
         "B/take.wav|c.wav",
         shown},
        {"s.sesx", {target}, {A::Yes, A::Abort}, {warning, failure}, "B/take.wav|", shown},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.answers.size());
        QDir(target).removeRecursively();
        ASSERT_TRUE(QDir().mkpath(target + "/c.wav"));
        int failures = 0;
        ui.beforeAnswer = [&](const MessageBoxRequest& request) {
            if (request.text == failure && ++failures == 2) {
                QDir(target + "/c.wav").removeRecursively();  // the second Retry succeeds
            }
        };
        select(row.session);
        const QString before = form.usedCopy().copyFolder();
        form.control(u"Main").setText("Tidewick");
        ui.messages.clear();
        ui.folderAnswers = row.folderAnswers;
        ui.answers = row.answers;
        form.usedCopy().CopyFilesButton_Click();

        QStringList texts;
        for (const MessageBoxRequest& message : ui.messages) {
            EXPECT_EQ(message.title, "Copy Used Files");
            texts << message.text;
        }
        EXPECT_EQ(texts, row.messages);
        EXPECT_EQ(readFile(target + "/take.wav") + '|' + readFile(target + "/c.wav"),
                  row.copied.isEmpty() ? "|" : row.copied);
        EXPECT_EQ(form.usedCopy().copyFolder(), row.copyFolder.isEmpty() ? before : row.copyFolder);
        EXPECT_EQ(form.control(u"Main").text(), "Tidewick");
        EXPECT_TRUE(form.control(u"UsedFrame").enabled() && !ui.busyPointer);
    }
}

}  // namespace
}  // namespace tidewick::test
