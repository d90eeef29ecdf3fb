#include <gtest/gtest.h>

#include <QApplication>
#include <QListView>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTest>

#include "platform/path_text.h"
#include "support/recording_interaction.h"
#include "support/session_files.h"
#include "sweep/main_form.h"
#include "ui/main_window.h"

namespace tidewick {
namespace {

// The window over a session folder, picked the way a user picks: through the widgets.
class SessionWindow : public ::testing::Test {
protected:
    void SetUp() override {
        window.load();
        form.pointBrowserAt(dir.path());
    }

    QAbstractItemModel* model(const char* list) const {
        return window.findChild<QListView*>(list)->model();
    }
    void chooseTab(SessionKindId kind) {
        window.findChild<QTabBar*>("FileTypeTab")->setCurrentIndex(sessionKind(kind).tabIndex - 1);
    }
    // Writes a session naming `paths`, chooses its tab and picks it in the list.
    void pick(SessionKindId kind, const QString& name, const QStringList& paths) {
        ASSERT_TRUE(test::writeFile(dir.filePath(name), test::sessionBytes(kind, paths)));
        chooseTab(kind);
        const auto hits = model("SESFile")->match(model("SESFile")->index(0, 0), Qt::DisplayRole,
                                                  name, 1, Qt::MatchExactly);
        ASSERT_EQ(hits.size(), 1) << name.toStdString();
        window.findChild<QListView*>("SESFile")->setCurrentIndex(hits[0]);
    }

    QTemporaryDir dir;
    RecordingInteraction ui;
    MainForm form{ui};
    MainWindow window{form};
};

TEST_F(SessionWindow, PickingASessionFillsTheUsedList) {
    ASSERT_TRUE(test::writeFile(dir.filePath("Audio/kick.wav"), "RIFF"));
    pick(SessionKindId::Rpp, "live.rpp", {"Audio\\kick.wav", "gone.wav"});
    QStringList shown;
    for (int row = 0; row < model("UsedFiles")->rowCount(); ++row) {
        const QModelIndex line = model("UsedFiles")->index(row, 0);
        const bool checked = line.data(Qt::CheckStateRole).toInt() == Qt::Checked;
        shown.append((checked ? "[x] " : "[ ] ") + line.data().toString());
    }
    const QString audio = dir.path() + hostSeparator() + "Audio" + hostSeparator();
    EXPECT_EQ(shown, QStringList({"[x] " + audio + "kick.wav", "[ ] gone.wav"}));
    EXPECT_EQ(window.windowTitle(), form.Main.text());
}

TEST_F(SessionWindow, ATabSwitchEmptiesBothLists) {
    ASSERT_TRUE(test::writeFile(dir.filePath("other.wav"), "RIFF"));
    pick(SessionKindId::Xml, "s.xml", {"a.wav"});
    ASSERT_GT(model("UsedFiles")->rowCount(), 0);
    chooseTab(SessionKindId::Veg);
    EXPECT_EQ(model("UsedFiles")->rowCount() + model("UnusedFiles")->rowCount(), 0);
}

// Not a check: saves a picture of a loaded session into the folder named by
// TIDEWICK_SCREENSHOTS. Run it with --gtest_also_run_disabled_tests.
TEST_F(SessionWindow, DISABLED_Screenshot) {
    const QString out = qEnvironmentVariable("TIDEWICK_SCREENSHOTS");
    ASSERT_FALSE(out.isEmpty());
    ASSERT_TRUE(test::writeFile(dir.filePath("Audio/Kick.wav"), QByteArray(48000, 'x')));
    window.show();
    pick(SessionKindId::Rpp, "Live Set.rpp", {"Audio\\Kick.wav", "Audio/Snare.wav", "C:\\Pad.wav"});
    QTest::qWait(300);
    EXPECT_TRUE(window.grab().save(out + "/session-loaded.png"));
}

}  // namespace
}  // namespace tidewick
