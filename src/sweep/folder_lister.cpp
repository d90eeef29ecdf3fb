#include "sweep/folder_lister.h"

#include <QDir>

#include "sweep/media_types.h"

namespace tidewick {

PatternList::PatternList(const QString& patternList) {
    for (QString pattern : splitPatternList(patternList)) {
        if (pattern == QLatin1String("*.*")) {
            pattern = QStringLiteral("*");  // every file, with or without a dot
        }
        if (!filters_.contains(pattern)) {
            filters_.append(pattern);
            expressions_.append(QRegularExpression::fromWildcard(pattern, Qt::CaseInsensitive));
        }
    }
}

bool PatternList::matches(const QString& fileName) const {
    for (const QRegularExpression& expression : expressions_) {
        if (expression.match(fileName).hasMatch()) {
            return true;
        }
    }
    return false;
}

QFileInfoList listFolderFiles(const QString& folder, const QStringList& nameFilters) {
    if (nameFilters.isEmpty()) {
        return {};
    }
    QDir dir(folder);
    // Without QDir::CaseSensitive the name filters ignore letter case on every platform.
    return dir.entryInfoList(nameFilters, QDir::Files, QDir::Name | QDir::IgnoreCase);
}

}  // namespace tidewick
