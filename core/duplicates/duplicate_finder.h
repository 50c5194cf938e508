#pragma once
// A whole duplicate scan, synchronous: the size pass over the folders, then the sampled digest
// (sample_hash.h) of every file that shares its exact size with another, then the groups,
// ordered and pre-selected for the user.
//
// Design decisions beyond "equal size and equal sampled digest":
// - Hard links of one file (same device and inode) are one file, never copies of each other:
//   trashing one name frees nothing. Each (device, inode) is kept once (at its first path in
//   enumeration order), so links never form a group by themselves and count once in a group.
// - A file is hashed only when it is still the file the size pass saw (same device, inode and
//   size, regular): one that vanished, was replaced, shrank or grew in between is dropped, as
//   is one that cannot be opened or read.
// - Hashing runs on several threads at once, more than there are cores: on a cold disk the
//   readers mostly wait for the disk, and more requests in flight keep it busy.

#include "core/duplicates/candidate_collector.h"
#include "core/duplicates/duplicate_group.h"
#include "core/util/cancel_token.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace sondrel {

/// Where a running scan stands.
struct DuplicateScanProgress {
    enum class Phase : unsigned char { discovering, hashing };
    Phase phase = Phase::discovering;
    std::int64_t filesSeen = 0;   ///< discovering: entries listed so far
    std::size_t clustersDone = 0; ///< hashing: size clusters whose files are all hashed
    std::size_t clusterCount = 0; ///< hashing: size clusters to hash
};

/// What to scan and how.
struct DuplicateScanOptions {
    std::vector<std::string> folders;                 ///< absolute paths, walked in this order
    std::int64_t minimumSize = kDuplicateMinimumSize; ///< smaller files are never considered
    unsigned hashThreads = 0;                         ///< 0: picked from the machine
    /// Called from worker threads, throttled (and once when hashing starts); thread-safe and
    /// quick. May be empty.
    std::function<void(const DuplicateScanProgress&)> onProgress;
};

/// The outcome of a scan.
struct DuplicateScanResult {
    /// Groups sorted by wastedSize, largest first (stable); in each, files oldest first with
    /// the oldest unselected and every other copy selected.
    std::vector<DuplicateGroup> groups;
    std::size_t candidateCount = 0; ///< distinct files at or above the floor
    std::size_t clusterCount = 0;   ///< sizes shared by two or more of them
    bool cancelled = false;         ///< the scan stopped early; `groups` is empty then
};

/// Runs a scan. Blocks; polls `cancel`. Never throws for file-system errors.
DuplicateScanResult findDuplicates(const DuplicateScanOptions& options, const CancelToken& cancel);

/// Groups `candidates` (in enumeration order) as a scan does: one per (device, inode), sizes
/// shared by two or more, sampled digests, groups ordered and selected. Exposed for the
/// benchmark's floor and for tests. Blocks; polls `cancel`.
DuplicateScanResult groupCandidates(std::vector<DuplicateCandidate> candidates,
                                    const DuplicateScanOptions& options, const CancelToken& cancel);

/// The number of hashing threads used for `requested` (0 picks: four per core, at least 4,
/// at most 32).
unsigned hashThreadCount(unsigned requested);

} // namespace sondrel
