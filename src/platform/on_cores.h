#pragma once

#include <QtGlobal>
#include <functional>

// Work shared among the cores at hand.
namespace tidewick {

/// Runs `work` side by side on `threads` threads at the most, and no more than there are
/// cores: in this thread (`work(true)`) and in helpers (`work(false)`); returns once all are
/// done. Each call of `work` takes its share of the work itself until none is left.
void onCores(qsizetype threads, const std::function<void(bool here)>& work);

}  // namespace tidewick
