#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>

#include "session_fixture.h"

namespace tidewick {
namespace {

using test::SessionFolderTest;
using test::writeFile;
using ::testing::IsEmpty;

const auto kByName = [](const auto& info) { return std::string(info.param.name); };

// --- The tab switch --------------------------------------------------------------------------

struct TabCase {
    const char* name;
    const char* key;
    const char* pattern;
    const char* scanAllCaption;
    const char* keepPeaksCaption;
    bool subFolderRow;
    const char* recordFolder;  // {S}: the folder the session list shows
};

class TabSwitch : public SessionFolderTest, public ::testing::WithParamInterface<TabCase> {};

TEST_P(TabSwitch, SetsTheKindsValuesAndEmptiesBothLists) {
    const TabCase& c = GetParam();
    form.selectTabByKey(QStringLiteral("VEGFiles"));  // start somewhere else
    form.UsedFiles.addItem(QStringLiteral("old.wav"), true);
    form.UnusedFiles.addItem(QStringLiteral("old.pk"));
    form.SESVersionLabel.setText(QStringLiteral("Audition 3.0"));

    form.selectTabByKey(QString::fromLatin1(c.key));
    if (c.key == QLatin1String("VEGFiles")) {
        form.FileTypeTab_Click();  // the same tab again still switches
    }
    EXPECT_EQ(form.sessionFilePattern(), QString::fromLatin1(c.pattern));
    EXPECT_EQ(form.ScanAll.text(), QString::fromLatin1(c.scanAllCaption));
    EXPECT_EQ(form.KeepPKCheck.text(), QString::fromLatin1(c.keepPeaksCaption));
    const QString record =
        QString::fromLatin1(c.recordFolder).replace(QStringLiteral("{S}"), dir.path());
    EXPECT_EQ(form.state.RecordFolder, record);
    EXPECT_EQ(form.SubFolderName.text(), record);
    for (const Control* control :
         {&form.SubFolderCheck, &form.SubFolderName, &form.SubFolderButton}) {
        EXPECT_EQ(control->visible(), c.subFolderRow) << control->name().toStdString();
    }
    EXPECT_EQ(form.SubFolderCheck.enabled(), c.subFolderRow);
    const QRect list = form.UnusedFilesBox.geometry();
    EXPECT_EQ(list.top(), c.subFolderRow ? 720 : 270);
    EXPECT_EQ(list.top() + list.height(), 3255);
    EXPECT_EQ(form.UsedFiles.count(), 0);
    EXPECT_EQ(form.UnusedFiles.count(), 0);
    EXPECT_EQ(form.SESVersionLabel.text(), QString());
}

INSTANTIATE_TEST_SUITE_P(
    Table, TabSwitch,
    ::testing::Values(TabCase{"Ses", "SESFiles", "*.ses", "Check All &SES files",
                              "&Keep Used PK Files", false, "_Recorded"},
                      TabCase{"Sesx", "SESXFiles", "*.sesx", "Check All &SESX files",
                              "&Keep Used PKF Files", false, "_Recorded"},
                      TabCase{"Xml", "XMLFiles", "*.xml", "Check All &XML files",
                              "&Keep Used PK Files", false, "_Recorded"},
                      TabCase{"Rpp", "RPPFiles", "*.rpp", "Check All &RPP files",
                              "&Keep Used Reapeaks Files", true, "{S}"},
                      TabCase{"Veg", "VEGFiles", "*.veg", "Check All &VEG files",
                              "&Keep Used sfk Files", true, "{S}"}),
    kByName);

// --- The scan range --------------------------------------------------------------------------

struct RangeCase {
    const char* name;
    bool scanAll;
    int files;
    int selected;
    qint16 first, last;
};

class ScanRange : public SessionFolderTest, public ::testing::WithParamInterface<RangeCase> {};

TEST_P(ScanRange, FollowsTheSelectionOrTheWholeList) {
    const RangeCase& c = GetParam();
    QStringList files;
    for (int i = 0; i < c.files; ++i) {
        files.append(QStringLiteral("s%1.ses").arg(i));
    }
    form.SESFile.setItems(files);
    {
        const QSignalBlocker quiet(form.SESFile);  // select without loading
        form.SESFile.setListIndex(c.selected);
    }
    form.ScanAll.setChecked(c.scanAll);
    form.SetScanParams();
    EXPECT_EQ(form.state.CheckAllFiles, c.scanAll);
    EXPECT_EQ(form.state.ScanFirst, c.first);
    EXPECT_EQ(form.state.ScanLast, c.last);
}

INSTANTIATE_TEST_SUITE_P(Table, ScanRange,
                         ::testing::Values(RangeCase{"Selected", false, 3, 1, 1, 1},
                                           RangeCase{"NothingSelected", false, 3, -1, -1, -1},
                                           RangeCase{"WholeFolder", true, 3, 1, 0, 2},
                                           RangeCase{"WholeEmptyFolder", true, 0, -1, 0, -1}),
                         kByName);

// A click on either check box changes the setting; it loads only while a session is selected.
TEST_F(SessionFolderTest, TheCheckBoxesLoadOnlyWhileASessionIsSelected) {
    useKind(SessionKindId::Ses);
    writeSession(QStringLiteral("a.ses"), SessionKindId::Ses, {QStringLiteral("C:\\a.wav")});
    form.refreshSessionFiles();
    form.UsedFiles.addItem(QStringLiteral("untouched"));
    form.IgnoreFoldersCheck.setChecked(true);
    form.ScanAll.setChecked(true);
    EXPECT_TRUE(form.state.TrimFoldersFlag);
    EXPECT_TRUE(form.state.CheckAllFiles);
    ASSERT_EQ(form.UsedFiles.count(), 1);
    EXPECT_EQ(form.UsedFiles.text(0), QStringLiteral("untouched"));

    select(QStringLiteral("a.ses"));
    ASSERT_EQ(form.UsedFiles.count(), 1);
    EXPECT_EQ(form.UsedFiles.text(0), QStringLiteral("a.wav"));
    form.IgnoreFoldersCheck.setChecked(false);
    EXPECT_EQ(form.UsedFiles.text(0), QStringLiteral("C:/a.wav"));
}

TEST_F(SessionFolderTest, ScanAllOnTheReaperTabEmptiesTheRecordFolderBeforeTheLoad) {
    useKind(SessionKindId::Rpp);
    writeSession(QStringLiteral("a.rpp"), SessionKindId::Rpp, {QStringLiteral("C:\\a.wav")});
    ASSERT_EQ(form.state.RecordFolder, dir.path());
    QString recordAtLoad = QStringLiteral("unset");
    ui.whileBusy = [&] { recordAtLoad = form.state.RecordFolder; };
    select(QStringLiteral("a.rpp"));
    ui.whileBusy = [&] { recordAtLoad = form.state.RecordFolder; };
    form.ScanAll.setChecked(true);
    EXPECT_EQ(recordAtLoad, QString());
}

// --- Check marks that always tell the truth --------------------------------------------------

struct MarkCase {
    const char* name;
    const char* line;  // {S}: the session folder with its separator
    bool trim;
    bool exists;  // whether the file that the line stands for exists
    bool userMark;
};

class CheckMark : public SessionFolderTest, public ::testing::WithParamInterface<MarkCase> {};

TEST_P(CheckMark, SnapsBackToWhetherTheFileExists) {
    const MarkCase& c = GetParam();
    if (c.exists) {
        touch({QStringLiteral("Song_Recorded/t.wav"), QStringLiteral("t.wav")});
    }
    form.state.TrimFoldersFlag = c.trim;
    const QString line = QString::fromLatin1(c.line).replace(QStringLiteral("{S}"), folder());
    form.UsedFiles.addItem(line, !c.userMark);
    // The view changes the mark and tells the form, as a click on the box does.
    form.UsedFiles.setData(form.UsedFiles.index(0), c.userMark ? Qt::Checked : Qt::Unchecked,
                           Qt::CheckStateRole);
    EXPECT_EQ(form.UsedFiles.isChecked(0), c.exists);
    EXPECT_FALSE(ui.busyPointer);
}

INSTANTIATE_TEST_SUITE_P(
    Table, CheckMark,
    ::testing::Values(MarkCase{"ClearingAnExistingFile", "{S}t.wav", false, true, false},
                      MarkCase{"CheckingAMissingFile", "{S}t.wav", false, false, true},
                      MarkCase{"BareNameLivesInTheSessionFolder", "t.wav", false, true, false},
                      MarkCase{"ShortenedPathIsInTheSessionFolder", "Song_Recorded/t.wav", true,
                               true, false},
                      MarkCase{"ShortenedMissing", "Song_Recorded/t.wav", true, false, true},
                      MarkCase{"NoMediaLine", "<no media files found>", false, false, true}),
    kByName);

// --- Drive and folder ------------------------------------------------------------------------

struct DriveCase {
    const char* name;
    const char* drive;  // {T}: a folder that does not exist
    const char* message;
};

class DriveError : public SessionFolderTest, public ::testing::WithParamInterface<DriveCase> {};

TEST_P(DriveError, IsReportedAndTheBrowserReturnsToThePreviousDrive) {
    const DriveCase& c = GetParam();
    const QString missing = dir.filePath(QStringLiteral("gone"));
    const QString previousDrive = form.SESDrive.text();
    form.UsedFiles.addItem(QStringLiteral("a.wav"));
    form.UnusedFiles.addItem(QStringLiteral("b.wav"));

    form.SESDrive.setText(QString::fromLatin1(c.drive).replace(QStringLiteral("{T}"), missing));
    ASSERT_EQ(ui.messages.size(), 1);
    EXPECT_EQ(
        ui.messages[0],
        (MessageBoxRequest{QString::fromLatin1(c.message).replace(QStringLiteral("{T}"), missing),
                           QStringLiteral("Drive Error"), MessageIcon::Information}));
    EXPECT_EQ(form.SESDrive.text(), previousDrive);
    EXPECT_EQ(form.SESDir.text(), dir.path());
    EXPECT_EQ(form.SESFile.text(), dir.path());
    EXPECT_EQ(form.UsedFiles.count(), 0);
    EXPECT_EQ(form.UnusedFiles.count(), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Table, DriveError,
    ::testing::Values(
        DriveCase{"DriveLetter", "q:\\", "Error accessing drive Q.  Device unavailable."},
        DriveCase{"MountedVolume", "{T}", "Error accessing drive {T}.  Device unavailable."}),
    kByName);

TEST_F(SessionFolderTest, AFolderChangeListsTheNewFolderAndEmptiesTheLists) {
    ASSERT_TRUE(writeFile(dir.filePath(QStringLiteral("sub/x.ses"))));
    form.UsedFiles.addItem(QStringLiteral("a.wav"));
    form.UnusedFiles.addItem(QStringLiteral("b.wav"));
    form.SESVersionLabel.setText(QStringLiteral("Audition 3.0"));

    form.SESDir_Click(dir.filePath(QStringLiteral("missing")));  // cannot be opened: ignored
    EXPECT_EQ(form.SESDir.text(), dir.path());
    EXPECT_EQ(form.UsedFiles.count(), 1);

    form.SESDir_Click(dir.filePath(QStringLiteral("sub")));
    EXPECT_EQ(form.SESDir.text(), dir.filePath(QStringLiteral("sub")));
    EXPECT_EQ(form.SESFile.text(), dir.filePath(QStringLiteral("sub")));
    EXPECT_EQ(form.SESFile.items(), QStringList{QStringLiteral("x.ses")});
    EXPECT_EQ(form.UsedFiles.count(), 0);
    EXPECT_EQ(form.UnusedFiles.count(), 0);
    EXPECT_EQ(form.SESVersionLabel.text(), QString());
    EXPECT_THAT(ui.messages, IsEmpty());
}

}  // namespace
}  // namespace tidewick
