#include "platform/on_cores.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace tidewick {

namespace {

// The helpers of onCores: threads made once, each waiting for a share of the work at hand. A
// thread made for each call starts beside its maker and may wait there for the scheduler to move
// it to an idle core (milliseconds on some systems); a helper that waits already wakes there.
class Helpers {
public:
    explicit Helpers(qsizetype count) {
        for (qsizetype n = 0; n < count; ++n) {
            std::thread(&Helpers::serve, this).detach();
        }
    }

    // Runs `work` here and in up to `wanted` helpers. While they are at other work (this is a
    // call from within it, or from another thread), it runs here alone: each call of `work`
    // takes its share until none is left, so fewer hands only take longer.
    void run(qsizetype wanted, const std::function<void(bool)>& work) {
        std::unique_lock lock(mutex_);
        if (job_ != nullptr) {
            lock.unlock();
            work(true);
            return;
        }
        job_ = &work;
        open_ = wanted;
        lock.unlock();
        woken_.notify_all();
        work(true);
        lock.lock();
        open_ = 0;  // the work is done: a helper not at it yet stays out
        finished_.wait(lock, [this] { return running_ == 0; });
        job_ = nullptr;
    }

private:
    void serve() {
        std::unique_lock lock(mutex_);
        for (;;) {
            woken_.wait(lock, [this] { return open_ > 0; });
            --open_;
            ++running_;
            const std::function<void(bool)>& work = *job_;
            lock.unlock();
            work(false);
            lock.lock();
            if (--running_ == 0) {
                finished_.notify_all();
            }
        }
    }

    std::mutex mutex_;
    std::condition_variable woken_, finished_;
    const std::function<void(bool)>* job_ = nullptr;  // the work of the call at hand
    qsizetype open_ = 0;                              // helpers it still takes
    qsizetype running_ = 0;                           // helpers at it
};

// The system counts its cores anew at each asking (a file read on Linux): once is enough.
qsizetype coreCount() {
    static const qsizetype cores = std::max(1U, std::thread::hardware_concurrency());
    return cores;
}

// Made at the first asking, they last as long as the program.
Helpers& helpers() {
    static Helpers* const made = new Helpers(coreCount() - 1);
    return *made;
}

}  // namespace

void startCoreHelpers() {
    helpers();
}

void onCores(qsizetype threads, const std::function<void(bool here)>& work) {
    const qsizetype wanted = std::min(threads, coreCount()) - 1;
    if (wanted <= 0) {
        work(true);
        return;
    }
    helpers().run(wanted, work);
}

}  // namespace tidewick
