#include "sweep/pattern_list.h"

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

namespace {

QString withoutLoneSurrogates(QString text) {
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            ++i;
        } else if (text[i].isSurrogate()) {
            text[i] = QChar::ReplacementCharacter;
        }
    }
    return text;
}

}  // namespace

bool PatternList::matches(const QString& fileName) const {
    // A byte of a name that was no UTF-8 is held as a lone surrogate, which the expression
    // engine refuses as text; no pattern holds one, so any other stand-in matches alike.
    const QString& name = fileName.isValidUtf16() ? fileName : withoutLoneSurrogates(fileName);
    for (const QRegularExpression& expression : expressions_) {
        if (expression.match(name).hasMatch()) {
            return true;
        }
    }
    return false;
}

}  // namespace tidewick
