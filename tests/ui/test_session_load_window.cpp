#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QListView>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

#include "platform/path_text.h"
#include "platform/recording_interaction.h"
#include "readers/session_kinds.h"
#include "support/session_files.h"
#include "sweep/main_form.h"
#include "ui/main_window.h"

namespace tidewick {
namespace {

using test::sessionBytes;
using test::writeFile;

class Application : public ::testing::Environment {
public:
    void SetUp() override { app_ = std::make_unique<QApplication>(argc_, argv_); }
    void TearDown() override { app_.reset(); }

private:
    int argc_ = 1;
    char name_[32] = "test_session_load_window";
    char* argv_[2] = {name_, nullptr};
    std::unique_ptr<QApplication> app_;
};

[[maybe_unused]] ::testing::Environment* const application =
    ::testing::AddGlobalTestEnvironment(new Application);

// The window over a session folder, picked the way a user picks: through the widgets.
class SessionWindow : public ::testing::Test {
protected:
    void SetUp() override {
        window.load();
        form.pointBrowserAt(dir.path());
    }

    template <typename T = QWidget>
    T* find(const char* name) const {
        return window.findChild<T*>(QString::fromLatin1(name));
    }

    void chooseTab(SessionKindId kind) {
        find<QTabBar>("FileTypeTab")->setCurrentIndex(sessionKind(kind).tabIndex - 1);
    }

    void pickSession(const QString& name) {
        auto* list = find<QListView>("SESFile");
        const QModelIndexList hits = list->model()->match(
            list->model()->index(0, 0), Qt::DisplayRole, name, 1, Qt::MatchExactly);
        ASSERT_EQ(hits.size(), 1) << name.toStdString();
        list->setCurrentIndex(hits[0]);
    }

    // The lines the used list shows, "[x] " before a checked one.
    QStringList shownUsedLines() const {
        const QAbstractItemModel* model = find<QListView>("UsedFiles")->model();
        QStringList lines;
        for (int row = 0; row < model->rowCount(); ++row) {
            const QModelIndex line = model->index(row, 0);
            const bool checked = line.data(Qt::CheckStateRole).toInt() == Qt::Checked;
            lines.append((checked ? QStringLiteral("[x] ") : QStringLiteral("[ ] ")) +
                         line.data().toString());
        }
        return lines;
    }

