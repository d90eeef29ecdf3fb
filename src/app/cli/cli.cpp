#include "app/cli/cli.h"

namespace tidewick::cli {

namespace {

const char* const kUsage =
    "usage: tidewick-cli media FILE [--kind ses|sesx|xml|rpp|veg] [--verbose]\n"
    "       tidewick-cli scan FOLDER --kind ses|sesx|xml|rpp|veg (--session NAME | --all)\n"
    "                         [--trim] [--type N] [--keep-peaks] [--sub-folder PATH]\n"
    "  media   prints the media paths that a session file names, one a line\n"
    "  scan    prints the used media and the files to be moved, as the window shows them\n";

}  // namespace

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
    err << "tidewick-cli: unknown command '" << command << "'\n" << kUsage;
    return UsageError;
}

}  // namespace tidewick::cli
