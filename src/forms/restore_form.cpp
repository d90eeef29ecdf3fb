#include "forms/restore_form.h"

#include <QLocale>

#include "text/number_text.h"
#include "text/path_text.h"

namespace tidewick {

namespace {

using K = ControlKind;

constexpr ControlPlace kLayout[] = {
    {"Label1", K::Label, "", 120, 120, 9240, 420,
     "Choose a move to undo. Each of its files goes back where it was, from the trash or from "
     "its copy in the target; no file is overwritten.",
     ""},
    {"RecordList", K::ListBox, "", 120, 600, 9240, 3360, "", ""},
    {"RestoreButton", K::Button, "", 4980, 4140, 2100, 435, "&Restore", ""},
    {"CancelButton", K::Button, "", 7260, 4140, 2100, 435, "&Cancel", ""},
};

const QString kTitle = QStringLiteral("Restore a Move");

}  // namespace

QString recordLine(const MoveRecord& record) {
    return QLocale().toString(record.started, QLocale::ShortFormat) + QStringLiteral("   ") +
           visibleText(record.sessionFolder) + QStringLiteral("   ") +
           countText(record.filesMoved(), "file") + QStringLiteral("   ") +
           countText(record.bytesMoved(), "byte") +
           (record.finished ? QString() : QStringLiteral("   (cut short)"));
}

RestoreForm::RestoreForm(UserInteraction& ui, QList<MoveRecord> records)
    : controls_(createControls(kLayout)), ui_(ui), records_(std::move(records)) {}

void RestoreForm::Form_Load() {
    RecordList.clear();
    for (const MoveRecord& record : records_) {
        RecordList.append(recordLine(record));
    }
    CurrentEntry = RecordList.isEmpty() ? -1 : 0;
    chosen_ = -1;
    Q_EMIT listChanged();
}

void RestoreForm::RestoreButton_Click() {
    if (CurrentEntry < 0 || CurrentEntry >= records_.size()) {
        showOk(ui_,
               records_.isEmpty() ? QStringLiteral("No move has been recorded yet.")
                                  : QStringLiteral("Choose the move to restore."),
               kTitle, MessageIcon::Information);
        return;
    }
    const MoveRecord& record = records_[CurrentEntry];
    const QString question = QStringLiteral("Put the ") + groupedNumber(record.filesMoved()) +
                             QStringLiteral(" file(s) of the move of ") +
                             QLocale().toString(record.started, QLocale::ShortFormat) +
                             QStringLiteral(" back into ") + record.sessionFolder +
                             QStringLiteral("?\r\nTheir copies in ") + record.target +
                             QStringLiteral(" go to the trash.");
    if (ui_.showMessage({question, kTitle, MessageIcon::Question, MessageButtons::YesNo,
                         MessageAnswer::No}) == MessageAnswer::Yes) {
        chosen_ = CurrentEntry;
        Q_EMIT closeRequested();
    }
}

void RestoreForm::CancelButton_Click() {
    chosen_ = -1;
    Q_EMIT closeRequested();
}

}  // namespace tidewick
