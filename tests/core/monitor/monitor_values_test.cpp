// Computed values of the telemetry records: CPU total clamping, memory and disk usage, effective
// available disk space, host facts.

#include "core/monitor/cpu_stats.h"
#include "core/monitor/disk_stats.h"
#include "core/monitor/memory_stats.h"
#include "core/monitor/system_overview.h"

#include <gtest/gtest.h>
#include <limits>

namespace sondrel {
namespace {

TEST(CPUStatsTest, DefaultIsIdle) {
    const CPUStats stats;
    EXPECT_EQ(stats.userPercent, 0.0);
    EXPECT_EQ(stats.systemPercent, 0.0);
    EXPECT_EQ(stats.idlePercent, 100.0);
    EXPECT_EQ(stats.totalUsagePercent(), 0.0);
}

TEST(CPUStatsTest, TotalIsUserPlusSystemClampedToPercentRange) {
    struct Case {
        double user;
        double system;
        double total;
    };
    const Case cases[] = {
        {12.5, 7.5, 20.0},   {0.0, 0.0, 0.0},
        {-5.0, 2.0, 0.0},    {80.0, 30.0, 100.0},
        {100.0, 0.0, 100.0}, {std::numeric_limits<double>::quiet_NaN(), 1.0, 0.0},
    };
    for (const Case& c : cases) {
        const CPUStats stats{c.user, c.system, 0.0};
        EXPECT_DOUBLE_EQ(stats.totalUsagePercent(), c.total) << c.user << " + " << c.system;
    }
}

TEST(MemoryStatsTest, UsedIsActiveWiredCompressedAndPercentOfTotal) {
    MemoryStats stats;
    stats.totalBytes = 16'000'000'000;
    stats.activeBytes = 6'000'000'000;
    stats.wiredBytes = 1'500'000'000;
    stats.compressedBytes = 500'000'000;
    stats.freeBytes = 2'000'000'000;
    EXPECT_EQ(stats.usedBytes(), 8'000'000'000u);
    EXPECT_DOUBLE_EQ(stats.usagePercent(), 50.0);
    EXPECT_EQ(stats.formattedUsed(), "8 GB");
}

TEST(MemoryStatsTest, ZeroTotalGivesZeroPercent) {
    MemoryStats stats;
    stats.activeBytes = 1000;
    EXPECT_EQ(stats.usagePercent(), 0.0);
    EXPECT_EQ(MemoryStats{}.formattedTotal(), "Zero KB");
}

TEST(DiskStatsTest, ComputedValues) {
    constexpr std::int64_t GB = 1'000'000'000;
    struct Case {
        const char* name;
        DiskStats disk;
        std::int64_t effectiveAvailable;
        std::int64_t used;
        std::int64_t rawUsed;
        double usagePercent;
    };
    const Case cases[] = {
        {"available reported", {100 * GB, 40 * GB, 0, 30 * GB}, 30 * GB, 70 * GB, 60 * GB, 70.0},
        {"available 0 falls back to free",
         {100 * GB, 10 * GB, 0, 0},
         10 * GB,
         90 * GB,
         90 * GB,
         90.0},
        {"free plus purgeable", {100 * GB, 10 * GB, 5 * GB, 0}, 15 * GB, 85 * GB, 90 * GB, 85.0},
        {"total 0", {0, 0, 0, 0}, 0, 0, 0, 0.0},
        {"total 0, space reported", {0, 10 * GB, 0, 5 * GB}, 5 * GB, 0, 0, 0.0},
        {"negative total", {-1, 0, 0, 0}, 0, 0, 0, 0.0},
        {"available above total", {10 * GB, 20 * GB, 0, 20 * GB}, 20 * GB, 0, 0, 0.0},
        // df's meanings: 100 GB, 10 GB reserved for root, 30 GB available: used 60 GB,
        // Use% = 60 / (60 + 30).
        {"reserved blocks are neither used nor free",
         {100 * GB, 30 * GB, 0, 30 * GB, 10 * GB},
         30 * GB,
         60 * GB,
         70 * GB,
         60.0 / 90.0 * 100.0},
        {"everything reserved", {10 * GB, 0, 0, 0, 10 * GB}, 0, 0, 10 * GB, 0.0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.disk.effectiveAvailableBytes(), c.effectiveAvailable);
        EXPECT_EQ(c.disk.usedBytes(), c.used);
        EXPECT_EQ(c.disk.rawUsedBytes(), c.rawUsed);
        EXPECT_DOUBLE_EQ(c.disk.usagePercent(), c.usagePercent);
    }
}

TEST(SystemOverviewTest, HostFactsAndUptimeInHours) {
    const SystemOverview overview =
        SystemOverview::withHostFacts({"build-box", "Debian GNU/Linux 12 (bookworm)", 12'240.0});
    EXPECT_EQ(overview.hostName, "build-box");
    EXPECT_EQ(overview.osVersion, "Debian GNU/Linux 12 (bookworm)");
    EXPECT_DOUBLE_EQ(overview.uptimeHours, 3.4);
    EXPECT_EQ(overview.formattedUptime(), "3.4 hours");
    EXPECT_EQ(overview.cpu, CPUStats{});
    EXPECT_EQ(overview.memory, MemoryStats{});
    EXPECT_EQ(overview.disk, DiskStats{});
}

TEST(SystemOverviewTest, UnknownOrBogusUptimeIsZero) {
    for (const double seconds : {0.0, -5.0, std::numeric_limits<double>::infinity(),
                                 std::numeric_limits<double>::quiet_NaN()}) {
        const SystemOverview overview = SystemOverview::withHostFacts({"", "", seconds});
        EXPECT_EQ(overview.uptimeHours, 0.0) << seconds;
        EXPECT_EQ(overview.formattedUptime(), "0.0 hours");
    }
}

} // namespace
} // namespace sondrel
