#include "forms/move_form.h"

#include <QCoreApplication>

#include "fileops/move_record.h"
#include "text/path_text.h"

namespace tidewick {

namespace {

using K = ControlKind;

constexpr ControlPlace kLayout[] = {
    {"ResultsBox", K::TextArea, "", 60, 90, 9345, 5235, "", ""},
    {"MoveProgress", K::ProgressBar, "", 60, 5355, 9345, 120, "", ""},
    {"ExploreButton", K::Button, "", 803, 5520, 2355, 495, "E&xplore Destination Folder", ""},
    {"CopyButton", K::Button, "", 3563, 5520, 2355, 495, "Cop&y to Clipboard", ""},
    {"CloseButton", K::Button, "", 6323, 5520, 2355, 495, "&Close", ""},
};

// The buttons that wait for the end of the run.
constexpr QStringView kButtons[] = {u"ExploreButton", u"CopyButton", u"CloseButton"};

}  // namespace

MoveForm::MoveForm(UserInteraction& ui, FileOperations& disk, const MoveRequest& request,
                   OverwriteAnswer& lastAnswer, Runner runner)
    : MoveForm(
          ui,
          [&disk, request](const MoveEvents& events) {
              return runRecordedMove(request, disk, events, moveRecordsFolder()).outcome;
          },
          moveDestination(request), runner) {
    lastAnswer_ = &lastAnswer;
}

MoveForm::MoveForm(UserInteraction& ui, Job job, QString folder, Runner runner)
    : controls_(createControls(kLayout)),
      ui_(ui),
      job_(std::move(job)),
      folder_(std::move(folder)),
      lastAnswer_(nullptr),
      runner_(runner) {
    for (const QStringView name : kButtons) {
        findControl(controls_, name)->setEnabled(false);
    }
}

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
        finish(job_(runEvents()));
        return;
    }
    worker_.reset(QThread::create([this] {
        const MoveOutcome outcome = job_(runEvents());
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
    const OverwriteAnswer focus = lastAnswer_ ? *lastAnswer_ : OverwriteAnswer::Yes;
    const std::optional<OverwriteAnswer> answer = ui_.askOverwrite(question, focus);
    ui_.setBusyPointer(true);
    // Closing the question by its frame stops the run, and is no answer to remember.
    if (!answer) {
        return OverwriteAnswer::Cancel;
    }
    if (lastAnswer_) {
        *lastAnswer_ = *answer;
    }
    return *answer;
}

void MoveForm::finish(const MoveOutcome& outcome) {
    if (worker_) {
        worker_->wait();
    }
    outcome_ = outcome;
    ui_.setBusyPointer(false);
    finished_ = true;
    for (const QStringView name : kButtons) {
        findControl(controls_, name)->setEnabled(true);
    }
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
    const QString& folder = folder_;
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
