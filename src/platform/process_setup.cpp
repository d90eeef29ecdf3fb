#include "platform/process_setup.h"

#include <QDir>
#include <QHashSeed>

#include <csignal>

#if defined(__GNUC__) && (defined(__x86_64__) || defined(__i386__))
#include <cpuid.h>
#define TIDEWICK_CPUID 1
#endif

#include "platform/on_cores.h"

namespace tidewick {

void prepareProcess() {
#ifdef TIDEWICK_CPUID
    // On a processor with VAES, Qt's seeded hash of strings (Qt 6.4) leaves the upper halves
    // of the vector registers in use. On Intel's every SSE instruction after it, Qt's own text
    // searches and this program's loops alike, then runs many times slower until something
    // clears them: an audit took a tenth longer. With the fixed seed Qt takes its other hash,
    // which leaves them clear. AMD's pay nothing for the dirty halves and keep the seeded hash.
    // The tables that hold a session's texts in bulk hash with a fixed function of their own
    // either way.
    unsigned eax = 0, ebx = 0, ecx = 0, edx = 0;
    const bool intel = __get_cpuid(0, &eax, &ebx, &ecx, &edx) != 0 && ebx == signature_INTEL_ebx &&
                       edx == signature_INTEL_edx && ecx == signature_INTEL_ecx;
    if (intel && __get_cpuid_count(7, 0, &eax, &ebx, &ecx, &edx) != 0 && (ecx & bit_VAES) != 0) {
        QHashSeed::setDeterministicGlobalSeed();
    }
#endif
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
