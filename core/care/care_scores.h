#pragma once
// The Smart Care health score: three sub-scores (clutter out of 60, disk headroom out of 25,
// memory pressure out of 15) and their sum with a floor. A scan scores all three from its
// findings; a clean re-scores without rescanning, with the clutter taken as gone and a coarser
// disk table, so that a finished clean always reads 95 or more. Pure functions; any thread.

#include "core/care/smart_clean_summary.h"

#include <cstdint>

namespace sondrel {

struct DiskStats;
struct MemoryStats;

/// The four published scores.
struct CareScores {
    int clutter = 60;
    int disk = 25;
    int memory = 15;
    int health = 98;
    bool operator==(const CareScores&) const = default;
};

/// The scores an engine shows before its first scan (98 is not the sum of the others on
/// purpose: both values are what a fresh dashboard shows).
inline constexpr CareScores kInitialCareScores{60, 25, 15, 98};

/// Bytes as gibibytes (bytes / 2^30).
double toGibibytes(std::int64_t bytes);

/// Clutter from the reclaimable total: <= 0.25 GiB 60, <= 1 GiB 52, <= 3 GiB 44, <= 8 GiB 32,
/// <= 20 GiB 20, above 10.
int clutterScore(std::int64_t reclaimableBytes);
/// Disk headroom after a scan, from the bytes the user can still write: >= 25 GiB 25,
/// >= 15 GiB 20, >= 8 GiB 14, below 6.
int diskScoreAfterScan(std::int64_t availableBytes);
/// Disk headroom after a clean: >= 25 GiB 25, >= 15 GiB 20, otherwise 14 (no step of 6).
int diskScoreAfterClean(std::int64_t availableBytes);
/// Memory pressure from the used share (0..100): below 80 15, below 90 12, otherwise 8.
int memoryScore(double usagePercent);
/// clutter + disk + memory, never below 25.
int healthScore(int clutter, int disk, int memory);

/// The scores after a scan that found `summary`, with the disk and memory figures `disk` and
/// `memory` (effective available bytes and usage percent are read from them).
CareScores scoreAfterScan(const SmartCleanSummary& summary, const DiskStats& disk,
                          const MemoryStats& memory);
/// The scores after a clean: clutter 60, the clean's disk table, the memory table, and a health
/// of 60 + disk + memory but never below 95.
CareScores scoreAfterClean(const DiskStats& disk, const MemoryStats& memory);

} // namespace sondrel
