#include "text/number_text.h"

#include <QLocale>

namespace tidewick {

namespace {

// QLocale() is the system locale unless QLocale::setDefault has fixed another, as the tests do.
QLocale numberLocale() {
    QLocale locale;
    locale.setNumberOptions(locale.numberOptions() & ~QLocale::OmitGroupSeparator);
    return locale;
}

constexpr double kBytesPerMegabyte = 1048576.0;

}  // namespace

QString groupedNumber(qint64 number) {
    return numberLocale().toString(number);
}

QString countText(qint64 count, const char* noun) {
    return groupedNumber(count) + u' ' + QLatin1String(noun) +
           (count == 1 ? QString() : QStringLiteral("s"));
}

QString megabyteText(qint64 bytes) {
    return numberLocale().toString(double(bytes) / kBytesPerMegabyte, 'f', 2);
}

}  // namespace tidewick
