#pragma once

#include <QObject>
#include <QSize>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "fileops/copy_used.h"
#include "fileops/file_operations.h"
#include "fileops/move_run.h"
#include "forms/check_list_model.h"
#include "forms/control.h"
#include "forms/interaction.h"
#include "forms/move_form.h"
#include "settings/preferences.h"
#include "sweep/sweep.h"

// The main window without widgets: every control's data, the values the window keeps and the
// handlers of its events; the sweep itself is the core of sweep.h, fed from the controls. The Qt
// window shows this data and forwards the user's actions here; tests drive it directly.
namespace tidewick {

class ExclusionForm;
class AuditForm;
class SessionIndex;
class RestoreForm;
class SizeCache;

/// The window caption: "Tidewick - Version 6.00" for 6.0.0, the revision written straight after
/// the minor version.
QString versionCaption(const QString& programName, int major, int minor, int revision);

class MainForm : public QObject {
    Q_OBJECT

public:
    /// Key code of Escape as Form_KeyDown receives it.
    static constexpr int EscapeKey = 27;
    /// The window's outer size in twips.
    static constexpr int WindowWidth = 14400;
    static constexpr int WindowHeight = 10725;
    /// The client area below the menu bar, in twips.
    static constexpr int ClientWidth = 14310;
    static constexpr int ClientHeight = 9945;

    explicit MainForm(UserInteraction& ui);
    ~MainForm() override;

    UserInteraction& ui() const { return ui_; }

    /// Every control in the order in which the window creates them (later ones lie on top).
    const std::vector<std::unique_ptr<Control>>& controls() const { return controls_; }
    /// The control called `name`, or nullptr.
    Control* findControl(QStringView name) const;

private:
    std::vector<std::unique_ptr<Control>> controls_;
    UserInteraction& ui_;

    Control& named(QStringView name) const;

public:
    // The window and its controls, by their names.
    Control& Main;
    Control& FilesFrame;
    Control& SESDrive;
    Control& SESDir;
    Control& FileTypeTab;
    Control& SESFile;
    Control& UsedFrame;
    Control& UsedFilesBox;
    Control& IgnoreFoldersCheck;
    Control& SESVersionLabel;
    Control& ScanAll;
    Control& CopyFilesButton;
    Control& UnusedFrame;
    Control& SubFolderCheck;
    Control& SubFolderName;
    Control& SubFolderButton;
    Control& UnusedFilesBox;
    Control& Frame2;
    Control& FileTypesCombo;
    Control& KeepPKCheck;
    Control& ExcludedCheck;
    Control& Frame1;
    Control& MoveFrame;
    Control& TargetFolderName;
    Control& FolderButton;
    Control& StoreInSubFolderCheck;
    Control& MoveButton;
    Control& CloseButton;
    Control& InfoLabel;
    Control& mnuFileAudit;
    Control& mnuFileRestore;
    Control& mnuFileExit;
    Control& mnuWindowCentre;
    Control& mnuHelpAbout;
    Control& mnuHelpDonate;

    /// SelectButton(0) "Select &All", (1) "Select &None", (2) "&Invert".
    Control& SelectButton(int index) const;

    /// The lines of the used-media list and of the other-files list ("Files to be Moved").
    CheckListModel UsedFiles;
    CheckListModel UnusedFiles;

    /// The one file-system object of the window; it lives as long as the window.
    FileOperations FSO;
    /// The screen's size in twips, as the window reports it; empty when unknown.
    QSize screenSize;

    /// The session's recordings folder (see the session kinds); kept by TrimFolders.
    const QString& recordFolder() const { return RecordFolder; }
    /// The folder of the last copy of used files, the start of the next one's picker.
    const QString& copyFolder() const { return CopyFolder; }
    /// The move's target folder as last picked.
    const QString& moveFolder() const { return MoveFolder; }
    /// The exclusion list.
    const QStringList& excludedFiles() const { return ExcludedFiles; }
    /// The product's web page, which About shows and Donate opens.
    const QString& webPage() const { return WebPage; }

    // The session browser.
    /// Points the drive list, the folder tree and the session-file list at `folder`, then lets
    /// pending window events run.
    void pointBrowserAt(const QString& folder);
    /// The key of the selected tab ("SESFiles"), empty when none is selected.
    QString selectedTabKey() const;
    /// Selects the tab with `key`; false when there is none.
    bool selectTabByKey(const QString& key);
    /// The pattern of the session-file list ("*.ses"); setting it lists the folder again.
    const QString& sessionFilePattern() const { return sessionFilePattern_; }
    void setSessionFilePattern(const QString& pattern);
    /// Lists the files of the session-file list's folder that match its pattern.
    void refreshSessionFiles();
    /// The drive (on Linux and macOS: the place, see drivePlaces) that holds `folder`.
    QString driveOf(const QString& folder) const;

