#include <gtest/gtest.h>

#include <QClipboard>
#include <QDesktopServices>
#include <QtWidgets>
#include <functional>

#include "forms/move_form.h"
#include "support/reader_fixture.h"  // prints texts in failures; writes files
#include "ui/move_window.h"
#include "ui/qt_interaction.h"

namespace tidewick {
namespace {

// Stands in for the desktop's file manager: the folders it was asked to open.
class FileManager : public QObject {
    Q_OBJECT

public:
    QStringList opened;

public Q_SLOTS:
    void open(const QUrl& url) { opened.append(url.toLocalFile()); }
};

// Clicks `button` once the tick that found it is over (a click that opens a modal window would
// hold the tick, and no later tick could answer that window).
void click(QAbstractButton* button) {
    QMetaObject::invokeMethod(button, &QAbstractButton::click, Qt::QueuedConnection);
}

// Plays the user: each time a window of the program is up, does what `act` says of it.
void whenShown(const std::function<void(QWidget* window)>& act, QTimer& timer) {
    QObject::connect(&timer, &QTimer::timeout, [act] {
        if (QWidget* window = QApplication::activeModalWidget(); window && window->isVisible()) {
            act(window);
        }
    });
    timer.start(20);
}

// The results window over the real overwrite question, message boxes, clipboard and file
// manager: "&No" at the question skips the file, "Cop&y to Clipboard" puts the log there and
// says so, "E&xplore Destination Folder" opens the folder the files went to.
TEST(MoveWindow, TheRealQuestionClipboardAndFileManagerDoWhatTheButtonsSay) {
    QTemporaryDir root;
    qputenv("XDG_DATA_HOME", root.filePath("data").toUtf8());
    for (const char* file : {"Song/a.wav", "Song/b.wav", "Old/a.wav"}) {
        ASSERT_TRUE(test::writeFile(root.filePath(file), "RIFF"));
    }
    MoveRequest request{root.filePath("Song"),
                        "mix.sesx",
                        root.filePath("Old"),
                        false,
                        false,
                        false,
                        {},
                        {{"a.wav", true}, {"b.wav", true}},
                        {}};
    QtInteraction ui;
    OverwriteAnswer last = OverwriteAnswer::Yes;
    FileOperations disk;
    MoveForm form(ui, disk, request, last);
    MoveWindow window(form);
    ui.setOwner(&window);
    FileManager manager;
    QDesktopServices::setUrlHandler("file", &manager, "open");

    QStringList seen;  // what the user saw, in order
    QTimer user;
    whenShown(
        [&](QWidget* shown) {
            if (shown->objectName() == "Overwrite") {
                seen << shown->findChild<QLabel*>("MessageLabel")->text().remove(QChar(0x200B))
                     << shown->focusWidget()->objectName();
                click(shown->findChild<QPushButton*>("AnswerButton2"));
            } else if (auto* box = qobject_cast<QMessageBox*>(shown)) {
                seen << box->windowTitle() + ": " + box->text();
                QMetaObject::invokeMethod(box, &QDialog::accept, Qt::QueuedConnection);
            } else if (shown == &window && form.buttonsEnabled()) {
                const bool copied = seen.contains("Copy: Text Copied to Clipboard.");
                click(window.findChild<QPushButton*>(copied ? "ExploreButton" : "CopyButton"));
                if (copied) {
                    click(window.findChild<QPushButton*>("CloseButton"));
                }
            }
        },
        user);
    window.exec();
    QDesktopServices::unsetUrlHandler("file");

    EXPECT_EQ(seen, QStringList({"File '" + root.filePath("Old/a.wav") +
                                     "' Already Exists.  Overwrite Existing File?",
                                 "AnswerButton0", "Copy: Text Copied to Clipboard."}));
    EXPECT_EQ(last, OverwriteAnswer::No);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), form.ResultsBox());
    EXPECT_TRUE(form.ResultsBox().contains("a.wavSkipped\r\n"));
    EXPECT_EQ(manager.opened, QStringList{root.filePath("Old")});
}

}  // namespace
}  // namespace tidewick

#include "test_move_window.moc"
