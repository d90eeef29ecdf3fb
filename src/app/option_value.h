#pragma once

#include <QStringList>

// The desktop programs' development options.
namespace tidewick {

/// The value after `option` on the command line `arguments`, or empty text.
inline QString optionValue(const QStringList& arguments, const QString& option) {
    const qsizetype at = arguments.indexOf(option);
    return at > 0 ? arguments.value(at + 1) : QString();
}

}  // namespace tidewick
