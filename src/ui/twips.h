#pragma once

#include <QRect>
#include <QString>

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

/// Names `widget` after its control and places it at `twips`; returns it.
template <typename Widget>
Widget* placed(Widget* widget, const QString& name, const QRect& twips) {
    widget->setObjectName(name);
    placeAt(widget, twips);
    return widget;
}

/// Gives `widget` and its children the 8-point face that the twips layouts were drawn for.
void useLayoutFont(QWidget* widget);

/// Sets the caption of `widget` a little narrower and smaller, down to 6.5 points, until it fits
/// its room: its width, or for a caption that wraps its lines, its height.
void fitCaption(QWidget* widget);

}  // namespace tidewick
