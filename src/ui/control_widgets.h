#pragma once

#include <QHash>
#include <QIcon>
#include <functional>
#include <memory>
#include <vector>

#include "forms/control.h"

class QStyle;
class QWidget;

// Every window is made from its form's layout table the same way: one widget per control, named
// after it, in its container, at its twips, showing what the control holds and telling it what
// the user does.
namespace tidewick {

/// What the windows share in how their controls look.
struct ControlLook {
    QStyle* frameStyle = nullptr;  ///< draws the frames' captions on their border
    QIcon folderIcon;              ///< the picture of the folder buttons
};

/// Makes the widget or action of a control that only its window knows how to make (lists,
/// trees, tabs, menus), or returns nullptr to leave it to the common kinds.
using MakeControl = std::function<QObject*(Control& control, QWidget* container)>;
/// Shows what is particular to such a control's kind.
using SyncControl = std::function<void(Control& control, QObject* object)>;

/// Makes the widgets of `controls` under `client`, each in its container (the client area for
/// none) and kept showing its control: place, tooltip, enabled and visible state, and for the
/// common kinds (frames, labels, check boxes, buttons, text boxes, list boxes, text areas,
/// progress bars, dividers) the caption or content. A click, a check or an edit goes to the
/// control. Returns the objects by control name; a control of the window itself has none.
QHash<QString, QObject*> makeControlWidgets(QWidget* client,
                                            const std::vector<std::unique_ptr<Control>>& controls,
                                            const ControlLook& look, const MakeControl& make = {},
                                            const SyncControl& sync = {});

}  // namespace tidewick
