#pragma once

#include <QDialog>
#include <optional>

#include "forms/interaction.h"

class QPlainTextEdit;
class QProgressBar;
class QPushButton;

// The results window of a move and the overwrite question, both modal over the main window.
namespace tidewick {

class MoveForm;

/// "Results": the log of the run growing line by line, a progress bar of the bytes moved, and
/// the buttons that come alive when the run is over.
class MoveWindow : public QDialog {
    Q_OBJECT

public:
    MoveWindow(MoveForm& form, QWidget* parent = nullptr);

protected:
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void reject() override;

private:
    MoveForm& form_;
    QPlainTextEdit* results_ = nullptr;
    QProgressBar* progress_ = nullptr;
    bool activated_ = false;
};

/// The overwrite question: the file's name and the buttons "&Yes", "Yes to &All", "&No" and
/// "&Cancel", the one given last with the keyboard focus.
class OverwriteDialog : public QDialog {
    Q_OBJECT

public:
    OverwriteDialog(const QString& message, OverwriteAnswer focus, QWidget* parent = nullptr);

    /// The button pressed; nothing when the question was closed by its frame.
    std::optional<OverwriteAnswer> answer() const { return answer_; }

    static constexpr int ClientWidth = 5775;
    static constexpr int ClientHeight = 1440;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    std::optional<OverwriteAnswer> answer_;
    QList<QPushButton*> buttons_;
};

}  // namespace tidewick
