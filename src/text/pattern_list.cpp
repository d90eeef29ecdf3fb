#include "text/pattern_list.h"

#include "text/letter_case.h"
#include "text/wildcard.h"

namespace tidewick {

QStringList splitPatternList(const QString& patternList) {
    QStringList patterns;
    for (const QString& piece : patternList.split(QLatin1Char(';'))) {
        const QString pattern = piece.trimmed();
        if (!pattern.isEmpty()) {
            patterns.append(pattern);
        }
    }
    return patterns;
}

PatternList::PatternList(const QString& patternList) {
    for (QString pattern : splitPatternList(patternList)) {
        if (pattern == QLatin1String("*.*")) {
            pattern = QStringLiteral("*");  // every file, with or without a dot
        }
        if (!filters_.contains(pattern)) {
            filters_.append(pattern);
            upperFilters_.append(pattern.toUpper());
        }
    }
}

bool PatternList::matches(const QString& fileName) const {
    if (matchesEveryName()) {
        return true;
    }
    const UpperCased upper(fileName);
    for (const QString& pattern : upperFilters_) {
        if (wildcardMatch(upper.view(), pattern)) {
            return true;
        }
    }
    return false;
}

}  // namespace tidewick
