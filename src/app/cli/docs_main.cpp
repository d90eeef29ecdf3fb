#include <QCoreApplication>
#include <QSaveFile>

#include <cstdio>

#include "app/cli/command_docs.h"

// Writes tidewick-cli's manual page or bash completion into a file, at build time:
//   tidewick-cli-docs man FILE | bash FILE
int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3 ||
        (arguments[1] != QLatin1String("man") && arguments[1] != QLatin1String("bash"))) {
        std::fputs("usage: tidewick-cli-docs man|bash FILE\n", stderr);
        return 1;
    }
    const QString text = arguments[1] == QLatin1String("man") ? tidewick::cli::manPage()
                                                              : tidewick::cli::bashCompletion();
    QSaveFile file(arguments[2]);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0 || !file.commit()) {
        std::fprintf(stderr, "tidewick-cli-docs: cannot write %s\n", qPrintable(arguments[2]));
        return 1;
    }
    return 0;
}
