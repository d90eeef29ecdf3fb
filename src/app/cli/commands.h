#pragma once

#include <QTextStream>

#include "app/cli/command_line.h"

// The commands of tidewick-cli, each a function of its parsed command line.
namespace tidewick::cli {

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
