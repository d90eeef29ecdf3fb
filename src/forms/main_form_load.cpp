#include "forms/captions.h"
#include "forms/core_messages.h"
#include "forms/kind_texts.h"
#include "forms/main_form.h"
#include "forms/size_cache.h"
#include "platform/path_text.h"
#include "readers/session_kinds.h"

// Choosing a session: the window's controls become a sweep request, the sweep runs, and its
// lines fill UsedFiles and UnusedFiles.
namespace tidewick {

QString MainForm::TrimFolders(const QString& fullFileName) const {
    return trimFolders(fullFileName, RecordFolder);
}

SweepRequest MainForm::sweepRequest() const {
    SweepOptions options;
    options.kind = sessionKindByKey(selectedTabKey());
    if (!options.kind) {
        options.kind = &sessionKind(SessionKindId::Veg);  // any other key reads Vegas projects
    }
    options.folder = SESFile.text();
    options.sessions = SESFile.items();
    options.selected = SESFile.listIndex();
    options.wholeFolder = CheckAllFiles;
    options.trimFolders = TrimFoldersFlag;
    options.mediaType = FileTypesCombo.listIndex();
    options.keepPeaks = KeepPKCheck.checked();
    options.subFolderChecked = SubFolderCheck.checked();
    options.subFolder = SubFolderName.text();
    options.recordFolder = RecordFolder;
    return tidewick::sweepRequest(options);
}

SweepEvents MainForm::sweepEvents() {
    SweepEvents events;
    events.reading = [this](const QString& fullName) {
        Main.setText(QStringLiteral("Reading ") + fullName + QStringLiteral("...Please Wait"));
    };
    events.tell = [this](const ReadProblem& problem) {
        ui_.setBusyPointer(false);
        ui_.showMessage(readProblemMessage(problem));
        ui_.setBusyPointer(true);
    };
    events.idle = [this] { ui_.processEvents(); };
    return events;
}

void MainForm::SESFile_Click() {
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
            UsedFiles.clear();
            UnusedFiles.clear();
            SESVersionLabel.setText({});
            UpdateSelCounter();
        }
    } while (load_.pending);
}

void MainForm::runSessionLoad() {
    ui_.setBusyPointer(true);
    const QString savedCaption = Main.text();
    SetScanParams();
    loadStopped_ = false;
    UsedFiles.clear();
    UnusedFiles.clear();
    keptFiles_.clear();

    SweepRequest request = sweepRequest();
    request.sessionsElsewhere = [this](const QStringList& folders) {
        return sessionsElsewhere(folders);
    };
    const Sweep sweep = sweepFolder(request, FSO, sweepEvents(), &sessionCache_);
    RecordFolder = sweep.used.recordFolder;
    usedLines_ = sweep.used.lines;
    usedIndex_ = sweep.index;
    keptFiles_ = sweep.kept;
    QList<CheckItem> usedLines;
    usedLines.reserve(sweep.used.lines.size());
    for (const UsedLine& line : shownUsedLines(sweep.used)) {
        usedLines.append({line.text, line.exists});
    }
    UsedFiles.addItems(usedLines);
    for (int row = 0; row < sweep.used.lines.size(); ++row) {
        const UsedLine& line = sweep.used.lines[row];
        if (!line.keptFile.isEmpty() || CheckAllFiles) {
            UsedFiles.setTooltip(row, usedLineTooltip(line, CheckAllFiles));
        }
    }
    showOtherFiles(sweep.others);

    UsedFilesBox.setListIndex(-1);
    loadStopped_ = sweep.used.stopped;
    if (loadStopped_) {
        const ScanRange range = scanRange(request);
        stopNote_ = stoppedText(sweep.used, range.last - range.first + 1);
    } else if (request.kind->namesRecordFolder && scanRange(request).last >= 0) {
        GetRPPSubFolder();
    }
    UpdateSelCounter();
    UpdateSubFolder();
    SESVersionLabel.setText(sweep.used.version);
    ui_.setBusyPointer(false);
    Main.setText(savedCaption);
}

void MainForm::showOtherFiles(const QList<OtherFile>& files) {
    UnusedFiles.clear();
    QList<CheckItem> lines;
    std::vector<qint64> sizes;
    lines.reserve(files.size());
    sizes.reserve(size_t(files.size()));
    for (const OtherFile& file : files) {
        lines.append({file.text, false});
        sizes.push_back(file.size);
    }
    UnusedFiles.addItems(lines);
    sizeCache_->appendedSizes(withSeparator(SESDir.text()), sizes);
    UnusedFiles.setTooltipFolder(withSeparator(SESDir.text()));
}

void MainForm::appendOtherFiles(const QList<OtherFile>& files) {
    QStringList listed;
    listed.reserve(UnusedFiles.count());
    for (int row = 0; row < UnusedFiles.count(); ++row) {
        listed.append(UnusedFiles.text(row));
    }
    const QString folder = withSeparator(SESDir.text());
    QList<CheckItem> lines;
    std::vector<qint64> sizes;
    for (const OtherFile& file : otherFilesNotListed(listed, files, folder)) {
        lines.append({file.text, false});
        sizes.push_back(file.size);
    }
    UnusedFiles.addItems(lines);
    sizeCache_->appendedSizes(folder, sizes);
}

void MainForm::UsedFiles_ItemCheck(int item) {
    if (item < 0 || item >= UsedFiles.count()) {
        return;
    }
    const QString& text = UsedFiles.text(item);
    const bool placeholder = text == NoMediaText && UsedFiles.count() == 1;
    UsedFiles.setChecked(
        item, !placeholder && FSO.FileExists(usedLineFile(text, withSeparator(SESFile.text()),
                                                          TrimFoldersFlag)));
}

}  // namespace tidewick
