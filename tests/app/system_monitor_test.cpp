// SystemMonitor over a scripted sampler: first sample, history length, timer lifetime, uptime
// fixed at creation, published maps.

#include "app/system_monitor.h"

#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <memory>

namespace sondrel {
namespace {

// A sampler whose processor counters advance by a chosen load on every reading.
class ScriptedSampler final : public SystemSampler {
public:
    struct Counters {
        int hostFactsCalls = 0;
        int tickReadings = 0;
    };

    explicit ScriptedSampler(std::shared_ptr<Counters> counters)
        : m_counters(std::move(counters)) {}

    /// The next reading adds `busy` user ticks and 100 - busy idle ticks on each processor.
    void setNextLoad(std::uint64_t busy) { m_busy = busy; }

    std::vector<ProcessorTicks> processorTicks() override {
        ++m_counters->tickReadings;
        if (m_unreadable) {
            return {};
        }
        if (m_frozen) {
            return m_ticks;
        }
        for (ProcessorTicks& cpu : m_ticks) {
            cpu.user += m_busy;
            cpu.idle += 100 - m_busy;
        }
        return m_ticks;
    }
    MemoryStats memory() override {
        MemoryStats stats;
        stats.totalBytes = 16'000'000'000;
        stats.activeBytes = 4'000'000'000;
        stats.wiredBytes = 2'000'000'000;
        stats.compressedBytes = 1'000'000'000;
        stats.freeBytes = 5'000'000'000;
        return stats;
    }
    DiskStats disk() override { return {500'000'000'000, 200'000'000'000, 0, 0}; }
    HostFacts hostFacts() override {
        ++m_counters->hostFactsCalls;
        return {"tester", "Testix 1, kernel 6.1", 7200.0 * m_counters->hostFactsCalls};
    }

    bool m_unreadable = false;
    bool m_frozen = false; // readings repeat the last counters (two readings within one tick)

private:
    std::shared_ptr<Counters> m_counters;
    std::vector<ProcessorTicks> m_ticks{{1000, 500, 10000, 0}, {1000, 500, 10000, 0}};
    std::uint64_t m_busy = 0;
};

class SystemMonitorTest : public QObject {
    Q_OBJECT

private:
    std::shared_ptr<ScriptedSampler::Counters> m_counters;
    ScriptedSampler* m_sampler = nullptr;

    std::unique_ptr<SystemMonitor> makeMonitor() {
        m_counters = std::make_shared<ScriptedSampler::Counters>();
        auto sampler = std::make_unique<ScriptedSampler>(m_counters);
        m_sampler = sampler.get();
        return std::make_unique<SystemMonitor>(std::move(sampler));
    }

private slots:
    void startsIdleWithTwentyZeros() {
        const auto monitor = makeMonitor();
        QCOMPARE(monitor->cpuHistory(), QList<double>(20, 0.0));
        QVERIFY(!monitor->isMonitoring());
        QCOMPARE(m_counters->tickReadings, 0);
        const QVariantMap overview = monitor->overview();
        QCOMPARE(overview["hostName"].toString(), QString("tester"));
        QCOMPARE(overview["osVersion"].toString(), QString("Testix 1, kernel 6.1"));
        QCOMPARE(overview["formattedUptime"].toString(), QString("2.0 hours"));
        QCOMPARE(overview["cpu"].toMap()["idlePercent"].toDouble(), 100.0);
        QCOMPARE(overview["memory"].toMap()["formattedTotal"].toString(), QString("Zero KB"));
    }

    void firstRefreshPublishesIdleThenTheLoad() {
        const auto monitor = makeMonitor();
        QSignalSpy overviewSpy(monitor.get(), &SystemMonitor::overviewChanged);
        QSignalSpy historySpy(monitor.get(), &SystemMonitor::cpuHistoryChanged);
        m_sampler->setNextLoad(40);
        monitor->refresh();
        QCOMPARE(monitor->overviewValue().cpu, CPUStats{});
        QCOMPARE(monitor->cpuHistory().last(), 0.0);
        QCOMPARE(overviewSpy.count(), 1);
        QCOMPARE(historySpy.count(), 1);

        m_sampler->setNextLoad(25);
        monitor->refresh();
        const QVariantMap cpu = monitor->overview()["cpu"].toMap();
        QCOMPARE(cpu["totalUsagePercent"].toDouble(), 25.0);
        QCOMPARE(cpu["formattedTotalUsage"].toString(), QString("25%"));
        QCOMPARE(cpu["formattedUserAndSystem"].toString(), QString("User: 25% | System: 0%"));
        QCOMPARE(monitor->cpuHistory().size(), 20);
        QCOMPARE(monitor->cpuHistory().last(), 25.0);
    }

    void zeroTickDeltaGivesDefault() {
        const auto monitor = makeMonitor();
        m_sampler->setNextLoad(50);
        monitor->refresh();
        monitor->refresh();
        QCOMPARE(monitor->overviewValue().cpu.totalUsagePercent(), 50.0);
        m_sampler->m_frozen = true;
        monitor->refresh();
        QCOMPARE(monitor->overviewValue().cpu, CPUStats{});
        QCOMPARE(monitor->cpuHistory().last(), 0.0);
    }

