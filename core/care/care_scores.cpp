#include "core/care/care_scores.h"

#include "core/monitor/disk_stats.h"
#include "core/monitor/memory_stats.h"

#include <algorithm>
#include <cmath>

namespace sondrel {

namespace {

constexpr int kHealthFloor = 25;
constexpr int kHealthFloorAfterClean = 95;
constexpr int kClutterAfterClean = 60;

} // namespace

double toGibibytes(std::int64_t bytes) {
    return std::ldexp(static_cast<double>(bytes), -30);
}

int clutterScore(std::int64_t reclaimableBytes) {
    const double gib = toGibibytes(reclaimableBytes);
    if (gib <= 0.25) {
        return 60;
    }
    if (gib <= 1) {
        return 52;
    }
    if (gib <= 3) {
        return 44;
    }
    if (gib <= 8) {
        return 32;
    }
    if (gib <= 20) {
        return 20;
    }
    return 10;
}

int diskScoreAfterScan(std::int64_t availableBytes) {
    const double gib = toGibibytes(availableBytes);
    if (gib >= 25) {
        return 25;
    }
    if (gib >= 15) {
        return 20;
    }
    if (gib >= 8) {
        return 14;
    }
    return 6;
}

int diskScoreAfterClean(std::int64_t availableBytes) {
    const double gib = toGibibytes(availableBytes);
    if (gib >= 25) {
        return 25;
    }
    if (gib >= 15) {
        return 20;
    }
    return 14;
}

int memoryScore(double usagePercent) {
    // NaN (an unreadable sample gives 0, never NaN, but be safe) counts as no pressure.
    if (!(usagePercent >= 80)) {
        return 15;
    }
    return usagePercent < 90 ? 12 : 8;
}

int healthScore(int clutter, int disk, int memory) {
    return std::max(clutter + disk + memory, kHealthFloor);
}

CareScores scoreAfterScan(const SmartCleanSummary& summary, const DiskStats& disk,
                          const MemoryStats& memory) {
    CareScores scores;
    scores.clutter = clutterScore(summary.totalReclaimableBytes());
    scores.disk = diskScoreAfterScan(disk.effectiveAvailableBytes());
    scores.memory = memoryScore(memory.usagePercent());
    scores.health = healthScore(scores.clutter, scores.disk, scores.memory);
    return scores;
}

CareScores scoreAfterClean(const DiskStats& disk, const MemoryStats& memory) {
    CareScores scores;
    scores.clutter = kClutterAfterClean;
    scores.disk = diskScoreAfterClean(disk.effectiveAvailableBytes());
    scores.memory = memoryScore(memory.usagePercent());
    scores.health = std::max(scores.clutter + scores.disk + scores.memory, kHealthFloorAfterClean);
    return scores;
}

} // namespace sondrel
