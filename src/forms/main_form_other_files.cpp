#include "forms/exclusion_form.h"
#include "forms/main_form.h"

// "Files to be Moved" computed again for the lines that UsedFiles holds now: after a change of
// media type or of the peak-file option.
namespace tidewick {

void MainForm::UpdateUnusedFileSpec() {
    if (session_.stopped()) {
        return;  // the media of a session read only in part are unknown: nothing is offered
    }
    ui_.setBusyPointer(true);
    session_.relist(sessionOptions(), sweepEvents());
    showOtherFiles(session_.otherFiles());
    ui_.setBusyPointer(false);
    UnusedFilesBox.setListIndex(-1);
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
