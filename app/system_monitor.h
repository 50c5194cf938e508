#pragma once
// SystemMonitor: the live telemetry engine. Samples CPU load, memory use and the capacity of "/"
// every two seconds while monitoring, and publishes the latest figures and a 20-value CPU history.
//
// Threading: everything belongs to the GUI thread. A sample is a few small file reads and one
// statvfs call (well under a millisecond), so it runs on the GUI thread from a QTimer; the timer
// only exists in running state between startMonitoring() and stopMonitoring(), so a hidden
// telemetry section costs nothing.
//
// Lifecycle: idle -> startMonitoring() (samples at once, then every 2 s) -> stopMonitoring() ->
// idle. The previous CPU reading survives a stop, so the first sample after a restart measures
// the load since the last sample before the stop. Host name, OS version and uptime are read once,
// when the monitor is created.

#include "core/monitor/cpu_load_tracker.h"
#include "core/monitor/system_overview.h"
#include "platform/system_sampler.h"

#include <QList>
#include <QObject>
#include <QTimer>
#include <QVariantMap>
#include <memory>

namespace sondrel {

class SystemMonitor : public QObject {
    Q_OBJECT
    /// The latest sample as a map for QML. Keys:
    /// - "cpu": userPercent, systemPercent, idlePercent, totalUsagePercent (0..100 numbers),
    ///   formattedTotalUsage ("12%"), formattedUserAndSystem ("User: 8% | System: 4%");
    /// - "memory": totalBytes, activeBytes, wiredBytes, compressedBytes, freeBytes, usedBytes
    ///   (numbers), usagePercent (0..100), formattedUsagePercent ("45%"), formattedTotal,
    ///   formattedUsed, formattedFree, formattedActive, formattedWired, formattedCompressed,
    ///   formattedUsedOfTotal ("7.2 GB of 16 GB"), activeFraction, wiredFraction,
    ///   compressedFraction (0..1 shares of total, for the allocation bar);
    /// - "disk": totalBytes, freeBytes, purgeableBytes, availableBytes, effectiveAvailableBytes,
    ///   usedBytes, rawUsedBytes, reservedBytes (numbers), usagePercent (0..100, df's Use%),
    ///   formattedUsagePercent, formattedTotal, formattedUsed, formattedFree, formattedPurgeable,
    ///   formattedEffectiveAvailable, formattedReserved, formattedUsedOfTotal ("120 GB of 250 GB
    ///   (130 GB available)");
    /// - hostName, osVersion (strings), uptimeHours (number), formattedUptime ("3.4 hours").
    /// Byte counts are JS numbers (doubles, exact below 9 PB).
    Q_PROPERTY(QVariantMap overview READ overview NOTIFY overviewChanged)
    /// The last 20 total CPU percentages (0..100), oldest first; always exactly 20 values,
    /// 20 zeros before the first sample.
    Q_PROPERTY(QList<double> cpuHistory READ cpuHistory NOTIFY cpuHistoryChanged)
    /// The telemetry screen's texts that name platform-specific things, in this platform's
    /// words: headerSubtitle, storageCardTitle, availableRowLabel, hostNameLabel, osVersionLabel.
    Q_PROPERTY(QVariantMap labels READ labels CONSTANT)
    /// True between startMonitoring() and stopMonitoring() (the 2-second timer runs).
    Q_PROPERTY(bool isMonitoring READ isMonitoring NOTIFY isMonitoringChanged)

public:
    /// Number of values kept in cpuHistory.
    static constexpr int kHistoryLength = 20;
    /// Time between two samples while monitoring, unless setIntervalMilliseconds changed it.
    static constexpr int kIntervalMilliseconds = 2000;

    /// A monitor over the running system's sampler. Reads the host facts now.
    explicit SystemMonitor(QObject* parent = nullptr);
    /// A monitor over `sampler` (owned; must not be null), for tests and other platforms.
    /// Reads the host facts now.
    explicit SystemMonitor(std::unique_ptr<SystemSampler> sampler, QObject* parent = nullptr);
    ~SystemMonitor() override;
    SystemMonitor(const SystemMonitor&) = delete;
    SystemMonitor& operator=(const SystemMonitor&) = delete;

    /// The map published as `overview`, rebuilt by every refresh() (cheap to copy: shared).
    const QVariantMap& overview() const { return m_overviewMap; }
    const QList<double>& cpuHistory() const { return m_cpuHistory; }
    static QVariantMap labels();
    bool isMonitoring() const { return m_isMonitoring; }
    /// The latest sample as a plain value (for C++ users such as Smart Care).
    const SystemOverview& overviewValue() const { return m_overview; }

    /// Starts sampling: sets isMonitoring, samples at once and then every 2 seconds.
    /// Does nothing while already monitoring. GUI thread.
    Q_INVOKABLE void startMonitoring();
    /// Stops the timer and clears isMonitoring; keeps the figures and the previous CPU reading.
    /// Does nothing while idle. GUI thread.
    Q_INVOKABLE void stopMonitoring();
    /// Changes the time between two samples (milliseconds, at least 1; smaller values count as
    /// 1). Tests shorten it rather than wait for the real period; a running timer takes the new
    /// interval at once. GUI thread.
    void setIntervalMilliseconds(int milliseconds);
    /// The time between two samples in milliseconds (kIntervalMilliseconds by default).
    int intervalMilliseconds() const { return m_timer.interval(); }

    /// Takes one sample now: replaces cpu, memory and disk of the overview (host facts keep
    /// their values), appends the total CPU percentage to cpuHistory (dropping the oldest) and
    /// emits overviewChanged and cpuHistoryChanged. Works whether or not monitoring. GUI thread.
    Q_INVOKABLE void refresh();

signals:
    void overviewChanged();
    void cpuHistoryChanged();
    void isMonitoringChanged();

private:
    /// Rebuilds m_overviewMap from m_overview.
    void publishOverview();

    std::unique_ptr<SystemSampler> m_sampler;
    CpuLoadTracker m_cpuTracker;
    SystemOverview m_overview;
    QVariantMap m_overviewMap;
    QList<double> m_cpuHistory;
    QTimer m_timer; // child of this monitor, so tests can find it
    bool m_isMonitoring = false;
};

} // namespace sondrel
