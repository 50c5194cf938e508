#pragma once
// The parallel folder walk under scanTree (internal to core/scan): reads one folder tree into
// arena nodes with a work-stealing pool. See tree_scan.h for what the tree holds and why.

#include "core/model/file_tree.h"
#include "core/scan/cancel_token.h"
#include "core/scan/foreign_mounts.h"
#include "core/scan/tree_scan.h"

#include <cstdint>
#include <string>
#include <vector>

namespace sondrel {

/// What walkFolder read: unsorted nodes with unsummed folder sizes (see finishTree in
/// tree_scan.cpp), in one arena per worker.
struct FolderWalk {
    std::vector<NodeArena> arenas;
    FileNode* root = nullptr;
    /// Progress counters at the end (bytes of further hard links already taken off).
    std::int64_t items = 0;
    std::int64_t bytes = 0;
};

/// Marker in `fileCount` of a folder node whose folder could not be opened (to be dropped).
inline constexpr std::int64_t kUnreadableFolder = -1;

/// Walks the folder open at `rootFd` (taken over and closed) whose path is `rootPath`; the root
/// node is named `rootName`. Foreign file systems in `mounts` are not entered when
/// `checkMounts` is set. Blocks; the calling thread is one of the workers.
FolderWalk walkFolder(int rootFd, const std::string& rootPath, std::string_view rootName,
                      const ScanOptions& options, const CancelToken& cancel, ForeignMounts mounts,
                      bool checkMounts);

} // namespace sondrel
