#include "ui/qt_interaction.h"

#include <algorithm>
#include <cstdio>

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QMessageBox>
#include <QProcess>
#include <QUrl>

#include "ui/move_window.h"

#include <utility>

namespace tidewick {

namespace {

QMessageBox::Icon toQt(MessageIcon icon) {
    switch (icon) {
        case MessageIcon::Information:
            return QMessageBox::Information;
        case MessageIcon::Exclamation:
            return QMessageBox::Warning;
        case MessageIcon::Question:
            return QMessageBox::Question;
        case MessageIcon::Critical:
            return QMessageBox::Critical;
        case MessageIcon::None:
            break;
    }
    return QMessageBox::NoIcon;
}

QMessageBox::StandardButtons toQt(MessageButtons buttons) {
    switch (buttons) {
        case MessageButtons::Ok:
            return QMessageBox::Ok;
        case MessageButtons::OkCancel:
            return QMessageBox::Ok | QMessageBox::Cancel;
        case MessageButtons::YesNo:
            return QMessageBox::Yes | QMessageBox::No;
        case MessageButtons::YesNoCancel:
            return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
        case MessageButtons::AbortRetryIgnore:
            return QMessageBox::Abort | QMessageBox::Retry | QMessageBox::Ignore;
    }
    return QMessageBox::Ok;
}

// Each answer and the message box button that gives it.
constexpr std::pair<MessageAnswer, QMessageBox::StandardButton> kAnswerButtons[] = {
    {MessageAnswer::Ok, QMessageBox::Ok},         {MessageAnswer::Cancel, QMessageBox::Cancel},
    {MessageAnswer::Yes, QMessageBox::Yes},       {MessageAnswer::No, QMessageBox::No},
    {MessageAnswer::Abort, QMessageBox::Abort},   {MessageAnswer::Retry, QMessageBox::Retry},
    {MessageAnswer::Ignore, QMessageBox::Ignore},
};

QMessageBox::StandardButton toQt(MessageAnswer answer) {
    for (const auto& [known, button] : kAnswerButtons) {
        if (known == answer) {
            return button;
        }
    }
    return QMessageBox::Ok;
}

// The answer of the button the user chose; `closed` when the box was closed without one.
MessageAnswer fromQt(int button, MessageAnswer closed) {
    for (const auto& [answer, known] : kAnswerButtons) {
        if (known == button) {
            return answer;
        }
    }
    return closed;
}

}  // namespace

QtInteraction::~QtInteraction() {
    if (busy_) {
        QApplication::restoreOverrideCursor();
    }
}

MessageAnswer QtInteraction::showMessage(const MessageBoxRequest& request) {
    // Texts break lines with CR LF; a message box wants bare line feeds.
    QString text = request.text;
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    if (unattended_) {
        std::fprintf(stderr, "%s: %s\n", qUtf8Printable(request.title), qUtf8Printable(text));
        return request.defaultButton;
    }
    QMessageBox box(toQt(request.icon), request.title, text, toQt(request.buttons), owner_);
    box.setTextFormat(Qt::PlainText);
    box.setDefaultButton(toQt(request.defaultButton));
    // A box closed by its frame answers with its escape button, or the default one.
    const MessageAnswer closed = request.buttons == MessageButtons::AbortRetryIgnore
                                     ? MessageAnswer::Abort
                                 : request.buttons == MessageButtons::YesNo ? MessageAnswer::No
                                 : request.buttons == MessageButtons::Ok    ? MessageAnswer::Ok
                                                                            : MessageAnswer::Cancel;
    // The pointer shows the arrow while the user reads the box.
    const bool wasBusy = busy_;
    if (wasBusy) {
        setBusyPointer(false);
    }
    const int button = box.exec();
    if (wasBusy) {
        setBusyPointer(true);
    }
    return fromQt(button, closed);
}

void QtInteraction::setBusyPointer(bool busy) {
    if (busy == busy_) {
        return;
    }
    busy_ = busy;
    if (busy) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
    } else {
        QApplication::restoreOverrideCursor();
    }
}

void QtInteraction::processEvents() {
    QCoreApplication::processEvents();
}

bool QtInteraction::openFile(const QString& path) {
    return QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

QString QtInteraction::browseForFolder(const QString& prompt, const QString& startFolder) {
    // A start folder that does not exist opens the picker at its own default place.
    const QString start = QDir(startFolder).exists() ? startFolder : QString();
    const QString chosen = QFileDialog::getExistingDirectory(owner_, prompt, start);
    return chosen.isEmpty() ? QString() : QDir::toNativeSeparators(chosen);
}

std::optional<OverwriteAnswer> QtInteraction::askOverwrite(const QString& message,
                                                           OverwriteAnswer focus) {
    if (unattended_) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(message));
        return std::nullopt;
    }
    OverwriteDialog dialog(message, focus, owner_);
    const bool wasBusy = busy_;
    setBusyPointer(false);
    dialog.exec();
    setBusyPointer(wasBusy);
    return dialog.answer();
}

void QtInteraction::showProgress(const QString& title, const QString& item, qint64 done,
                                 qint64 total) {
    if (progress_ == nullptr) {
        progress_ = new QProgressDialog(owner_);
        progress_->setObjectName(QStringLiteral("CopyProgress"));
        progress_->setWindowModality(Qt::WindowModal);
        progress_->setCancelButton(nullptr);
        progress_->setAutoClose(false);
        progress_->setAutoReset(false);
        progress_->setMinimumDuration(400);
        progress_->setMinimumWidth(480);
    }
    progress_->setWindowTitle(title);
    progress_->setLabelText(item);
    // The bar counts kilobytes, so that any size fits its range.
    progress_->setRange(0, int(std::max<qint64>(total / 1024, 1)));
    progress_->setValue(int(std::min(done, total) / 1024));
    // The window repaints, but takes no click or key until the work is over: the progress
    // window blocks it only once it shows.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void QtInteraction::endProgress() {
    delete progress_;
}

bool QtInteraction::openFolder(const QString& folder) {
#ifdef Q_OS_WIN
    // Explorer opens with its folder tree beside the folder.
    return QProcess::startDetached(QStringLiteral("explorer.exe"),
                                   {QStringLiteral("/e,"), QDir::toNativeSeparators(folder)});
#else
    return QDir(folder).exists() && QDesktopServices::openUrl(QUrl::fromLocalFile(folder));
#endif
}

bool QtInteraction::setClipboardText(const QString& text) {
    QClipboard* clipboard = QGuiApplication::clipboard();
    if (clipboard == nullptr) {
        return false;
    }
    clipboard->clear();
    clipboard->setText(text);
    return clipboard->text() == text;
}

}  // namespace tidewick
