#include "forms/interaction.h"

namespace tidewick {

MessageAnswer showOk(UserInteraction& ui, const QString& text, const QString& title,
                     MessageIcon icon) {
    return ui.showMessage({text, title, icon, MessageButtons::Ok, MessageAnswer::Ok});
}

QString fileManagerCommand() {
#if defined(Q_OS_WIN)
    return QStringLiteral("explorer.exe /e,");
#elif defined(Q_OS_MACOS)
    return QStringLiteral("open");
#else
    return QStringLiteral("xdg-open");
#endif
}

}  // namespace tidewick
