#include "ui/src/serial_painting.h"

#include <QSemaphore>
#include <QThread>
#include <QThreadPool>
#include <atomic>

// Qt's QSemaphore and the thread pool's hand-off wait on futexes, which ThreadSanitizer does not
// see; these annotations tell it about the two hand-offs (jobs to the pool, results back) so a
// race that remains in the jobs themselves is still reported.
#if defined(__SANITIZE_THREAD__)
#include <sanitizer/tsan_interface.h>
#define SONDREL_TSAN_ACQUIRE(address) __tsan_acquire(address)
#define SONDREL_TSAN_RELEASE(address) __tsan_release(address)
#else
#define SONDREL_TSAN_ACQUIRE(address) static_cast<void>(address)
#define SONDREL_TSAN_RELEASE(address) static_cast<void>(address)
#endif

namespace sondrel {

void runJobsWithoutParallelFills(const std::vector<std::function<void()>>& jobs) {
    const auto runAllHere = [&jobs] {
        for (const std::function<void()>& job : jobs) {
            job();
        }
    };
    QThreadPool* pool = QThreadPool::globalInstance();
    if (pool == nullptr || pool->contains(QThread::currentThread())) {
        runAllHere();
        return;
    }
    std::atomic<std::size_t> next{0};
    QSemaphore finished;
    // Every started task takes jobs until none is left, so jobs that found no thread still run.
    const auto drain = [&jobs, &next, &finished] {
        SONDREL_TSAN_ACQUIRE(&next);
        for (std::size_t i = next.fetch_add(1); i < jobs.size(); i = next.fetch_add(1)) {
            jobs[i]();
        }
        SONDREL_TSAN_RELEASE(&finished);
        finished.release();
    };
    int started = 0;
    SONDREL_TSAN_RELEASE(&next);
    // tryStart rather than start: when every pool thread is busy, queueing behind them could
    // stall the frame for longer than the parallel fills would.
    while (static_cast<std::size_t>(started) < jobs.size() && pool->tryStart(drain)) {
        ++started;
    }
    if (started == 0) {
        runAllHere();
        return;
    }
    finished.acquire(started);
    SONDREL_TSAN_ACQUIRE(&finished);
}

void runWithoutParallelFills(const std::function<void()>& work) {
    runJobsWithoutParallelFills({work});
}

} // namespace sondrel
