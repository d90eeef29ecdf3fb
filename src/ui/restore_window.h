#pragma once

#include <QDialog>

class QListWidget;

// "Restore a Move": the recorded moves to choose from, modal over the main window.
namespace tidewick {

class RestoreForm;

class RestoreWindow : public QDialog {
    Q_OBJECT

public:
    explicit RestoreWindow(RestoreForm& form, QWidget* parent = nullptr);

protected:
    void reject() override;

private:
    RestoreForm& form_;
    QListWidget* list_;
};

}  // namespace tidewick
