#include "forms/main_form.h"

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
      services_{controls_, ui_, FSO, [this](const QString& name) { Q_EMIT focusRequested(name); },
                [this](const QString& name) { Q_EMIT textSelectionRequested(name); }},
      Main(control(u"Main")),
      MoveFrame(control(u"MoveFrame")),
      TargetFolderName(control(u"TargetFolderName")),
      FolderButton(control(u"FolderButton")),
      StoreInSubFolderCheck(control(u"StoreInSubFolderCheck")),
      MoveButton(control(u"MoveButton")),
      CloseButton(control(u"CloseButton")),
      browser_(services_, *this),
      lists_(services_, *this, browser_, showExclusionForm),
      copy_(services_, *this, lists_) {
    browser_.setEvents(
        {[this] { lists_.noteBrowserChange(); }, [this] { lists_.clearLists(); },
         [this] { lists_.clearVersion(); }, [this] { lists_.UpdateSelCounter(); },
         [this](const SessionKind& kind, const QString& folder) { lists_.startKind(kind, folder); },
         [this] { UpdateSubFolder(); }});
    lists_.loaded = [this] { UpdateSubFolder(); };
    connectEvents();
}

MainForm::~MainForm() = default;

Control* MainForm::findControl(QStringView name) const {
    return tidewick::findControl(controls_, name);
}

Control& MainForm::control(QStringView name) const {
    Control* found = findControl(name);
    Q_ASSERT(found);
    return *found;
}

void MainForm::connectEvents() {
    const auto on = [this](QStringView name, void (MainForm::*handler)()) {
        connect(&control(name), &Control::clicked, this, handler);
    };
    on(u"MoveButton", &MainForm::MoveButton_Click);
    on(u"CloseButton", &MainForm::CloseButton_Click);
    on(u"FolderButton", &MainForm::FolderButton_Click);
    on(u"mnuFileAudit", &MainForm::mnuFileAudit_Click);
    on(u"mnuFileRestore", &MainForm::mnuFileRestore_Click);
    on(u"mnuFileExit", &MainForm::mnuFileExit_Click);
    on(u"mnuWindowCentre", &MainForm::mnuWindowCentre_Click);
    on(u"mnuHelpAbout", &MainForm::mnuHelpAbout_Click);
    on(u"mnuHelpDonate", &MainForm::mnuHelpDonate_Click);
}

// Window events and commands.

void MainForm::Form_Load(const Preferences& preferences) {
    // FSO, the one file-system object, lives as long as the window.
    Main.setText(versionCaption(programName(), TIDEWICK_VERSION_MAJOR, TIDEWICK_VERSION_MINOR,
                                TIDEWICK_VERSION_PATCH));
    WebPage = QStringLiteral(TIDEWICK_WEB_PAGE);
    Main.setGeometry(QRect(Main.geometry().topLeft(), QSize(WindowWidth, WindowHeight)));
    lists_.prepare();

    applyPreferences(preferences);
    // A stored position from another screen, or a damaged one, would open the window where
    // nobody sees it: then it opens in the middle of this screen.
    if (!screenSize.isEmpty() && !QRect(QPoint(), screenSize).contains(Main.geometry().topLeft())) {
        mnuWindowCentre_Click();
    }
    lists_.showChecks(preferences.trimFolders, preferences.checkAllFiles);

    // The active tab's pattern, captions, recordings folder and sub-folder row are what its
    // switch gives them. The preferences run the switch only when they change the tab, so a
    // window that opens on the first tab has not had it yet.
    browser_.FileTypeTab_Click();

    TargetFolderName.setText(MoveFolder);

    Q_EMIT showRequested();
    ui_.processEvents();
}

void MainForm::applyPreferences(const Preferences& preferences) {
    Main.setGeometry(QRect(preferences.windowPlace, Main.geometry().size()));
    lists_.setKeepPeaks(preferences.keepPeaks);
    LastFolder = preferences.lastFolder;
    MoveFolder = preferences.moveFolder;
    copy_.setCopyFolder(preferences.copyFolder);
    if (!LastFolder.isEmpty()) {
        browser_.pointBrowserAt(LastFolder);
    }
    lists_.setExcludedFiles(preferences.excludedFiles);
    StoreInSubFolderCheck.setChecked(preferences.storeInSubFolder);
    ActiveFileTab = qint16(
        activeFileTabKey(preferences.activeFileTab).isEmpty() ? 1 : preferences.activeFileTab);
    browser_.selectTabByKey(activeFileTabKey(ActiveFileTab));
    lastOverwriteAnswer_ = preferences.lastOverwriteAnswer;
}

Preferences MainForm::Form_Unload() {
    LastFolder = browser_.sessionFolder();
    const int selected = activeFileTabNumber(browser_.selectedTabKey());
    if (selected > 0) {
        ActiveFileTab = qint16(selected);
    }
    Preferences preferences;
    preferences.windowPlace = Main.geometry().topLeft();
    preferences.trimFolders = lists_.trimFolders();
    preferences.keepPeaks = lists_.keepPeaks();
    preferences.lastFolder = LastFolder;
    preferences.moveFolder = MoveFolder;
    preferences.copyFolder = copy_.copyFolder();
    preferences.checkAllFiles = lists_.wholeFolder();
    preferences.excludedFiles = lists_.excludedFiles();
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
    if (copy_.running()) {
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

}  // namespace tidewick
