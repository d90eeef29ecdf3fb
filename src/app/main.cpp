#include <QApplication>
#include <QIcon>
#include <QLabel>
#include <QMainWindow>
#include <QTimer>
#include <cstdio>

#include "app/option_value.h"
#include "forms/main_form.h"
#include "platform/process_setup.h"
#include "settings/settings_store.h"
#include "ui/drawn_icons.h"
#include "ui/main_window.h"
#include "ui/qt_interaction.h"

// Tidewick's desktop program. Four options serve development and are not for users:
//   --quit-when-shown   ends the program as soon as its window has been shown (start-up timing)
//   --label-window      shows a main window with one label instead (the start-up timing's
//                       baseline: a window that draws text, and so loads the fonts too)
//   --screenshot FILE   saves a picture of the window to FILE, then closes it
//   --select NAME       selects the session file NAME of the folder shown at start, which
//                       loads it (for the pictures)
int main(int argc, char* argv[]) {
    tidewick::prepareProcess();
    QApplication app(argc, argv);
    const QStringList arguments = QApplication::arguments();
    const bool quitWhenShown = arguments.contains(QStringLiteral("--quit-when-shown"));
    const QString screenshot = tidewick::optionValue(arguments, QStringLiteral("--screenshot"));
    const QString selected = tidewick::optionValue(arguments, QStringLiteral("--select"));

    if (arguments.contains(QStringLiteral("--label-window"))) {
        QMainWindow window;
        window.setWindowTitle(tidewick::programName());
        window.setCentralWidget(new QLabel(tidewick::programName()));
        window.show();
        if (quitWhenShown) {
            QTimer::singleShot(0, &app, &QCoreApplication::quit);
        }
        return QApplication::exec();
    }

    QApplication::setStyle(new tidewick::DeferredIconStyle);
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/tidewick.svg")));
    QGuiApplication::setDesktopFileName(QStringLiteral("org.tidewick.Tidewick"));
    tidewick::QSettingsStore store;
    tidewick::QtInteraction ui;
    tidewick::MainForm form(ui);
    tidewick::MainWindow window(form, &store);
    ui.setOwner(&window);
    ui.setUnattended(quitWhenShown || !screenshot.isEmpty());
    window.load();
    if (!selected.isEmpty()) {
        const auto index = form.control(u"SESFile").items().indexOf(selected);
        if (index < 0) {
            std::fprintf(stderr, "tidewick: no session file %s in %s\n", qPrintable(selected),
                         qPrintable(form.control(u"SESFile").text()));
            return 1;
        }
        form.control(u"SESFile").setListIndex(static_cast<int>(index));
    }

    if (!screenshot.isEmpty()) {
        QTimer::singleShot(500, &window, [&window, screenshot] {
            const bool saved = window.grab().save(screenshot);
            window.close();
            if (!saved) {
                QApplication::exit(1);
            }
        });
    } else if (quitWhenShown) {
        QTimer::singleShot(0, &app, &QCoreApplication::quit);
    }
    return QApplication::exec();
}
