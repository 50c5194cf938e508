// BackgroundJob through a small engine built the way its header shows: a request while busy is
// ignored, cancel reaches the work's token, a superseded job's result and progress are dropped,
// everything the engine sees happens on the GUI thread, and destroying the engine mid-job
// publishes nothing.

#include "app/background_job.h"

#include <QCoreApplication>
#include <QSignalSpy>
#include <QTest>
#include <QThread>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stdexcept>

namespace sondrel {
namespace {

// Holds the core function until the test opens it (or the job is cancelled).
class Gate {
public:
    void open() {
        std::lock_guard lock(m_mutex);
        m_open = true;
        m_changed.notify_all();
    }
    // True when opened, false when `cancel` was set first.
    bool wait(const CancelToken& cancel) {
        std::unique_lock lock(m_mutex);
        while (!m_open) {
            if (cancel.isCancelled()) {
                return false;
            }
            m_changed.wait_for(lock, std::chrono::milliseconds(1));
        }
        return true;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_open = false;
};

// The synchronous "core function": waits at the gate, then returns `value`; -1 when cancelled.
int coreValue(Gate& gate, int value, const CancelToken& cancel) {
    return gate.wait(cancel) ? value : -1;
}

// An engine over coreValue, shaped like the example in background_job.h.
class ValueEngine : public QObject {
    Q_OBJECT

public:
    explicit ValueEngine(QObject* parent = nullptr) : QObject(parent) {
        connect(&m_job, &BackgroundJob::busyChanged, this, &ValueEngine::isBusyChanged);
    }
    bool isBusy() const { return m_job.isBusy(); }
    int value() const { return m_value; }
    bool compute(Gate& gate, int value, std::atomic<int>* progress = nullptr) {
        return m_job.start(
            [&gate, value, progress](const JobContext& job) {
                if (progress != nullptr) {
                    job.post([progress] { ++*progress; });
                }
                return coreValue(gate, value, job.cancelToken());
            },
            [this](int result) {
                m_value = result;
                emit valueChanged();
            });
    }
    bool cancel() { return m_job.cancel(); }
    bool fail() {
        return m_job.start([](const JobContext&) -> int { throw std::runtime_error("core"); },
                           [this](int) { emit valueChanged(); });
    }

signals:
    void isBusyChanged();
    void valueChanged();

private:
    int m_value = 0;
    BackgroundJob m_job;
};

} // namespace

class BackgroundJobTest : public QObject {
    Q_OBJECT

private slots:
    void publishesOnTheGuiThreadOnly() {
        ValueEngine engine;
        bool offThread = false;
        QStringList events;
        const auto note = [&](const char* what) {
            offThread |= QThread::currentThread() != QCoreApplication::instance()->thread();
            events << QString::fromLatin1(what) + (engine.isBusy() ? "+" : "-");
        };
        connect(
            &engine, &ValueEngine::isBusyChanged, this, [&] { note("busy"); },
            Qt::DirectConnection);
        connect(
            &engine, &ValueEngine::valueChanged, this, [&] { note("value"); },
            Qt::DirectConnection);
        QSignalSpy published(&engine, &ValueEngine::valueChanged);
        Gate gate;
        QVERIFY(engine.compute(gate, 7));
        QVERIFY(engine.isBusy());
        gate.open();
        QVERIFY(published.wait(10000));
        QCOMPARE(engine.value(), 7);
        // Busy ends before the result is published, so the publisher may start the next job.
        QCOMPARE(events, (QStringList{"busy+", "busy-", "value-"}));
        QVERIFY(!offThread);
    }

    void requestWhileBusyIsIgnored() {
        ValueEngine engine;
        QSignalSpy published(&engine, &ValueEngine::valueChanged);
        Gate first;
        Gate second;
        second.open();
        QVERIFY(engine.compute(first, 1));
        QVERIFY(!engine.compute(second, 2));
        first.open();
        QVERIFY(published.wait(10000));
        QCOMPARE(engine.value(), 1);
        QTest::qWait(20);
        QCOMPARE(published.count(), 1);
        QVERIFY(engine.compute(second, 2)); // idle again: accepted
        QVERIFY(published.wait(10000));
        QCOMPARE(engine.value(), 2);
    }

    void cancelReachesTheTokenAndTheResultStillArrives() {
        ValueEngine engine;
        QSignalSpy busy(&engine, &ValueEngine::isBusyChanged);
        QSignalSpy published(&engine, &ValueEngine::valueChanged);
        Gate closed;
        QVERIFY(!engine.cancel()); // idle: nothing to cancel
        QVERIFY(engine.compute(closed, 5));
        QVERIFY(engine.cancel());
        QVERIFY(!engine.isBusy());
        QCOMPARE(busy.count(), 2);
        // The core function only returns once it sees the token; -1 is its cancelled answer.
        QVERIFY(published.wait(10000));
        QCOMPARE(engine.value(), -1);
        QCOMPARE(busy.count(), 2);
    }

    void staleGenerationIsDropped() {
        ValueEngine engine;
        QList<int> values;
        connect(&engine, &ValueEngine::valueChanged, this, [&] { values << engine.value(); });
        std::atomic<int> staleProgress{0};
        std::atomic<int> progress{0};
        Gate closed;
        Gate open;
        open.open();
        QVERIFY(engine.compute(closed, 1, &staleProgress));
        QVERIFY(engine.cancel());
        // Starting again waits for the cancelled worker, whose result and progress are queued
        // by then; both belong to the old generation.
        QVERIFY(engine.compute(open, 2, &progress));
        QTRY_COMPARE(values, QList<int>{2});
        QTest::qWait(20);
        QCOMPARE(values, QList<int>{2});
        QCOMPARE(staleProgress.load(), 0);
        QCOMPARE(progress.load(), 1);
    }

    void throwingWorkEndsTheJobWithoutPublishing() {
        ValueEngine engine;
        QSignalSpy busy(&engine, &ValueEngine::isBusyChanged);
        QSignalSpy published(&engine, &ValueEngine::valueChanged);
        QVERIFY(engine.fail());
        QTRY_VERIFY(!engine.isBusy());
        QCOMPARE(busy.count(), 2);
        QCOMPARE(published.count(), 0);
    }

    void destroyedWhileRunningPublishesNothing() {
        std::atomic<int> progress{0};
        int published = 0;
        for (int i = 0; i < 4; ++i) {
            Gate closed;
            auto* engine = new ValueEngine;
            connect(engine, &ValueEngine::valueChanged, this, [&] { ++published; });
            QVERIFY(engine->compute(closed, i, &progress));
            if (i % 2 == 1) {
                QCoreApplication::processEvents();
            }
            delete engine; // cancels, joins; queued progress and result die with it
        }
        QTest::qWait(20);
        QCOMPARE(published, 0);
        QVERIFY(progress.load() <= 2);
    }
};

} // namespace sondrel

QTEST_GUILESS_MAIN(sondrel::BackgroundJobTest)
#include "background_job_test.moc"