    // Window events and commands.
    /// Loads the window with the user's `preferences`, which it shows and keeps.
    void Form_Load(const Preferences& preferences = {});
    /// Unloads the window: what it keeps of the user, to be stored.
    Preferences Form_Unload();
    /// A key pressed anywhere in the window, before its controls see it; true when consumed.
    bool Form_KeyDown(int keyCode, int shift);
    void CloseButton_Click();
    void mnuFileExit_Click();
    void mnuWindowCentre_Click();
    void mnuHelpAbout_Click();
    void mnuHelpDonate_Click();
    void FolderButton_Click();

    // Media types.
    void SetFileTypeArrays();
    void FileTypesCombo_Click();

    // Events whose work lies with the session load, the browser, the other-files list, the
    // counters, the sub-folder row, the move and the copy.
    void SESDrive_Change();
    void SESDir_Change();
    void SESDir_Click(const QString& clickedFolder);
    void SESFile_Click();
    void SESFile_PathChange();
    void FileTypeTab_Click();
    void ScanAll_Click();
    void IgnoreFoldersCheck_Click();
    void SetScanParams();
    void UsedFiles_ItemCheck(int item);
    void CopyFilesButton_Click();
    void KeepPKCheck_Click();
    void ExcludedCheck_Click();
    void SelectButton_Click(int index);
    void UnusedFiles_Click();
    void UnusedFiles_ItemCheck(int item);
    void UnusedFiles_DblClick();
    void SubFolderCheck_Click();
    void SubFolderButton_Click();
    void SubFolderName_GotFocus();
    /// Loads the selected session again, then gathers the sub-folder row's folder.
    void UnusedListRefresh();
    /// The window became the active one again: the listed files are measured afresh, as files
    /// may have changed on disk meanwhile.
    void Form_Activate();
    /// Measures every line of UnusedFiles on disk again and shows the sizes; to be called before
    /// a move or copy starts, so that it works from what the disk holds now.
    void remeasureOtherFiles();
    void MoveButton_Click();
    /// The move that "&Move Files" would start now.
    MoveRequest moveRequest() const;
    /// Shows the results window of a move, modal, and returns when it has closed; without it the
    /// move runs to its end with no window.
    std::function<void(MoveForm& form)> showMoveForm;
    /// Shows "Exclude Files" over the window, modal, and returns when it has closed; without it
    /// nothing opens.
    std::function<void(ExclusionForm& form)> showExclusionForm;
    /// "File > &Restore a Move...": the recorded moves to choose from, then the restore of the
    /// one chosen in the results window, and the session read again if its folder is shown.
    void mnuFileRestore_Click();
    /// Shows "Restore a Move" over the window, modal; without it nothing is chosen.
    std::function<void(RestoreForm& form)> showRestoreForm;
    /// "File > &Audit a Library...": a root from the folder picker, its audit, and the folder
    /// the user goes to from its table shown on the tab of its first session's kind.
    void mnuFileAudit_Click();
    /// Shows "Audit a Library" over the window, modal; without it the audit runs to its end
    /// and nothing is chosen.
    std::function<void(AuditForm& form)> showAuditForm;
    /// Shows `folder` in the browser on the tab of `kind`.
    void goToSessionFolder(const QString& folder, SessionKindId kind);
    /// The sessions of other folders that the index of an audited library says use files of
    /// `folders` (those under an audited root), each still there; those whose files are as the
    /// index holds them are taken from it, the others are read again by the guard.
    QList<SessionElsewhere> sessionsElsewhere(const QStringList& folders);
    /// Lists "Files to be Moved" afresh for the lines UsedFiles holds now.
    void UpdateUnusedFileSpec();
    /// The controls as a sweep request, and the window's answers to what a sweep reports.
    SweepRequest sweepRequest() const;
    SweepEvents sweepEvents();

    /// The frame captions with their counts, then UpdateSizes.
    void UpdateSelCounter();
    void UpdateSizes();
    void UpdateSubFolder();
    /// After a REAPER load, whose sweep listed the project folder and the row's folder: the
    /// record folder loses its double quotes, and SubFolderName shows the folder it names.
    void GetRPPSubFolder();
    /// With the sub-folder row on, gathers the files of the folder in SubFolderName into
    /// UnusedFiles (those that no line leads to yet).
    void AddFolder();
    /// A media path reduced to its file name, or to the RecordFolder level and the file name.
    QString TrimFolders(const QString& fullFileName) const;

