#include "ui/combo_drop_width.h"

#include <QAbstractItemView>
#include <QFontMetrics>
#include <QScreen>

namespace tidewick {

bool SetComboDropWidth(QWidget* ctl) {
    auto* combo = qobject_cast<QComboBox*>(ctl);
    if (!combo || combo->count() == 0) {
        return false;
    }
    const QFontMetrics metrics(combo->font());
    int needed = 0;
    for (int index = 0; index < combo->count(); ++index) {
        needed = qMax(needed, metrics.horizontalAdvance(combo->itemText(index)) + 20);
    }
    QAbstractItemView* list = combo->view();
    const int current = qMax(combo->width(), list->minimumWidth());
    if (current > needed) {
        return true;
    }
    if (const QScreen* screen = combo->screen()) {
        needed = qMin(needed, screen->geometry().width() - 20);
    }
    list->setMinimumWidth(needed);
    return list->minimumWidth() > 0;
}

void FileTypesComboBox::showPopup() {
    SetComboDropWidth(this);
    QComboBox::showPopup();
}

}  // namespace tidewick
