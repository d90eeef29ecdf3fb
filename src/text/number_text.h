#pragma once

#include <QString>

// Numbers as the user reads them: whole numbers with the locale's thousands separator, and
// megabytes (bytes ÷ 1,048,576) with two decimals.
namespace tidewick {

/// 1234567 → "1,234,567"; 0 → "0". Digits are grouped also in locales such as "C" that leave
/// the separator out by default.
QString groupedNumber(qint64 number);

/// 1234567 bytes → "1.18".
QString megabyteText(qint64 bytes);

}  // namespace tidewick
