#include <QApplication>
#include <QMainWindow>

// A placeholder until the main window lands: an empty window with the program's caption.
int main(int argc, char* argv[]) {
    QApplication app(argc, argv);
    QMainWindow window;
    window.setWindowTitle(QStringLiteral("Tidewick - Version %1.%2%3")
                              .arg(TIDEWICK_VERSION_MAJOR)
                              .arg(TIDEWICK_VERSION_MINOR)
                              .arg(TIDEWICK_VERSION_PATCH));
    window.resize(960, 715);
    window.show();
    return app.exec();
}
