#include "app/cli/console_interaction.h"

namespace tidewick {

MessageAnswer ConsoleInteraction::showMessage(const MessageBoxRequest& request) {
    QString text = request.text;
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    err_ << request.title << ": " << text << '\n';
    err_.flush();
    return request.defaultButton;
}

}  // namespace tidewick
