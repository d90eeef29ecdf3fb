#pragma once

#include <QObject>
#include <QStringList>

#include "forms/control.h"
#include "forms/interaction.h"

// "Exclude Files" without widgets: the file specifications (lyrics.doc, *.doc) whose files the
// move leaves where they are, edited in a working copy that only OK makes the list.
namespace tidewick {

class ExclusionForm : public QObject {
    Q_OBJECT

public:
    /// Edits `excludedFiles`, which keeps its entries until OK.
    ExclusionForm(UserInteraction& ui, QStringList& excludedFiles);

    /// The dialog's client area in twips.
    static constexpr int ClientWidth = 6735;
    static constexpr int ClientHeight = 4515;
    /// The dialog's controls with their captions and places, in the order of the keyboard.
    const std::vector<std::unique_ptr<Control>>& controls() const { return controls_; }

    /// The text of the File Specification box.
    QString SpecText;
    /// The working copy of the list, the entries selected in it and the one with the focus mark
    /// (−1 for none). The window sets the selection and the current entry as the user moves.
    QStringList SpecList;
    QList<int> SelectedEntries;
    int CurrentEntry = -1;
    /// True once the working copy has changed since the dialog opened.
    bool ListChanged = false;

    void Form_Load();
    /// 0 "&Add": adds the box's text; 1 "&Remove": removes the selected entries.
    void ActionButton_Click(int index);
    void OKButton_Click();
    void CancelButton_Click();
    void SpecText_GotFocus();

    /// The typed character `keyAscii` as the box takes it, or 0 for one it drops: letters,
    /// digits, the blank, the wildcards * and ?, backspace and " &'@{}[],$=!-#()%.+~_".
    static int SpecText_KeyPress(int keyAscii);
    /// `text` with only the characters that can be typed into the box, as pasting leaves it.
    static QString admittedSpecText(const QString& text);

Q_SIGNALS:
    /// The entries, the selection or the current entry changed.
    void listChanged();
    /// SpecText was set by the form.
    void specTextChanged();
    /// The box is to get the keyboard focus with all its text selected.
    void specTextSelected();
    void closeRequested();

private:
    std::vector<std::unique_ptr<Control>> controls_;
    UserInteraction& ui_;
    QStringList& excludedFiles_;

    void add();
    void remove();
    void setSpecText(const QString& text);
};

}  // namespace tidewick
