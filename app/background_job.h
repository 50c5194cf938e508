#pragma once
// BackgroundJob: the one way an engine runs its synchronous core work off the GUI thread. The
// engine owns one as a member; start() runs the work on a worker thread with a fresh cancel
// token and hands the work's return value to a publish function on the GUI thread.
//
// The rules every engine gets from it:
// - one job at a time: start() while busy is ignored and returns false;
// - cancel() makes the job idle at once (isBusy false, busyChanged) and sets the token the
//   work polls; the work's result, when it comes, is still published, unless a newer job has
//   started since (each start() opens a new generation and a result of an older one is dropped);
// - everything the engine sees (busyChanged, the publish function, JobContext::post calls)
//   happens on the GUI thread, in the order the worker produced it;
// - destroying the job (with its engine) while work runs cancels the token, waits for the worker
//   and publishes nothing. The work must therefore poll the token often.
//
// A whole engine over one core function, here a `measureTree(path, cancel)` returning bytes
// (tests/app/background_job_test.cpp compiles and runs an engine of the same shape):
//
//     class FolderSizer : public QObject {
//         Q_OBJECT
//         Q_PROPERTY(bool isMeasuring READ isMeasuring NOTIFY isMeasuringChanged)
//         Q_PROPERTY(qint64 bytes READ bytes NOTIFY bytesChanged)
//     public:
//         explicit FolderSizer(QObject* parent = nullptr) : QObject(parent) {
//             connect(&m_job, &BackgroundJob::busyChanged, this,
//                     &FolderSizer::isMeasuringChanged);
//         }
//         bool isMeasuring() const { return m_job.isBusy(); }
//         qint64 bytes() const { return m_bytes; }
//         Q_INVOKABLE void measure(const QString& folder) {
//             m_job.start(
//                 [path = toPathBytes(folder)](const JobContext& job) {
//                     return measureTree(path, MeasureOptions{}, job.cancelToken()).allocated;
//                 },
//                 [this](std::int64_t bytes) {
//                     m_bytes = bytes;
//                     emit bytesChanged();
//                 });
//         }
//         Q_INVOKABLE void cancel() { m_job.cancel(); }
//     signals:
//         void isMeasuringChanged();
//         void bytesChanged();
//     private:
//         qint64 m_bytes = 0;
//         BackgroundJob m_job;
//     };
//
// Progress goes through JobContext::post from inside the work (DiskScanner does so). Declare the
// job as the engine's last member, so that it is destroyed (and its worker joined) first.
//
// Threading: the job object lives on the GUI thread (the thread that creates it); start(),
// cancel() and isBusy() are called there. The worker is one std::thread per job; starting a new
// job after a cancel first waits for the cancelled worker, which stops at its next check.

#include "core/util/cancel_token.h"

#include <QMetaObject>
#include <QObject>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <type_traits>
#include <utility>

namespace sondrel {

class BackgroundJob;

/// What the work function of a job receives: its cancel token and a way to post progress to the
/// GUI thread. Copyable; valid while the job's worker runs. Any thread.
class JobContext {
public:
    /// The token the work polls; set by BackgroundJob::cancel() and on destruction.
    const CancelToken& cancelToken() const { return *m_cancel; }
    /// Shortcut for cancelToken().isCancelled().
    bool isCancelled() const { return m_cancel->isCancelled(); }

    /// Runs `fn()` later on the GUI thread, in posting order, but only while this job is still
    /// the current one and not cancelled (progress of a cancelled or superseded job is not shown).
    /// Never runs after the job object is destroyed. `fn` must be copyable.
    template <typename Fn> void post(Fn fn) const;

private:
    friend class BackgroundJob;
    JobContext(BackgroundJob* job, std::uint64_t generation, std::shared_ptr<CancelToken> cancel)
        : m_job(job), m_generation(generation), m_cancel(std::move(cancel)) {}

    BackgroundJob* m_job;
    std::uint64_t m_generation;
    std::shared_ptr<CancelToken> m_cancel;
};

class BackgroundJob : public QObject {
    Q_OBJECT

public:
    explicit BackgroundJob(QObject* parent = nullptr);
    /// Cancels running work and waits for its worker; nothing is published afterwards.
    ~BackgroundJob() override;
    BackgroundJob(const BackgroundJob&) = delete;
    BackgroundJob& operator=(const BackgroundJob&) = delete;

    /// True from start() until the result is handed over or cancel() is called. GUI thread.
    bool isBusy() const { return m_busy; }
    /// Number of jobs started so far; the current job's generation. GUI thread.
    std::uint64_t generation() const { return m_generation; }

    /// Runs `work(const JobContext&)` on a worker thread, then `publish(result)` on the GUI
    /// thread with the value `work` returned, unless a newer job started meanwhile. busyChanged
    /// (to false) is emitted just before `publish` runs, so `publish` may start the next job.
    /// Returns false and runs nothing while busy. `work` may be move-only; `publish` must be
    /// copyable; `work` returns a value (not void). Work that throws publishes nothing and ends
    /// the job as if it had returned.
    template <typename Work, typename Publish> bool start(Work work, Publish publish);

    /// Ends the current job for the interface: isBusy false at once and the cancel token set.
    /// The work's result is still published when it arrives (no newer job started). Returns
    /// false (and does nothing) when idle.
    bool cancel();

signals:
    /// isBusy changed. Emitted on the GUI thread.
    void busyChanged();

private:
    friend class JobContext;

    // GUI thread: opens a new generation with a fresh token; false while busy.
    bool begin();
    // GUI thread: the worker of `generation` ended; true when its result is to be published.
    bool finish(std::uint64_t generation);
    void setBusy(bool busy);
    void joinWorker();

    // Worker thread: queues `fn` to run on this object's thread (dropped if it is destroyed).
    // The calls travel through a queue under a std::mutex and Qt is only told to drain it, so
    // the hand-off is one that ThreadSanitizer can see (Qt's own event queue waits on futexes).
    void queue(std::function<void()> fn);
    // GUI thread: runs the calls queued so far, in order.
    Q_INVOKABLE void runQueued();

    std::mutex m_queueMutex;
    std::deque<std::function<void()>> m_queued;
    bool m_busy = false;
    std::uint64_t m_generation = 0;
    std::shared_ptr<CancelToken> m_cancel;
    std::thread m_worker;
};

template <typename Fn> void JobContext::post(Fn fn) const {
    m_job->queue([job = m_job, generation = m_generation, cancel = m_cancel, fn = std::move(fn)] {
        if (generation == job->m_generation && !cancel->isCancelled()) {
            fn();
        }
    });
}

template <typename Work, typename Publish> bool BackgroundJob::start(Work work, Publish publish) {
    if (!begin()) {
        return false;
    }
    const JobContext context(this, m_generation, m_cancel);
    m_worker = std::thread(
        [this, context, work = std::move(work), publish = std::move(publish)]() mutable {
            using Result = std::decay_t<std::invoke_result_t<Work&, const JobContext&>>;
            std::shared_ptr<Result> result;
            try {
                result = std::make_shared<Result>(work(context));
            } catch (...) {
                result.reset(); // nothing to publish; the job still ends below
            }
            queue([this, generation = context.m_generation, publish, result]() mutable {
                if (finish(generation) && result) {
                    publish(std::move(*result));
                }
            });
        });
    return true;
}

} // namespace sondrel
