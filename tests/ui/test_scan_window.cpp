#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QFile>
#include <QFileInfo>
#include <QGroupBox>
#include <QLabel>
#include <QListView>
#include <QLocale>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTextStream>
#include <memory>

#include "app/cli/cli.h"
#include "platform/recording_interaction.h"
#include "support/session_files.h"
#include "sweep/main_form.h"
#include "ui/main_window.h"

namespace tidewick {
namespace {

class Application : public ::testing::Environment {
public:
    void SetUp() override { app_ = std::make_unique<QApplication>(argc_, argv_); }
    void TearDown() override { app_.reset(); }

private:
    int argc_ = 1;
    char name_[32] = "test_scan_window";
    char* argv_[2] = {name_, nullptr};
    std::unique_ptr<QApplication> app_;
};

[[maybe_unused]] ::testing::Environment* const application =
    ::testing::AddGlobalTestEnvironment(new Application);

// A SESX session folder: mix.sesx uses a.wav and a missing take; a.pkf belongs to a.wav;
// b.wav, b.pkf, a take in the recordings folder and another session are the other files.
class ScanWindow : public ::testing::Test {
protected:
    void SetUp() override {
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        ASSERT_TRUE(dir.isValid());
        for (const char* name : {"a.wav", "a.pkf", "b.wav", "b.pkf", "mix_Recorded/take.wav"}) {
            const QString path = dir.filePath(QString::fromUtf8(name));
            ASSERT_TRUE(test::writeFile(path, QByteArray(1000, 'x')));
        }
        ASSERT_TRUE(test::writeFile(
            dir.filePath(QStringLiteral("mix.sesx")),
            test::sessionBytes(SessionKindId::Sesx, {dir.filePath(QStringLiteral("a.wav")),
                                                     QStringLiteral("Audio\\gone.wav")})));
        ASSERT_TRUE(test::writeFile(dir.filePath(QStringLiteral("old.sesx")),
                                    test::sessionBytes(SessionKindId::Sesx, {})));
    }
    void TearDown() override { QLocale::setDefault(QLocale::c()); }

    QString cliOutput(const QStringList& options) const {
        QString out;
        QString err;
        QTextStream outStream(&out);
        QTextStream errStream(&err);
        const int code = cli::run(QStringList{QStringLiteral("scan"), dir.path()} + options,
                                  outStream, errStream);
        outStream.flush();
        errStream.flush();
        EXPECT_EQ(code, 0) << err.toStdString();
        return out;
    }

    QTemporaryDir dir;
};

// The lines of a check-box list as the window's view shows them.
QString shownLines(const QListView* view) {
    QString text;
    const QAbstractItemModel* model = view->model();
    for (int row = 0; row < model->rowCount(); ++row) {
        const QModelIndex index = model->index(row, 0);
        const bool checked = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
        text += (checked ? QStringLiteral("[x] ") : QStringLiteral("[ ] ")) +
                index.data(Qt::DisplayRole).toString() + QLatin1Char('\n');
    }
    return text;
}

TEST_F(ScanWindow, TheScanCommandPrintsWhatTheWindowShows) {
    RecordingInteraction ui;
    MainForm form(ui);
    MainWindow window(form);
    window.load();
    form.pointBrowserAt(dir.path());

    // The user picks the SESX tab, checks "Keep Used PK Files" and clicks the session.
    auto* tabs = window.findChild<QTabBar*>(QStringLiteral("FileTypeTab"));
    ASSERT_NE(tabs, nullptr);
    for (int index = 0; index < tabs->count(); ++index) {
        if (tabs->tabData(index).toString() == QLatin1String("SESXFiles")) {
            tabs->setCurrentIndex(index);
        }
    }
    window.findChild<QCheckBox*>(QStringLiteral("KeepPKCheck"))->click();
    auto* sessions = window.findChild<QListView*>(QStringLiteral("SESFile"));
    const QModelIndexList mix =
        sessions->model()->match(sessions->model()->index(0, 0), Qt::DisplayRole,
                                 QStringLiteral("mix.sesx"), 1, Qt::MatchExactly);
    ASSERT_EQ(mix.size(), 1);
    sessions->setCurrentIndex(mix.first());

    const QString shown =
        QStringLiteral("used: ") +
        window.findChild<QGroupBox*>(QStringLiteral("UsedFrame"))->title() + QLatin1Char('\n') +
        shownLines(window.findChild<QListView*>(QStringLiteral("UsedFiles"))) +
        QStringLiteral("unused: ") +
        window.findChild<QGroupBox*>(QStringLiteral("UnusedFrame"))->title() + QLatin1Char('\n') +
        shownLines(window.findChild<QListView*>(QStringLiteral("UnusedFiles"))) +
        QStringLiteral("info: ") + window.findChild<QLabel*>(QStringLiteral("InfoLabel"))->text() +
        QLatin1Char('\n');

    EXPECT_EQ(
        cliOutput({QStringLiteral("--kind"), QStringLiteral("sesx"), QStringLiteral("--session"),
                   QStringLiteral("mix.sesx"), QStringLiteral("--keep-peaks")}),
        shown)
        << shown.toStdString();
    EXPECT_TRUE(shown.contains(QStringLiteral("Files to be Moved - [0/4]"))) << shown.toStdString();
}

}  // namespace
}  // namespace tidewick
