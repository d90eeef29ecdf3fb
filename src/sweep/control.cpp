#include "sweep/control.h"

#include <utility>

namespace tidewick {

Control::Control(QString name, ControlKind kind, QString container, QRect twips, QString text,
                 QString tooltip)
    : name_(std::move(name)),
      kind_(kind),
      container_(std::move(container)),
      geometry_(twips),
      text_(std::move(text)),
      tooltip_(std::move(tooltip)) {
    setObjectName(name_);
}

void Control::setGeometry(const QRect& twips) {
    if (geometry_ != twips) {
        geometry_ = twips;
        Q_EMIT changed();
    }
}

void Control::setText(const QString& text) {
    if (text_ != text) {
        text_ = text;
        Q_EMIT changed();
        Q_EMIT textChanged();
    }
}

void Control::setTooltip(const QString& tooltip) {
    if (tooltip_ != tooltip) {
        tooltip_ = tooltip;
        Q_EMIT changed();
    }
}

void Control::setEnabled(bool enabled) {
    if (enabled_ != enabled) {
        enabled_ = enabled;
        Q_EMIT changed();
    }
}

void Control::setVisible(bool visible) {
    if (visible_ != visible) {
        visible_ = visible;
        Q_EMIT changed();
    }
}

void Control::setChecked(bool checked) {
    if (checked_ != checked) {
        checked_ = checked;
        Q_EMIT changed();
        Q_EMIT clicked();
    }
}

void Control::setItems(const QStringList& items) {
    items_ = items;
    listIndex_ = -1;
    Q_EMIT changed();
}

void Control::setListIndex(int index) {
    // A check-box list's lines live in its CheckListModel; its handlers check the index.
    if (index < -1 || (kind_ != ControlKind::CheckList && index >= items_.size())) {
        index = -1;
    }
    if (listIndex_ != index) {
        listIndex_ = index;
        Q_EMIT changed();
        Q_EMIT clicked();
    }
}

}  // namespace tidewick
