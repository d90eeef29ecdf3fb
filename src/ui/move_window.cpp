#include "ui/move_window.h"

#include <QCloseEvent>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QStyle>
#include <QTimer>

#include "forms/move_form.h"
#include "ui/control_widgets.h"
#include "ui/twips.h"

namespace tidewick {

MoveWindow::MoveWindow(MoveForm& form, QWidget* parent) : QDialog(parent), form_(form) {
    setObjectName(QStringLiteral("MoveForm"));
    setWindowTitle(QStringLiteral("Results"));
    useLayoutFont(this);
    setFixedSize(twipsToPixels(MoveForm::ClientWidth), twipsToPixels(MoveForm::ClientHeight));
    const QHash<QString, QObject*> widgets = makeControlWidgets(this, form.controls(), {});
    results_ = qobject_cast<QPlainTextEdit*>(widgets.value(QStringLiteral("ResultsBox")));
    progress_ = qobject_cast<QProgressBar*>(widgets.value(QStringLiteral("MoveProgress")));
    const auto button = [&widgets](const char* name) {
        auto* found = qobject_cast<QPushButton*>(widgets.value(QString::fromLatin1(name)));
        found->setAutoDefault(true);  // Enter presses the button that has the keyboard
        return found;
    };
    connect(button("ExploreButton"), &QPushButton::clicked, &form, &MoveForm::ExploreButton_Click);
    connect(button("CopyButton"), &QPushButton::clicked, &form, &MoveForm::CopyButton_Click);
    QPushButton* close = button("CloseButton");
    connect(close, &QPushButton::clicked, &form, &MoveForm::CloseButton_Click);

    connect(&form, &MoveForm::resultsAppended, this, [this](QString text) {
        results_->moveCursor(QTextCursor::End);
        results_->insertPlainText(text.replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
        results_->ensureCursorVisible();
    });
    connect(&form, &MoveForm::progressed, this, [this](qint64 done, qint64 total) {
        // The bar counts kilobytes, so that any size fits its range.
        progress_->setRange(0, int(std::max<qint64>(total / 1024, 1)));
        progress_->setValue(int(std::min(done, total) / 1024));
    });
    connect(&form, &MoveForm::runFinished, this, [this, close] {
        progress_->setValue(progress_->maximum());
        close->setFocus();
    });
    connect(&form, &MoveForm::closeRequested, this, &QDialog::accept);
    form.Form_Load();
}

void MoveWindow::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!activated_) {
        activated_ = true;
        // The run begins once the window is on the screen.
        QTimer::singleShot(0, &form_, &MoveForm::Form_Activate);
    }
}

void MoveWindow::closeEvent(QCloseEvent* event) {
    // The window stays until the run is over.
    if (!form_.buttonsEnabled()) {
        event->ignore();
        return;
    }
    QDialog::closeEvent(event);
}

void MoveWindow::reject() {
    // Escape presses "&Close" once it can be pressed.
    if (form_.buttonsEnabled()) {
        form_.CloseButton_Click();
    }
}

OverwriteDialog::OverwriteDialog(const QString& message, OverwriteAnswer focus, QWidget* parent)
    : QDialog(parent) {
    setObjectName(QStringLiteral("Overwrite"));
    setWindowTitle(programName());
    useLayoutFont(this);
    auto* icon = placed(new QLabel(this), QStringLiteral("Image1"), {60, 180, 630, 585});
    icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxQuestion).pixmap(32, 32));

    // A long path breaks after its separators.
    QString shown = message;
    shown.replace(QLatin1Char('/'), QStringLiteral("/\u200B"));
    shown.replace(QLatin1Char('\\'), QStringLiteral("\\\u200B"));
    auto* label = new QLabel(shown, this);
    label->setObjectName(QStringLiteral("MessageLabel"));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    const QRect labelPlace = twipsToPixels(QRect(660, 210, 4935, 555));
    // The label grows downwards for a message longer than its room, and the buttons with it.
    const int extra = std::max(0, label->heightForWidth(labelPlace.width()) - labelPlace.height());
    label->setGeometry(labelPlace.adjusted(0, 0, 0, extra));

    const QStringList captions = {QStringLiteral("&Yes"), QStringLiteral("Yes to &All"),
                                  QStringLiteral("&No"), QStringLiteral("&Cancel")};
    const int lefts[] = {375, 1635, 2895, 4170};
    for (int index = 0; index < captions.size(); ++index) {
        auto* button = new QPushButton(captions[index], this);
        button->setObjectName(QStringLiteral("AnswerButton%1").arg(index));
        button->setAutoDefault(true);
        button->setGeometry(
            twipsToPixels(QRect(lefts[index], 840, 1215, 375)).translated(0, extra));
        connect(button, &QPushButton::clicked, this, [this, index] {
            answer_ = OverwriteAnswer(index);
            accept();
        });
        buttons_.append(button);
    }
    setFixedSize(twipsToPixels(ClientWidth), twipsToPixels(ClientHeight) + extra);
    buttons_[int(focus)]->setFocus();
}

void OverwriteDialog::keyPressEvent(QKeyEvent* event) {
    // Escape presses "&Cancel"; closing by the frame gives no answer at all.
    if (event->key() == Qt::Key_Escape) {
        buttons_[int(OverwriteAnswer::Cancel)]->click();
        return;
    }
    QDialog::keyPressEvent(event);
}

}  // namespace tidewick
