#include "forms/main_form.h"

#include <QDir>
#include <QStorageInfo>

#include "forms/captions.h"
#include "forms/kind_texts.h"
#include "forms/size_cache.h"
#include "platform/places.h"
#include "readers/session_kinds.h"
#include "sweep/media_types.h"

namespace tidewick {

namespace {

using K = ControlKind;

// The window's controls with their places in twips, relative to their container, in creation
// order: a later control lies above an earlier one where they meet (ScanAll above
// SESVersionLabel).
constexpr ControlPlace kLayout[] = {
    {"Main", K::Window, "", 0, 0, MainForm::WindowWidth, MainForm::WindowHeight, "", ""},
    {"FilesFrame", K::Frame, "", 30, 90, 4425, 9495, "Files", ""},
    {"SESDrive", K::DriveList, "FilesFrame", 120, 300, 4150, 315, "", ""},
    {"SESDir", K::FolderTree, "FilesFrame", 120, 712, 4150, 4140, "", ""},
    {"FileTypeTab", K::TabStrip, "FilesFrame", 120, 4995, 4155, 4395, "", ""},
    {"SESFile", K::FileList, "FilesFrame", 210, 5460, 3975, 3795, "", ""},
    {"UsedFrame", K::Frame, "", 4500, 90, 9700, 4095, "", ""},
    {"UsedFiles", K::CheckList, "UsedFrame", 90, 270, 9525, 3210, "", ""},
    {"IgnoreFoldersCheck", K::CheckBox, "UsedFrame", 90, 3660, 6255, 315,
     "Ignore Leading &Folder names (except sub-folder)\"", ""},
    {"SESVersionLabel", K::Label, "UsedFrame", 6270, 3690, 1845, 255, "", ""},
    {"ScanAll", K::CheckBox, "UsedFrame", 6450, 3690, 1755, 255, "Check All &SES files", ""},
    {"CopyFilesButton", K::Button, "UsedFrame", 8280, 3630, 1335, 375, "Cop&y Files",
     "Copy files present on disk to a specific location"},
    {"UnusedFrame", K::Frame, "", 4500, 4200, 9700, 5385, "", ""},
    {"SubFolderCheck", K::CheckBox, "UnusedFrame", 90, 300, 1905, 315, "Add Files from Folder...",
     ""},
    {"SubFolderName", K::TextBox, "UnusedFrame", 2160, 270, 6975, 345, "", ""},
    {"SubFolderButton", K::PictureButton, "UnusedFrame", 9180, 270, 375, 345, "", "Select Folder"},
    {"UnusedFiles", K::CheckList, "UnusedFrame", 90, 690, 9525, 2535, "", ""},
    {"Frame2", K::Frame, "UnusedFrame", 90, 3420, 4400, 795, "File Types", ""},
    {"FileTypesCombo", K::ComboBox, "Frame2", 120, 300, 1845, 315, "", ""},
    {"KeepPKCheck", K::CheckBox, "Frame2", 2000, 150, 2350, 255, "&Keep Used PK Files",
     "Toggle whether to keep PK files that are associated with used WAV audio files"},
    {"ExcludedCheck", K::CheckBox, "Frame2", 2000, 480, 2350, 255, "&Keep other files...",
     "Toggle whether to Quarantine designated file specifications"},
    {"Frame1", K::Frame, "UnusedFrame", 4530, 3420, 5055, 795, "Selections", ""},
    {"SelectButton0", K::Button, "Frame1", 120, 300, 1500, 345, "Select &All", ""},
    {"SelectButton1", K::Button, "Frame1", 1740, 300, 1500, 345, "Select &None", ""},
    {"SelectButton2", K::Button, "Frame1", 3390, 300, 1500, 345, "&Invert", ""},
    {"MoveFrame", K::Frame, "UnusedFrame", 90, 4260, 7935, 1005, "Move the Selected Files to...",
     ""},
    {"TargetFolderName", K::TextBox, "MoveFrame", 60, 210, 7335, 375, "", ""},
    {"FolderButton", K::PictureButton, "MoveFrame", 7440, 210, 375, 345, "", "Browse"},
    {"StoreInSubFolderCheck", K::CheckBox, "MoveFrame", 60, 630, 6465, 285,
     "Store in sub-folder...", ""},
    {"MoveButton", K::Button, "UnusedFrame", 8130, 4350, 1455, 435, "&Move Files", ""},
    {"CloseButton", K::Button, "UnusedFrame", 8130, 4830, 1455, 435, "&Close", ""},
    {"InfoLabel", K::Label, "", 210, 9690, 13785, 195, "", ""},
    {"mnuFileMain", K::Menu, "", 0, 0, 0, 0, "&File", ""},
    {"mnuFileAudit", K::MenuItem, "mnuFileMain", 0, 0, 0, 0, "&Audit a Library...", ""},
    {"mnuFileRestore", K::MenuItem, "mnuFileMain", 0, 0, 0, 0, "&Restore a Move...", ""},
    {"mnuFileExit", K::MenuItem, "mnuFileMain", 0, 0, 0, 0, "E&xit", ""},
    {"mnuWindowMain", K::Menu, "", 0, 0, 0, 0, "&Window", ""},
    {"mnuWindowCentre", K::MenuItem, "mnuWindowMain", 0, 0, 0, 0, "&Centre", ""},
    {"mnuHelpMain", K::Menu, "", 0, 0, 0, 0, "&Help", ""},
    {"mnuHelpAbout", K::MenuItem, "mnuHelpMain", 0, 0, 0, 0, "&About", ""},
    {"mnuHelpDonate", K::MenuItem, "mnuHelpMain", 0, 0, 0, 0, "&Donate", ""},
};

}  // namespace

QString versionCaption(const QString& programName, int major, int minor, int revision) {
    return programName + QStringLiteral(" - Version ") + QString::number(major) + QLatin1Char('.') +
           QString::number(minor) + QString::number(revision);
}

MainForm::MainForm(UserInteraction& ui)
    : controls_(createControls(kLayout)),
      ui_(ui),
      Main(named(u"Main")),
      FilesFrame(named(u"FilesFrame")),
      SESDrive(named(u"SESDrive")),
      SESDir(named(u"SESDir")),
      FileTypeTab(named(u"FileTypeTab")),
      SESFile(named(u"SESFile")),
      UsedFrame(named(u"UsedFrame")),
      UsedFilesBox(named(u"UsedFiles")),
      IgnoreFoldersCheck(named(u"IgnoreFoldersCheck")),
      SESVersionLabel(named(u"SESVersionLabel")),
      ScanAll(named(u"ScanAll")),
      CopyFilesButton(named(u"CopyFilesButton")),
      UnusedFrame(named(u"UnusedFrame")),
      SubFolderCheck(named(u"SubFolderCheck")),
      SubFolderName(named(u"SubFolderName")),
      SubFolderButton(named(u"SubFolderButton")),
      UnusedFilesBox(named(u"UnusedFiles")),
      Frame2(named(u"Frame2")),
      FileTypesCombo(named(u"FileTypesCombo")),
      KeepPKCheck(named(u"KeepPKCheck")),
      ExcludedCheck(named(u"ExcludedCheck")),
      Frame1(named(u"Frame1")),
      MoveFrame(named(u"MoveFrame")),
      TargetFolderName(named(u"TargetFolderName")),
      FolderButton(named(u"FolderButton")),
      StoreInSubFolderCheck(named(u"StoreInSubFolderCheck")),
      MoveButton(named(u"MoveButton")),
      CloseButton(named(u"CloseButton")),
      InfoLabel(named(u"InfoLabel")),
      mnuFileAudit(named(u"mnuFileAudit")),
      mnuFileRestore(named(u"mnuFileRestore")),
      mnuFileExit(named(u"mnuFileExit")),
      mnuWindowCentre(named(u"mnuWindowCentre")),
      mnuHelpAbout(named(u"mnuHelpAbout")),
      mnuHelpDonate(named(u"mnuHelpDonate")) {
    QStringList tabCaptions;
    for (const SessionKind& kind : sessionKinds()) {
        tabCaptions.append(kindTexts(kind.id).tabCaption);
    }
    FileTypeTab.setItems(tabCaptions);
    FileTypeTab.setListIndex(0);  // a tab strip always has a tab selected

    // The session-file list follows its folder: a new path lists that folder's files.
    connect(&SESFile, &Control::textChanged, this, [this] {
        refreshSessionFiles();
        SESFile_PathChange();
    });
    sizeCache_ = std::make_unique<SizeCache>(UnusedFiles, FSO);
    connectEvents();
}

MainForm::~MainForm() = default;

Control* MainForm::findControl(QStringView name) const {
    return tidewick::findControl(controls_, name);
}

Control& MainForm::named(QStringView name) const {
    Control* control = findControl(name);
    Q_ASSERT(control);
    return *control;
}

Control& MainForm::SelectButton(int index) const {
    return named(QStringLiteral("SelectButton%1").arg(index));
}

void MainForm::connectEvents() {
    const auto on = [this](Control& control, auto signal, void (MainForm::*handler)()) {
        connect(&control, signal, this, handler);
    };
    on(SESDrive, &Control::textChanged, &MainForm::SESDrive_Change);
    on(SESDir, &Control::textChanged, &MainForm::SESDir_Change);
    on(SESFile, &Control::clicked, &MainForm::SESFile_Click);
    on(FileTypeTab, &Control::clicked, &MainForm::FileTypeTab_Click);
    on(ScanAll, &Control::clicked, &MainForm::ScanAll_Click);
    on(IgnoreFoldersCheck, &Control::clicked, &MainForm::IgnoreFoldersCheck_Click);
    on(CopyFilesButton, &Control::clicked, &MainForm::CopyFilesButton_Click);
    on(FileTypesCombo, &Control::clicked, &MainForm::FileTypesCombo_Click);
    on(KeepPKCheck, &Control::clicked, &MainForm::KeepPKCheck_Click);
    on(ExcludedCheck, &Control::clicked, &MainForm::ExcludedCheck_Click);
    on(SubFolderCheck, &Control::clicked, &MainForm::SubFolderCheck_Click);
    on(SubFolderButton, &Control::clicked, &MainForm::SubFolderButton_Click);
    on(MoveButton, &Control::clicked, &MainForm::MoveButton_Click);
    on(CloseButton, &Control::clicked, &MainForm::CloseButton_Click);
    on(FolderButton, &Control::clicked, &MainForm::FolderButton_Click);
    on(mnuFileAudit, &Control::clicked, &MainForm::mnuFileAudit_Click);
    on(mnuFileRestore, &Control::clicked, &MainForm::mnuFileRestore_Click);
    on(mnuFileExit, &Control::clicked, &MainForm::mnuFileExit_Click);
    on(mnuWindowCentre, &Control::clicked, &MainForm::mnuWindowCentre_Click);
    on(mnuHelpAbout, &Control::clicked, &MainForm::mnuHelpAbout_Click);
    on(mnuHelpDonate, &Control::clicked, &MainForm::mnuHelpDonate_Click);
    for (int index = 0; index < 3; ++index) {
        connect(&SelectButton(index), &Control::clicked, this,
                [this, index] { SelectButton_Click(index); });
    }
    connect(&UsedFiles, &CheckListModel::itemCheck, this, &MainForm::UsedFiles_ItemCheck);
    connect(&UnusedFiles, &CheckListModel::itemCheck, this, &MainForm::UnusedFiles_ItemCheck);
}

// The session browser.

QString MainForm::driveOf(const QString& folder) const {
    const QString place = placeOf(SESDrive.items(), folder);
    if (!place.isEmpty()) {
        return place;
    }
    const QStorageInfo volume(folder);  // a drive that came after the list was made
    return volume.isValid() ? volume.rootPath() : QString();
}

void MainForm::pointBrowserAt(const QString& folder) {
    if (SESDrive.items().isEmpty()) {
        SESDrive.setItems(drivePlaces());
    }
    SESDrive.setText(driveOf(folder));
    SESDir.setText(folder);
    SESFile.setText(folder);
    ui_.processEvents();
}

QString MainForm::selectedTabKey() const {
    const int index = FileTypeTab.listIndex();
    if (index < 0 || index >= sessionKinds().size()) {
        return {};
    }
    return kindTexts(sessionKinds().at(index).id).tabKey;
}

bool MainForm::selectTabByKey(const QString& key) {
    for (int index = 0; index < sessionKinds().size(); ++index) {
        if (kindTexts(sessionKinds().at(index).id).tabKey == key) {
            FileTypeTab.setListIndex(index);
            return true;
        }
    }
    return false;
}

void MainForm::setSessionFilePattern(const QString& pattern) {
    if (sessionFilePattern_ != pattern) {
        sessionFilePattern_ = pattern;
        refreshSessionFiles();
    }
}

void MainForm::refreshSessionFiles() {
    SESFile.setItems(sessionFiles(FSO, SESFile.text(), sessionFilePattern_));  // nothing selected
}

// Window events and commands.

void MainForm::Form_Load(const Preferences& preferences) {
    // FSO, the one file-system object, lives as long as the window.
    CheckAllFiles = false;
    Main.setText(versionCaption(programName(), TIDEWICK_VERSION_MAJOR, TIDEWICK_VERSION_MINOR,
                                TIDEWICK_VERSION_PATCH));
    WebPage = QStringLiteral(TIDEWICK_WEB_PAGE);
    Main.setGeometry(QRect(Main.geometry().topLeft(), QSize(WindowWidth, WindowHeight)));

    UsedFrameCaption = kUsedFrameCaption;
    UnusedFrameCaption = kUnusedFrameCaption;
    NoMediaText = kNoMediaText;

    FileTypesCombo.setItems({});
    SetFileTypeArrays();
    FileTypesCombo.setListIndex(0);

    UsedFrame.setText(UsedFrameCaption);
    UnusedFrame.setText(UnusedFrameCaption);

    applyPreferences(preferences);
    // A stored position from another screen, or a damaged one, would open the window where
    // nobody sees it: then it opens in the middle of this screen.
    if (!screenSize.isEmpty() && !QRect(QPoint(), screenSize).contains(Main.geometry().topLeft())) {
        mnuWindowCentre_Click();
    }

    IgnoreFoldersCheck.setChecked(TrimFoldersFlag);
    ScanAll.setChecked(CheckAllFiles);

    // The active tab's pattern, captions, recordings folder and sub-folder row are what its
    // switch gives them. The preferences run the switch only when they change the tab, so a
    // window that opens on the first tab has not had it yet.
    FileTypeTab_Click();

    TargetFolderName.setText(MoveFolder);
    SetScanParams();

    Q_EMIT showRequested();
    ui_.processEvents();
}

void MainForm::applyPreferences(const Preferences& preferences) {
    Main.setGeometry(QRect(preferences.windowPlace, Main.geometry().size()));
    TrimFoldersFlag = preferences.trimFolders;
    KeepPKCheck.setChecked(preferences.keepPeaks);
    LastFolder = preferences.lastFolder;
    MoveFolder = preferences.moveFolder;
    CopyFolder = preferences.copyFolder;
    if (!LastFolder.isEmpty()) {
        pointBrowserAt(LastFolder);
    }
    CheckAllFiles = preferences.checkAllFiles;
    ExcludedFiles = preferences.excludedFiles;
    StoreInSubFolderCheck.setChecked(preferences.storeInSubFolder);
    ActiveFileTab = qint16(
        activeFileTabKey(preferences.activeFileTab).isEmpty() ? 1 : preferences.activeFileTab);
    selectTabByKey(activeFileTabKey(ActiveFileTab));
    lastOverwriteAnswer_ = preferences.lastOverwriteAnswer;
}

Preferences MainForm::Form_Unload() {
    LastFolder = SESFile.text();
    const int selected = activeFileTabNumber(selectedTabKey());
    if (selected > 0) {
        ActiveFileTab = qint16(selected);
    }
    Preferences preferences;
    preferences.windowPlace = Main.geometry().topLeft();
    preferences.trimFolders = TrimFoldersFlag;
    preferences.keepPeaks = KeepPKCheck.checked();
    preferences.lastFolder = LastFolder;
    preferences.moveFolder = MoveFolder;
    preferences.copyFolder = CopyFolder;
    preferences.checkAllFiles = CheckAllFiles;
    preferences.excludedFiles = ExcludedFiles;
    preferences.storeInSubFolder = StoreInSubFolderCheck.checked();
    preferences.activeFileTab = ActiveFileTab;
    preferences.lastOverwriteAnswer = lastOverwriteAnswer_;
    return preferences;
}

bool MainForm::Form_KeyDown(int keyCode, int shift) {
    Q_UNUSED(shift);
    if (keyCode != EscapeKey) {
        return false;
    }
    if (copying_) {
        return true;  // the copy goes on to its end first
    }
    Q_EMIT closeRequested();
    return true;
}

void MainForm::CloseButton_Click() {
    Q_EMIT closeRequested();
}

void MainForm::mnuFileExit_Click() {
    Q_EMIT closeRequested();
}

void MainForm::mnuWindowCentre_Click() {
    if (screenSize.isEmpty()) {
        return;  // the screen is unknown: the window stays where it is
    }
    const QRect window = Main.geometry();
    Main.setGeometry(QRect((screenSize.width() - window.width()) / 2,
                           (screenSize.height() - window.height()) / 2, window.width(),
                           window.height()));
}

void MainForm::mnuHelpAbout_Click() {
    Q_EMIT aboutRequested();
}

void MainForm::mnuHelpDonate_Click() {
    Q_EMIT webPageRequested(WebPage);
}

void MainForm::FolderButton_Click() {
    const QString chosen =
        ui_.browseForFolder(QStringLiteral("Please select a folder to move the unused files."),
                            TargetFolderName.text());
    if (!chosen.isEmpty()) {
        TargetFolderName.setText(chosen);
    }
    MoveFolder = TargetFolderName.text();
    UpdateSubFolder();
}

// Media types.

void MainForm::SetFileTypeArrays() {
    const MediaTypeTable table = mediaTypeTable();
    FileTypeNames = table.FileTypeNames;
    FileTypePatterns = table.FileTypePatterns;
    QStringList items = FileTypesCombo.items();
    for (int index = 0; index < FileTypeNames.size(); ++index) {
        items.append(mediaTypeItemText(table, index));
    }
    FileTypesCombo.setItems(items);
}

void MainForm::FileTypesCombo_Click() {
    // Only "All Files" lets peak files into the list, so only then may they be kept back.
    KeepPKCheck.setEnabled(FileTypesCombo.listIndex() == 0);
    if (SESFile.listIndex() >= 0) {
        UpdateUnusedFileSpec();
    }
    UpdateSizes();
}

}  // namespace tidewick
