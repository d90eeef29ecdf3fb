#include "ui/drawn_icons.h"

#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPointer>
#include <functional>
#include <optional>

namespace tidewick {

namespace {

// An icon made by `make` the first time it is needed.
class DeferredIconEngine : public QIconEngine {
public:
    explicit DeferredIconEngine(std::function<QIcon()> make) : make_(std::move(make)) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode,
               QIcon::State state) override {
        icon().paint(painter, rect, Qt::AlignCenter, mode, state);
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        return icon().pixmap(size, mode, state);
    }
    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state,
                         qreal scale) override {
        return icon().pixmap(size, scale, mode, state);
    }
    QSize actualSize(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        return icon().actualSize(size, mode, state);
    }
    QList<QSize> availableSizes(QIcon::Mode mode, QIcon::State state) override {
        return icon().availableSizes(mode, state);
    }
    bool isNull() override { return icon().isNull(); }
    QIconEngine* clone() const override { return new DeferredIconEngine(*this); }
    QString key() const override { return QStringLiteral("DeferredIconEngine"); }

private:
    std::function<QIcon()> make_;
    std::optional<QIcon> icon_;

    const QIcon& icon() {
        if (!icon_) {
            icon_ = make_();
        }
        return *icon_;
    }
};

QPixmap folderPixmap(int side) {
    QPixmap pixmap(side, side);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(side / 16.0, side / 16.0);
    // The tab at the top left, then the body over it.
    QPainterPath folder;
    folder.moveTo(1.5, 3.5);
    folder.lineTo(6, 3.5);
    folder.lineTo(7.5, 5);
    folder.lineTo(14.5, 5);
    folder.lineTo(14.5, 13.5);
    folder.lineTo(1.5, 13.5);
    folder.closeSubpath();
    painter.setPen(QPen(QColor(0xa8, 0x7a, 0x1e), 1));
    painter.setBrush(QColor(0xf2, 0xc2, 0x4f));
    painter.drawPath(folder);
    painter.setBrush(QColor(0xf8, 0xd7, 0x7a));
    painter.drawRect(QRectF(1.5, 6.5, 13, 7));
    return pixmap;
}

QPixmap signPixmap(int side, bool plus) {
    QPixmap pixmap(side, side);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(side / 16.0, side / 16.0);
    painter.setPen(Qt::NoPen);
    painter.setBrush(plus ? QColor(0x3a, 0x9a, 0x3e) : QColor(0xc6, 0x3b, 0x32));
    painter.drawRoundedRect(QRectF(2, 6.5, 12, 3), 1, 1);
    if (plus) {
        painter.drawRoundedRect(QRectF(6.5, 2, 3, 12), 1, 1);
    }
    return pixmap;
}

}  // namespace

QIcon drawnSignIcon(bool plus) {
    QIcon icon;
    for (const int side : {16, 32}) {
        icon.addPixmap(signPixmap(side, plus));
    }
    return icon;
}

QIcon drawnFolderIcon() {
    QIcon icon;
    for (const int side : {16, 32}) {
        icon.addPixmap(folderPixmap(side));
    }
    return icon;
}

QIcon DeferredIconStyle::standardIcon(StandardPixmap which, const QStyleOption* option,
                                      const QWidget* widget) const {
    Q_UNUSED(option);
    Q_UNUSED(widget);
    // The option and the widget live no longer than this call; the icon is made without them.
    const QPointer<QStyle> base = baseStyle();
    return QIcon(new DeferredIconEngine(
        [base, which] { return base != nullptr ? base->standardIcon(which) : QIcon(); }));
}

}  // namespace tidewick
