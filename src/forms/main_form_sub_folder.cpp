#include "forms/main_form.h"
#include "forms/size_cache.h"
#include "text/path_text.h"

// The sub-folder row of the REAPER and Vegas tabs, which gathers one more folder into "Files to
// be Moved", and the move's store-in-sub-folder option, which follows the selected session.
namespace tidewick {

void MainForm::UpdateSubFolder() {
    const QString session = SESFile.items().value(SESFile.listIndex());
    if (SESFile.listIndex() < 0 || session.isEmpty()) {
        StoreInSubFolderCheck.setText(QStringLiteral("Store in sub-folder..."));
        StoreInSubFolderCheck.setEnabled(false);
        StoreInSubFolderCheck.setTooltip({});
        return;
    }
    const QString base = hostBaseName(session);
    StoreInSubFolderCheck.setText(QStringLiteral("Store in sub-folder \"...") + hostSeparator() +
                                  base + u'"');
    StoreInSubFolderCheck.setEnabled(true);
    StoreInSubFolderCheck.setTooltip(QStringLiteral("Sub-folder: ") +
                                     withSeparator(TargetFolderName.text()) + base);
}

void MainForm::AddFolder() {
    if (!SubFolderCheck.enabled() || !SubFolderCheck.checked() || session_.stopped() ||
        SESFile.listIndex() < 0) {
        return;
    }
    if (subFolderPath(SESFile.text(), SubFolderName.text(), FSO).isEmpty()) {
        return;  // no such folder: nothing to gather, nothing to say
    }
    ui_.processEvents();
    QList<CheckItem> lines;
    std::vector<qint64> sizes;
    for (const OtherFile& file : session_.addFolder(sessionOptions())) {
        lines.append({file.text, false});
        sizes.push_back(file.size);
    }
    UnusedFiles.addItems(lines);
    sizeCache_->appendedSizes(withSeparator(SESDir.text()), sizes);
}

void MainForm::SubFolderCheck_Click() {
    UnusedListRefresh();
}

void MainForm::UnusedListRefresh() {
    if (SESFile.listIndex() < 0) {
        UnusedFiles.clear();
        UpdateSelCounter();
        return;
    }
    // A load that is running lets this one wait; the waiting load gathers the row's folder.
    const bool queued = load_.running;
    SESFile_Click();
    if (!queued) {
        AddFolder();
        UpdateSelCounter();
    }
}

void MainForm::SubFolderButton_Click() {
    const QString typed = trimBlanks(SubFolderName.text());
    const QString typedFolder = subFolderPath(SESFile.text(), typed, FSO);
    const QString start = typedFolder.isEmpty() ? SESDir.text() : typed;
    const QString chosen =
        ui_.browseForFolder(QStringLiteral("Please select a folder to move the unused files."),
                            typedFolder.isEmpty() ? start : typedFolder);
    const QString folder = chosen.isEmpty() ? start : chosen;
    SubFolderName.setText(folder);
    if (SubFolderCheck.checked() && SESFile.listIndex() >= 0 && !load_.running) {
        // The session folder and the chosen folder, for the used lines as they are; the chosen
        // folder's sessions guard their media too.
        ui_.setBusyPointer(true);
        session_.pickRowFolder(sessionOptions(), folder, sweepEvents());
        showOtherFiles(session_.otherFiles());
        ui_.setBusyPointer(false);
        UnusedFilesBox.setListIndex(-1);
        UpdateSelCounter();
    }
    session_.setRecordFolder(folder);
}

void MainForm::SubFolderName_GotFocus() {
    Q_EMIT textSelectionRequested(SubFolderName.name());
}

}  // namespace tidewick
