#include <gtest/gtest.h>

#include <QFile>
#include <QLocale>

#include "session_fixture.h"

namespace tidewick {
namespace {

using test::SessionFolderTest;
using test::writeFile;

// The sub-folder row shows on the REAPER and Vegas tabs, whose record folder is the session's.
TEST_F(SessionFolderTest, ATabSwitchSetsTheKindsValuesAndEmptiesBothLists) {
    for (const SessionKind& kind : sessionKinds()) {
        SCOPED_TRACE(kind.tabKey.toStdString());
        const bool subFolderRow = kind.id == SessionKindId::Rpp || kind.id == SessionKindId::Veg;
        form.selectTabByKey(kind.id == SessionKindId::Veg ? "SESFiles" : "VEGFiles");
        form.UsedFiles.addItem("old.wav", true);
        form.SESVersionLabel.setText("Audition 3.0");
        form.selectTabByKey(kind.tabKey);
        EXPECT_EQ(form.sessionFilePattern(), kind.sessionPattern);
        EXPECT_EQ(form.ScanAll.text(), kind.scanAllCaption);
        const QString record = subFolderRow ? dir.path() : "_Recorded";
        EXPECT_EQ(form.RecordFolder, record);
        EXPECT_EQ(form.SubFolderName.text(), record);
        EXPECT_EQ(form.SubFolderName.visible(), subFolderRow);
        EXPECT_EQ(form.UnusedFilesBox.geometry().top(), subFolderRow ? 720 : 270);
        EXPECT_EQ(form.UsedFiles.count(), 0);
        EXPECT_EQ(form.SESVersionLabel.text(), QString());
    }
}

TEST_F(SessionFolderTest, TheScanRangeFollowsTheSelectionOrTheWholeList) {
    struct Case {
        bool scanAll;
        int files, selected;
        int first, last;
    };
    for (const Case& c :
         {Case{false, 3, 1, 1, 1}, Case{false, 3, -1, 0, -1}, Case{true, 3, 1, 0, 2},
          Case{true, 0, -1, 0, -1}, Case{false, 40000, 32768, 32768, 32768}}) {
        form.SESFile.setItems(QStringList(c.files, "s.ses"));
        {
            const QSignalBlocker quiet(form.SESFile);  // select without loading
            form.SESFile.setListIndex(c.selected);
        }
        form.ScanAll.setChecked(c.scanAll);
        form.SetScanParams();
        EXPECT_EQ(form.CheckAllFiles, c.scanAll);
        const ScanRange range = scanRange(form.sweepRequest());
        EXPECT_EQ(std::pair(range.first, range.last), std::pair(c.first, c.last))
            << c.files << " files, " << c.selected << " selected";
    }
}

TEST_F(SessionFolderTest, TheCheckBoxesLoadOnlyWhileASessionIsSelected) {
    useKind(SessionKindId::Ses);
    writeSession("a.ses", SessionKindId::Ses, {"C:\\a.wav"});
    form.refreshSessionFiles();
    form.UsedFiles.addItem("untouched");
    form.IgnoreFoldersCheck.setChecked(true);
    form.ScanAll.setChecked(true);
    EXPECT_EQ(usedLines(), QStringList{"[ ] untouched"});
    select("a.ses");
    EXPECT_EQ(usedLines(), QStringList{"[ ] a.wav"});
    form.IgnoreFoldersCheck.setChecked(false);
    EXPECT_EQ(usedLines(), QStringList{"[ ] C:/a.wav"});
}

TEST_F(SessionFolderTest, ScanAllOnTheReaperTabEmptiesTheRecordFolderBeforeTheLoad) {
    useKind(SessionKindId::Rpp);
    writeSession("a.rpp", SessionKindId::Rpp, {"C:\\a.wav"});
    select("a.rpp");
    QString recordAtLoad = "unset";
    ui.whileBusy = [&] { recordAtLoad = form.RecordFolder; };
    form.ScanAll.setChecked(true);
    EXPECT_EQ(recordAtLoad, QString());
}

TEST_F(SessionFolderTest, ACheckMarkSnapsBackToWhetherTheFileExists) {
    for (const char* file : {"t.wav", "Song_Recorded/t.wav", "<no media files found>"}) {
        ASSERT_TRUE(writeFile(dir.filePath(file)));
    }
    struct Case {
        QString line;
        bool trim, exists;
    };
    for (const Case& c :
         {Case{folder() + "t.wav", false, true}, Case{folder() + "gone.wav", false, false},
          Case{"t.wav", false, true},  // a bare name lives in the session folder
          Case{"Song_Recorded/t.wav", true, true}, Case{"<no media files found>", false, false}}) {
        form.UsedFiles.clear();
        form.TrimFoldersFlag = c.trim;
        form.UsedFiles.addItem(c.line, c.exists);
        // The view flips the mark and tells the form, as a click on the box does.
        form.UsedFiles.setData(form.UsedFiles.index(0), c.exists ? Qt::Unchecked : Qt::Checked,
                               Qt::CheckStateRole);
        EXPECT_EQ(form.UsedFiles.isChecked(0), c.exists) << c.line.toStdString();
    }
    EXPECT_FALSE(ui.busyPointer);
}

TEST_F(SessionFolderTest, ADriveErrorIsReportedAndTheBrowserStays) {
    const QString missing = dir.filePath("gone");
    const QString previousDrive = form.SESDrive.text();
    for (const auto& [drive, name] :
         {std::pair<QString, QString>{"q:\\", "Q"}, {missing, missing}}) {
        ui.messages.clear();
        form.UsedFiles.addItem("a.wav");
        form.UnusedFiles.addItem("b.wav");
        form.SESDrive.setText(drive);
        EXPECT_EQ(ui.messages, QList<MessageBoxRequest>(
                                   {{"Error accessing drive " + name + ".  Device unavailable.",
                                     "Drive Error", MessageIcon::Information}}));
        EXPECT_EQ(form.SESDrive.text(), previousDrive);
        EXPECT_EQ(form.SESDir.text(), dir.path());
        EXPECT_EQ(form.SESFile.text(), dir.path());
        EXPECT_EQ(form.UsedFiles.count() + form.UnusedFiles.count(), 0);
    }
}

TEST_F(SessionFolderTest, AFolderChangeListsTheNewFolderAndEmptiesTheLists) {
    ASSERT_TRUE(writeFile(dir.filePath("sub/x.ses")));
    form.UsedFiles.addItem("a.wav");
    form.UnusedFiles.addItem("b.wav");
    form.SESVersionLabel.setText("Audition 3.0");
    form.SESDir_Click(dir.filePath("missing"));  // cannot be opened: ignored
    EXPECT_EQ(form.SESDir.text(), dir.path());
    EXPECT_EQ(form.UsedFiles.count(), 1);
    form.SESDir_Click(dir.filePath("sub"));
    EXPECT_EQ(form.SESDir.text(), dir.filePath("sub"));
    EXPECT_EQ(form.SESFile.text(), dir.filePath("sub"));
    EXPECT_EQ(form.SESFile.items(), QStringList{"x.ses"});
    EXPECT_EQ(form.UsedFiles.count() + form.UnusedFiles.count(), 0);
    EXPECT_EQ(form.SESVersionLabel.text(), QString());
}

TEST_F(SessionFolderTest, ALoadNamesTheFileWhileReadingAndRestoresTheWindowAfter) {
    const QString caption = form.Main.text();
    QStringList captions;
    QObject::connect(&form.Main, &Control::textChanged, [&] { captions.append(form.Main.text()); });
    useKind(SessionKindId::Xml);
    writeSession("take.xml", SessionKindId::Xml, {"a.wav"});
    form.UsedFilesBox.setItems({"x"});
    form.UsedFilesBox.setListIndex(0);
    select("take.xml");
    EXPECT_EQ(captions, QStringList({"Reading " + folder() + "take.xml...Please Wait", caption}));
    EXPECT_EQ(form.UsedFilesBox.listIndex(), -1);
    EXPECT_FALSE(ui.busyPointer);
}

TEST_F(SessionFolderTest, ASelectionDuringALoadIsLoadedAfterIt) {
    useKind(SessionKindId::Xml);
    writeSession("a.xml", SessionKindId::Xml, {"a.wav"});
    writeSession("b.xml", SessionKindId::Xml, {"b.wav"});
    ui.whileBusy = [&] { form.SESFile.setListIndex(1); };
    select("a.xml");
    EXPECT_EQ(usedLines(), QStringList{"[ ] b.wav"});
    EXPECT_FALSE(form.sessionLoadRunning());
}

TEST_F(SessionFolderTest, ATabSwitchDuringALoadLeavesBothListsEmpty) {
    useKind(SessionKindId::Xml);
    writeSession("a.xml", SessionKindId::Xml, {"a.wav"});
    ui.whileBusy = [&] { form.selectTabByKey("SESXFiles"); };
    select("a.xml");
    EXPECT_EQ(form.UsedFiles.count(), 0);
    EXPECT_EQ(form.UnusedFiles.count(), 0);
    EXPECT_EQ(form.sessionFilePattern(), "*.sesx");
}

// Sizes are those of the listing until a mark changes: then that file is measured again.
TEST_F(SessionFolderTest, CheckMarksMoveTheCountersAndAVanishedFileCountsZero) {
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    useKind(SessionKindId::Xml);
    writeSession("s.xml", SessionKindId::Xml, {});
    ASSERT_TRUE(test::writeFile(dir.filePath("a.wav"), QByteArray(3145728, 'a')));
    ASSERT_TRUE(test::writeFile(dir.filePath("b.wav"), QByteArray(1024, 'b')));
    select("s.xml");
    const auto mark = [this](int row, bool checked) {  // as the user does in the list
        form.UnusedFiles.setData(form.UnusedFiles.index(row), checked ? Qt::Checked : Qt::Unchecked,
                                 Qt::CheckStateRole);
    };
    const QString sizes = "Listed Other Files: %1 - Selected Other Files: %2";
    mark(0, true);
    EXPECT_EQ(form.InfoLabel.text(),
              sizes.arg("3,146,752 bytes (3.00Mb)", "3,145,728 bytes (3.00Mb)"));
    form.UnusedFiles_Click();
    EXPECT_EQ(form.UnusedFrame.text(), "Files to be Moved - [1/2]");
    ASSERT_TRUE(QFile::remove(dir.filePath("a.wav")));
    mark(0, false);
    mark(0, true);
    EXPECT_EQ(form.InfoLabel.text(), sizes.arg("1,024 bytes (0.00Mb)", "0 bytes (0.00Mb)"));
    QLocale::setDefault(QLocale::c());
}

}  // namespace
}  // namespace tidewick
