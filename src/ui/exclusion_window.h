#pragma once

#include <QDialog>

class QLineEdit;
class QListWidget;

// "Exclude Files": the exclusion list's editor, modal over the main window.
namespace tidewick {

class ExclusionForm;

class ExclusionWindow : public QDialog {
    Q_OBJECT

public:
    explicit ExclusionWindow(ExclusionForm& form, QWidget* parent = nullptr);

    /// The window's client area in twips.
    static constexpr int ClientWidth = 6735;
    static constexpr int ClientHeight = 4515;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    ExclusionForm& form_;
    QLineEdit* specText_;
    QListWidget* specList_;
    bool syncing_ = false;

    void showList();
};

}  // namespace tidewick
