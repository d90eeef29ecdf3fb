#include <QDir>

#include "fileops/restore.h"
#include "forms/main_form.h"
#include "forms/move_form.h"
#include "forms/restore_form.h"
#include "text/path_text.h"

// "&Move Files": the checks and the confirmation before the results window runs the move, the
// reload of the session after it, and its undoing from a record.
namespace tidewick {

MoveRequest MainForm::moveRequest() const {
    const CheckListModel& unused = lists_.unusedFiles();
    QList<MoveItem> items;
    for (int row = 0; row < unused.count(); ++row) {
        items.append({unused.text(row), unused.isChecked(row)});
    }
    return lists_.session().moveRequest(lists_.sessionOptions(), items, TargetFolderName.text(),
                                        StoreInSubFolderCheck.checked());
}

void MainForm::UpdateSubFolder() {
    const QString session = browser_.selectedSession();
    if (browser_.selectedIndex() < 0 || session.isEmpty()) {
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

void MainForm::MoveButton_Click() {
    lists_.remeasureOtherFiles();  // the sizes the user reads are those of the disk now
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
                             crlf + crlf + QStringLiteral("From : \"") + browser_.sessionFolder() +
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
    // The lists show the folder as the move has left it.
    lists_.UpdateSelCounter();
    browser_.reselect(session);
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
            const RestoreOutcome restored = restoreMove(
                record, FSO, false, {events.log, {}, events.progress, events.stopRequested});
            MoveOutcome outcome;
            outcome.failed = restored.left > 0 || restored.refused > 0;
            return outcome;
        };
        MoveForm form(ui_, restore, record.sessionFolder, resultsRunner());
        showResults(form);
    }
    // The folder shown gets its files back: its session is read again.
    if (withSeparator(browser_.sessionFolder()) == withSeparator(record.sessionFolder)) {
        lists_.UpdateSelCounter();
        browser_.reselect(browser_.selectedSession());
    }
}

}  // namespace tidewick
