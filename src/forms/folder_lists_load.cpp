#include "forms/captions.h"
#include "forms/core_messages.h"
#include "forms/folder_lists.h"
#include "forms/kind_texts.h"
#include "forms/size_cache.h"
#include "text/path_text.h"

// Choosing a session: the window's controls become the options of a load, the session folder
// loads, and its lines fill UsedFiles and UnusedFiles; the sub-folder row gathers one more folder.
namespace tidewick {

QString FolderLists::linesFolder() const {
    const SessionKind* kind = session_.options().kind;
    return withSeparator(kind && kind->projectScope ? session_.root() : browser().shownFolder());
}

QString FolderLists::TrimFolders(const QString& fullFileName) const {
    return tidewick::trimFolders(fullFileName, session_.recordFolder());
}

SessionOptions FolderLists::sessionOptions() const {
    SessionOptions options;
    options.kind = browser().selectedKind();
    if (!options.kind) {
        options.kind = &sessionKind(SessionKindId::Veg);  // any other key reads Vegas projects
    }
    options.folder = browser().sessionFolder();
    options.sessions = browser().sessions();
    options.selected = browser().selectedIndex();
    options.wholeFolder = ScanAll.checked();
    options.trimFolders = IgnoreFoldersCheck.checked();
    options.mediaType = FileTypesCombo.listIndex();
    options.keepPeaks = KeepPKCheck.checked();
    options.rowOn = SubFolderCheck.checked();
    options.rowFolder = SubFolderName.text();
    options.recordFolder = session_.recordFolder();
    options.excludeOn = ExcludedCheck.checked();
    options.excluded = ExcludedFiles;
    return options;
}

SweepEvents FolderLists::sweepEvents() {
    SweepEvents events;
    events.reading = [this](const QString& fullName) {
        window_.control(u"Main").setText(QStringLiteral("Reading ") + fullName +
                                         QStringLiteral("...Please Wait"));
    };
    events.tell = [this](const ReadProblem& problem) {
        ui_.setBusyPointer(false);
        ui_.showMessage(readProblemMessage(problem));
        ui_.setBusyPointer(true);
    };
    events.idle = [this] { ui_.processEvents(); };
    return events;
}

void FolderLists::SESFile_Click() {
    // The other-files computation lets window events run, and with them a new selection. It
    // must not write into the lists that the running load is filling, so it waits, and the
    // latest selection is loaded once the running load is over.
    if (load_.running) {
        load_.pending = true;
        return;
    }
    do {
        load_.pending = false;
        load_.running = true;
        const quint64 browserChanges = load_.browserChanges;
        runSessionLoad();
        load_.running = false;
        if (load_.browserChanges != browserChanges) {
            // The drive, folder or tab changed under the load: what it listed belongs to a
            // folder or kind no longer shown.
            clearLists();
            clearVersion();
            UpdateSelCounter();
        }
    } while (load_.pending);
}

void FolderLists::runSessionLoad() {
    ui_.setBusyPointer(true);
    Control& caption = window_.control(u"Main");
    const QString savedCaption = caption.text();
    clearLists();
    session_.clear();

    session_.load(sessionOptions(), sweepEvents());
    const QList<UsedLine>& lines = session_.usedLines();
    const bool wholeFolder = ScanAll.checked();
    QList<CheckItem> usedLines;
    for (const UsedLine& line : shownUsedLines(session_.used())) {
        usedLines.append({line.text, line.exists});
    }
    UsedFiles.addItems(usedLines);
    for (int row = 0; row < lines.size(); ++row) {
        const UsedLine& line = lines[row];
        if (!line.keptFile.isEmpty() || line.outside || wholeFolder) {
            UsedFiles.setTooltip(row, usedLineTooltip(line, wholeFolder));
        }
    }
    showOtherFiles(session_.otherFiles());

    UsedFilesBox.setListIndex(-1);
    if (const QString row = session_.rowFolderAfterLoad(); !row.isEmpty()) {
        SubFolderName.setText(row);  // the folder the projects' record folder names
    }
    UpdateSelCounter();
    if (loaded) {
        loaded();
    }
    SESVersionLabel.setText(session_.used().version);
    ui_.setBusyPointer(false);
    caption.setText(savedCaption);
}

void FolderLists::showOtherFiles(const QList<OtherFile>& files) {
    UnusedFiles.clear();
    appendOtherFiles(files);
    UnusedFiles.setTooltipFolder(linesFolder());
}

void FolderLists::appendOtherFiles(const QList<OtherFile>& files) {
    QList<CheckItem> lines;
    std::vector<qint64> sizes;
    lines.reserve(files.size());
    sizes.reserve(size_t(files.size()));
    for (const OtherFile& file : files) {
        lines.append({file.text, false});
        sizes.push_back(file.size);
    }
    UnusedFiles.addItems(lines);
    sizeCache_->appendedSizes(linesFolder(), sizes);
}

void FolderLists::UsedFiles_ItemCheck(int item) {
    if (item < 0 || item >= UsedFiles.count()) {
        return;
    }
    const QString& text = UsedFiles.text(item);
    const bool placeholder = text == kNoMediaText && UsedFiles.count() == 1;
    UsedFiles.setChecked(item, !placeholder && disk_.FileExists(usedLineFile(
                                                   text, withSeparator(browser().sessionFolder()),
                                                   IgnoreFoldersCheck.checked())));
}

void FolderLists::UpdateUnusedFileSpec() {
    if (session_.stopped()) {
        return;  // the media of a session read only in part are unknown: nothing is offered
    }
    ui_.setBusyPointer(true);
    session_.relist(sessionOptions(), sweepEvents());
    showOtherFiles(session_.otherFiles());
    ui_.setBusyPointer(false);
    UnusedFilesBox.setListIndex(-1);
}

void FolderLists::ScanAll_Click() {
    // A REAPER load settles the record folder afresh from the projects it reads.
    const SessionKind* kind = browser().selectedKind();
    if (kind && kind->namesRecordFolder) {
        session_.setRecordFolder({});
    }
    if (browser().selectedIndex() >= 0) {
        SESFile_Click();
    }
}

void FolderLists::IgnoreFoldersCheck_Click() {
    if (browser().selectedIndex() >= 0) {
        SESFile_Click();
    }
}

// The tab switch, the browser's changes and the lists emptied.

void FolderLists::startKind(const SessionKind& kind, const QString& folder) {
    ScanAll.setText(kindTexts(kind.id).scanAllCaption);
    KeepPKCheck.setText(kindTexts(kind.id).keepPeaksCaption);
    ActivateSubFolderControls(kind.subFolderRow);
    session_.setRecordFolder(kind.startingRecordFolder(folder));
    SubFolderName.setText(session_.recordFolder());
}

void FolderLists::ActivateSubFolderControls(bool active) {
    QRect list = UnusedFilesBox.geometry();
    if (active) {
        list.setTop(720);
        list.setHeight(2535);
    } else {
        list.setTop(270);
        list.setHeight(2985);
    }
    UnusedFilesBox.setGeometry(list);
    for (Control* control : {&SubFolderCheck, &SubFolderButton}) {
        control->setEnabled(active);
    }
    for (Control* control : {&SubFolderCheck, &SubFolderName, &SubFolderButton}) {
        control->setVisible(active);
    }
}

void FolderLists::noteBrowserChange() {
    ++load_.browserChanges;
    session_.clear();
}

void FolderLists::clearLists() {
    UsedFiles.clear();
    UnusedFiles.clear();
}

void FolderLists::clearVersion() {
    SESVersionLabel.setText({});
}

// The sub-folder row of the REAPER and Vegas tabs, which gathers one more folder into "Files to
// be Moved".

void FolderLists::AddFolder() {
    if (!SubFolderCheck.enabled() || !SubFolderCheck.checked() || session_.stopped() ||
        browser().selectedIndex() < 0) {
        return;
    }
    if (subFolderPath(browser().sessionFolder(), SubFolderName.text(), disk_).isEmpty()) {
        return;  // no such folder: nothing to gather, nothing to say
    }
    ui_.processEvents();
    appendOtherFiles(session_.addFolder(sessionOptions()));
}

void FolderLists::SubFolderCheck_Click() {
    UnusedListRefresh();
}

void FolderLists::UnusedListRefresh() {
    if (browser().selectedIndex() < 0) {
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

void FolderLists::SubFolderButton_Click() {
    const QString typed = trimBlanks(SubFolderName.text());
    const QString typedFolder = subFolderPath(browser().sessionFolder(), typed, disk_);
    const QString start = typedFolder.isEmpty() ? browser().shownFolder() : typed;
    const QString chosen =
        ui_.browseForFolder(QStringLiteral("Please select a folder to move the unused files."),
                            typedFolder.isEmpty() ? start : typedFolder);
    const QString folder = chosen.isEmpty() ? start : chosen;
    SubFolderName.setText(folder);
    if (SubFolderCheck.checked() && browser().selectedIndex() >= 0 && !load_.running) {
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

void FolderLists::SubFolderName_GotFocus() {
    window_.selectText(SubFolderName.name());
}

}  // namespace tidewick
