#pragma once
// The junk scan: looks through one home for developer caches, project dependency folders, user
// caches, logs and the Trash's entries, and returns them as groups in the screen's order. Every
// size is measured with measureTree (allocated bytes of a folder, the length of a single file);
// every folder tree is read through the one parallel walk.

#include "core/junk/junk_folders.h"
#include "core/junk/junk_group.h"
#include "core/util/cancel_token.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace sondrel {

/// Developer caches and logs are listed above this many bytes (strictly).
inline constexpr std::int64_t kJunkSmallThreshold = 1024 * 1024;
/// node_modules folders and user caches are listed above this many bytes (strictly).
inline constexpr std::int64_t kJunkLargeThreshold = 10 * 1024 * 1024;
/// At most this many user caches are listed (the largest).
inline constexpr std::size_t kJunkUserCacheLimit = 20;

/// The status while a scan runs.
inline constexpr const char* kJunkScanningText = "Scanning for developer caches, logs & junk...";

/// How to scan.
struct JunkScanOptions {
    /// Whether the user may write to a path (the default asks access(W_OK)); a user cache
    /// folder the user cannot write to is listed as locked. Tests replace it.
    std::function<bool(const std::string& path)> isWritable;
    /// Worker threads of each measurement (0: from the machine).
    unsigned threads = 0;
};

/// Scans the home described by `folders`. Groups come in JunkType order, one per category that
/// found something; texts follow the layout (the Linux layout's through the platform terms).
/// Unreadable or missing folders contribute nothing. A cancel stops early and returns what was
/// found so far. Blocks; any thread; never throws for file-system errors.
std::vector<JunkGroup> scanJunk(const JunkFolders& folders, const JunkScanOptions& options,
                                const CancelToken& cancel);

/// scanJunk with default options.
std::vector<JunkGroup> scanJunk(const JunkFolders& folders, const CancelToken& cancel);

/// The folders a scan of `folders` finds items in and that a clean may remove from: the
/// developer caches' parent folders, the dependency search roots, the cache folder, the log
/// folders and the Trash's files/ folder. Each item's own root is one of them.
std::vector<std::string> junkRoots(const JunkFolders& folders);

/// "Found " + the formatted total of `groups` + " of cleanable space".
std::string junkFoundText(const std::vector<JunkGroup>& groups);

} // namespace sondrel
