#include "forms/session_browser.h"

#include <QFileInfo>
#include <QStorageInfo>

#include "forms/kind_texts.h"
#include "platform/places.h"
#include "sweep/sweep.h"
#include "text/path_text.h"

namespace tidewick {

namespace {

// Why a drive's root cannot be opened, or empty text when it can.
QString driveProblem(const QString& drive) {
    const QFileInfo root(drive);
    if (!root.exists() || !root.isDir()) {
        return QStringLiteral("Device unavailable");
    }
    if (!root.isReadable() || !root.isExecutable()) {
        return QStringLiteral("Permission denied");
    }
    return {};
}

// How the "Drive Error" message names a drive: its letter, upper-cased, where drives have
// letters; elsewhere a drive is a mounted volume and is named by its root.
QString driveName(const QString& drive) {
    if (drive.size() >= 2 && drive[0].isLetter() && drive[1] == u':') {
        return drive.left(1).toUpper();
    }
    return drive;
}

}  // namespace

SessionBrowser::SessionBrowser(const WindowServices& window, QObject& context)
    : ui_(window.ui),
      disk_(window.disk),
      SESDrive(window.control(u"SESDrive")),
      SESDir(window.control(u"SESDir")),
      FileTypeTab(window.control(u"FileTypeTab")),
      SESFile(window.control(u"SESFile")) {
    QStringList tabCaptions;
    for (const SessionKind* kind : tabKinds()) {
        tabCaptions.append(kindTexts(kind->id).tabCaption);
    }
    FileTypeTab.setItems(tabCaptions);
    FileTypeTab.setListIndex(0);  // a tab strip always has a tab selected

    QObject::connect(&SESDrive, &Control::textChanged, &context, [this] { SESDrive_Change(); });
    QObject::connect(&SESDir, &Control::textChanged, &context, [this] { SESDir_Change(); });
    QObject::connect(&FileTypeTab, &Control::clicked, &context, [this] { FileTypeTab_Click(); });
    // The session-file list follows its folder: a new path lists that folder's files.
    QObject::connect(&SESFile, &Control::textChanged, &context, [this] {
        refreshSessionFiles();
        SESFile_PathChange();
    });
}

void SessionBrowser::SESDrive_Change() {
    const QString drive = SESDrive.text();
    if (drive.isEmpty()) {
        return;
    }
    const QString previousFolder = SESDir.text();
    raise(events_.changing);

    const QString problem = driveProblem(drive);
    if (!problem.isEmpty()) {
        showOk(ui_,
               QStringLiteral("Error accessing drive ") + driveName(drive) + QStringLiteral(".  ") +
                   problem + u'.',
               QStringLiteral("Drive Error"), MessageIcon::Information);
        // Back to the drive the browser came from, which runs this handler again for it; there
        // the tree returns to the folder it showed before.
        folderAfterDriveError_ = previousFolder;
        SESDrive.setText(driveOf(previousFolder));
        return;
    }

    QString folder = drive;
    const QString& returnTo = folderAfterDriveError_;
    if (!returnTo.isEmpty() && driveOf(returnTo) == drive && disk_.FolderExists(returnTo)) {
        folder = returnTo;
    }
    folderAfterDriveError_.clear();
    SESDir.setText(folder);  // runs SESDir_Change
    raise(events_.emptied);
    raise(events_.counted);
}

void SessionBrowser::SESDir_Change() {
    raise(events_.changing);
    raise(events_.emptied);
    showSessionFolder(SESDir.text());
    raise(events_.versionCleared);
    raise(events_.counted);
    raise(events_.folderShown);
}

void SessionBrowser::SESDir_Click(const QString& clickedFolder) {
    ui_.processEvents();
    // A folder that cannot be opened is passed over: the tree stays where it was.
    const QFileInfo folder(clickedFolder);
    if (clickedFolder.isEmpty() || !folder.isDir() || !folder.isReadable() ||
        !folder.isExecutable()) {
        return;
    }
    if (SESDir.text() != clickedFolder) {
        SESDir.setText(clickedFolder);  // runs SESDir_Change, which lists the folder
    } else {
        showSessionFolder(SESDir.text());
    }
}

void SessionBrowser::showSessionFolder(const QString& folder) {
    if (SESFile.text() != folder) {
        SESFile.setText(folder);  // lists the folder and runs SESFile_PathChange
    } else {
        refreshSessionFiles();
    }
}

void SessionBrowser::SESFile_PathChange() {
    raise(events_.versionCleared);
}

void SessionBrowser::FileTypeTab_Click() {
    const QString shownFolder = SESFile.text();
    raise(events_.changing);
    raise(events_.emptied);
    if (const SessionKind* kind = selectedKind()) {
        sessionFilePattern_ = tabSessionPattern(*kind);  // listed below, once
        if (events_.kindChosen) {
            events_.kindChosen(*kind, shownFolder);
        }
    }
    refreshSessionFiles();
    // Nothing is loaded, so nothing of the previous kind's session may still show.
    raise(events_.versionCleared);
    raise(events_.counted);
}

QString SessionBrowser::driveOf(const QString& folder) const {
    const QString place = placeOf(SESDrive.items(), folder);
    if (!place.isEmpty()) {
        return place;
    }
    const QStorageInfo volume(folder);  // a drive that came after the list was made
    return volume.isValid() ? volume.rootPath() : QString();
}

void SessionBrowser::pointBrowserAt(const QString& folder) {
    if (SESDrive.items().isEmpty()) {
        SESDrive.setItems(drivePlaces());
    }
    SESDrive.setText(driveOf(folder));
    SESDir.setText(folder);
    SESFile.setText(folder);
    ui_.processEvents();
}

QString SessionBrowser::selectedTabKey() const {
    const int index = FileTypeTab.listIndex();
    if (index < 0 || index >= tabKinds().size()) {
        return {};
    }
    return kindTexts(tabKinds().at(index)->id).tabKey;
}

const SessionKind* SessionBrowser::selectedKind() const {
    return sessionKindByKey(selectedTabKey());
}

bool SessionBrowser::selectTabByKey(const QString& key) {
    for (int index = 0; index < tabKinds().size(); ++index) {
        if (kindTexts(tabKinds().at(index)->id).tabKey == key) {
            FileTypeTab.setListIndex(index);
            return true;
        }
    }
    return false;
}

void SessionBrowser::setSessionFilePattern(const QString& pattern) {
    if (sessionFilePattern_ != pattern) {
        sessionFilePattern_ = pattern;
        refreshSessionFiles();
    }
}

void SessionBrowser::refreshSessionFiles() {
    SESFile.setItems(sessionFiles(disk_, SESFile.text(), sessionFilePattern_));  // nothing selected
}

void SessionBrowser::reselect(const QString& session) {
    refreshSessionFiles();
    const int index = int(SESFile.items().indexOf(session));
    if (index >= 0) {
        SESFile.setListIndex(index);
    }
}

}  // namespace tidewick
