#pragma once

#include <QString>
#include <QStringList>
#include <functional>

#include "forms/window_services.h"
#include "readers/session_kinds.h"

// The left-hand side of the main window, through which the user picks what to load: drive,
// folder, session kind and session. Every change of drive, folder or kind empties both lists.
namespace tidewick {

/// What the browser's changes ask of the rest of the window.
struct BrowserEvents {
    /// The drive, folder or tab is changing: what was loaded belongs to another folder or kind.
    std::function<void()> changing;
    /// Both lists are to be emptied.
    std::function<void()> emptied;
    /// The loaded session's version is to be cleared.
    std::function<void()> versionCleared;
    /// The lists' counts are to be shown afresh.
    std::function<void()> counted;
    /// The tab of `kind` was chosen with the folder `folder` shown.
    std::function<void(const SessionKind& kind, const QString& folder)> kindChosen;
    /// A folder was shown: what follows the selected session is to follow it.
    std::function<void()> folderShown;
};

class SessionBrowser {
public:
    SessionBrowser(const WindowServices& window, QObject& context);
    /// The window's answers to the browser's changes.
    void setEvents(BrowserEvents events) { events_ = std::move(events); }

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
    UserInteraction& ui_;
    FileOperations& disk_;
    BrowserEvents events_;
    Control& SESDrive;
    Control& SESDir;
    Control& FileTypeTab;
    Control& SESFile;
    QString sessionFilePattern_ = QStringLiteral("*.ses");
    /// Where the browser returns after a "Drive Error".
    QString folderAfterDriveError_;

    static void raise(const std::function<void()>& event) {
        if (event) {
            event();
        }
    }
};

}  // namespace tidewick
