#pragma once

#include <QList>
#include <QStringList>
#include <functional>
#include <utility>

#include "forms/interaction.h"

namespace tidewick {

/// A stand-in for the user: records every message box and pointer change, and answers from a
/// script (the default button once the script runs out). Tests, benchmarks and fuzzers use it.
/// `whileBusy`, when set, is done once, where a long operation first lets window events run
/// while the busy pointer shows: as a user's click that comes in the middle of it.
class RecordingInteraction : public UserInteraction {
public:
    MessageAnswer showMessage(const MessageBoxRequest& request) override {
        messages.append(request);
        if (beforeAnswer) {
            beforeAnswer(request);
        }
        return answers.isEmpty() ? request.defaultButton : answers.takeFirst();
    }
    void setBusyPointer(bool busy) override { busyPointer = busy; }
    void processEvents() override {
        if (busyPointer && whileBusy) {
            std::exchange(whileBusy, nullptr)();
        }
    }
    bool openFile(const QString& path) override {
        opened.append(path);
        return true;
    }
    QString browseForFolder(const QString& prompt, const QString& startFolder) override {
        folderRequests.append({prompt, startFolder});
        return folderAnswers.isEmpty() ? QString() : folderAnswers.takeFirst();
    }

    std::optional<OverwriteAnswer> askOverwrite(const QString& message,
                                                OverwriteAnswer focus) override {
        overwriteQuestions.append({message, focus});
        return overwriteAnswers.isEmpty() ? std::nullopt : overwriteAnswers.takeFirst();
    }

    /// One call of the folder picker: its prompt and start folder.
    struct FolderRequest {
        QString prompt;
        QString startFolder;
        bool operator==(const FolderRequest&) const = default;
    };

    QList<MessageBoxRequest> messages;
    QList<MessageAnswer> answers;  // given out in order
    QList<FolderRequest> folderRequests;
    QStringList folderAnswers;  // chosen folders, given out in order; empty text is a cancel
    /// The overwrite questions asked, each with the button that had the focus, and the answers
    /// given in order (nothing is a question closed by its frame).
    QList<std::pair<QString, OverwriteAnswer>> overwriteQuestions;
    QList<std::optional<OverwriteAnswer>> overwriteAnswers;
    QStringList opened;  // files opened in the desktop's program for them
    /// Done when a message box is shown, before its answer: as the user acting meanwhile.
    std::function<void(const MessageBoxRequest&)> beforeAnswer;
    bool busyPointer = false;
    std::function<void()> whileBusy;
};

}  // namespace tidewick
