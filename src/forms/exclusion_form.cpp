#include "forms/exclusion_form.h"

#include <algorithm>

#include "text/path_text.h"

namespace tidewick {

namespace {

constexpr int kBackspace = 8;

using K = ControlKind;

constexpr ControlPlace kLayout[] = {
    {"Frame1", K::Frame, "", 60, 90, 6615, 3825,
     "Exclude the listed file specifications from the Move operation", ""},
    {"Label1", K::Label, "Frame1", 90, 360, 6405, 825,
     "Enter a file specification you wish to exclude from the Move operation into the box below "
     "and then click the Add button (or press Enter) to add it to the Exclusion List (eg "
     "lyrics.doc).  The standard wildcards * and ? can also be used (eg *.doc).  To remove items "
     "from the list, select the item(s) in the Exclusion List and click the Remove button.",
     ""},
    {"Frame2", K::Divider, "Frame1", 60, 1230, 6525, 65, "", ""},
    {"Label4", K::Label, "Frame1", 210, 1500, 2385, 225, "File Specification", ""},
    {"SpecText", K::TextBox, "Frame1", 210, 1740, 2565, 315, "", ""},
    {"Label3", K::Label, "Frame1", 3900, 1500, 2655, 225, "Exclusion List", ""},
    {"SpecList", K::ListBox, "Frame1", 3900, 1740, 2655, 2010, "", ""},
    {"ActionButton0", K::ToolButton, "Frame1", 2910, 1770, 885, 615, "&Add",
     "Add to the Quarantine list"},
    {"ActionButton1", K::ToolButton, "Frame1", 2910, 2460, 885, 615, "&Remove",
     "Remove selected item from the Quarantine list"},
    {"OKButton", K::Button, "", 1980, 4050, 1215, 375, "&OK", ""},
    {"CancelButton", K::Button, "", 3540, 4050, 1215, 375, "&Cancel", ""},
};

}  // namespace

ExclusionForm::ExclusionForm(UserInteraction& ui, QStringList& excludedFiles)
    : controls_(createControls(kLayout)), ui_(ui), excludedFiles_(excludedFiles) {}

void ExclusionForm::Form_Load() {
    SpecList = excludedFiles_;
    SelectedEntries.clear();
    CurrentEntry = -1;
    ListChanged = false;
    Q_EMIT listChanged();
}

int ExclusionForm::SpecText_KeyPress(int keyAscii) {
    static const QString admitted = QStringLiteral(
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789 &'@{}[],$=!-#()%.+~_*?");
    const bool takes = keyAscii == kBackspace ||
                       (keyAscii > 0 && keyAscii < 128 && admitted.contains(QChar(keyAscii)));
    return takes ? keyAscii : 0;
}

QString ExclusionForm::admittedSpecText(const QString& text) {
    QString admitted;
    for (const QChar c : text) {
        if (c.unicode() != kBackspace && SpecText_KeyPress(c.unicode()) != 0) {
            admitted += c;
        }
    }
    return admitted;
}

void ExclusionForm::ActionButton_Click(int index) {
    if (index == 0) {
        add();
    } else if (index == 1) {
        remove();
    }
    // The box gets the keyboard with its text selected, ready for the next entry.
    Q_EMIT specTextSelected();
    ui_.processEvents();
}

void ExclusionForm::add() {
    const QString entry = trimBlanks(SpecText);
    const QString title = QStringLiteral("Error");
    if (entry.isEmpty()) {
        showOk(ui_, QStringLiteral("You haven't specified anything to add to the list."), title,
               MessageIcon::Information);
    } else if (SpecList.contains(entry)) {  // letter case counts here, not in the move
        showOk(ui_, QStringLiteral("The file specification is already listed."), title,
               MessageIcon::Information);
    } else {
        SpecList.append(entry);
        ListChanged = true;
        setSpecText({});
        Q_EMIT listChanged();
    }
}

void ExclusionForm::remove() {
    // Only selected entries are removed: the list puts its focus mark on its first entry as it
    // gets the keyboard, and that mark alone is no choice of the user's.
    if (SelectedEntries.isEmpty()) {
        return;
    }
    if (SelectedEntries.size() == 1) {
        // The entry comes back into the box, to be edited and added again.
        const int row = SelectedEntries.first();
        if (row < 0 || row >= SpecList.size()) {
            return;
        }
        setSpecText(SpecList.takeAt(row));
    } else {
        const QString question = QStringLiteral("Are you sure you wish to Remove the ") +
                                 QString::number(SelectedEntries.size()) +
                                 QStringLiteral(" selected items?");
        if (ui_.showMessage({question, QStringLiteral("Remove Selected Items"),
                             MessageIcon::Question, MessageButtons::YesNo, MessageAnswer::No}) !=
            MessageAnswer::Yes) {
            return;
        }
        QList<int> rows = SelectedEntries;
        std::sort(rows.begin(), rows.end(), std::greater<>());
        for (const int row : rows) {
            if (row >= 0 && row < SpecList.size()) {
                SpecList.removeAt(row);
            }
        }
        setSpecText({});
    }
    ListChanged = true;
    SelectedEntries.clear();
    CurrentEntry = -1;
    Q_EMIT listChanged();
}

void ExclusionForm::OKButton_Click() {
    excludedFiles_ = SpecList;
    ListChanged = false;
    Q_EMIT closeRequested();
}

void ExclusionForm::CancelButton_Click() {
    if (ListChanged &&
        ui_.showMessage({QStringLiteral("Changes have been made to the Exclusion List.  Are you "
                                        "sure you wish abandon those changes?"),
                         QStringLiteral("Unsaved Changes"), MessageIcon::Question,
                         MessageButtons::YesNo, MessageAnswer::No}) != MessageAnswer::Yes) {
        return;
    }
    Q_EMIT closeRequested();
}

void ExclusionForm::SpecText_GotFocus() {
    Q_EMIT specTextSelected();
}

void ExclusionForm::setSpecText(const QString& text) {
    SpecText = text;
    Q_EMIT specTextChanged();
}

}  // namespace tidewick
