#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QThread>
#include <atomic>
#include <memory>
#include <optional>

#include "audit/library_audit.h"
#include "forms/control.h"
#include "forms/interaction.h"
#include "forms/move_form.h"

// "Audit a Library" without widgets: the audit of every session folder under a root, run on a
// thread of its own with its progress shown as it goes and a Cancel that keeps what is done;
// then one row a folder, to sort and to go to in the main window.
namespace tidewick {

class AuditForm : public QObject {
    Q_OBJECT

public:
    /// The audit of the library under `root` on `disk`, with the index `indexFile` (made and
    /// used on the audit's thread).
    AuditForm(UserInteraction& ui, const FileSystem& disk, QString root, QString indexFile,
              MoveForm::Runner runner = MoveForm::Runner::Background);
    /// Stops a run that is still going, keeping what it did.
    ~AuditForm() override;

    /// The window's client area in twips.
    static constexpr int ClientWidth = 11400;
    static constexpr int ClientHeight = 6480;
    const std::vector<std::unique_ptr<Control>>& controls() const { return controls_; }

    /// One row a folder of the report, as the table shows it.
    struct Row {
        QString folder;
        QString sessions;
        QString reclaimable;
        qint64 reclaimableBytes = 0;
        qsizetype missing = 0;
        QString reason;  ///< why the folder was not read; empty when it was
    };
    /// The rows, largest reclaimable first, once the run is over.
    const QList<Row>& rows() const { return rows_; }
    /// The row (of rows()) the user is on, −1 for none; the window sets it as the user moves.
    int CurrentRow = -1;

    void Form_Load();
    /// Starts the audit at the first activation; later ones do nothing.
    void Form_Activate();
    /// Stops the audit while it runs ("&Cancel"); closes the window once it is over ("&Close").
    void CancelButton_Click();
    /// Goes to the current row's folder: the window closes with it chosen.
    void OpenButton_Click();

    /// Runs the audit to its end without a window.
    void runToEnd();
    bool finished() const { return finished_; }
    const LibraryReport& report() const { return report_; }

    /// The folder chosen, with the kind of its first session, once the window closed on it.
    struct Chosen {
        QString folder;
        SessionKindId kind;
    };
    std::optional<Chosen> chosen() const { return chosen_; }

Q_SIGNALS:
    /// `done` of `total` session folders audited (`total` 0 while the library is walked).
    void progressed(int done, int total);
    /// The rows are there and the buttons' states changed.
    void runFinished();
    void closeRequested();

private:
    std::vector<std::unique_ptr<Control>> controls_;
    UserInteraction& ui_;
    const FileSystem& disk_;
    QString root_;
    QString indexFile_;
    MoveForm::Runner runner_;
    std::unique_ptr<QThread> worker_;
    std::atomic<bool> stop_ = false;
    QElapsedTimer clock_;
    bool started_ = false;
    bool finished_ = false;
    LibraryReport report_;
    QString setAside_;
    QList<Row> rows_;
    std::optional<Chosen> chosen_;

    Control& named(QStringView name) const;
    LibraryReport run(const AuditEvents& events);
    void showProgress(const AuditProgress& progress);
    void finish(const LibraryReport& report);
};

}  // namespace tidewick
