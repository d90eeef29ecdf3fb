#include "text/pattern_list.h"

#include "text/letter_case.h"

#include <optional>
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
            const QStringView rest = QStringView(upperFilters_.last()).sliced(1);
            const bool ending = pattern.startsWith(u'*') && !rest.isEmpty() && isAscii(rest) &&
                                !rest.contains(u'*') && !rest.contains(u'?') &&
                                !rest.contains(u'#') && !rest.contains(u'[');
            endings_.append(ending ? rest.toString() : QString());
        }
    }
    everyName_ = filters_.contains(QStringLiteral("*"));
}

bool PatternList::matches(const QString& fileName) const {
    if (matchesEveryName()) {
        return true;
    }
    const bool ascii = isAscii(fileName);
    std::optional<UpperCased> upper;  // made when a pattern needs it
    for (qsizetype i = 0; i < upperFilters_.size(); ++i) {
        if (ascii && !endings_[i].isEmpty()) {
            if (endsWithIgnoringCase(fileName, endings_[i])) {
                return true;
            }
            continue;
        }
        if (!upper) {
            upper.emplace(fileName);
        }
        if (wildcardMatch(upper->view(), upperFilters_[i])) {
            return true;
        }
    }
    return false;
}

}  // namespace tidewick
