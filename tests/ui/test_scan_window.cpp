#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QListView>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTextStream>
#include <memory>

#include "app/cli/cli.h"
#include "support/recording_interaction.h"
#include "support/session_files.h"
#include "sweep/main_form.h"
#include "ui/main_window.h"

namespace tidewick {
namespace {

TEST(ScanWindow, TheScanCommandPrintsWhatTheWindowShows) {
    // mix.sesx uses a.wav, whose peak file is a.pkf, and a missing take; b.wav, b.pkf, a take in
    // the recordings folder and old.sesx are the other files.
    QTemporaryDir dir;
    for (const char* name : {"a.wav", "a.pkf", "b.wav", "b.pkf", "mix_Recorded/take.wav"}) {
        ASSERT_TRUE(test::writeFile(dir.filePath(name), QByteArray(1000, 'x')));
    }
    ASSERT_TRUE(test::writeFile(
        dir.filePath("mix.sesx"),
        test::sessionBytes(SessionKindId::Sesx, {dir.filePath("a.wav"), "Audio\\gone.wav"})));
    ASSERT_TRUE(
        test::writeFile(dir.filePath("old.sesx"), test::sessionBytes(SessionKindId::Sesx, {})));

    // The user picks the SESX tab, checks "Keep Used PK Files" and clicks the session.
    RecordingInteraction ui;
    MainForm form(ui);
    MainWindow window(form);
    window.load();
    form.pointBrowserAt(dir.path());
    auto* tabs = window.findChild<QTabBar*>("FileTypeTab");
    for (int index = 0; index < tabs->count(); ++index) {
        if (tabs->tabData(index).toString() == "SESXFiles") {
            tabs->setCurrentIndex(index);
        }
    }
    window.findChild<QCheckBox*>("KeepPKCheck")->click();
    auto* sessions = window.findChild<QListView*>("SESFile");
    const QModelIndexList mix =
        sessions->model()->match(sessions->model()->index(0, 0), Qt::DisplayRole, "mix.sesx");
    ASSERT_EQ(mix.size(), 1);
    sessions->setCurrentIndex(mix.first());

    const auto shown = [&](const char* caption, const char* frame, const char* list) {
        QString text = caption + window.findChild<QGroupBox*>(frame)->title() + '\n';
        const QAbstractItemModel* model = window.findChild<QListView*>(list)->model();
        for (int row = 0; row < model->rowCount(); ++row) {
            const QModelIndex index = model->index(row, 0);
            text += index.data(Qt::CheckStateRole).toInt() == Qt::Checked ? "[x] " : "[ ] ";
            text += index.data().toString() + '\n';
        }
        return text;
    };
    const QString onScreen = shown("used: ", "UsedFrame", "UsedFiles") +
                             shown("unused: ", "UnusedFrame", "UnusedFiles") +
                             "info: " + window.findChild<QLabel*>("InfoLabel")->text() + '\n';
    QString out;
    QString err;
    QTextStream outStream(&out);
    QTextStream errStream(&err);
    const int code =
        cli::run({"scan", dir.path(), "--kind", "sesx", "--session", "mix.sesx", "--keep-peaks"},
                 outStream, errStream);
    outStream.flush();
    errStream.flush();
    EXPECT_EQ(code, 0) << err.toStdString();
    EXPECT_EQ(out, onScreen);
    EXPECT_TRUE(onScreen.contains("Files to be Moved - [0/4]")) << onScreen.toStdString();
}

}  // namespace
}  // namespace tidewick