    void historyKeepsTheLastTwentyTotals() {
        const auto monitor = makeMonitor();
        for (int i = 1; i <= 25; ++i) {
            // Refresh i measures the load set before it; the first one has nothing to compare.
            m_sampler->setNextLoad(static_cast<std::uint64_t>(i - 1));
            monitor->refresh();
        }
        const QList<double>& history = monitor->cpuHistory();
        QCOMPARE(history.size(), 20);
        for (int i = 0; i < 20; ++i) {
            QCOMPARE(history[i], 5.0 + i);
        }
    }

    void timerRunsOnlyWhileMonitoring() {
        const auto monitor = makeMonitor();
        auto* timer = monitor->findChild<QTimer*>();
        QVERIFY(timer);
        QVERIFY(!timer->isActive());
        QSignalSpy monitoringSpy(monitor.get(), &SystemMonitor::isMonitoringChanged);

        monitor->startMonitoring();
        QVERIFY(monitor->isMonitoring());
        QVERIFY(timer->isActive());
        QCOMPARE(timer->interval(), 2000);
        QCOMPARE(m_counters->tickReadings, 1); // sampled at once
        monitor->startMonitoring();
        QCOMPARE(m_counters->tickReadings, 1); // a second start changes nothing
        QCOMPARE(monitoringSpy.count(), 1);

        // The timer's own ticks, at a shortened interval rather than the real two seconds.
        monitor->setIntervalMilliseconds(5);
        QCOMPARE(timer->interval(), 5);
        QVERIFY(timer->isActive());
        QSignalSpy historySpy(monitor.get(), &SystemMonitor::cpuHistoryChanged);
        QTRY_VERIFY_WITH_TIMEOUT(historySpy.count() >= 2, 10000);
        QCOMPARE(m_counters->tickReadings, 1 + historySpy.count());

        monitor->stopMonitoring();
        QVERIFY(!monitor->isMonitoring());
        QVERIFY(!timer->isActive());
        monitor->stopMonitoring();
        QCOMPARE(monitoringSpy.count(), 2);
    }

    void restartComparesAgainstTheLastSampleBeforeStop() {
        const auto monitor = makeMonitor();
        m_sampler->setNextLoad(10);
        monitor->startMonitoring();
        monitor->stopMonitoring();
        m_sampler->setNextLoad(60);
        monitor->startMonitoring();
        monitor->stopMonitoring();
        QCOMPARE(monitor->overviewValue().cpu.totalUsagePercent(), 60.0);
    }

    void uptimeIsFixedAtCreation() {
        const auto monitor = makeMonitor();
        const double uptime = monitor->overviewValue().uptimeHours;
        monitor->startMonitoring();
        monitor->refresh();
        monitor->stopMonitoring();
        QCOMPARE(m_counters->hostFactsCalls, 1);
        QCOMPARE(monitor->overviewValue().uptimeHours, uptime);
        QCOMPARE(monitor->overview()["uptimeHours"].toDouble(), 2.0);
    }

    void labelsUseThisPlatformsWords() {
        const QVariantMap labels = SystemMonitor::labels();
#ifdef __APPLE__
        QCOMPARE(labels["hostNameLabel"].toString(), QString("Mac Name"));
#else
        QCOMPARE(labels["hostNameLabel"].toString(), QString("Computer Name"));
        QCOMPARE(labels["osVersionLabel"].toString(), QString("Linux Version"));
        QCOMPARE(labels["storageCardTitle"].toString(), QString("Disk Storage"));
        QCOMPARE(labels["availableRowLabel"].toString(), QString("Available (Files)"));
        QCOMPARE(labels["headerSubtitle"].toString(),
                 QString("Live telemetry on x86 / ARM processors, disk storage, and RAM pressure"));
#endif
    }

    void publishesMemoryAndDiskFiguresAndTexts() {
        const auto monitor = makeMonitor();
        monitor->refresh();
        const QVariantMap memory = monitor->overview()["memory"].toMap();
        QCOMPARE(memory["usedBytes"].toDouble(), 7e9);
        QCOMPARE(memory["formattedUsagePercent"].toString(), QString("44%"));
        QCOMPARE(memory["formattedUsedOfTotal"].toString(), QString("7 GB of 16 GB"));
        QCOMPARE(memory["formattedActive"].toString(), QString("4 GB"));
        QCOMPARE(memory["activeFraction"].toDouble(), 0.25);
        QCOMPARE(memory["compressedFraction"].toDouble(), 1.0 / 16);

        // Available 0: the free bytes stand in for it.
        const QVariantMap disk = monitor->overview()["disk"].toMap();
        QCOMPARE(disk["effectiveAvailableBytes"].toDouble(), 2e11);
        QCOMPARE(disk["usedBytes"].toDouble(), 3e11);
        QCOMPARE(disk["formattedUsagePercent"].toString(), QString("60%"));
        QCOMPARE(disk["formattedUsedOfTotal"].toString(),
                 QString("300 GB of 500 GB (200 GB available)"));
    }

    void unreadableSourcesPublishDefaults() {
        const auto monitor = makeMonitor();
        m_sampler->m_unreadable = true;
        monitor->refresh();
        monitor->refresh();
        QCOMPARE(monitor->overviewValue().cpu, CPUStats{});
        QCOMPARE(monitor->cpuHistory(), QList<double>(20, 0.0));
    }
};

} // namespace
} // namespace sondrel

QTEST_GUILESS_MAIN(sondrel::SystemMonitorTest)
#include "system_monitor_test.moc"
