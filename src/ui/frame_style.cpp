#include "ui/frame_style.h"

#include <QApplication>
#include <QPainter>
#include <QStyleFactory>
#include <QStyleOption>

namespace tidewick {

FrameStyle::FrameStyle() : QProxyStyle(QStyleFactory::create(QApplication::style()->name())) {}

void FrameStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                    QPainter* painter, const QWidget* widget) const {
    const auto* box = qstyleoption_cast<const QStyleOptionGroupBox*>(option);
    if (control != CC_GroupBox || !box) {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
        return;
    }
    const QFontMetrics& metrics = box->fontMetrics;
    QString plain = box->text;
    plain.remove(QLatin1Char('&'));
    const QRect label = box->text.isEmpty()
                            ? QRect()
                            : QRect(6, 0, metrics.horizontalAdvance(plain) + 4, metrics.height());

    // The border is drawn here rather than by the style, which would start it below the caption.
    painter->save();
    painter->setClipRegion(QRegion(box->rect).subtracted(label));
    painter->setRenderHint(QPainter::Antialiasing, true);
    painter->setPen(QPen(box->palette.color(QPalette::Mid), 1));
    painter->setBrush(Qt::NoBrush);
    const QRectF border =
        QRectF(box->rect.adjusted(0, metrics.height() / 2, -1, -1)).translated(0.5, 0.5);
    painter->drawRoundedRect(border, 2, 2);
    painter->restore();

    if (!label.isEmpty()) {
        proxy()->drawItemText(painter, label.adjusted(2, 0, -2, 0),
                              Qt::AlignLeft | Qt::AlignVCenter | Qt::TextShowMnemonic, box->palette,
                              box->state.testFlag(State_Enabled), box->text, QPalette::WindowText);
    }
}

}  // namespace tidewick
