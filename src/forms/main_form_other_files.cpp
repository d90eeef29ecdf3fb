#include "forms/exclusion_form.h"
#include "forms/main_form.h"

// "Files to be Moved" computed again for the lines that UsedFiles holds now: after a change of
// media type or of the peak-file option.
namespace tidewick {

void MainForm::UpdateUnusedFileSpec() {
    if (loadStopped_) {
        return;  // the media of a session read only in part are unknown: nothing is offered
    }
    ui_.setBusyPointer(true);
    showOtherFiles(listOtherFiles(sweepRequest(), usedIndex(), RecordFolder, FSO, sweepEvents()));
    ui_.setBusyPointer(false);
    UnusedFilesBox.setListIndex(-1);
}

UsedIndex MainForm::usedIndex() const {
    QStringList used;
    used.reserve(UsedFiles.count());
    for (int row = 0; row < UsedFiles.count(); ++row) {
        used.append(UsedFiles.text(row));
    }
    return UsedIndex(used, SESFile.text(), TrimFoldersFlag);
}

void MainForm::KeepPKCheck_Click() {
    if (SESFile.listIndex() >= 0) {
        UpdateUnusedFileSpec();
    }
    UpdateSizes();
}

void MainForm::ExcludedCheck_Click() {
    // A click that checks the box opens the exclusion list. The move applies it, not this list,
    // which keeps showing such files.
    Q_EMIT focusRequested(QStringLiteral("UnusedFiles"));
    if (ExcludedCheck.checked() && showExclusionForm) {
        ExclusionForm editor(ui_, ExcludedFiles);
        showExclusionForm(editor);
    }
}

}  // namespace tidewick
