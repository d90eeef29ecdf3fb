#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "median.h"

namespace tidewick::bench {

/// Prints Google Benchmark's usual table, remembers each run's mean time per iteration (the
/// median of a benchmark's repetitions, when it repeats), and at the end prints each measured
/// figure as a ratio to its baseline from the same run.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration && run.iterations > 0) {
                // Keyed by the name as registered and its arguments ("BM_Load/25000"), without
                // "/min_time:..." and similar suffixes.
                const std::string& args = run.run_name.args;
                runs_[run.run_name.function_name + (args.empty() ? "" : "/" + args)].push_back(
                    run.GetAdjustedRealTime() / benchmark::GetTimeUnitMultiplier(run.time_unit));
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }

    /// Seconds per iteration of a benchmark by its full name; 0 when it did not run.
    double seconds(const std::string& name) const {
        const auto it = runs_.find(name);
        if (it == runs_.end()) {
            return 0.0;
        }
        return median(it->second);
    }

    /// Prints "label: measured X, baseline Y, ratio Z x (target T x)".
    void printRatio(const std::string& label, const std::string& measured,
                    const std::string& baseline, double megabytes, double target) const {
        const double m = seconds(measured);
        const double b = seconds(baseline);
        if (m <= 0 || b <= 0) {
            return;
        }
        std::printf(
            "%-28s reader %8.1f MB/s, plain read %8.1f MB/s, ratio %.2fx (target %.1fx) %s\n",
            label.c_str(), megabytes / m, megabytes / b, m / b, target,
            m / b <= target ? "ok" : "MISSED");
    }

private:
    std::map<std::string, std::vector<double>> runs_;
};

}  // namespace tidewick::bench
