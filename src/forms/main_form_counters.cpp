#include "forms/captions.h"
#include "forms/main_form.h"
#include "forms/size_cache.h"
#include "platform/path_text.h"
#include "sweep/sweep.h"

// The counts in the list frames' captions and the sizes on the information line.
namespace tidewick {

namespace {

constexpr qsizetype kKeptTooltipLines = 30;

}  // namespace

void MainForm::UpdateSelCounter() {
    ui().setBusyPointer(true);
    const bool noMedia = UsedFiles.count() > 0 && UsedFiles.text(0) == NoMediaText;
    UsedFrame.setText(usedFrameText(UsedFiles.count(), noMedia, CheckAllFiles,
                                    SESFile.items().value(SESFile.listIndex()), loadStopped_));
    int checked = 0;
    for (int row = 0; row < UnusedFiles.count(); ++row) {
        checked += UnusedFiles.isChecked(row) ? 1 : 0;
    }
    UnusedFrame.setText(unusedFrameText(checked, UnusedFiles.count()));
    // What the listings passed over, and which sessions keep it (a long list is cut short).
    UnusedFrame.setTooltip(keptText(keptFiles_, kKeptTooltipLines).trimmed());
    UpdateSizes();
    ui().setBusyPointer(false);
}

void MainForm::UpdateSizes() {
    // Each line's size comes from the listing that added it (or from the disk, once, for a line
    // added otherwise), so a change of check mark adds up cached numbers instead of asking the
    // disk about every listed file; UnusedFiles_ItemCheck reads the changed file again.
    if (loadStopped_) {
        InfoLabel.setText(stopNote_);  // nothing is listed, and the line says why
        return;
    }
    const SizeCache::Totals totals = sizeCache_->totals(withSeparator(SESDir.text()));
    InfoLabel.setText(sizesText(totals.listed, totals.checked));
}

void MainForm::UnusedFiles_Click() {
    UpdateSelCounter();
}

void MainForm::UnusedFiles_ItemCheck(int item) {
    // The file whose mark changed is looked at again: one that has vanished since the list was
    // filled counts 0 from now on. The mark may have changed by mouse or by keyboard: the
    // counter follows either way.
    sizeCache_->forgetSize(item);
    UpdateSelCounter();
}

void MainForm::Form_Activate() {
    remeasureOtherFiles();
}

void MainForm::remeasureOtherFiles() {
    // The sizes are kept between check marks for speed; files may have been changed or deleted
    // behind the program's back while the user was elsewhere.
    sizeCache_->forgetAll();
    UpdateSizes();
}

}  // namespace tidewick
