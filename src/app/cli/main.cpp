#include <QCoreApplication>
#include <QTextStream>

#include <cstdio>

#include "app/cli/cli.h"
#include "app/cli/cli_output.h"
#include "platform/process_setup.h"

int main(int argc, char* argv[]) {
    tidewick::prepareProcess();
    tidewick::cli::watchInterrupts();
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    QTextStream err(stderr);
    out.setEncoding(QStringConverter::Utf8);
    err.setEncoding(QStringConverter::Utf8);
    const int code = tidewick::cli::run(app.arguments().mid(1), out, err);
    const bool written = tidewick::cli::outputWritten(out, err);
    err.flush();
    return written ? code : tidewick::cli::UsageError;
}