    // The session load and the browser around it.
    /// Shows the sub-folder row (REAPER, Vegas) or hides it (the Audition kinds), moving
    /// UnusedFiles below it or up into its place.
    void ActivateSubFolderControls(bool active);
    /// True while a session load runs; a selection made meanwhile is loaded after it.
    bool sessionLoadRunning() const { return load_.running; }
    /// True while "Cop&y Files" copies: the window takes no command and does not close.
    bool copyRunning() const { return copying_; }

Q_SIGNALS:
    /// The control called `controlName` is to get the keyboard focus.
    void focusRequested(const QString& controlName);
    /// The whole text of the text box called `controlName` is to be selected, so that typing
    /// replaces it.
    void textSelectionRequested(const QString& controlName);
    /// Form_Load is done: the window shows itself.
    void showRequested();
    /// The window is to close (and so unload).
    void closeRequested();
    /// The About dialog is to be shown, modal.
    void aboutRequested();
    /// The web page is to be opened in the default browser.
    void webPageRequested(const QString& url);

private:
    // The values the window keeps.
    QString RecordFolder;
    /// True while every session of the folder is read at once ("Check All ... files").
    bool CheckAllFiles = false;
    /// True while "Ignore Leading Folder names" is checked.
    bool TrimFoldersFlag = false;
    QString WebPage;
    QString UsedFrameCaption;
    QString UnusedFrameCaption;
    QString NoMediaText;
    QStringList FileTypeNames;
    QStringList FileTypePatterns;
    QString LastFolder;
    QString MoveFolder;
    QString CopyFolder;
    qint16 ActiveFileTab = 1;
    QStringList ExcludedFiles;
    /// The overwrite question's button pressed last in this run of the program.
    OverwriteAnswer lastOverwriteAnswer_ = OverwriteAnswer::Yes;

    /// Keeps loads from overlapping when the other-files computation lets events run.
    struct LoadGuard {
        bool running = false;
        bool pending = false;           ///< a selection arrived during the running load
        quint64 browserChanges = 0;     ///< counts drive, folder and tab changes
        QString folderAfterDriveError;  ///< where the browser returns after a "Drive Error"
    };
    LoadGuard load_;
    /// The size of each line of UnusedFiles, kept in step with the list.
    std::unique_ptr<SizeCache> sizeCache_;
    QString sessionFilePattern_ = QStringLiteral("*.ses");

    /// Shows `preferences` in the controls, in the order the store lists them.
    void applyPreferences(const Preferences& preferences);
    void runSessionLoad();
    bool copying_ = false;
    /// The used lines of the last load, with the files they name.
    QList<UsedLine> usedLines_;
    /// The last load stopped at a read failure; the used frame's caption says so, and the
    /// information line says where (stopNote_).
    bool loadStopped_ = false;
    QString stopNote_;
    /// Fills UnusedFiles with `files`.
    void showOtherFiles(const QList<OtherFile>& files);
    /// Appends those of `files` that lead to a file no line of UnusedFiles leads to yet.
    void appendOtherFiles(const QList<OtherFile>& files);
    /// The used test of the last load, for the other files listed after it.
    UsedIndex& usedIndex();
    std::shared_ptr<UsedIndex> usedIndex_;
    /// Lets the sessions of `folder` guard their media in the used test; false when one could
    /// not be read, which stops the load as an unreadable session does.
    bool guardFolder(const QString& folder);
    /// The files the listings passed over because a session keeps them.
    QList<KeptFile> keptFiles_;
    /// The folder's sessions as last read, which guard their media at every load.
    SessionCache sessionCache_;
    std::shared_ptr<SessionIndex> auditedIndex_;  // opened at the first load after an audit
    void noteBrowserChange() {
        ++load_.browserChanges;
        loadStopped_ = false;
        keptFiles_.clear();
    }
    /// Where a results window runs its work: beside the window when there is one.
    MoveForm::Runner resultsRunner() const;
    /// Shows `form` and returns when it has closed (or runs it to its end without a window).
    void showResults(MoveForm& form);
    /// Lists the session folder again and selects `session`, which reads it again.
    void reloadSession(const QString& session);
    /// Points the session-file list at `folder` and lists it afresh.
    void showSessionFolder(const QString& folder);
    /// The checked lines of UsedFiles, each with the file it stands for.
    QList<CopyItem> usedFilesOnDisk() const;
    /// Copies `items` into CopyFolder with the caption, the progress and the failure questions;
    /// how many were copied, or nothing when the user stopped the run.
    std::optional<int> copyWithProgress(const QList<CopyItem>& items);

    void connectEvents();
};

}  // namespace tidewick
