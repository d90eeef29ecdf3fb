#include "sweep/main_form.h"

// Choosing a session and resolving its media against the disk, and the session browser around
// it: drive, folder, tab and scan range.
namespace tidewick {

void MainForm::SESDrive_Change() {}
void MainForm::SESDir_Change() {}
void MainForm::SESDir_Click(const QString& clickedFolder) {
    Q_UNUSED(clickedFolder);
}
void MainForm::SESFile_Click() {}
void MainForm::SESFile_PathChange() {}
void MainForm::FileTypeTab_Click() {}
void MainForm::ScanAll_Click() {}
void MainForm::IgnoreFoldersCheck_Click() {}
void MainForm::SetScanParams() {}
void MainForm::UsedFiles_ItemCheck(int item) {
    Q_UNUSED(item);
}

QString MainForm::TrimFolders(const QString& fullFileName) const {
    return fullFileName;
}

}  // namespace tidewick
