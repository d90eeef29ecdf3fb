#include "ui/exclusion_window.h"

#include <QFrame>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QToolButton>
#include <QValidator>

#include "forms/exclusion_form.h"
#include "ui/control_widgets.h"
#include "ui/drawn_icons.h"
#include "ui/frame_style.h"
#include "ui/twips.h"

namespace tidewick {

namespace {

// Keeps only what can be typed into the box, whether typed or pasted.
class SpecValidator : public QValidator {
public:
    using QValidator::QValidator;

    State validate(QString& input, int& position) const override {
        const QString admitted = ExclusionForm::admittedSpecText(input);
        if (admitted != input) {
            position -= int(input.left(position).size() -
                            ExclusionForm::admittedSpecText(input.left(position)).size());
            input = admitted;
        }
        return Acceptable;
    }
};

}  // namespace

ExclusionWindow::ExclusionWindow(ExclusionForm& form, QWidget* parent)
    : QDialog(parent), form_(form) {
    setObjectName(QStringLiteral("Exclusion"));
    setWindowTitle(QStringLiteral("Exclude Files"));
    setFixedSize(twipsToPixels(ExclusionForm::ClientWidth),
                 twipsToPixels(ExclusionForm::ClientHeight));
    useLayoutFont(this);
    auto* frameStyle = new FrameStyle;
    frameStyle->setParent(this);
    const QHash<QString, QObject*> widgets =
        makeControlWidgets(this, form.controls(), ControlLook{frameStyle, {}});
    specText_ = qobject_cast<QLineEdit*>(widgets.value(QStringLiteral("SpecText")));
    specList_ = qobject_cast<QListWidget*>(widgets.value(QStringLiteral("SpecList")));
    bindButtons(widgets);
    bindSpecText();
    bindSpecList();
    connect(&form, &ExclusionForm::closeRequested, this, &QDialog::accept);
    form.Form_Load();
    specText_->setFocus();
}

// Picture buttons: the sign above the caption. Enter anywhere but on a button adds, as the
// dialog's default button would (see keyPressEvent).
void ExclusionWindow::bindButtons(const QHash<QString, QObject*>& widgets) {
    for (int index = 0; index < 2; ++index) {
        auto* button =
            qobject_cast<QToolButton*>(widgets.value(QStringLiteral("ActionButton%1").arg(index)));
        button->setIcon(drawnSignIcon(index == 0));
        connect(button, &QToolButton::clicked, &form_,
                [this, index] { form_.ActionButton_Click(index); });
    }
    const auto button = [&widgets](const char* name) {
        return qobject_cast<QPushButton*>(widgets.value(QString::fromLatin1(name)));
    };
    connect(button("OKButton"), &QPushButton::clicked, &form_, &ExclusionForm::OKButton_Click);
    connect(button("CancelButton"), &QPushButton::clicked, &form_,
            &ExclusionForm::CancelButton_Click);
}

void ExclusionWindow::bindSpecText() {
    specText_->setValidator(new SpecValidator(specText_));
    specText_->installEventFilter(this);
    connect(specText_, &QLineEdit::textChanged, this,
            [this](const QString& text) { form_.SpecText = text; });
    connect(&form_, &ExclusionForm::specTextChanged, this, [this] {
        if (specText_->text() != form_.SpecText) {
            specText_->setText(form_.SpecText);
        }
    });
    connect(&form_, &ExclusionForm::specTextSelected, this, [this] {
        specText_->setFocus();
        // After a click that brought the focus has placed the cursor.
        QMetaObject::invokeMethod(specText_, &QLineEdit::selectAll, Qt::QueuedConnection);
    });
}

void ExclusionWindow::bindSpecList() {
    connect(&form_, &ExclusionForm::listChanged, this, &ExclusionWindow::showList);
    connect(specList_, &QListWidget::itemSelectionChanged, this, [this] {
        if (syncing_) {
            return;
        }
        form_.SelectedEntries.clear();
        for (const QModelIndex& index : specList_->selectionModel()->selectedRows()) {
            form_.SelectedEntries.append(index.row());
        }
    });
    connect(specList_, &QListWidget::currentRowChanged, this, [this](int row) {
        if (!syncing_) {
            form_.CurrentEntry = row;
        }
    });
}

void ExclusionWindow::showList() {
    syncing_ = true;
    specList_->clear();
    specList_->addItems(form_.SpecList);
    specList_->setCurrentRow(form_.CurrentEntry, QItemSelectionModel::NoUpdate);
    for (const int row : form_.SelectedEntries) {
        if (QListWidgetItem* item = specList_->item(row)) {
            item->setSelected(true);
        }
    }
    syncing_ = false;
}

void ExclusionWindow::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Escape:
            // Escape presses "&Cancel", which asks before edits are dropped; closing by the
            // frame drops them without asking.
            form_.CancelButton_Click();
            return;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            // Enter presses the button that has the keyboard, and "&Add" from anywhere else.
            if (auto* button = qobject_cast<QAbstractButton*>(focusWidget())) {
                button->click();
            } else {
                form_.ActionButton_Click(0);
            }
            return;
        default:
            QDialog::keyPressEvent(event);
    }
}

bool ExclusionWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched == specText_ && event->type() == QEvent::FocusIn) {
        form_.SpecText_GotFocus();
    }
    return QDialog::eventFilter(watched, event);
}

}  // namespace tidewick
