#include "app/background_job.h"

namespace sondrel {

BackgroundJob::BackgroundJob(QObject* parent) : QObject(parent) {}

BackgroundJob::~BackgroundJob() {
    if (m_cancel) {
        m_cancel->cancel();
    }
    // Calls the worker queued before it ended are removed with this object, unrun.
    joinWorker();
}

bool BackgroundJob::begin() {
    if (m_busy) {
        return false;
    }
    // A cancelled worker may still be finishing; it stops at its next check. Its result belongs
    // to an older generation and is dropped when it arrives.
    joinWorker();
    ++m_generation;
    m_cancel = std::make_shared<CancelToken>();
    setBusy(true);
    return true;
}

bool BackgroundJob::finish(std::uint64_t generation) {
    if (generation != m_generation) {
        return false;
    }
    joinWorker(); // queuing this call was the worker's last act
    setBusy(false);
    return true;
}

bool BackgroundJob::cancel() {
    if (!m_busy) {
        return false;
    }
    m_cancel->cancel();
    setBusy(false);
    return true;
}

void BackgroundJob::queue(std::function<void()> fn) {
    {
        std::lock_guard lock(m_queueMutex);
        m_queued.push_back(std::move(fn));
    }
    QMetaObject::invokeMethod(this, "runQueued", Qt::QueuedConnection);
}

void BackgroundJob::runQueued() {
    for (;;) {
        std::function<void()> next;
        {
            std::lock_guard lock(m_queueMutex);
            if (m_queued.empty()) {
                return;
            }
            next = std::move(m_queued.front());
            m_queued.pop_front();
        }
        next();
    }
}

void BackgroundJob::setBusy(bool busy) {
    if (m_busy != busy) {
        m_busy = busy;
        emit busyChanged();
    }
}

void BackgroundJob::joinWorker() {
    if (m_worker.joinable()) {
        m_worker.join();
    }
}

} // namespace sondrel
