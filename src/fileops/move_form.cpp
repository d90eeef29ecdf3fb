#include "fileops/move_form.h"

#include <QCoreApplication>

#include "platform/path_text.h"

namespace tidewick {

MoveForm::MoveForm(UserInteraction& ui, FileOperations& disk, MoveRequest request, Runner runner)
    : ui_(ui), disk_(disk), request_(std::move(request)), runner_(runner) {}

MoveForm::~MoveForm() {
    if (worker_) {
        worker_->wait();
    }
}

void MoveForm::Form_Load() {
    results_.clear();
    runDone_ = false;
}

void MoveForm::Form_Activate() {
    ui_.processEvents();
    if (runDone_) {
        return;
    }
    runDone_ = true;
    ui_.setBusyPointer(true);
    if (runner_ == Runner::Inline) {
        finish(runMove(request_, disk_, runEvents()));
        return;
    }
    worker_.reset(QThread::create([this] {
        const MoveOutcome outcome = runMove(request_, disk_, runEvents());
        QMetaObject::invokeMethod(
            this, [this, outcome] { finish(outcome); }, Qt::QueuedConnection);
    }));
    worker_->start();
}

// What the run tells reaches the form in its own thread: the log and the progress as they come,
// the overwrite question while the run waits for its answer.
MoveEvents MoveForm::runEvents() {
    MoveEvents events;
    if (runner_ == Runner::Inline) {
        events.log = [this](const QString& text) { append(text); };
        events.askOverwrite = [this](const QString& question) { return askOverwrite(question); };
        events.progress = [this](qint64 done, qint64 total) { Q_EMIT progressed(done, total); };
        return events;
    }
    events.log = [this](const QString& text) {
        QMetaObject::invokeMethod(
            this, [this, text] { append(text); }, Qt::QueuedConnection);
    };
    events.askOverwrite = [this](const QString& question) {
        OverwriteAnswer answer = OverwriteAnswer::Cancel;
        QMetaObject::invokeMethod(
            this, [this, &answer, &question] { answer = askOverwrite(question); },
            Qt::BlockingQueuedConnection);
        return answer;
    };
    events.progress = [this](qint64 done, qint64 total) {
        QMetaObject::invokeMethod(
            this, [this, done, total] { Q_EMIT progressed(done, total); }, Qt::QueuedConnection);
    };
    return events;
}

void MoveForm::append(const QString& text) {
    results_ += text;
    Q_EMIT resultsAppended(text);
}

OverwriteAnswer MoveForm::askOverwrite(const QString& question) {
    ui_.setBusyPointer(false);
    const std::optional<OverwriteAnswer> answer = ui_.askOverwrite(question, lastOverwriteAnswer);
    ui_.setBusyPointer(true);
    // Closing the question by its frame stops the run, and is no answer to remember.
    if (!answer) {
        return OverwriteAnswer::Cancel;
    }
    lastOverwriteAnswer = *answer;
    return *answer;
}

void MoveForm::finish(const MoveOutcome& outcome) {
    if (worker_) {
        worker_->wait();
    }
    outcome_ = outcome;
    ui_.setBusyPointer(false);
    finished_ = true;
    Q_EMIT runFinished();
}

void MoveForm::runToEnd() {
    Form_Load();
    Form_Activate();
    while (!finished_) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

void MoveForm::CloseButton_Click() {
    Q_EMIT closeRequested();
}

void MoveForm::CopyButton_Click() {
    if (ui_.setClipboardText(results_)) {
        showOk(ui_, QStringLiteral("Text Copied to Clipboard."), QStringLiteral("Copy"),
               MessageIcon::Information);
    } else {
        showOk(ui_, QStringLiteral("Cannot copy the text to the Clipboard."),
               QStringLiteral("Clipboard Error"), MessageIcon::Critical);
    }
}

void MoveForm::ExploreButton_Click() {
    QString folder = withSeparator(trimBlanks(request_.targetText));
    if (request_.storeInSubFolder) {
        folder += GetBaseName(request_.sessionFile);
    }
    const bool opened = ui_.openFolder(folder);
    ui_.processEvents();
    if (!opened) {
        ui_.setBusyPointer(false);
        showOk(ui_,
               QStringLiteral("Error Running  '") + fileManagerCommand() +
                   QStringLiteral(" with ") + folder +
                   QStringLiteral(
                       " as the target folder'.  Check that the program name and commands are "
                       "correct."),
               QStringLiteral("Explore Error"), MessageIcon::Critical);
    }
}

}  // namespace tidewick
