#pragma once
// A one-way cancellation flag shared between the thread that asks for an end and the workers
// that poll it. Polling is a relaxed atomic load, cheap enough for every loop iteration.

#include <atomic>

namespace sondrel {

/// Set once by cancel(); read by every loop of a long-running job. Thread-safe.
class CancelToken {
public:
    CancelToken() = default;
    CancelToken(const CancelToken&) = delete;
    CancelToken& operator=(const CancelToken&) = delete;

    /// Requests the end of the work that polls this token. Idempotent; any thread.
    void cancel() { m_cancelled.store(true, std::memory_order_relaxed); }
    /// True once cancel() was called. Any thread.
    bool isCancelled() const { return m_cancelled.load(std::memory_order_relaxed); }

private:
    std::atomic<bool> m_cancelled{false};
};

} // namespace sondrel
