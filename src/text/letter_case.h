#pragma once

#include <QString>
#include <QStringView>
#include <QVarLengthArray>

// Letter case as the tests that ignore it see it: exactly what QString::toUpper() and
// QString::toLower() give, with a short way for text of ASCII characters alone, which most
// file names are, that never looks into Unicode's tables.
namespace tidewick {

/// Whether every character of `text` is ASCII.
bool isAscii(QStringView text);

/// `text` upper-cased as QString::toUpper() does it.
QString upperCase(const QString& text);
QString upperCase(QStringView text);
/// `text` lower-cased as QString::toLower() does it.
QString lowerCase(const QString& text);

/// Whether `a` and `b` upper-cased (as upperCase) are the same text.
bool sameUpperCase(QStringView a, QStringView b);

/// Whether `text` ends with `ending`, ignoring letter case as QString::endsWith() does; quick for
/// an ASCII ending such as an extension.
bool endsWithIgnoringCase(QStringView text, QStringView ending);

/// `text` upper-cased (as upperCase) for a test that keeps nothing: short ASCII text is held
/// on the stack, with no copy on the heap.
class UpperCased {
public:
    explicit UpperCased(QStringView text);
    QStringView view() const {
        return ascii_ ? QStringView(buffer_.constData(), buffer_.size()) : QStringView(other_);
    }

private:
    QVarLengthArray<char16_t, 128> buffer_;
    QString other_;
    bool ascii_;
};

}  // namespace tidewick
