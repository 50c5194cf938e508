#include "app/system_monitor.h"

#include "core/model/platform_terms.h"

#include <QString>
#include <algorithm>
#include <utility>

namespace sondrel {

namespace {

QString percentText(double percent) {
    return QString::asprintf("%.0f%%", percent);
}

QString text(const std::string& utf8) {
    return QString::fromStdString(utf8);
}

double fractionOf(std::uint64_t part, std::uint64_t total) {
    return total == 0 ? 0.0 : static_cast<double>(part) / static_cast<double>(total);
}

QVariantMap cpuMap(const CPUStats& cpu) {
    QVariantMap map;
    map.insert("userPercent", cpu.userPercent);
    map.insert("systemPercent", cpu.systemPercent);
    map.insert("idlePercent", cpu.idlePercent);
    map.insert("totalUsagePercent", cpu.totalUsagePercent());
    map.insert("formattedTotalUsage", percentText(cpu.totalUsagePercent()));
    map.insert("formattedUserAndSystem", QStringLiteral("User: ") + percentText(cpu.userPercent) +
                                             QStringLiteral(" | System: ") +
                                             percentText(cpu.systemPercent));
    return map;
}

QVariantMap memoryMap(const MemoryStats& memory) {
    QVariantMap map;
    map.insert("totalBytes", static_cast<double>(memory.totalBytes));
    map.insert("activeBytes", static_cast<double>(memory.activeBytes));
    map.insert("wiredBytes", static_cast<double>(memory.wiredBytes));
    map.insert("compressedBytes", static_cast<double>(memory.compressedBytes));
    map.insert("freeBytes", static_cast<double>(memory.freeBytes));
    map.insert("usedBytes", static_cast<double>(memory.usedBytes()));
    map.insert("usagePercent", memory.usagePercent());
    map.insert("formattedUsagePercent", percentText(memory.usagePercent()));
    map.insert("formattedTotal", text(memory.formattedTotal()));
    map.insert("formattedUsed", text(memory.formattedUsed()));
    map.insert("formattedFree", text(memory.formattedFree()));
    map.insert("formattedActive", text(memory.formattedActive()));
    map.insert("formattedWired", text(memory.formattedWired()));
    map.insert("formattedCompressed", text(memory.formattedCompressed()));
    map.insert("formattedUsedOfTotal",
               text(memory.formattedUsed() + " of " + memory.formattedTotal()));
    map.insert("activeFraction", fractionOf(memory.activeBytes, memory.totalBytes));
    map.insert("wiredFraction", fractionOf(memory.wiredBytes, memory.totalBytes));
    map.insert("compressedFraction", fractionOf(memory.compressedBytes, memory.totalBytes));
    return map;
}

QVariantMap diskMap(const DiskStats& disk) {
    QVariantMap map;
    map.insert("totalBytes", static_cast<double>(disk.totalBytes));
    map.insert("freeBytes", static_cast<double>(disk.freeBytes));
    map.insert("purgeableBytes", static_cast<double>(disk.purgeableBytes));
    map.insert("availableBytes", static_cast<double>(disk.availableBytes));
    map.insert("effectiveAvailableBytes", static_cast<double>(disk.effectiveAvailableBytes()));
    map.insert("usedBytes", static_cast<double>(disk.usedBytes()));
    map.insert("rawUsedBytes", static_cast<double>(disk.rawUsedBytes()));
    map.insert("usagePercent", disk.usagePercent());
    map.insert("formattedUsagePercent", percentText(disk.usagePercent()));
    map.insert("formattedTotal", text(disk.formattedTotal()));
    map.insert("formattedUsed", text(disk.formattedUsed()));
    map.insert("formattedFree", text(disk.formattedFree()));
    map.insert("formattedPurgeable", text(disk.formattedPurgeable()));
    map.insert("formattedEffectiveAvailable", text(disk.formattedEffectiveAvailable()));
    map.insert("reservedBytes", static_cast<double>(disk.reservedBytes));
    map.insert("formattedReserved", text(disk.formattedReserved()));
    map.insert("formattedUsedOfTotal",
               text(disk.formattedUsed() + " of " + disk.formattedTotal() + " (" +
                    disk.formattedEffectiveAvailable() + " available)"));
    return map;
}

} // namespace

SystemMonitor::SystemMonitor(QObject* parent) : SystemMonitor(makeSystemSampler(), parent) {}

SystemMonitor::SystemMonitor(std::unique_ptr<SystemSampler> sampler, QObject* parent)
    : QObject(parent), m_sampler(std::move(sampler)),
      m_overview(SystemOverview::withHostFacts(m_sampler->hostFacts())),
      m_cpuHistory(kHistoryLength, 0.0), m_timer(this) {
    m_timer.setInterval(kIntervalMilliseconds);
    m_timer.setTimerType(Qt::CoarseTimer);
    connect(&m_timer, &QTimer::timeout, this, &SystemMonitor::refresh);
    publishOverview();
}

SystemMonitor::~SystemMonitor() = default;

void SystemMonitor::publishOverview() {
    QVariantMap map;
    map.insert("cpu", cpuMap(m_overview.cpu));
    map.insert("memory", memoryMap(m_overview.memory));
    map.insert("disk", diskMap(m_overview.disk));
    map.insert("hostName", text(m_overview.hostName));
    map.insert("osVersion", text(m_overview.osVersion));
    map.insert("uptimeHours", m_overview.uptimeHours);
    map.insert("formattedUptime", text(m_overview.formattedUptime()));
    m_overviewMap = std::move(map);
}

QVariantMap SystemMonitor::labels() {
    const auto term = [](const char* text) {
        return QString::fromStdString(withPlatformTerms(text, currentTextPlatform()));
    };
    QVariantMap map;
    map.insert("headerSubtitle",
               term("Live telemetry on Apple Silicon / Intel processors, APFS storage, and RAM "
                    "pressure"));
    map.insert("storageCardTitle", term("APFS Storage"));
    map.insert("availableRowLabel", term("Available (Finder)"));
    map.insert("hostNameLabel", term("Mac Name"));
    map.insert("osVersionLabel", term("macOS Version"));
    return map;
}

void SystemMonitor::startMonitoring() {
    if (m_isMonitoring) {
        return;
    }
    m_isMonitoring = true;
    emit isMonitoringChanged();
    refresh();
    m_timer.start();
}

void SystemMonitor::stopMonitoring() {
    if (!m_isMonitoring) {
        return;
    }
    m_timer.stop();
    m_isMonitoring = false;
    emit isMonitoringChanged();
}

void SystemMonitor::setIntervalMilliseconds(int milliseconds) {
    m_timer.setInterval(std::max(milliseconds, 1));
}

void SystemMonitor::refresh() {
    m_overview.cpu = m_cpuTracker.next(m_sampler->processorTicks());
    m_overview.memory = m_sampler->memory();
    m_overview.disk = m_sampler->disk();
    m_cpuHistory.append(m_overview.cpu.totalUsagePercent());
    while (m_cpuHistory.size() > kHistoryLength) {
        m_cpuHistory.removeFirst();
    }
    publishOverview();
    emit overviewChanged();
    emit cpuHistoryChanged();
}

} // namespace sondrel
