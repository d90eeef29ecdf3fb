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

namespace {

// The layouts were drawn for an 8-point face; where the face at hand is wider than a caption's
// room, that control's caption is set a little narrower and smaller until it fits.
constexpr qreal kFontPoints = 8;
constexpr qreal kSmallestFontPoints = 6.5;

bool overflows(const QWidget* widget) {
    return widget->hasHeightForWidth() ? widget->heightForWidth(widget->width()) > widget->height()
                                       : widget->sizeHint().width() > widget->width();
}

}  // namespace

void useLayoutFont(QWidget* widget) {
    QFont font = widget->font();
    font.setPointSizeF(kFontPoints);
    widget->setFont(font);
}

void fitCaption(QWidget* widget) {
    widget->setFont(QFont());  // back to the window's font, so a longer caption starts afresh
    QFont font = widget->font();
    while (overflows(widget) && font.pointSizeF() > kSmallestFontPoints) {
        if (font.stretch() == QFont::Unstretched || font.stretch() == QFont::AnyStretch) {
            font.setStretch(QFont::SemiCondensed);
        } else {
            font.setPointSizeF(font.pointSizeF() - 0.5);
        }
        widget->setFont(font);
    }
}

}  // namespace tidewick