    QTemporaryDir dir;
    RecordingInteraction ui;
    MainForm form{ui};
    MainWindow window{form};
};

TEST_F(SessionWindow, PickingASessionFillsTheUsedList) {
    ASSERT_TRUE(writeFile(dir.filePath(QStringLiteral("Audio/kick.wav")), "RIFF"));
    ASSERT_TRUE(writeFile(dir.filePath(QStringLiteral("live.rpp")),
                          sessionBytes(SessionKindId::Rpp, {QStringLiteral("Audio\\kick.wav"),
                                                            QStringLiteral("gone.wav")})));
    chooseTab(SessionKindId::Rpp);
    pickSession(QStringLiteral("live.rpp"));
    const QString audio = dir.path() + hostSeparator() + QStringLiteral("Audio") + hostSeparator();
    EXPECT_EQ(shownUsedLines(),
              QStringList({QStringLiteral("[x] ") + audio + QStringLiteral("kick.wav"),
                           QStringLiteral("[ ] gone.wav")}));
    EXPECT_EQ(window.windowTitle(), form.Main.text());
    EXPECT_FALSE(window.windowTitle().startsWith(QStringLiteral("Reading")));
}

TEST_F(SessionWindow, ATabSwitchEmptiesBothLists) {
    ASSERT_TRUE(writeFile(dir.filePath(QStringLiteral("s.xml")),
                          sessionBytes(SessionKindId::Xml, {QStringLiteral("a.wav")})));
    ASSERT_TRUE(writeFile(dir.filePath(QStringLiteral("other.wav")), "RIFF"));
    chooseTab(SessionKindId::Xml);
    pickSession(QStringLiteral("s.xml"));
    ASSERT_FALSE(shownUsedLines().isEmpty());
    chooseTab(SessionKindId::Veg);
    EXPECT_EQ(find<QListView>("UsedFiles")->model()->rowCount(), 0);
    EXPECT_EQ(find<QListView>("UnusedFiles")->model()->rowCount(), 0);
    EXPECT_FALSE(find("SubFolderName")->isHidden());
}

// Not a check: builds a folder of sessions as a user might have, loads one and then all, and
// saves a picture of each into the folder named by TIDEWICK_SCREENSHOTS. Run it with
// --gtest_also_run_disabled_tests to look at the window.
TEST_F(SessionWindow, DISABLED_Screenshots) {
    const QString out = qEnvironmentVariable("TIDEWICK_SCREENSHOTS");
    ASSERT_FALSE(out.isEmpty());
    QTemporaryDir elsewhere;
    const QString shared = elsewhere.filePath(QStringLiteral("Samples/Loop 120bpm.wav"));
    for (const char* file :
         {"Audio/Kick.wav", "Audio/Snare.wav", "Audio/Bass DI.wav", "Audio/Vox take 2.wav",
          "Audio/Vox take 1.wav", "Audio/old mix.wav", "Audio/Kick.wav.reapeaks", "notes.txt"}) {
        ASSERT_TRUE(writeFile(dir.filePath(QString::fromLatin1(file)), QByteArray(48000, 'x')));
    }
    ASSERT_TRUE(writeFile(shared, "RIFF"));
    ASSERT_TRUE(writeFile(
        dir.filePath(QStringLiteral("Live Set.rpp")),
        sessionBytes(
            SessionKindId::Rpp,
            {QStringLiteral("Audio\\Kick.wav"), QStringLiteral("Audio/Snare.wav"),
             QStringLiteral("Audio/Vox take 2.wav"), QStringLiteral("Audio/Vox take 3.wav"), shared,
             QStringLiteral("C:\\Users\\me\\Music\\Pad.wav")})));
    ASSERT_TRUE(writeFile(dir.filePath(QStringLiteral("Acoustic.rpp")),
                          sessionBytes(SessionKindId::Rpp, {QStringLiteral("Audio/Bass DI.wav"),
                                                            QStringLiteral("Audio/Kick.wav")})));
    ASSERT_TRUE(
        writeFile(dir.filePath(QStringLiteral("Empty.rpp")), sessionBytes(SessionKindId::Rpp, {})));
    window.show();
    chooseTab(SessionKindId::Rpp);
    pickSession(QStringLiteral("Live Set.rpp"));
    QTest::qWait(300);
    EXPECT_TRUE(window.grab().save(QDir(out).filePath(QStringLiteral("session-loaded.png"))));

    pickSession(QStringLiteral("Empty.rpp"));
    QTest::qWait(300);
    EXPECT_TRUE(window.grab().save(QDir(out).filePath(QStringLiteral("session-empty.png"))));

    form.ScanAll.setChecked(true);
    QTest::qWait(300);
    EXPECT_TRUE(window.grab().save(QDir(out).filePath(QStringLiteral("session-all.png"))));
    form.ScanAll.setChecked(false);

    // An Audition session saved on Windows, with its recordings folder beside it.
    for (const char* file :
         {"Podcast_Recorded/Host.wav", "Podcast_Recorded/Guest.wav", "Podcast_Recorded/Guest.pk",
          "Podcast_Recorded/Retake.wav", "Intro.wav", "Intro.pk", "Outro draft.wav"}) {
        ASSERT_TRUE(writeFile(dir.filePath(QString::fromLatin1(file)), QByteArray(96000, 'x')));
    }
    ASSERT_TRUE(writeFile(
        dir.filePath(QStringLiteral("Podcast.xml")),
        sessionBytes(SessionKindId::Xml, {QStringLiteral("D:\\Shows\\Podcast_Recorded\\Host.wav"),
                                          QStringLiteral("D:\\Shows\\Podcast_Recorded\\Guest.wav"),
                                          QStringLiteral("D:\\Shows\\Intro.wav"),
                                          QStringLiteral("D:\\Shows\\Music\\Bed.wav")})));
    chooseTab(SessionKindId::Xml);
    form.IgnoreFoldersCheck.setChecked(true);
    pickSession(QStringLiteral("Podcast.xml"));
    QTest::qWait(300);
    EXPECT_TRUE(window.grab().save(QDir(out).filePath(QStringLiteral("session-trimmed.png"))));
}

}  // namespace
}  // namespace tidewick
