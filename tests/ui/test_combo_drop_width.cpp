#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QLabel>
#include <QScreen>

#include "ui/combo_drop_width.h"

namespace tidewick {
namespace {

QApplication& application() {
    static int argc = 1;
    static char name[] = "test_combo_drop_width";
    static char* argv[] = {name, nullptr};
    static QApplication app(argc, argv);
    return app;
}

class ComboDropWidth : public ::testing::Test {
protected:
    void SetUp() override { application(); }

    int widest(const QComboBox& combo) const {
        int width = 0;
        for (int index = 0; index < combo.count(); ++index) {
            width = qMax(width, combo.fontMetrics().horizontalAdvance(combo.itemText(index)));
        }
        return width + 20;
    }
};

TEST_F(ComboDropWidth, ActsOnlyOnACombinationBoxWithItems) {
    QLabel label;
    EXPECT_FALSE(SetComboDropWidth(&label));
    EXPECT_FALSE(SetComboDropWidth(nullptr));
    QComboBox empty;
    EXPECT_FALSE(SetComboDropWidth(&empty));
    EXPECT_EQ(empty.view()->minimumWidth(), 0);
}

TEST_F(ComboDropWidth, WidensTheListToItsWidestItemPlusTwenty) {
    QComboBox combo;
    combo.resize(40, 20);
    combo.addItems(
        {QStringLiteral("All Files (*.*)"), QStringLiteral("Midi Sequence (*.mid; *.rmi)")});
    EXPECT_TRUE(SetComboDropWidth(&combo));
    EXPECT_EQ(combo.view()->minimumWidth(), widest(combo));
}

TEST_F(ComboDropWidth, KeepsAListThatIsAlreadyWider) {
    QComboBox combo;
    combo.addItem(QStringLiteral("Wave"));
    combo.resize(400, 20);
    combo.view()->setMinimumWidth(0);
    EXPECT_TRUE(SetComboDropWidth(&combo));
    EXPECT_EQ(combo.view()->minimumWidth(), 0);
}

TEST_F(ComboDropWidth, NeverGrowsBeyondTheScreenLessTwenty) {
    QComboBox combo;
    combo.resize(40, 20);
    combo.addItem(QString(2000, QLatin1Char('W')));
    EXPECT_TRUE(SetComboDropWidth(&combo));
    EXPECT_EQ(combo.view()->minimumWidth(), combo.screen()->geometry().width() - 20);
}

}  // namespace
}  // namespace tidewick
