#pragma once
// The one parallel folder walk: every feature that reads a folder tree runs it with a visitor
// of its own (walk_visitor.h). What it guarantees, for every visitor:
// - symbolic links below the root are never followed (folders are opened relative to their
//   parent's descriptor with O_DIRECTORY|O_NOFOLLOW; a link is reported as a link);
// - pseudo, network and FUSE file systems below the root are not entered, nor is a second view
//   of a file system the walk is already in (a bind mount of a folder of the tree, or of one
//   outside it on the same disk), so no byte is seen twice through a mount; with
//   `oneFilesystem` no mount point below the root is entered at all;
// - descriptors stay within a budget and no thread's stack grows with the depth, so a 5,000-level
//   chain and a 300,000-entry folder are walked like any other;
// - a cancel stops every worker at its next entry;
// - progress reaches `onProgress` at most once per interval, from a worker thread.
// Hard links are the visitor's concern (each visitor counts what it counts): measure_tree.cpp keeps
// one (device, inode) once across workers.
//
// How it is fast: a work-stealing pool runs one job per folder (and one per slice of a wide
// folder's files), newest first on each worker, so one huge subfolder does not serialise the
// walk; the readability test is the open itself; entry types come from getdents64 and lstat is
// called only for what the visitor asks for.

#include "core/fs/walk_visitor.h"
#include "core/util/cancel_token.h"

#include <cstdint>
#include <string>

namespace sondrel {

/// How a walk ended.
struct WalkOutcome {
    /// The root could be opened as a folder and was walked (maybe partly: see `cancelled`).
    bool opened = false;
    /// errno of the failed open of the root (when `opened` is false).
    int error = 0;
    /// The walk stopped early because `cancel` was set.
    bool cancelled = false;
    /// Final sums of what the visitor reported (WalkWorker::report).
    std::int64_t items = 0;
    std::int64_t bytes = 0;
};

/// Walks the folder at `rootPath` (trailing slashes ignored; a link as the root itself is
/// followed with `followRootLink`): folderOpened(root) first, then the callbacks for everything
/// below. `rootToken` is the visitor's handle on the root. Blocks; the calling thread is one of
/// the workers. Never throws for file-system errors: they reach the visitor as skips and null
/// stats.
WalkOutcome walkTree(const std::string& rootPath, FolderToken rootToken, const WalkOptions& options,
                     WalkVisitor& visitor, const CancelToken& cancel);

/// Like walkTree for a root folder already open at `rootFd` (taken over and closed), whose path
/// is `rootPath`.
WalkOutcome walkTreeAt(int rootFd, const std::string& rootPath, FolderToken rootToken,
                       const WalkOptions& options, WalkVisitor& visitor, const CancelToken& cancel);

} // namespace sondrel
