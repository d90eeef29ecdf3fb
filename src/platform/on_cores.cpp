#include "platform/on_cores.h"

#include <algorithm>
#include <thread>
#include <vector>

namespace tidewick {

void onCores(qsizetype threads, const std::function<void(bool here)>& work) {
    // The system counts its cores anew at each asking (a file read on Linux): once is enough.
    static const qsizetype cores = std::max(1U, std::thread::hardware_concurrency());
    std::vector<std::thread> helpers;
    for (qsizetype n = 1; n < std::min(threads, cores); ++n) {
        helpers.emplace_back(work, false);
    }
    work(true);
    for (std::thread& helper : helpers) {
        helper.join();
    }
}

}  // namespace tidewick
