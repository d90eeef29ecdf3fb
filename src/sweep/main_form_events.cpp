#include "sweep/main_form.h"

// The events of the session browser, the lists, the sub-folder row, the move and the copy. Each
// is wired to its control; until its behaviour is built it leaves everything as it is.
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

void MainForm::UsedFiles_MouseMove(int button, int shift, float x, float y) {
    Q_UNUSED(button);
    Q_UNUSED(shift);
    Q_UNUSED(x);
    Q_UNUSED(y);
}

void MainForm::CopyFilesButton_Click() {}
void MainForm::KeepPKCheck_Click() {}
void MainForm::ExcludedCheck_Click() {}
void MainForm::SelectButton_Click(int index) {
    Q_UNUSED(index);
}
void MainForm::UnusedFiles_Click() {}
void MainForm::UnusedFiles_ItemCheck(int item) {
    Q_UNUSED(item);
}
void MainForm::UnusedFiles_DblClick() {}

void MainForm::UnusedFiles_MouseMove(int button, int shift, float x, float y) {
    Q_UNUSED(button);
    Q_UNUSED(shift);
    Q_UNUSED(x);
    Q_UNUSED(y);
}

void MainForm::SubFolderCheck_Click() {}
void MainForm::SubFolderButton_Click() {}
void MainForm::SubFolderName_GotFocus() {}
void MainForm::MoveButton_Click() {}
void MainForm::UpdateUnusedFileSpec() {}
void MainForm::UpdateSizes() {}
void MainForm::UpdateSubFolder() {}

}  // namespace tidewick
