#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QLabel>
#include <QScreen>
#include <memory>

#include "ui/combo_drop_width.h"

namespace tidewick {
namespace {

// The application lives from before the first test to after the last, and is gone before the
// program's exit handlers run.
class Application : public ::testing::Environment {
public:
    void SetUp() override { app_ = std::make_unique<QApplication>(argc_, argv_); }
    void TearDown() override { app_.reset(); }

private:
    int argc_ = 1;
    char name_[32] = "test_combo_drop_width";
    char* argv_[2] = {name_, nullptr};
    std::unique_ptr<QApplication> app_;
};

[[maybe_unused]] ::testing::Environment* const application =
    ::testing::AddGlobalTestEnvironment(new Application);

class ComboDropWidth : public ::testing::Test {
protected:
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
