#include "app/cli/cli.h"

#include <QFile>
#include <atomic>
#include <csignal>

#include "app/cli/command_table.h"
#include "fileops/move_run.h"
#include "text/path_text.h"

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace tidewick::cli {

namespace {

std::atomic<bool> gInterrupted{false};

extern "C" void onInterrupt(int signal) {
    gInterrupted = true;
    std::signal(signal, SIG_DFL);  // a second one ends the program
}

}  // namespace

void watchInterrupts() {
    std::signal(SIGINT, onInterrupt);
    std::signal(SIGTERM, onInterrupt);
}

bool interrupted() {
    return gInterrupted;
}

bool isTerminal(QTextStream& stream) {
    const auto* file = qobject_cast<QFile*>(stream.device());
#ifdef Q_OS_UNIX
    return file != nullptr && ::isatty(file->handle());
#else
    return file != nullptr;
#endif
}

std::function<void(QString text)> logPrinter(QTextStream& out) {
    const bool live = isTerminal(out);
    return [&out, live](QString text) {
        out << text.replace(kLogLineEnd, QStringLiteral("\n"));
        if (live) {
            out.flush();
        }
    };
}

namespace {

// The help of `help COMMAND` (or of every command with no name), on `out`.
int printHelp(const QStringList& names, QTextStream& out, QTextStream& err) {
    if (names.isEmpty()) {
        out << overviewHelp();
        return Success;
    }
    const Command* command = findCommand(names.first());
    if (command == nullptr) {
        err << "tidewick-cli help: unknown command '" << visibleText(names.first())
            << "'\nTry 'tidewick-cli help'.\n";
        return UsageError;
    }
    out << commandHelp(*command);
    return Success;
}

}  // namespace

int run(const QStringList& arguments, QTextStream& out, QTextStream& err) {
    if (arguments.isEmpty()) {
        err << overviewHelp();
        return UsageError;
    }
    const QString& first = arguments.first();
    if (first == QLatin1String("help") || first == QLatin1String("--help") ||
        first == QLatin1String("-h")) {
        return printHelp(arguments.mid(1), out, err);
    }
    if (first == QLatin1String("--version") || first == QLatin1String("-V")) {
        out << versionText() << '\n';
        return Success;
    }
    const Command* command = findCommand(first);
    if (command == nullptr) {
        err << "tidewick-cli: unknown command '" << visibleText(first)
            << "'\nTry 'tidewick-cli help'.\n";
        return UsageError;
    }
    QCommandLineParser parser;
    for (const OptionHelp& option : command->options) {
        parser.addOption(QCommandLineOption(option.names, option.description, option.valueName));
    }
    parser.addOption(QCommandLineOption({QStringLiteral("h"), QStringLiteral("help")},
                                        QStringLiteral("Print this help.")));
    if (!parser.parse(QStringList{QStringLiteral("tidewick-cli")} + arguments.mid(1))) {
        err << "tidewick-cli " << command->name << ": " << visibleText(parser.errorText())
            << "\nTry 'tidewick-cli " << command->name << " --help'.\n";
        return UsageError;
    }
    if (parser.isSet(QStringLiteral("help"))) {
        out << commandHelp(*command);
        return Success;
    }
    return command->run(CommandLine(parser, command->name), out, err);
}

}  // namespace tidewick::cli
