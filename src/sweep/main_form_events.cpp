#include "sweep/main_form.h"

// The events of the session browser, the lists, the sub-folder row, the move and the copy. Each
// is wired to its control; until its behaviour is built it leaves everything as it is.
namespace tidewick {

void MainForm::CopyFilesButton_Click() {}
void MainForm::SelectButton_Click(int index) {
    Q_UNUSED(index);
}
void MainForm::UnusedFiles_DblClick() {}

void MainForm::SubFolderCheck_Click() {}
void MainForm::SubFolderButton_Click() {}
void MainForm::SubFolderName_GotFocus() {}
void MainForm::UpdateSubFolder() {}
void MainForm::GetRPPSubFolder() {}
void MainForm::AddFolder() {}

}  // namespace tidewick
