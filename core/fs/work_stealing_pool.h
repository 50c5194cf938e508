#pragma once
// A small work-stealing pool for tree walks: every worker keeps its own queue, takes its newest
// job first (depth-first, which keeps the number of open folders small) and, when it runs dry,
// steals the oldest job of another worker (the biggest pieces of work, near the top of a tree).
// One run() walks one tree and returns when no job is left; the threads live for that run only.

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace sondrel {

/// Runs jobs of type `Job` on a fixed number of threads; jobs may push further jobs.
/// Thread-safety: push() from inside a handler (any worker); run() from one thread at a time.
template <class Job> class WorkStealingPool {
public:
    /// A pool of `threads` workers (at least 1); the thread calling run() is worker 0.
    explicit WorkStealingPool(unsigned threads) : m_queues(threads < 1 ? 1 : threads) {
        for (auto& queue : m_queues) {
            queue = std::make_unique<Queue>();
        }
    }

    /// Number of workers; handler worker indices are below this.
    unsigned workerCount() const { return static_cast<unsigned>(m_queues.size()); }

    /// Runs `handler(workerIndex, job)` for `seed` and every job pushed while it runs, and
    /// returns once all of them have finished. The handler must not throw.
    template <class Handler> void run(Job seed, Handler&& handler) {
        push(0, std::move(seed));
        std::vector<std::thread> threads;
        threads.reserve(m_queues.size() - 1);
        for (unsigned w = 1; w < m_queues.size(); ++w) {
            threads.emplace_back([this, w, &handler] { work(w, handler); });
        }
        work(0, handler);
        for (std::thread& thread : threads) {
            thread.join();
        }
    }

    /// Queues `job` on worker `worker`'s own queue (call with the handler's worker index).
    void push(unsigned worker, Job job) {
        m_outstanding.fetch_add(1);
        {
            Queue& queue = *m_queues[worker];
            std::lock_guard lock(queue.mutex);
            queue.jobs.push_back(std::move(job));
        }
        m_available.fetch_add(1);
        if (m_sleepers.load() > 0) {
            std::lock_guard lock(m_idleMutex);
            m_idle.notify_one();
        }
    }

private:
    struct alignas(64) Queue {
        std::mutex mutex;
        std::deque<Job> jobs;
    };

    bool take(unsigned worker, Job& job) {
        {
            Queue& own = *m_queues[worker];
            std::lock_guard lock(own.mutex);
            if (!own.jobs.empty()) {
                job = std::move(own.jobs.back());
                own.jobs.pop_back();
                m_available.fetch_sub(1);
                return true;
            }
        }
        const auto count = static_cast<unsigned>(m_queues.size());
        for (unsigned i = 1; i < count; ++i) {
            Queue& other = *m_queues[(worker + i) % count];
            std::lock_guard lock(other.mutex);
            if (!other.jobs.empty()) {
                job = std::move(other.jobs.front());
                other.jobs.pop_front();
                m_available.fetch_sub(1);
                return true;
            }
        }
        return false;
    }

    template <class Handler> void work(unsigned worker, Handler& handler) {
        for (;;) {
            Job job;
            if (take(worker, job)) {
                handler(worker, std::move(job));
                if (m_outstanding.fetch_sub(1) == 1) {
                    std::lock_guard lock(m_idleMutex);
                    m_idle.notify_all();
                }
                continue;
            }
            std::unique_lock lock(m_idleMutex);
            m_sleepers.fetch_add(1);
            m_idle.wait(lock,
                        [this] { return m_available.load() > 0 || m_outstanding.load() == 0; });
            m_sleepers.fetch_sub(1);
            if (m_outstanding.load() == 0) {
                return;
            }
        }
    }

    std::vector<std::unique_ptr<Queue>> m_queues;
    std::atomic<std::int64_t> m_outstanding{0}; // pushed and not yet finished
    std::atomic<std::int64_t> m_available{0};   // queued and not yet taken
    std::atomic<int> m_sleepers{0};
    std::mutex m_idleMutex;
    std::condition_variable m_idle;
};

} // namespace sondrel
