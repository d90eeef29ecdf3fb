#include <QDir>

#include "fileops/restore.h"
#include "forms/main_form.h"
#include "forms/move_form.h"
#include "forms/restore_form.h"
#include "platform/path_text.h"

// "&Move Files": the checks and the confirmation before the results window runs the move, and
// the reload of the session after it.
namespace tidewick {

MoveRequest MainForm::moveRequest() const {
    MoveRequest request;
    request.sessionFolder = SESFile.text();
    request.sessionFile = SESFile.items().value(SESFile.listIndex());
    request.targetText = trimBlanks(TargetFolderName.text());
    request.storeInSubFolder = StoreInSubFolderCheck.checked();
    request.itemsMayBePaths = SubFolderCheck.visible();
    request.excludeOn = ExcludedCheck.checked();
    request.excluded = ExcludedFiles;
    for (int row = 0; row < UnusedFiles.count(); ++row) {
        request.items.append({UnusedFiles.text(row), UnusedFiles.isChecked(row)});
    }
    request.usedFiles = usedFileOwners(usedLines_, keptFiles_);
    return request;
}

void MainForm::MoveButton_Click() {
    remeasureOtherFiles();  // the sizes the user reads are those of the disk now
    const MoveRequest request = moveRequest();
    const auto checked = std::count_if(request.items.cbegin(), request.items.cend(),
                                       [](const MoveItem& item) { return item.checked; });
    if (checked == 0) {
        showOk(ui(), QStringLiteral("You haven't selected any Other Files to move."),
               QStringLiteral("Move Files"), MessageIcon::Information);
        return;
    }
    // A target that is no whole path would depend on the program's current directory.
    if (!QDir::isAbsolutePath(request.targetText)) {
        showOk(ui(),
               QStringLiteral("Choose the folder to move the files to: the target folder must be "
                              "a full path."),
               QStringLiteral("Move Files"), MessageIcon::Exclamation);
        return;
    }
    if (const Result<void> ready = moveCanStart(request, FSO); !ready) {
        showOk(ui(), ready.error().cause, QStringLiteral("Move Files"), MessageIcon::Exclamation);
        return;
    }
    const QString crlf = QStringLiteral("\r\n");
    const QString question = QStringLiteral("Warning!  You are about to Move ") +
                             QString::number(checked) + QStringLiteral(" file(s) as follows:-") +
                             crlf + crlf + QStringLiteral("From : \"") + SESFile.text() +
                             QLatin1Char('"') + crlf + QStringLiteral("To : \"") +
                             moveDestination(request) + QLatin1Char('"') + crlf + crlf +
                             QStringLiteral("Are you sure you wish to proceed?");
    if (ui().showMessage({question, QStringLiteral("Move Selected Files"), MessageIcon::Question,
                          MessageButtons::YesNo, MessageAnswer::No}) != MessageAnswer::Yes) {
        return;
    }

    const QString session = request.sessionFile;
    {
        MoveForm form(ui(), FSO, request, lastOverwriteAnswer_, resultsRunner());
        showResults(form);
    }
    reloadSession(session);
}

MoveForm::Runner MainForm::resultsRunner() const {
    return showMoveForm ? MoveForm::Runner::Background : MoveForm::Runner::Inline;
}

void MainForm::showResults(MoveForm& form) {
    if (showMoveForm) {
        showMoveForm(form);
    } else {
        form.runToEnd();
    }
}

void MainForm::reloadSession(const QString& session) {
    // The lists show the folder as the move (or its restore) has left it.
    UpdateSelCounter();
    refreshSessionFiles();
    const int index = int(SESFile.items().indexOf(session));
    if (index >= 0) {
        SESFile.setListIndex(index);
    }
}

void MainForm::mnuFileRestore_Click() {
    RestoreForm chooser(ui_, moveRecords(moveRecordsFolder()));
    if (showRestoreForm) {
        showRestoreForm(chooser);
    }
    if (chooser.chosen() == nullptr) {
        return;
    }
    const MoveRecord record = *chooser.chosen();
    {
        const auto restore = [this, record](const MoveEvents& events) {
            const RestoreOutcome restored =
                restoreMove(record, FSO, false, {events.log, {}, events.progress});
            MoveOutcome outcome;
            outcome.failed = restored.left > 0;
            return outcome;
        };
        MoveForm form(ui_, restore, record.sessionFolder, resultsRunner());
        showResults(form);
    }
    // The folder shown gets its files back: its session is read again.
    if (withSeparator(SESFile.text()) == withSeparator(record.sessionFolder)) {
        reloadSession(SESFile.items().value(SESFile.listIndex()));
    }
}

}  // namespace tidewick
