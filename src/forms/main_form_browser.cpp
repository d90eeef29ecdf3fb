#include <QDir>
#include <QFileInfo>
#include <limits>

#include "forms/kind_texts.h"
#include "forms/main_form.h"
#include "platform/path_text.h"
#include "readers/session_kinds.h"

// The left-hand side of the main window, through which the user picks what to load: drive,
// folder, session kind and scan range. Every change of drive, folder or kind empties both lists.
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

void MainForm::SESDrive_Change() {
    const QString drive = SESDrive.text();
    if (drive.isEmpty()) {
        return;
    }
    const QString previousFolder = SESDir.text();
    noteBrowserChange();

    const QString problem = driveProblem(drive);
    if (!problem.isEmpty()) {
        showOk(ui_,
               QStringLiteral("Error accessing drive ") + driveName(drive) + QStringLiteral(".  ") +
                   problem + u'.',
               QStringLiteral("Drive Error"), MessageIcon::Information);
        // Back to the drive the browser came from, which runs this handler again for it; there
        // the tree returns to the folder it showed before.
        load_.folderAfterDriveError = previousFolder;
        SESDrive.setText(driveOf(previousFolder));
        return;
    }

    QString folder = drive;
    const QString& returnTo = load_.folderAfterDriveError;
    if (!returnTo.isEmpty() && driveOf(returnTo) == drive && FSO.FolderExists(returnTo)) {
        folder = returnTo;
    }
    load_.folderAfterDriveError.clear();
    SESDir.setText(folder);  // runs SESDir_Change
    UsedFiles.clear();
    UnusedFiles.clear();
    UpdateSelCounter();
}

void MainForm::SESDir_Change() {
    noteBrowserChange();
    UsedFiles.clear();
    UnusedFiles.clear();
    showSessionFolder(SESDir.text());
    SESVersionLabel.setText({});
    UpdateSelCounter();
    UpdateSubFolder();
}

void MainForm::SESDir_Click(const QString& clickedFolder) {
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

void MainForm::showSessionFolder(const QString& folder) {
    if (SESFile.text() != folder) {
        SESFile.setText(folder);  // lists the folder and runs SESFile_PathChange
    } else {
        refreshSessionFiles();
    }
}

void MainForm::SESFile_PathChange() {
    SESVersionLabel.setText({});
}

void MainForm::FileTypeTab_Click() {
    const QString shownFolder = SESFile.text();
    noteBrowserChange();
    UsedFiles.clear();
    UnusedFiles.clear();

    const SessionKind* kind = sessionKindByKey(selectedTabKey());
    if (kind) {
        sessionFilePattern_ = kind->sessionPattern;  // listed below, once
        ScanAll.setText(kindTexts(kind->id).scanAllCaption);
        KeepPKCheck.setText(kindTexts(kind->id).keepPeaksCaption);
        ActivateSubFolderControls(kind->subFolderRow);
        RecordFolder = kind->startingRecordFolder(shownFolder);
        SubFolderName.setText(RecordFolder);
    }
    refreshSessionFiles();
    // Nothing is loaded, so nothing of the previous kind's session may still show.
    SESVersionLabel.setText({});
    UpdateSelCounter();
}

void MainForm::ActivateSubFolderControls(bool active) {
    QRect list = UnusedFilesBox.geometry();
    if (active) {
        list.setTop(720);
        list.setHeight(2535);
    } else {
        list.setTop(270);
        list.setHeight(2985);
    }
    UnusedFilesBox.setGeometry(list);
    for (Control* control : {&SubFolderCheck, &SubFolderButton}) {
        control->setEnabled(active);
    }
    for (Control* control : {&SubFolderCheck, &SubFolderName, &SubFolderButton}) {
        control->setVisible(active);
    }
}

void MainForm::ScanAll_Click() {
    // A REAPER load settles the record folder afresh from the projects it reads.
    const SessionKind* kind = sessionKindByKey(selectedTabKey());
    if (kind && kind->namesRecordFolder) {
        RecordFolder.clear();
    }
    SetScanParams();
    if (SESFile.listIndex() >= 0) {
        SESFile_Click();
    }
}

void MainForm::SetScanParams() {
    // The sessions a load reads follow from this and the selection (scanRange).
    CheckAllFiles = ScanAll.checked();
}

void MainForm::IgnoreFoldersCheck_Click() {
    TrimFoldersFlag = IgnoreFoldersCheck.checked();
    if (SESFile.listIndex() >= 0) {
        SESFile_Click();
    }
}

}  // namespace tidewick
