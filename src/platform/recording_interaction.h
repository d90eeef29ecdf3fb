#pragma once

#include <QList>

#include "platform/interaction.h"

namespace tidewick {

/// A stand-in for the user: records every message box and pointer change, and answers from a
/// script (the default button once the script runs out). Tests, benchmarks and fuzzers use it.
class RecordingInteraction : public UserInteraction {
public:
    MessageAnswer showMessage(const MessageBoxRequest& request) override {
        messages.append(request);
        return answers.isEmpty() ? request.defaultButton : answers.takeFirst();
    }
    void setBusyPointer(bool busy) override {
        busyPointer = busy;
        pointerChanges.append(busy);
    }

    QList<MessageBoxRequest> messages;
    QList<MessageAnswer> answers;  // given out in order
    QList<bool> pointerChanges;
    bool busyPointer = false;
};

}  // namespace tidewick
