#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>
#include <QLabel>
#include <QMainWindow>
#include <QTimer>
#include <cstdio>

#include "forms/main_form.h"
#include "platform/process_setup.h"
#include "settings/settings_store.h"
#include "ui/drawn_icons.h"
#include "ui/main_window.h"
#include "ui/qt_interaction.h"

// Tidewick's desktop program: `--help` and `--version` for users, and four options that serve
// development and are hidden from the help:
//   --quit-when-shown   ends the program as soon as its window has been shown (start-up timing)
//   --label-window      shows a main window with one label instead (the start-up timing's
//                       baseline: a window that draws text, and so loads the fonts too)
//   --screenshot FILE   saves a picture of the window to FILE, then closes it
//   --select NAME       selects the session file NAME of the folder shown at start, which
//                       loads it (for the pictures)
namespace {

// Reads the program's options: --help and --version (which end the program here), and the four
// hidden ones of development; anything else is refused. 0, or the exit status of a refusal.
int parseArguments(QCommandLineParser& parser, QApplication& app) {
    parser.setApplicationDescription(
        QStringLiteral("Finds the media a session uses and moves the rest of its folder aside."));
    parser.addHelpOption();
    parser.addVersionOption();
    const auto hidden = [](const QString& name, const QString& value = {}) {
        QCommandLineOption option(name, QString(), value);
        option.setFlags(QCommandLineOption::HiddenFromHelp);
        return option;
    };
    parser.addOptions({hidden(QStringLiteral("quit-when-shown")),
                       hidden(QStringLiteral("label-window")),
                       hidden(QStringLiteral("screenshot"), QStringLiteral("FILE")),
                       hidden(QStringLiteral("select"), QStringLiteral("NAME"))});
    parser.process(app);  // --help, --version and unknown options end the program here
    if (!parser.positionalArguments().isEmpty()) {
        std::fprintf(stderr, "tidewick: unexpected argument '%s'\n",
                     qPrintable(parser.positionalArguments().first()));
        return 1;
    }
    return 0;
}

}  // namespace

int main(int argc, char* argv[]) {
    tidewick::prepareProcess();
    QApplication app(argc, argv);
    QApplication::setApplicationVersion(QStringLiteral("%1.%2.%3")
                                            .arg(TIDEWICK_VERSION_MAJOR)
                                            .arg(TIDEWICK_VERSION_MINOR)
                                            .arg(TIDEWICK_VERSION_PATCH));
    QCommandLineParser parser;
    if (const int refused = parseArguments(parser, app); refused != 0) {
        return refused;
    }
    const bool quitWhenShown = parser.isSet(QStringLiteral("quit-when-shown"));
    const QString screenshot = parser.value(QStringLiteral("screenshot"));
    const QString selected = parser.value(QStringLiteral("select"));

    if (parser.isSet(QStringLiteral("label-window"))) {
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
