#include "forms/used_files_copy.h"

#include "fileops/copy_used.h"
#include "text/number_text.h"
#include "text/path_text.h"

namespace tidewick {

namespace {

const QString kCopyTitle = QStringLiteral("Copy Used Files");

CopyFailureAnswer copyFailureAnswer(MessageAnswer answer) {
    switch (answer) {
        case MessageAnswer::Retry:
            return CopyFailureAnswer::Retry;
        case MessageAnswer::Ignore:
            return CopyFailureAnswer::Ignore;
        default:
            return CopyFailureAnswer::Abort;
    }
}

}  // namespace

UsedFilesCopy::UsedFilesCopy(const WindowServices& window, QObject& context,
                             const FolderLists& lists)
    : window_(window),
      lists_(lists),
      ui_(window.ui),
      CopyFilesButton(window.control(u"CopyFilesButton")) {
    QObject::connect(&CopyFilesButton, &Control::clicked, &context,
                     [this] { CopyFilesButton_Click(); });
}

QList<Control*> UsedFilesCopy::frames() const {
    return {&window_.control(u"FilesFrame"), &window_.control(u"UsedFrame"),
            &window_.control(u"UnusedFrame")};
}

QList<int> UsedFilesCopy::checkedUsedRows() const {
    const CheckListModel& used = lists_.usedFiles();
    QList<int> rows;
    for (int row = 0; row < used.count(); ++row) {
        if (used.isChecked(row)) {
            rows.append(row);
        }
    }
    return rows;
}

void UsedFilesCopy::CopyFilesButton_Click() {
    const CopyRequest request = lists_.session().copyRequest(checkedUsedRows());
    const QList<CopyItem>& items = request.items;
    const auto finish = [this] {
        ui_.setBusyPointer(false);
        for (Control* frame : frames()) {
            frame->setEnabled(true);
        }
        ui_.processEvents();
    };
    if (items.isEmpty()) {
        showOk(ui_, QStringLiteral("There are no used files found on disk.  Nothing to copy."),
               kCopyTitle, MessageIcon::Information);
        return finish();
    }
    const QString picked = ui_.browseForFolder(
        QStringLiteral("Choose the folder that is to receive the copied used files."), CopyFolder);
    if (picked.isEmpty()) {
        showOk(ui_, QStringLiteral("Operation cancelled."), kCopyTitle, MessageIcon::Information);
        return finish();
    }
    CopyFolder = picked;

    const QString crlf = QStringLiteral("\r\n");
    const QString warning =
        QStringLiteral("WARNING! You are about to copy ") + QString::number(items.size()) +
        QStringLiteral(" file(s) to ") + CopyFolder + QLatin1Char('.') + crlf +
        QStringLiteral(
            "Any files with the same file names that are already in that folder will "
            "be overwritten.") +
        crlf + QStringLiteral("Are you sure you wish to proceed?");
    int copied = 0;
    if (ui_.showMessage({warning, kCopyTitle, MessageIcon::Exclamation, MessageButtons::YesNo,
                         MessageAnswer::Yes}) == MessageAnswer::Yes) {
        const std::optional<int> done = copyWithProgress(request);
        if (!done) {
            return finish();
        }
        copied = *done;
    }

    const QString result = copiedFilesLine(copied, CopyFolder) + crlf +
                           QStringLiteral("Would you like to open the target folder in Explorer?");
    if (ui_.showMessage({result, kCopyTitle, MessageIcon::Information, MessageButtons::YesNo,
                         MessageAnswer::Yes}) == MessageAnswer::Yes) {
        AddBackslash(CopyFolder);
        if (!ui_.openFolder(CopyFolder)) {
            showOk(ui_,
                   QStringLiteral("Error Running  '") + fileManagerCommand() +
                       QStringLiteral(" with ") + CopyFolder +
                       QStringLiteral(" as the target folder."),
                   QStringLiteral("Explorer Error"), MessageIcon::Critical);
        }
    }
    finish();
}

std::optional<int> UsedFilesCopy::copyWithProgress(const CopyRequest& request) {
    Control& Main = window_.control(u"Main");
    const QString savedCaption = Main.text();
    copying_ = true;
    for (Control* frame : frames()) {
        frame->setEnabled(false);
    }
    ui_.setBusyPointer(true);
    AddBackslash(CopyFolder);
    QString caption;
    CopyEvents events;
    events.starting = [&](int number, int total, const CopyItem& item) {
        caption = QStringLiteral("Copying file ") + QString::number(number) +
                  QStringLiteral(" of ") + QString::number(total) + QStringLiteral(" - ") +
                  item.text;
        Main.setText(caption);
    };
    events.progress = [&](qint64 done, qint64 total) {
        ui_.showProgress(kCopyTitle,
                         caption + QLatin1Char('\n') + megabyteText(done) + QStringLiteral(" of ") +
                             megabyteText(total) + QStringLiteral(" Mb"),
                         done, total);
    };
    events.failed = [&](const CopyItem& item, const Error& error) {
        ui_.setBusyPointer(false);
        const MessageAnswer answer =
            ui_.showMessage({copyFailureText(error, item.text), kCopyTitle, MessageIcon::Question,
                             MessageButtons::AbortRetryIgnore, MessageAnswer::Abort});
        ui_.setBusyPointer(true);
        return copyFailureAnswer(answer);
    };
    const CopyOutcome outcome =
        copyUsedFiles(request.items, CopyFolder, window_.disk, events, request.usedFiles);
    ui_.endProgress();
    copying_ = false;
    Main.setText(savedCaption);
    ui_.setBusyPointer(false);
    if (outcome.aborted) {
        return std::nullopt;
    }
    return outcome.copied;
}

}  // namespace tidewick
