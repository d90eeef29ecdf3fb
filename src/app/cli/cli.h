#pragma once

#include <QStringList>
#include <QTextStream>
#include <functional>

// tidewick-cli: the command-line companion, on the same logic as the window.
namespace tidewick::cli {

/// Exit codes of every command. MoveFailed: a file could not be moved or copied.
enum ExitCode : int { Success = 0, UsageError = 1, ReaderError = 2, MoveFailed = 4 };

/// Catches the first Ctrl-C (and SIGTERM): a move or copy finishes the file in hand, then stops
/// with its log written. A second one ends the program at once.
void watchInterrupts();
/// True once an interrupt has come.
bool interrupted();
/// The exit code of a command stopped by an interrupt.
constexpr int kInterrupted = 130;

/// Whether `stream` writes to a terminal, where a person watches it as it comes.
bool isTerminal(QTextStream& stream);

/// Prints the text of a results log to `out` as it comes, with the console's line ends; a
/// terminal sees each line at once, a file or pipe takes them in blocks.
std::function<void(QString text)> logPrinter(QTextStream& out);

/// Runs the command line `arguments` (without the program name): `help`, `--help`, `--version`,
/// or a command of the table with its arguments parsed; output goes to `out`, messages to `err`.
/// Returns the exit code.
int run(const QStringList& arguments, QTextStream& out, QTextStream& err);

}  // namespace tidewick::cli
