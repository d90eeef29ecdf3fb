#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QScreen>

#include "ui/combo_drop_width.h"

namespace tidewick {
namespace {

TEST(ComboDropWidth, WidensTheListToItsWidestItemPlusTwentyWithinTheScreen) {
    QComboBox empty;
    EXPECT_FALSE(SetComboDropWidth(&empty));
    const int screen = empty.screen()->geometry().width();
    const QString wide = "Midi Sequence (*.mid; *.rmi)";
    const int needed = empty.fontMetrics().horizontalAdvance(wide) + 20;
    const struct {
        QString item;
        int comboWidth, listWidth;  // before and after
    } cases[] = {{wide, 40, needed}, {"Wave", 400, 0}, {QString(2000, 'W'), 40, screen - 20}};
    for (const auto& c : cases) {
        QComboBox combo;
        combo.addItems({"All", c.item});
        combo.resize(c.comboWidth, 20);
        EXPECT_TRUE(SetComboDropWidth(&combo));
        EXPECT_EQ(combo.view()->minimumWidth(), c.listWidth) << c.item.left(10).toStdString();
    }
}

}  // namespace
}  // namespace tidewick
