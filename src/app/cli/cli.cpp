#include "app/cli/cli.h"

#include <QFile>
#include <atomic>
#include <csignal>

#include "fileops/move_run.h"

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace tidewick::cli {

namespace {

const char* const kUsage =
    "usage: tidewick-cli media FILE [--kind ses|sesx|xml|rpp|veg] [--verbose]\n"
    "       tidewick-cli scan FOLDER --kind ses|sesx|xml|rpp|veg (--session NAME | --all)\n"
    "                         [--trim] [--type N] [--keep-peaks] [--sub-folder PATH] [--json]\n"
    "       tidewick-cli move FOLDER --kind K (--session NAME | --all) --to TARGET\n"
    "                         [scan options] [--store-in-sub-folder] [--exclude PATTERN]...\n"
    "                         [--only PATTERN]... [--overwrite no|yes] [--dry-run]\n"
    "       tidewick-cli copy-used FOLDER --kind K (--session NAME | --all) --to TARGET\n"
    "                              [--trim]\n"
    "       tidewick-cli restore (RECORD | --last) [--dry-run] [--force]\n"
    "       tidewick-cli restore --list\n"
    "       tidewick-cli audit ROOT [--json | --csv] [--missing]\n"
    "  media   prints the media paths that a session file names, one a line\n"
    "  scan    prints the used media and the files to be moved, as the window shows them\n"
    "  move    moves the files to be moved to TARGET, their originals to the trash\n"
    "  copy-used  copies the used files present on disk to TARGET\n"
    "  restore    puts the files of a recorded move back where they were\n"
    "  audit      every session folder under ROOT: what it could free, what it is missing\n";

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

int run(const QStringList& arguments, QTextStream& out, QTextStream& err) {
    if (arguments.isEmpty() || arguments.first() == QLatin1String("--help") ||
        arguments.first() == QLatin1String("-h")) {
        (arguments.isEmpty() ? err : out) << kUsage;
        return arguments.isEmpty() ? UsageError : Success;
    }
    const QString command = arguments.first();
    const QStringList rest = arguments.mid(1);
    if (command == QLatin1String("media")) {
        return runMedia(rest, out, err);
    }
    if (command == QLatin1String("scan")) {
        return runScan(rest, out, err);
    }
    if (command == QLatin1String("move")) {
        return runMove(rest, out, err);
    }
    if (command == QLatin1String("copy-used")) {
        return runCopyUsed(rest, out, err);
    }
    if (command == QLatin1String("restore")) {
        return runRestore(rest, out, err);
    }
    if (command == QLatin1String("audit")) {
        return runAudit(rest, out, err);
    }
    err << "tidewick-cli: unknown command '" << command << "'\n" << kUsage;
    return UsageError;
}

}  // namespace tidewick::cli
