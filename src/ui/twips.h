#pragma once

#include <QRect>

class QWidget;

// Layouts are given in twips, 1/1440 of an inch; 15 twips make one device-independent pixel and
// Qt's high-DPI scaling does the rest.
namespace tidewick {

inline constexpr int TwipsPerPixel = 15;

/// Twips to device-independent pixels, to the nearest pixel.
constexpr int twipsToPixels(int twips) {
    return twips >= 0 ? (twips + TwipsPerPixel / 2) / TwipsPerPixel
                      : -((-twips + TwipsPerPixel / 2) / TwipsPerPixel);
}

/// A rectangle in twips as one in device-independent pixels.
QRect twipsToPixels(const QRect& twips);

/// Pixels back to twips.
QRect pixelsToTwips(const QRect& pixels);

/// Places `widget` at `twips` (left, top, width, height) within its parent.
void placeAt(QWidget* widget, const QRect& twips);

}  // namespace tidewick
