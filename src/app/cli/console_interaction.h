#pragma once

#include <QTextStream>

#include "forms/interaction.h"

namespace tidewick {

/// The user of the command line: message boxes become lines on the error stream, each answered
/// with its default button.
class ConsoleInteraction : public UserInteraction {
public:
    explicit ConsoleInteraction(QTextStream& err) : err_(err) {}

    MessageAnswer showMessage(const MessageBoxRequest& request) override;
    void setBusyPointer(bool) override {}

private:
    QTextStream& err_;
};

}  // namespace tidewick
