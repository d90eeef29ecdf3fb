#pragma once

#include <algorithm>
#include <vector>

namespace tidewick::bench {

/// The middle of `values` (of two middles, the upper); 0 when there are none.
inline double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values.empty() ? 0.0 : values[values.size() / 2];
}

}  // namespace tidewick::bench
