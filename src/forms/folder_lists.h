#pragma once

#include <QString>
#include <QStringList>
#include <memory>

#include "audit/audited_library.h"
#include "forms/check_list_model.h"
#include "forms/session_browser.h"
#include "forms/window_services.h"
#include "session/session_folder.h"

// The right-hand side of the main window: the media the loaded sessions use, the other files of
// their folder ("Files to be Moved") with the sub-folder row, the media types, the selection
// buttons, the counters and the sizes. What a load finds comes from the session folder (the
// use case of session_folder.h); this part turns the controls into its options and shows what it
// found.
namespace tidewick {

class ExclusionForm;
class SizeCache;

class FolderLists {
public:
    /// The lists of the window `window`, loading what `browser` selects; `showExclusionForm`
    /// shows the exclusion editor, when set.
    FolderLists(const WindowServices& window, QObject& context, SessionBrowser& browser,
                const std::function<void(ExclusionForm& form)>& showExclusionForm);
    ~FolderLists();

    /// Called after each load: what follows the selected session is to follow it.
    std::function<void()> loaded;

    /// The lines of the used-media list and of the other-files list ("Files to be Moved").
    CheckListModel& usedFiles() { return UsedFiles; }
    CheckListModel& unusedFiles() { return UnusedFiles; }
    const CheckListModel& usedFiles() const { return UsedFiles; }
    const CheckListModel& unusedFiles() const { return UnusedFiles; }

    /// The session folder as last loaded.
    const SessionFolder& session() const { return session_; }
    /// The session's recordings folder (see the session kinds); kept by TrimFolders.
    const QString& recordFolder() const { return session_.recordFolder(); }
    /// The exclusion list.
    const QStringList& excludedFiles() const { return ExcludedFiles; }
    void setExcludedFiles(const QStringList& files) { ExcludedFiles = files; }
    /// The controls as the options of a load.
    SessionOptions sessionOptions() const;

    // The controls' events.
    void SESFile_Click();
    void ScanAll_Click();
    void IgnoreFoldersCheck_Click();
    void UsedFiles_ItemCheck(int item);
    void FileTypesCombo_Click();
    void KeepPKCheck_Click();
    void ExcludedCheck_Click();
    void SelectButton_Click(int index);
    void UnusedFiles_Click();
    void UnusedFiles_ItemCheck(int item);
    void UnusedFiles_DblClick();
    void SubFolderCheck_Click();
    void SubFolderButton_Click();
    void SubFolderName_GotFocus();

    /// Fills the media types' drop-down list, "All Files" chosen.
    void SetFileTypeArrays();
    /// Loads the selected session again, then gathers the sub-folder row's folder.
    void UnusedListRefresh();
    /// Measures every line of UnusedFiles on disk again and shows the sizes; to be called before
    /// a move or copy starts, so that it works from what the disk holds now.
    void remeasureOtherFiles();
    /// Lists "Files to be Moved" afresh for the lines UsedFiles holds now.
    void UpdateUnusedFileSpec();
    /// The frame captions with their counts, then UpdateSizes.
    void UpdateSelCounter();
    void UpdateSizes();
    /// With the sub-folder row on, gathers the files of the folder in SubFolderName into
    /// UnusedFiles (those that no line leads to yet).
    void AddFolder();
    /// A media path reduced to its file name, or to the record folder level and the file name.
    QString TrimFolders(const QString& fullFileName) const;
    /// Shows the sub-folder row (REAPER, Vegas) or hides it (the Audition kinds), moving
    /// UnusedFiles below it or up into its place.
    void ActivateSubFolderControls(bool active);

    /// The tab of `kind` was chosen with `folder` shown: the captions, the sub-folder row and the
    /// record folder are the kind's.
    void startKind(const SessionKind& kind, const QString& folder);
    /// The drive, folder or tab changed: what was loaded belongs to another folder or kind.
    void noteBrowserChange();
    /// Empties both lists, and the version label.
    void clearLists();
    void clearVersion();
    /// The frames' captions before any load, and the media types with "All Files" chosen.
    void prepare();
    /// The check boxes as the user left them: "Keep Used ... Files", then "Ignore Leading Folder
    /// names" and "Check All ... files".
    void setKeepPeaks(bool keep) { KeepPKCheck.setChecked(keep); }
    void showChecks(bool trimFolders, bool checkAllFiles);
    bool keepPeaks() const { return KeepPKCheck.checked(); }
    bool trimFolders() const { return IgnoreFoldersCheck.checked(); }
    bool wholeFolder() const { return ScanAll.checked(); }
    /// True while a session load runs; a selection made meanwhile is loaded after it.
    bool sessionLoadRunning() const { return load_.running; }
    /// The library whose index has news (an audit ran): its sessions are asked afresh.
    void libraryChanged() { library_.reopen(); }

private:
    /// The folder the lines of UnusedFiles start from, with its separator: the shown folder, or
    /// the project folder of a Live set loaded from a folder of its project.
    QString linesFolder() const;
    const WindowServices& window_;
    SessionBrowser& browser_;
    const std::function<void(ExclusionForm& form)>& showExclusionForm_;
    UserInteraction& ui_;
    FileOperations& disk_;
    Control& UsedFrame;
    Control& UsedFilesBox;
    Control& IgnoreFoldersCheck;
    Control& SESVersionLabel;
    Control& ScanAll;
    Control& UnusedFrame;
    Control& SubFolderCheck;
    Control& SubFolderName;
    Control& SubFolderButton;
    Control& UnusedFilesBox;
    Control& FileTypesCombo;
    Control& KeepPKCheck;
    Control& ExcludedCheck;
    Control& InfoLabel;
    CheckListModel UsedFiles;
    CheckListModel UnusedFiles;
    QStringList ExcludedFiles;
    /// The session folder as last loaded, and the audited library whose sessions guard it too.
    SessionFolder session_;
    AuditedLibrary library_;
    /// The size of each line of UnusedFiles, kept in step with the list.
    std::unique_ptr<SizeCache> sizeCache_;

    /// Keeps loads from overlapping when the other-files computation lets events run.
    struct LoadGuard {
        bool running = false;
        bool pending = false;        ///< a selection arrived during the running load
        quint64 browserChanges = 0;  ///< counts drive, folder and tab changes
    };
    LoadGuard load_;

    SessionBrowser& browser() const { return browser_; }
    /// The window's answers to what a load reports.
    SweepEvents sweepEvents();
    void runSessionLoad();
    /// Fills UnusedFiles with `files`.
    void showOtherFiles(const QList<OtherFile>& files);
    /// Adds `files` to UnusedFiles, each with its size.
    void appendOtherFiles(const QList<OtherFile>& files);
    void connectEvents(QObject& context);
};

}  // namespace tidewick
