#pragma once

#include <QDialog>

class QTableWidget;

// "Audit a Library": the audit's progress, then its table of session folders, modal over the
// main window.
namespace tidewick {

class AuditForm;

class AuditWindow : public QDialog {
    Q_OBJECT

public:
    explicit AuditWindow(AuditForm& form, QWidget* parent = nullptr);

protected:
    void showEvent(QShowEvent* event) override;
    void reject() override;

private:
    void fillTable();

    AuditForm& form_;
    QTableWidget* table_ = nullptr;
    bool activated_ = false;
};

}  // namespace tidewick
