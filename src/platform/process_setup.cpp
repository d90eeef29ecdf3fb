#include "platform/process_setup.h"

#include <QDir>

#include <csignal>

#include "platform/on_cores.h"

namespace tidewick {

void prepareProcess() {
    startCoreHelpers();
#ifdef SIGXFSZ
    std::signal(SIGXFSZ, SIG_IGN);
#endif
    for (const char* name : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"}) {
        const QString value = qEnvironmentVariable(name);
        if (!value.isEmpty() && !QDir::isAbsolutePath(value)) {
            qunsetenv(name);
        }
    }
}

QString userDataFolder() {
    const QString data = qEnvironmentVariable("XDG_DATA_HOME");
    if (QDir::isAbsolutePath(data)) {
        return QDir::cleanPath(data);
    }
    const QString home = qEnvironmentVariable("HOME");
    return QDir::isAbsolutePath(home) ? QDir::cleanPath(home) + QStringLiteral("/.local/share")
                                      : QString();
}

}  // namespace tidewick
