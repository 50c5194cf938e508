#include "ui/src/serial_painting.h"

#include <QSemaphore>
#include <QThread>
#include <QThreadPool>

namespace sondrel {

void runWithoutParallelFills(const std::function<void()>& work) {
    QThreadPool* pool = QThreadPool::globalInstance();
    if (pool == nullptr || pool->contains(QThread::currentThread())) {
        work();
        return;
    }
    QSemaphore done;
    // tryStart rather than start: when every pool thread is busy, queueing behind them could
    // stall the frame for longer than the parallel fills would.
    const bool started = pool->tryStart([&work, &done] {
        work();
        done.release();
    });
    if (!started) {
        work();
        return;
    }
    done.acquire();
}

} // namespace sondrel
