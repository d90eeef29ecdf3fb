#pragma once

#include <QDialog>
#include <QHash>

class QLineEdit;
class QListWidget;

// "Exclude Files": the exclusion list's editor, modal over the main window.
namespace tidewick {

class ExclusionForm;

class ExclusionWindow : public QDialog {
    Q_OBJECT

public:
    explicit ExclusionWindow(ExclusionForm& form, QWidget* parent = nullptr);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    ExclusionForm& form_;
    QLineEdit* specText_;
    QListWidget* specList_;
    bool syncing_ = false;

    void bindButtons(const QHash<QString, QObject*>& widgets);
    void bindSpecText();
    void bindSpecList();
    void showList();
};

}  // namespace tidewick
