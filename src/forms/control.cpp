#include "forms/control.h"

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

std::vector<std::unique_ptr<Control>> createControls(std::span<const ControlPlace> layout) {
    std::vector<std::unique_ptr<Control>> controls;
    controls.reserve(layout.size());
    for (const ControlPlace& place : layout) {
        controls.push_back(std::make_unique<Control>(
            QString::fromUtf8(place.name), place.kind, QString::fromUtf8(place.container),
            QRect(place.left, place.top, place.width, place.height), QString::fromUtf8(place.text),
            QString::fromUtf8(place.tooltip)));
    }
    return controls;
}

Control* findControl(const std::vector<std::unique_ptr<Control>>& controls, QStringView name) {
    for (const auto& control : controls) {
        if (control->name() == name) {
            return control.get();
        }
    }
    return nullptr;
}

}  // namespace tidewick
