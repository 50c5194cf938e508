#include "ui/src/serial_painting.h"

#include <QSemaphore>
#include <QThread>
#include <QThreadPool>
#include <atomic>

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
        for (std::size_t i = next.fetch_add(1); i < jobs.size(); i = next.fetch_add(1)) {
            jobs[i]();
        }
        finished.release();
    };
    int started = 0;
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
}

void runWithoutParallelFills(const std::function<void()>& work) {
    runJobsWithoutParallelFills({work});
}

} // namespace sondrel
