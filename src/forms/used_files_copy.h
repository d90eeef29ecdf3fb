#pragma once

#include <QList>
#include <QString>
#include <optional>

#include "forms/folder_lists.h"
#include "forms/window_services.h"

// "Cop&y Files": the used files present on disk (the checked lines of the used list) copied into
// a folder the user picks, with a progress window and a question after a failed file.
namespace tidewick {

class UsedFilesCopy {
public:
    UsedFilesCopy(const WindowServices& window, QObject& context, const FolderLists& lists);

    void CopyFilesButton_Click();
    /// True while the copy runs: the window takes no command and does not close.
    bool running() const { return copying_; }
    /// The folder of the last copy, the start of the next one's picker.
    const QString& copyFolder() const { return CopyFolder; }
    void setCopyFolder(const QString& folder) { CopyFolder = folder; }

private:
    const WindowServices& window_;
    const FolderLists& lists_;
    UserInteraction& ui_;
    Control& CopyFilesButton;
    QString CopyFolder;
    bool copying_ = false;

    /// The rows of the checked lines of the used list.
    QList<int> checkedUsedRows() const;
    /// Copies what `request` names into CopyFolder with the caption, the progress and the failure
    /// questions; how many were copied, or nothing when the user stopped the run.
    std::optional<int> copyWithProgress(const CopyRequest& request);
    /// The frames of the window, disabled while the copy runs.
    QList<Control*> frames() const;
};

}  // namespace tidewick
