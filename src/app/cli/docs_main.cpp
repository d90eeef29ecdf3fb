#include <QCoreApplication>
#include <QSaveFile>

#include <cstdio>
#include <map>

#include "app/cli/command_docs.h"

// Writes tidewick-cli's manual page or a shell's completion into a file, at build time:
//   tidewick-cli-docs man|bash|zsh|fish FILE
int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const std::map<QString, QString (*)()> documents = {
        {QStringLiteral("man"), tidewick::cli::manPage},
        {QStringLiteral("bash"), tidewick::cli::bashCompletion},
        {QStringLiteral("zsh"), tidewick::cli::zshCompletion},
        {QStringLiteral("fish"), tidewick::cli::fishCompletion}};
    const auto document = arguments.size() == 3 ? documents.find(arguments[1]) : documents.end();
    if (document == documents.end()) {
        std::fputs("usage: tidewick-cli-docs man|bash|zsh|fish FILE\n", stderr);
        return 1;
    }
    const QString text = document->second();
    QSaveFile file(arguments[2]);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0 || !file.commit()) {
        std::fprintf(stderr, "tidewick-cli-docs: cannot write %s\n", qPrintable(arguments[2]));
        return 1;
    }
    return 0;
}
