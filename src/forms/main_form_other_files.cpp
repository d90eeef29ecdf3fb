#include "forms/captions.h"
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
    keptFiles_.clear();
    showOtherFiles(
        listOtherFiles(sweepRequest(), usedIndex(), RecordFolder, FSO, sweepEvents(), &keptFiles_));
    ui_.setBusyPointer(false);
    UnusedFilesBox.setListIndex(-1);
}

UsedIndex& MainForm::usedIndex() {
    if (!usedIndex_) {
        usedIndex_ = std::make_shared<UsedIndex>(usedLines_, SESFile.text(), TrimFoldersFlag, FSO);
    }
    return *usedIndex_;
}

bool MainForm::guardFolder(const QString& folder) {
    QString stoppedAt;
    auto guard = sessionGuard({folder}, SESFile.text(), FSO, &sessionCache_, sweepEvents(),
                              &stoppedAt, sessionsElsewhere({folder}));
    if (guard) {
        usedIndex().addGuard(std::move(guard));
        return true;
    }
    UsedMedia stop;
    stop.stoppedAt = stoppedAt;
    stopNote_ = stoppedText(stop, 1);
    loadStopped_ = true;
    UnusedFiles.clear();
    keptFiles_.clear();
    return false;
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
