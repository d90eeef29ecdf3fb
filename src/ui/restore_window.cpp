#include "ui/restore_window.h"

#include <QListWidget>
#include <QPushButton>

#include "forms/restore_form.h"
#include "ui/control_widgets.h"
#include "ui/twips.h"

namespace tidewick {

RestoreWindow::RestoreWindow(RestoreForm& form, QWidget* parent) : QDialog(parent), form_(form) {
    setObjectName(QStringLiteral("Restore"));
    setWindowTitle(QStringLiteral("Restore a Move"));
    setFixedSize(twipsToPixels(RestoreForm::ClientWidth), twipsToPixels(RestoreForm::ClientHeight));
    useLayoutFont(this);
    const QHash<QString, QObject*> widgets = makeControlWidgets(this, form.controls(), {});
    list_ = qobject_cast<QListWidget*>(widgets.value(QStringLiteral("RecordList")));
    list_->setSelectionMode(QAbstractItemView::SingleSelection);
    const auto button = [&widgets](const char* name) {
        auto* found = qobject_cast<QPushButton*>(widgets.value(QString::fromLatin1(name)));
        found->setAutoDefault(true);
        return found;
    };
    connect(button("RestoreButton"), &QPushButton::clicked, &form,
            &RestoreForm::RestoreButton_Click);
    connect(button("CancelButton"), &QPushButton::clicked, &form, &RestoreForm::CancelButton_Click);
    connect(list_, &QListWidget::currentRowChanged, this,
            [this](int row) { form_.CurrentEntry = row; });
    connect(list_, &QListWidget::itemDoubleClicked, &form, &RestoreForm::RestoreButton_Click);
    connect(&form, &RestoreForm::listChanged, this, [this] {
        list_->clear();
        list_->addItems(form_.RecordList);
        list_->setCurrentRow(form_.CurrentEntry);
    });
    connect(&form, &RestoreForm::closeRequested, this, &QDialog::accept);
    form.Form_Load();
    list_->setFocus();
}

void RestoreWindow::reject() {
    form_.CancelButton_Click();  // Escape and the frame choose nothing
}

}  // namespace tidewick
