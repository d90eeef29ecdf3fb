#pragma once

#include <QStringList>
#include <QTextStream>
#include <functional>
#include <optional>

#include "readers/session_kinds.h"
#include "sweep/sweep.h"

// The options that name a session folder and its sweep, shared by the commands that start from
// one, and the sweep they ask for.
namespace tidewick::cli {

struct ScanOptions {
    QString folder;
    const SessionKind* kind = nullptr;
    QString session;
    bool all = false;
    bool trim = false;
    int type = 0;
    bool keepPeaks = false;
    bool addFolder = false;  // the sub-folder row switched on
    bool subFolderGiven = false;
    QString subFolder;
};

/// A command's own options: given the arguments and the position of one that the scan options
/// do not know, it takes it (and its value, moving the position on) and returns true, or
/// returns false for an argument it does not know either. It sets `bad` after saying what is
/// wrong.
using OwnOption = std::function<bool(const QStringList& arguments, qsizetype& at, bool& bad)>;

/// Reads the arguments of `command` into `options`; on a mistake says what is wrong, with
/// `usage`, and returns false.
bool parseScanArguments(const QStringList& arguments, ScanOptions& options, QTextStream& err,
                        const QString& command, const char* usage, const OwnOption& own = {});

/// A folder swept as the window would sweep it.
struct FolderScan {
    SweepRequest request;
    Sweep sweep;
};

/// Sweeps the folder of `options`, telling the reader's messages on `err`. Nothing, with the
/// exit code in `exitCode`, when the folder or session is missing or a session could not be
/// read.
std::optional<FolderScan> scanFolder(const ScanOptions& options, QTextStream& err,
                                     const QString& command, int& exitCode);

/// What the commands that write into a target folder (`move`, `copy-used`) start from: the
/// folder scanned, and the target as a whole path, trimmed of blanks where it enters.
struct TargetScan {
    FolderScan scan;
    QString target;
};

/// Their common start: reads the arguments (the scan's, `--to TARGET` and the command's `own`),
/// checks that a target is given, and scans the folder. Nothing, with the exit code in
/// `exitCode`, when there is nothing to do; after a scan that stopped it says on `err` that
/// nothing was `done` ("moved").
std::optional<TargetScan> scanForTarget(const QStringList& arguments, QTextStream& err,
                                        const QString& command, const char* usage,
                                        const QString& done, const OwnOption& own, int& exitCode);

}  // namespace tidewick::cli
