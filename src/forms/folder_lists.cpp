#include "forms/folder_lists.h"

#include "forms/captions.h"
#include "forms/exclusion_form.h"
#include "forms/size_cache.h"
#include "sweep/media_types.h"
#include "text/path_text.h"

// The lists' controls, the media types, the selection buttons and the counters.
namespace tidewick {

namespace {

constexpr qsizetype kKeptTooltipLines = 30;

}  // namespace

FolderLists::FolderLists(const WindowServices& window, QObject& context, SessionBrowser& browser,
                         const std::function<void(ExclusionForm& form)>& showExclusionForm)
    : window_(window),
      browser_(browser),
      showExclusionForm_(showExclusionForm),
      ui_(window.ui),
      disk_(window.disk),
      UsedFrame(window.control(u"UsedFrame")),
      UsedFilesBox(window.control(u"UsedFiles")),
      IgnoreFoldersCheck(window.control(u"IgnoreFoldersCheck")),
      SESVersionLabel(window.control(u"SESVersionLabel")),
      ScanAll(window.control(u"ScanAll")),
      UnusedFrame(window.control(u"UnusedFrame")),
      SubFolderCheck(window.control(u"SubFolderCheck")),
      SubFolderName(window.control(u"SubFolderName")),
      SubFolderButton(window.control(u"SubFolderButton")),
      UnusedFilesBox(window.control(u"UnusedFiles")),
      FileTypesCombo(window.control(u"FileTypesCombo")),
      KeepPKCheck(window.control(u"KeepPKCheck")),
      ExcludedCheck(window.control(u"ExcludedCheck")),
      InfoLabel(window.control(u"InfoLabel")),
      session_(window.disk),
      sizeCache_(std::make_unique<SizeCache>(UnusedFiles, window.disk)) {
    session_.setSessionsElsewhere([this](const QStringList& folders) {
        return library_.sessionsUsing(folders, disk_, session_.cache());
    });
    connectEvents(context);
}

FolderLists::~FolderLists() = default;

void FolderLists::connectEvents(QObject& context) {
    const auto on = [&context, this](QStringView name, void (FolderLists::*handler)()) {
        QObject::connect(&window_.control(name), &Control::clicked, &context,
                         [this, handler] { (this->*handler)(); });
    };
    on(u"SESFile", &FolderLists::SESFile_Click);
    on(u"ScanAll", &FolderLists::ScanAll_Click);
    on(u"IgnoreFoldersCheck", &FolderLists::IgnoreFoldersCheck_Click);
    on(u"FileTypesCombo", &FolderLists::FileTypesCombo_Click);
    on(u"KeepPKCheck", &FolderLists::KeepPKCheck_Click);
    on(u"ExcludedCheck", &FolderLists::ExcludedCheck_Click);
    on(u"SubFolderCheck", &FolderLists::SubFolderCheck_Click);
    on(u"SubFolderButton", &FolderLists::SubFolderButton_Click);
    for (int index = 0; index < 3; ++index) {
        QObject::connect(&window_.control(QStringLiteral("SelectButton%1").arg(index)),
                         &Control::clicked, &context, [this, index] { SelectButton_Click(index); });
    }
    QObject::connect(&UsedFiles, &CheckListModel::itemCheck, &context,
                     [this](int item) { UsedFiles_ItemCheck(item); });
    QObject::connect(&UnusedFiles, &CheckListModel::itemCheck, &context,
                     [this](int item) { UnusedFiles_ItemCheck(item); });
}

void FolderLists::prepare() {
    FileTypesCombo.setItems({});
    SetFileTypeArrays();
    FileTypesCombo.setListIndex(0);
    UsedFrame.setText(kUsedFrameCaption);
    UnusedFrame.setText(kUnusedFrameCaption);
}

void FolderLists::showChecks(bool trimFolders, bool checkAllFiles) {
    IgnoreFoldersCheck.setChecked(trimFolders);
    ScanAll.setChecked(checkAllFiles);
}

// Media types.

void FolderLists::SetFileTypeArrays() {
    const MediaTypeTable& table = mediaTypeTable();
    QStringList items = FileTypesCombo.items();
    for (int index = 0; index < table.FileTypeNames.size(); ++index) {
        items.append(mediaTypeItemText(table, index));
    }
    FileTypesCombo.setItems(items);
}

void FolderLists::FileTypesCombo_Click() {
    // Only "All Files" lets peak files into the list, so only then may they be kept back.
    KeepPKCheck.setEnabled(FileTypesCombo.listIndex() == 0);
    if (browser().selectedIndex() >= 0) {
        UpdateUnusedFileSpec();
    }
    UpdateSizes();
}

void FolderLists::KeepPKCheck_Click() {
    if (browser().selectedIndex() >= 0) {
        UpdateUnusedFileSpec();
    }
    UpdateSizes();
}

void FolderLists::ExcludedCheck_Click() {
    // A click that checks the box opens the exclusion list. The move applies it, not this list,
    // which keeps showing such files.
    window_.focus(QStringLiteral("UnusedFiles"));
    if (ExcludedCheck.checked() && showExclusionForm_) {
        ExclusionForm editor(ui_, ExcludedFiles);
        showExclusionForm_(editor);
    }
}

// The selection buttons and opening a listed file.

void FolderLists::SelectButton_Click(int index) {
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
    window_.focus(UnusedFilesBox.name());
}

void FolderLists::UnusedFiles_DblClick() {
    const int row = UnusedFilesBox.listIndex();
    if (row < 0 || row >= UnusedFiles.count()) {
        return;
    }
    const QString file = otherFilePath(linesFolder(), UnusedFiles.text(row));
    // A file deleted since it was listed opens nothing, whatever the desktop answers.
    if (!disk_.FileExists(file) || !ui_.openFile(file)) {
        showOk(ui_,
               QStringLiteral("The selected file could not be loaded into an asociated program."),
               QStringLiteral("Launch Error"), MessageIcon::Information);
    }
    ui_.processEvents();
}

// The counts in the list frames' captions and the sizes on the information line.

void FolderLists::UpdateSelCounter() {
    ui_.setBusyPointer(true);
    const bool noMedia = UsedFiles.count() > 0 && UsedFiles.text(0) == kNoMediaText;
    UsedFrame.setText(usedFrameText(UsedFiles.count(), noMedia, ScanAll.checked(),
                                    browser().selectedSession(), session_.stopped()));
    int checked = 0;
    for (int row = 0; row < UnusedFiles.count(); ++row) {
        checked += UnusedFiles.isChecked(row) ? 1 : 0;
    }
    UnusedFrame.setText(unusedFrameText(checked, UnusedFiles.count()));
    // What the listings passed over, and which sessions keep it (a long list is cut short).
    UnusedFrame.setTooltip(keptText(session_.keptFiles(), kKeptTooltipLines).trimmed());
    UpdateSizes();
    ui_.setBusyPointer(false);
}

void FolderLists::UpdateSizes() {
    // Each line's size comes from the listing that added it (or from the disk, once, for a line
    // added otherwise), so a change of check mark adds up cached numbers instead of asking the
    // disk about every listed file; UnusedFiles_ItemCheck reads the changed file again.
    if (session_.stopped()) {
        // Nothing is listed, and the line says why.
        InfoLabel.setText(stoppedText(session_.used(), session_.scannedCount()));
        return;
    }
    const SizeCache::Totals totals = sizeCache_->totals(linesFolder());
    InfoLabel.setText(sizesText(totals.listed, totals.checked));
}

void FolderLists::UnusedFiles_Click() {
    UpdateSelCounter();
}

void FolderLists::UnusedFiles_ItemCheck(int item) {
    // The file whose mark changed is looked at again: one that has vanished since the list was
    // filled counts 0 from now on. The mark may have changed by mouse or by keyboard: the
    // counter follows either way.
    sizeCache_->forgetSize(item);
    UpdateSelCounter();
}

void FolderLists::remeasureOtherFiles() {
    // The sizes are kept between check marks for speed; files may have been changed or deleted
    // behind the program's back while the user was elsewhere.
    sizeCache_->forgetAll();
    UpdateSizes();
}

}  // namespace tidewick
