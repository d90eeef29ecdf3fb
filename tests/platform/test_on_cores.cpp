#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

#include "platform/on_cores.h"

namespace tidewick {
namespace {

// Counts `count` shares of work into `done`, on the cores at hand, each share taken once.
void countOnCores(qsizetype count, std::vector<std::atomic<int>>& done) {
    std::atomic<qsizetype> next = 0;
    onCores(count, [&](bool) {
        for (qsizetype at = next++; at < count; at = next++) {
            ++done[size_t(at)];
        }
    });
}

bool eachOnce(const std::vector<std::atomic<int>>& done) {
    return std::all_of(done.begin(), done.end(), [](const std::atomic<int>& n) { return n == 1; });
}

// Work shared from within shared work, or from several threads at once, is all done, each share
// once: helpers at other work leave a call to do its work itself.
TEST(OnCores, EveryShareIsDoneOnceHoweverTheCallsMeet) {
    constexpr qsizetype kShares = 64;
    std::vector<std::atomic<int>> outer(kShares);
    std::vector<std::vector<std::atomic<int>>> inner(kShares);
    for (auto& each : inner) {
        each = std::vector<std::atomic<int>>(kShares);
    }
    std::atomic<qsizetype> next = 0;
    onCores(kShares, [&](bool) {
        for (qsizetype at = next++; at < kShares; at = next++) {
            ++outer[size_t(at)];
            countOnCores(kShares, inner[size_t(at)]);  // from within
        }
    });
    EXPECT_TRUE(eachOnce(outer));
    for (const auto& each : inner) {
        EXPECT_TRUE(eachOnce(each));
    }

    std::vector<std::vector<std::atomic<int>>> side(4);
    std::vector<std::thread> threads;
    for (auto& each : side) {
        each = std::vector<std::atomic<int>>(kShares);
        threads.emplace_back([&each] {
            for (int round = 0; round < 50; ++round) {
                std::vector<std::atomic<int>> done(kShares);
                countOnCores(kShares, done);
                if (!eachOnce(done)) {
                    return;  // `each` stays short of its shares
                }
            }
            countOnCores(kShares, each);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const auto& each : side) {
        EXPECT_TRUE(eachOnce(each));
    }
}

}  // namespace
}  // namespace tidewick
