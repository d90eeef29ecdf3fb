#pragma once

#include <QString>
#include <QStringList>

#include "forms/control.h"
#include "readers/session_kinds.h"

// The left-hand side of the main window, through which the user picks what to load: drive,
// folder, session kind and session. Every change of drive, folder or kind empties both lists.
namespace tidewick {

class MainForm;
class FolderLists;
class UserInteraction;
class FileOperations;

class SessionBrowser {
public:
    explicit SessionBrowser(MainForm& window);

    // The controls' events.
    void SESDrive_Change();
    void SESDir_Change();
    void SESDir_Click(const QString& clickedFolder);
    void SESFile_PathChange();
    void FileTypeTab_Click();

    /// Points the drive list, the folder tree and the session-file list at `folder`, then lets
    /// pending window events run.
    void pointBrowserAt(const QString& folder);
    /// The key of the selected tab ("SESFiles"), empty when none is selected.
    QString selectedTabKey() const;
    /// Selects the tab with `key`; false when there is none.
    bool selectTabByKey(const QString& key);
    /// The kind of the selected tab; nullptr when none is selected.
    const SessionKind* selectedKind() const;
    /// The pattern of the session-file list ("*.ses"); setting it lists the folder again.
    const QString& sessionFilePattern() const { return sessionFilePattern_; }
    void setSessionFilePattern(const QString& pattern);
    /// Lists the files of the session-file list's folder that match its pattern.
    void refreshSessionFiles();
    /// The drive (on Linux and macOS: the place, see drivePlaces) that holds `folder`.
    QString driveOf(const QString& folder) const;
    /// Points the session-file list at `folder` and lists it afresh.
    void showSessionFolder(const QString& folder);
    /// Lists the session folder again and selects `session`, which reads it again.
    void reselect(const QString& session);

    /// The folder whose sessions are listed, the folder the tree shows, the sessions listed and
    /// the selected one's position (−1 for none) and name.
    const QString& sessionFolder() const { return SESFile.text(); }
    const QString& shownFolder() const { return SESDir.text(); }
    const QString& drive() const { return SESDrive.text(); }
    const QStringList& sessions() const { return SESFile.items(); }
    int selectedIndex() const { return SESFile.listIndex(); }
    QString selectedSession() const { return SESFile.items().value(SESFile.listIndex()); }

private:
    MainForm& window_;
    UserInteraction& ui_;
    FileOperations& disk_;
    Control& FilesFrame;
    Control& SESDrive;
    Control& SESDir;
    Control& FileTypeTab;
    Control& SESFile;
    QString sessionFilePattern_ = QStringLiteral("*.ses");
    /// Where the browser returns after a "Drive Error".
    QString folderAfterDriveError_;

    FolderLists& lists();
};

}  // namespace tidewick
