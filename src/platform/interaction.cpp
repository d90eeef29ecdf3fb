#include "platform/interaction.h"

namespace tidewick {

MessageAnswer showOk(UserInteraction& ui, const QString& text, const QString& title,
                     MessageIcon icon) {
    return ui.showMessage({text, title, icon, MessageButtons::Ok, MessageAnswer::Ok});
}

}  // namespace tidewick
