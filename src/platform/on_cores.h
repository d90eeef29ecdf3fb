#pragma once

#include <QtGlobal>
#include <functional>

// Work shared among the cores at hand.
namespace tidewick {

/// Runs `work` side by side on `threads` threads at the most, and no more than there are
/// cores: in this thread (`work(true)`) and in helpers (`work(false)`), threads made once for
/// the program; returns once all are done. Each call of `work` takes its share of the work
/// itself until none is left, so a call made while the helpers are at other work (from within
/// it, or from another thread) runs here alone.
void onCores(qsizetype threads, const std::function<void(bool here)>& work);

/// Makes the threads that onCores shares work with, ahead of the first work: a new thread starts
/// beside its maker and may wait there for the scheduler to move it (milliseconds on some
/// systems), while one made early waits on a core of its own by then.
void startCoreHelpers();

}  // namespace tidewick
