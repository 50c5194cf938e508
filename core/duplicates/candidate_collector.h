#pragma once
// The first pass of a duplicate scan: walk the chosen folders with the shared parallel walk and
// note every regular file at or above the size floor. Hidden entries are left out and `.app`
// bundles are never entered (their contents belong to the bundle, not to the user's files);
// links are never followed, FIFOs, sockets and devices are not candidates.

#include "core/util/cancel_token.h"

#include <cstdint>
#include <functional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace sondrel {

/// The smallest file a duplicate scan considers: 1 MiB (a file of exactly 1 MiB counts).
inline constexpr std::int64_t kDuplicateMinimumSize = 1048576;

/// One file found by the size pass. Plain value.
struct DuplicateCandidate {
    std::string path; ///< absolute, bytes
    std::int64_t size = 0;
    std::int64_t modifiedNs = 0; ///< modification time, nanoseconds since the epoch
    dev_t device = 0;
    ino_t inode = 0;
};

/// Walks each folder of `folders` in turn (a folder that is missing or cannot be listed is
/// skipped) and returns the regular files of at least `minimumSize` bytes, in "enumeration
/// order": by folder in the order given, then by path bytes within a folder (the walk itself
/// runs in parallel; the order is made deterministic afterwards). A file reached through two
/// folders (nested or bind-mounted) may appear twice; the caller keeps one per (device, inode).
/// `onFilesSeen` (may be empty) receives the running count of files listed, from a walk worker,
/// throttled. Blocks; stops early when `cancel` is set.
std::vector<DuplicateCandidate>
collectCandidates(const std::vector<std::string>& folders, std::int64_t minimumSize,
                  const CancelToken& cancel,
                  const std::function<void(std::int64_t)>& onFilesSeen = {});

} // namespace sondrel
