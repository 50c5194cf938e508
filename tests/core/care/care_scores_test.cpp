// The health score's tables at each of their boundaries, the floors of the scan and the clean,
// and the summary's sums.

#include "core/care/care_scores.h"
#include "core/care/care_sources.h"
#include "core/monitor/disk_stats.h"
#include "core/monitor/memory_stats.h"

#include <gtest/gtest.h>

#include <limits>

namespace sondrel {
namespace {

constexpr std::int64_t kGiB = std::int64_t{1} << 30;

DiskStats availableDisk(std::int64_t bytes) {
    DiskStats disk;
    disk.totalBytes = 500 * kGiB;
    disk.freeBytes = bytes;
    disk.availableBytes = bytes;
    return disk;
}

MemoryStats memoryAt(std::uint64_t usedPercent) {
    MemoryStats memory;
    memory.totalBytes = 100;
    memory.activeBytes = usedPercent;
    return memory;
}

TEST(CareScores, ClutterTableBoundaries) {
    EXPECT_EQ(clutterScore(0), 60);
    EXPECT_EQ(clutterScore(kGiB / 4), 60);
    EXPECT_EQ(clutterScore(kGiB / 4 + 1), 52);
    EXPECT_EQ(clutterScore(kGiB), 52);
    EXPECT_EQ(clutterScore(kGiB + 1), 44);
    EXPECT_EQ(clutterScore(3 * kGiB), 44);
    EXPECT_EQ(clutterScore(3 * kGiB + 1), 32);
    EXPECT_EQ(clutterScore(8 * kGiB), 32);
    EXPECT_EQ(clutterScore(8 * kGiB + 1), 20);
    EXPECT_EQ(clutterScore(20 * kGiB), 20);
    EXPECT_EQ(clutterScore(20 * kGiB + 1), 10);
    EXPECT_EQ(clutterScore(std::numeric_limits<std::int64_t>::max()), 10);
}

TEST(CareScores, DiskTablesAfterScanAndAfterClean) {
    EXPECT_EQ(diskScoreAfterScan(25 * kGiB), 25);
    EXPECT_EQ(diskScoreAfterClean(25 * kGiB), 25);
    EXPECT_EQ(diskScoreAfterScan(25 * kGiB - 1), 20);
    EXPECT_EQ(diskScoreAfterClean(25 * kGiB - 1), 20);
    EXPECT_EQ(diskScoreAfterScan(15 * kGiB), 20);
    EXPECT_EQ(diskScoreAfterScan(15 * kGiB - 1), 14);
    EXPECT_EQ(diskScoreAfterClean(15 * kGiB - 1), 14);
    EXPECT_EQ(diskScoreAfterScan(8 * kGiB), 14);
    EXPECT_EQ(diskScoreAfterScan(8 * kGiB - 1), 6);
    // 7.9 GiB: the scan's lowest step, which the clean's table does not have.
    const auto sevenPointNine = static_cast<std::int64_t>(7.9 * static_cast<double>(kGiB));
    EXPECT_EQ(diskScoreAfterScan(sevenPointNine), 6);
    EXPECT_EQ(diskScoreAfterClean(sevenPointNine), 14);
    EXPECT_EQ(diskScoreAfterScan(0), 6);
    EXPECT_EQ(diskScoreAfterClean(0), 14);
}

TEST(CareScores, MemoryTableBoundaries) {
    EXPECT_EQ(memoryScore(0), 15);
    EXPECT_EQ(memoryScore(79.999), 15);
    EXPECT_EQ(memoryScore(80), 12);
    EXPECT_EQ(memoryScore(89.999), 12);
    EXPECT_EQ(memoryScore(90), 8);
    EXPECT_EQ(memoryScore(100), 8);
    EXPECT_EQ(memoryScore(std::numeric_limits<double>::quiet_NaN()), 15);
}

TEST(CareScores, HealthHasAFloorOf25) {
    EXPECT_EQ(healthScore(10, 6, 8), 25); // sum 24
    EXPECT_EQ(healthScore(10, 6, 9), 25);
    EXPECT_EQ(healthScore(10, 8, 8), 26);
    EXPECT_EQ(healthScore(60, 25, 15), 100);
    EXPECT_EQ(kInitialCareScores.health, 98);
    EXPECT_EQ(kInitialCareScores.clutter + kInitialCareScores.disk + kInitialCareScores.memory,
              100);
}

TEST(CareScores, ScanReadsEffectiveAvailableAndUsagePercent) {
    SmartCleanSummary summary;
    summary.logBytes = 2 * kGiB;
    DiskStats disk;
    disk.totalBytes = 100 * kGiB;
    disk.freeBytes = 10 * kGiB; // no available figure: free + purgeable counts
    const CareScores scores = scoreAfterScan(summary, disk, memoryAt(85));
    EXPECT_EQ(scores, (CareScores{44, 14, 12, 70}));

    const CareScores worst =
        scoreAfterScan(SmartCleanSummary{0, 0, 0, 0, 30 * kGiB}, availableDisk(kGiB), memoryAt(95));
    EXPECT_EQ(worst, (CareScores{10, 6, 8, 25}));
}

TEST(CareScores, CleanAlwaysEndsBetween95And100WithClutter60) {
    for (const std::int64_t available :
         {std::int64_t{0}, 7 * kGiB, 8 * kGiB, 15 * kGiB, 24 * kGiB, 25 * kGiB, 400 * kGiB}) {
        for (const std::uint64_t used : {0, 50, 80, 89, 90, 100}) {
            const CareScores scores = scoreAfterClean(availableDisk(available), memoryAt(used));
            EXPECT_EQ(scores.clutter, 60);
            EXPECT_GE(scores.health, 95) << available << " " << used;
            EXPECT_LE(scores.health, 100) << available << " " << used;
        }
    }
    EXPECT_EQ(scoreAfterClean(availableDisk(0), memoryAt(95)), (CareScores{60, 14, 8, 95}));
    EXPECT_EQ(scoreAfterClean(availableDisk(30 * kGiB), memoryAt(10)),
              (CareScores{60, 25, 15, 100}));
}

TEST(CareSummary, SumsAndSaturates) {
    SmartCleanSummary summary;
    EXPECT_EQ(summary.totalReclaimableBytes(), 0);
    EXPECT_EQ(summary.formattedTotal(), "Zero KB");
    summary.add(CareCategory::developerCaches, 1);
    summary.add(CareCategory::orphanedLeftovers, 20);
    summary.add(CareCategory::appCaches, 300);
    summary.add(CareCategory::logs, 4000);
    summary.add(CareCategory::trash, 50000);
    EXPECT_EQ(summary, (SmartCleanSummary{1, 20, 300, 4000, 50000}));
    EXPECT_EQ(summary.totalReclaimableBytes(), 54321);
    summary.add(CareCategory::trash, std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(summary.totalReclaimableBytes(), std::numeric_limits<std::int64_t>::max());
}

TEST(CareSummary, DependencyFoldersCountNowhere) {
    EXPECT_EQ(careCategoryOf(JunkType::xcode), CareCategory::developerCaches);
    EXPECT_EQ(careCategoryOf(JunkType::userCaches), CareCategory::appCaches);
    EXPECT_EQ(careCategoryOf(JunkType::logs), CareCategory::logs);
    EXPECT_EQ(careCategoryOf(JunkType::trash), CareCategory::trash);
    EXPECT_EQ(careCategoryOf(JunkType::nodeModules), std::nullopt);
    EXPECT_EQ(careCategoryOf(JunkType::orphaned), std::nullopt);
    for (CareCategory category : kCareCategories) {
        EXPECT_EQ(careCategoryFromKey(careCategoryKey(category)), category);
    }
    EXPECT_EQ(careCategoryFromKey("Trash"), std::nullopt);
}

} // namespace
} // namespace sondrel
