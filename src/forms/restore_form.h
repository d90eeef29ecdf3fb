#pragma once

#include <QObject>
#include <QStringList>

#include "fileops/move_record.h"
#include "forms/control.h"
#include "forms/interaction.h"

// "Restore a Move" without widgets: the recorded moves, newest first, one of which the user
// chooses and confirms; the main window then runs the restore in the results window.
namespace tidewick {

class RestoreForm : public QObject {
    Q_OBJECT

public:
    RestoreForm(UserInteraction& ui, QList<MoveRecord> records);

    /// The dialog's client area in twips.
    static constexpr int ClientWidth = 9480;
    static constexpr int ClientHeight = 4740;
    const std::vector<std::unique_ptr<Control>>& controls() const { return controls_; }

    /// One line a record: its date, session folder, files and bytes moved.
    QStringList RecordList;
    /// The line with the focus mark, −1 for none; the window sets it as the user moves.
    int CurrentEntry = -1;

    void Form_Load();
    /// Asks to confirm the move chosen, and closes with it chosen on "Yes".
    void RestoreButton_Click();
    void CancelButton_Click();

    /// The record chosen and confirmed, or nullptr.
    const MoveRecord* chosen() const { return chosen_ < 0 ? nullptr : &records_[chosen_]; }

Q_SIGNALS:
    void listChanged();
    void closeRequested();

private:
    std::vector<std::unique_ptr<Control>> controls_;
    UserInteraction& ui_;
    QList<MoveRecord> records_;
    qsizetype chosen_ = -1;
};

/// A record's line in the list: "25/11/2026 13:00  /home/me/Music/Song  3 file(s)  6,000 bytes".
QString recordLine(const MoveRecord& record);

}  // namespace tidewick
