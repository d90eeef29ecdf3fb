#include "forms/audit_form.h"

#include "audit/audit_text.h"
#include "audit/session_index.h"
#include "forms/core_messages.h"
#include "text/path_text.h"

namespace tidewick {

namespace {

using K = ControlKind;

constexpr ControlPlace kLayout[] = {
    {"RootLabel", K::Label, "", 120, 120, 11160, 285, "", ""},
    {"FolderTable", K::Table, "", 120, 480, 11160, 4800, "", ""},
    {"StatusLabel", K::Label, "", 120, 5400, 11160, 285, "", ""},
    {"AuditProgress", K::ProgressBar, "", 120, 5760, 6600, 315, "", ""},
    {"OpenButton", K::Button, "", 6900, 5700, 2100, 435, "&Go to Folder", ""},
    {"CancelButton", K::Button, "", 9180, 5700, 2100, 435, "&Cancel", ""},
};

const QString kTitle = QStringLiteral("Audit a Library");

}  // namespace

AuditForm::AuditForm(UserInteraction& ui, const FileSystem& disk, QString root, QString indexFile,
                     MoveForm::Runner runner)
    : controls_(createControls(kLayout)),
      ui_(ui),
      disk_(disk),
      root_(std::move(root)),
      indexFile_(std::move(indexFile)),
      runner_(runner) {}

AuditForm::~AuditForm() {
    stop_ = true;
    if (worker_) {
        worker_->wait();
    }
}

Control& AuditForm::named(QStringView name) const {
    return *findControl(controls_, name);
}

void AuditForm::Form_Load() {
    named(u"RootLabel").setText(QStringLiteral("Library: ") + visibleText(root_));
    named(u"FolderTable")
        .setItems({QStringLiteral("Folder"), QStringLiteral("Sessions"),
                   QStringLiteral("Reclaimable"), QStringLiteral("Missing")});
    named(u"OpenButton").setEnabled(false);
}

void AuditForm::Form_Activate() {
    if (started_) {
        return;
    }
    started_ = true;
    clock_.start();
    if (runner_ == MoveForm::Runner::Inline) {
        AuditEvents events;
        events.progress = [this](const AuditProgress& progress) { showProgress(progress); };
        finish(run(events));
        return;
    }
    worker_.reset(QThread::create([this] {
        AuditEvents events;
        events.progress = [this](const AuditProgress& progress) {
            QMetaObject::invokeMethod(
                this, [this, progress] { showProgress(progress); }, Qt::QueuedConnection);
        };
        const LibraryReport report = run(events);
        QMetaObject::invokeMethod(
            this, [this, report] { finish(report); }, Qt::QueuedConnection);
    }));
    worker_->start();
}

// The index lives on the thread that uses it: its database connection may not change threads.
LibraryReport AuditForm::run(const AuditEvents& given) {
    AuditEvents events = given;
    events.stopRequested = [this] { return stop_.load(); };
    events.describe = readProblemText;
    SessionIndex index(indexFile_);
    const LibraryReport report = auditLibrary(root_, disk_, &index, events);
    setAside_ = index.setAside().value_or(QString());
    return report;
}

void AuditForm::showProgress(const AuditProgress& progress) {
    if (finished_) {
        return;
    }
    named(u"StatusLabel").setText(progressText(progress, clock_.elapsed()));
    Q_EMIT progressed(int(progress.walking ? 0 : progress.folders),
                      int(progress.walking ? 0 : progress.sessionFolders));
}

void AuditForm::finish(const LibraryReport& report) {
    report_ = report;
    finished_ = true;
    rows_.clear();
    for (const FolderReport& folder : report.folders) {
        rows_.append({folder.folder, sessionsText(folder),
                      folder.stopped ? QStringLiteral("Reading stopped") : reclaimableText(folder),
                      folder.stopped ? -1 : folder.reclaimableBytes, folder.missing.size(),
                      folder.reason});
    }
    CurrentRow = rows_.isEmpty() ? -1 : 0;
    named(u"StatusLabel").setText(totalsLine(report));
    named(u"OpenButton").setEnabled(!rows_.isEmpty());
    named(u"CancelButton").setText(QStringLiteral("&Close"));
    Q_EMIT progressed(1, 1);
    Q_EMIT runFinished();
    if (!setAside_.isEmpty()) {
        showOk(ui_,
               QStringLiteral("The index of sessions could not be used and was set aside as ") +
                   setAside_ + QStringLiteral("; a new one was made."),
               kTitle, MessageIcon::Exclamation);
    }
    if (rows_.isEmpty()) {
        showOk(ui_, QStringLiteral("No session folder was found under ") + root_ + u'.', kTitle,
               MessageIcon::Information);
    }
}

void AuditForm::CancelButton_Click() {
    if (!finished_) {
        stop_ = true;  // the folders done so far are still shown
        named(u"CancelButton").setEnabled(false);
        return;
    }
    chosen_.reset();
    Q_EMIT closeRequested();
}

void AuditForm::OpenButton_Click() {
    if (!finished_ || CurrentRow < 0 || CurrentRow >= rows_.size()) {
        return;
    }
    const FolderReport& folder = report_.folders[CurrentRow];
    if (folder.sessions.isEmpty()) {
        return;
    }
    chosen_ = Chosen{folder.folder, folder.sessions.constFirst().first};
    Q_EMIT closeRequested();
}

void AuditForm::runToEnd() {
    runner_ = MoveForm::Runner::Inline;
    Form_Load();
    Form_Activate();
}

}  // namespace tidewick
