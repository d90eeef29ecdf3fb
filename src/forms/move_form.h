#pragma once

#include <QObject>
#include <QString>
#include <QThread>
#include <functional>
#include <memory>

#include "fileops/file_operations.h"
#include "fileops/move_run.h"
#include "forms/control.h"
#include "forms/interaction.h"

// The results window without widgets: its log, its buttons' state and their handlers. The run
// happens when the window is first activated; the Qt window shows this data and forwards events.
namespace tidewick {

class MoveForm : public QObject {
    Q_OBJECT

public:
    /// Where the run happens: on a thread of its own, so that the window stays alive and shows
    /// each file as it is done, or in the caller's thread, to its end, when no window waits.
    enum class Runner { Background, Inline };

    /// What the window runs, telling its log and progress through the events it is given.
    using Job = std::function<MoveOutcome(const MoveEvents& events)>;

    /// The window of a move of `request`, which keeps its record (runRecordedMove).
    /// `lastAnswer` is the overwrite question's button pressed last in this run of the
    /// program: it has the focus at the next question, and each answer given replaces it.
    MoveForm(UserInteraction& ui, FileOperations& disk, const MoveRequest& request,
             OverwriteAnswer& lastAnswer, Runner runner = Runner::Background);
    /// The window of another run on the files, `job` (a restore), whose Explore opens `folder`.
    MoveForm(UserInteraction& ui, Job job, QString folder, Runner runner = Runner::Background);
    /// Waits for a run that is still going.
    ~MoveForm() override;

    /// The window's client area in twips.
    static constexpr int ClientWidth = 9480;
    static constexpr int ClientHeight = 6105;
    /// The window's controls with their captions and places; its three buttons are enabled once
    /// the run is over.
    const std::vector<std::unique_ptr<Control>>& controls() const { return controls_; }

    void Form_Load();
    /// Starts the run at the first activation; later ones do nothing.
    void Form_Activate();
    void CloseButton_Click();
    void CopyButton_Click();
    void ExploreButton_Click();

    /// The log so far, lines ending in CR LF.
    const QString& ResultsBox() const { return results_; }
    /// "E&xplore Destination Folder", "Cop&y to Clipboard" and "&Close" can be pressed: the run
    /// is over.
    bool buttonsEnabled() const { return finished_; }
    /// How the run ended; meaningful once buttonsEnabled().
    const MoveOutcome& outcome() const { return outcome_; }

    /// Loads and runs the form to its end without a window.
    void runToEnd();

Q_SIGNALS:
    /// Text was appended to the log.
    void resultsAppended(const QString& text);
    /// Bytes done of the bytes to move.
    void progressed(qint64 done, qint64 total);
    /// The run is over and the buttons are enabled.
    void runFinished();
    /// The window is to close.
    void closeRequested();

private:
    std::vector<std::unique_ptr<Control>> controls_;
    UserInteraction& ui_;
    Job job_;
    QString folder_;  // what Explore opens
    OverwriteAnswer* lastAnswer_;
    Runner runner_;
    QString results_;
    bool runDone_ = false;
    bool finished_ = false;
    MoveOutcome outcome_;
    std::unique_ptr<QThread> worker_;

    MoveEvents runEvents();
    void append(const QString& text);
    OverwriteAnswer askOverwrite(const QString& question);
    void finish(const MoveOutcome& outcome);
};

}  // namespace tidewick
