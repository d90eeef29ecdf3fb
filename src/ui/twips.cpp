#include "ui/twips.h"

#include <QWidget>

namespace tidewick {

QRect twipsToPixels(const QRect& twips) {
    return QRect(twipsToPixels(twips.left()), twipsToPixels(twips.top()),
                 twipsToPixels(twips.width()), twipsToPixels(twips.height()));
}

QRect pixelsToTwips(const QRect& pixels) {
    return QRect(pixels.left() * TwipsPerPixel, pixels.top() * TwipsPerPixel,
                 pixels.width() * TwipsPerPixel, pixels.height() * TwipsPerPixel);
}

void placeAt(QWidget* widget, const QRect& twips) {
    widget->setGeometry(twipsToPixels(twips));
}

}  // namespace tidewick
