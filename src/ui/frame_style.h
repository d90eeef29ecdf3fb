#pragma once

#include <QProxyStyle>

// Frames as the layout expects them: the caption sits on the border line, and the frame's
// inside starts at its top edge, so controls placed near a frame's top clear its border.
namespace tidewick {

class FrameStyle : public QProxyStyle {
    Q_OBJECT

public:
    /// Draws like the application's style, except for frames.
    FrameStyle();

    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget) const override;
};

}  // namespace tidewick
