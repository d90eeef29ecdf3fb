#include "forms/main_form.h"
#include "text/path_text.h"

// The selection buttons under "Files to be Moved" and opening a listed file.
namespace tidewick {

void MainForm::SelectButton_Click(int index) {
    ui_.setBusyPointer(true);
    switch (index) {
        case 0:
            UnusedFiles.setAllChecked(true);
            break;
        case 1:
            UnusedFiles.setAllChecked(false);
            break;
        case 2:
            UnusedFiles.invertChecks();
            break;
        default:
            break;
    }
    UnusedFilesBox.setListIndex(-1);
    ui_.setBusyPointer(false);
    UpdateSelCounter();
    Q_EMIT focusRequested(UnusedFilesBox.name());
}

void MainForm::UnusedFiles_DblClick() {
    const int row = UnusedFilesBox.listIndex();
    if (row < 0 || row >= UnusedFiles.count()) {
        return;
    }
    const QString file = otherFilePath(withSeparator(SESDir.text()), UnusedFiles.text(row));
    // A file deleted since it was listed opens nothing, whatever the desktop answers.
    if (!FSO.FileExists(file) || !ui_.openFile(file)) {
        showOk(ui_,
               QStringLiteral("The selected file could not be loaded into an asociated program."),
               QStringLiteral("Launch Error"), MessageIcon::Information);
    }
    ui_.processEvents();
}

}  // namespace tidewick
