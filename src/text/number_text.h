#pragma once

#include <QString>

// Numbers as the user reads them: whole numbers with the locale's thousands separator, and
// megabytes (bytes ÷ 1,048,576) with two decimals.
namespace tidewick {

/// 1234567 → "1,234,567"; 0 → "0". Digits are grouped also in locales such as "C" that leave
/// the separator out by default.
QString groupedNumber(qint64 number);

/// 1 and "file" → "1 file"; 2000 and "byte" → "2,000 bytes": a count with its noun, singular
/// only for one.
QString countText(qint64 count, const char* noun);

/// 1234567 bytes → "1.18".
QString megabyteText(qint64 bytes);

}  // namespace tidewick
