#pragma once

#include <QStringList>
#include <QTextStream>
#include <functional>

#include "app/cli/command_line.h"

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

/// `media FILE [--kind K] [--verbose]`: the media paths that the reader finds, one a line.
int runMedia(const CommandLine& line, QTextStream& out, QTextStream& err);

/// `scan FOLDER --kind K (--session NAME | --all) [--trim] [--type N] [--keep-peaks]
/// [--sub-folder PATH]`: the used media and the other files of a session folder, as the main
/// window lists them, with the frame captions and the sizes line.
int runScan(const CommandLine& line, QTextStream& out, QTextStream& err);

/// `move FOLDER --kind K (--session NAME | --all) --to TARGET [scan options]
/// [--store-in-sub-folder] [--exclude PATTERN]... [--only PATTERN]... [--overwrite no|yes]
/// [--dry-run]`: moves the files to be moved, as the results window does, and prints its log.
int runMove(const CommandLine& line, QTextStream& out, QTextStream& err);

/// `restore (RECORD | --last) [--dry-run] [--force]`, `restore --list`: puts the files of a
/// recorded move back, or lists the records.
int runRestore(const CommandLine& line, QTextStream& out, QTextStream& err);
/// `audit ROOT [--json | --csv] [--missing]`: every session folder under ROOT, what a load of all
/// its sessions would offer and what it is missing, with a totals line.
int runAudit(const CommandLine& line, QTextStream& out, QTextStream& err);

/// `copy-used FOLDER --kind K (--session NAME | --all) --to TARGET [--trim]`: copies the used
/// files present on disk into TARGET (made when missing, one level deep) and prints how many.
int runCopyUsed(const CommandLine& line, QTextStream& out, QTextStream& err);

}  // namespace tidewick::cli
