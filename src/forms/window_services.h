#pragma once

#include <QString>
#include <QStringView>
#include <functional>
#include <memory>
#include <vector>

#include "fileops/file_operations.h"
#include "forms/control.h"
#include "forms/interaction.h"

// What every part of the main window's logic works with: the window's controls, the user, the
// disk, and the window's answers to a part that wants a control focused.
namespace tidewick {

struct WindowServices {
    const std::vector<std::unique_ptr<Control>>& controls;
    UserInteraction& ui;
    FileOperations& disk;
    /// The control called `controlName` is to get the keyboard focus.
    std::function<void(const QString& controlName)> focus;
    /// The whole text of the text box called `controlName` is to be selected.
    std::function<void(const QString& controlName)> selectText;

    /// The control called `name`, which must exist.
    Control& control(QStringView name) const {
        Control* found = findControl(controls, name);
        Q_ASSERT(found);
        return *found;
    }
};

}  // namespace tidewick
