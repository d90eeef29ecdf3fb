#pragma once

#include <QtGlobal>

namespace tidewick {

/// The answers to whether a file already in a move's target may be replaced, by the place of
/// each among the question's buttons: this file, this and every later one, not this one, or
/// stop the move here.
enum class OverwriteAnswer : qint16 { Yes = 0, YesToAll = 1, No = 2, Cancel = 3 };

}  // namespace tidewick
