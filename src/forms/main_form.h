#pragma once

#include <QObject>
#include <QSize>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <vector>

#include "fileops/file_operations.h"
#include "fileops/move_run.h"
#include "forms/control.h"
#include "forms/folder_lists.h"
#include "forms/interaction.h"
#include "forms/move_form.h"
#include "forms/session_browser.h"
#include "forms/used_files_copy.h"
#include "forms/window_services.h"
#include "settings/preferences.h"

// The main window without widgets: its controls, made from the layout table, and the shell that
// holds its parts (the session browser, the folder lists, the copy of used files), its menus,
// the move and the user's preferences. The Qt window shows the controls' data and forwards the
// user's actions to the handlers; tests drive them directly.
namespace tidewick {

class ExclusionForm;
class AuditForm;
class RestoreForm;

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
    /// The one file-system object of the window; it lives as long as the window.
    FileOperations& disk() { return FSO; }

    /// Every control in the order in which the window creates them (later ones lie on top).
    const std::vector<std::unique_ptr<Control>>& controls() const { return controls_; }
    /// The control called `name`, or nullptr.
    Control* findControl(QStringView name) const;
    /// The control called `name`, which must exist.
    Control& control(QStringView name) const;

    /// The window's parts.
    SessionBrowser& browser() { return browser_; }
    const SessionBrowser& browser() const { return browser_; }
    FolderLists& lists() { return lists_; }
    const FolderLists& lists() const { return lists_; }
    UsedFilesCopy& usedCopy() { return copy_; }

    /// The screen's size in twips, as the window reports it; empty when unknown.
    QSize screenSize;

    /// The move's target folder as last picked.
    const QString& moveFolder() const { return MoveFolder; }
    /// The product's web page, which About shows and Donate opens.
    const QString& webPage() const { return WebPage; }

    // Window events and commands.
    /// Loads the window with the user's `preferences`, which it shows and keeps.
    void Form_Load(const Preferences& preferences = {});
    /// Unloads the window: what it keeps of the user, to be stored.
    Preferences Form_Unload();
    /// A key pressed anywhere in the window, before its controls see it; true when consumed.
    bool Form_KeyDown(int keyCode, int shift);
    /// The window became the active one again: the listed files are measured afresh.
    void Form_Activate() { lists_.remeasureOtherFiles(); }
    void CloseButton_Click();
    void mnuFileExit_Click();
    void mnuWindowCentre_Click();
    void mnuHelpAbout_Click();
    void mnuHelpDonate_Click();
    void FolderButton_Click();

    // The move.
    void MoveButton_Click();
    /// The move that "&Move Files" would start now.
    MoveRequest moveRequest() const;
    /// The store-in-sub-folder option follows the selected session.
    void UpdateSubFolder();
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

    /// True while "Cop&y Files" copies: the window takes no command and does not close.
    bool copyRunning() const { return copy_.running(); }

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
    std::vector<std::unique_ptr<Control>> controls_;
    UserInteraction& ui_;
    FileOperations FSO;
    WindowServices services_;
    Control& Main;
    Control& MoveFrame;
    Control& TargetFolderName;
    Control& FolderButton;
    Control& StoreInSubFolderCheck;
    Control& MoveButton;
    Control& CloseButton;
    SessionBrowser browser_;
    FolderLists lists_;
    UsedFilesCopy copy_;

    QString WebPage;
    QString LastFolder;
    QString MoveFolder;
    qint16 ActiveFileTab = 1;
    /// The overwrite question's button pressed last in this run of the program.
    OverwriteAnswer lastOverwriteAnswer_ = OverwriteAnswer::Yes;

    /// Shows `preferences` in the controls, in the order the store lists them.
    void applyPreferences(const Preferences& preferences);
    /// Where a results window runs its work: beside the window when there is one.
    MoveForm::Runner resultsRunner() const;
    /// Shows `form` and returns when it has closed (or runs it to its end without a window).
    void showResults(MoveForm& form);
    void connectEvents();
};

}  // namespace tidewick
