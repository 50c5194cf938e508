#pragma once
// The folder walk behind the storage views: builds the size tree of one folder.
//
// What the tree holds:
// - folders down to `maxDepth` levels below the root are expanded; a folder deeper than that is
//   a childless leaf carrying the whole size and regular-file count of its contents;
// - names beginning with '.' are never scanned, counted or shown; symbolic links are never
//   followed nor counted;
// - a folder whose name ends in ".app" (not inside another such folder) is measured whole and
//   shown as one file of category `application`;
// - every node has two sizes, allocated bytes (st_blocks * 512) and apparent bytes (st_size) of
//   its files; `size` holds the one the options ask for, `otherSize` the other (switch with
//   FileTree::setMeasure); a folder's sizes are the sums of its children's;
// - children are sorted largest first; equal sizes keep the order the folder listed them in,
//   at every level, so two scans of an unchanged folder give the same tree;
// - a folder that cannot be opened is left out; one that opens but cannot be listed has size 0.
//
// Design decisions that make the walk fast and safe:
// - parallel at every level: a work-stealing pool runs one job per folder (also inside
//   collapsed folders and bundles), so one huge subfolder does not serialise the scan;
// - the readability test is the open itself: openat relative to the parent's descriptor with
//   O_DIRECTORY|O_NOFOLLOW|O_CLOEXEC, then getdents64; fstatat only where a size is needed or
//   the entry type is unknown. Open descriptors are bounded; past the bound a folder is opened
//   by its path instead;
// - a multiply-linked file adds its bytes once per scan, keyed by (device, inode): the link
//   with the smallest path keeps them (the same one in every scan), the other links show 0;
// - pseudo, network and FUSE file systems below the root are not entered (empty folders);
// - names are bytes end to end; nodes store no paths (FileTree::pathOf derives them).

#include "core/model/file_item.h"
#include "core/model/file_tree.h"
#include "core/util/cancel_token.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace sondrel {

/// A progress report of a running scan. The counters count reports, not files: one per file
/// and per collapsed folder, three per application bundle; bytes are added with each report.
struct ScanProgress {
    std::int64_t items = 0;
    std::int64_t bytes = 0;
    /// Path of an item reported recently (bytes).
    std::string currentPath;
};

/// How to scan.
struct ScanOptions {
    /// Folders 1..maxDepth levels below the root get children (values below 1 count as 1).
    int maxDepth = 4;
    /// Worker threads; 0 picks a number from the machine (more than the cores, because folder
    /// reads block on a cold cache).
    unsigned threads = 0;
    /// Called on a worker thread at most once per `progressIntervalSeconds` (0: at every
    /// internal flush, for tests). Must be thread-safe and quick; may be empty.
    std::function<void(const ScanProgress&)> onProgress;
    double progressIntervalSeconds = 0.08;
    /// Enter pseudo, network and FUSE file systems below the root (off by default).
    bool enterForeignFilesystems = false;
    /// The size the tree shows first (and the progress counts); both are measured.
    SizeMeasure measure = SizeMeasure::apparent;
};

/// What a scan produced.
struct ScanResult {
    /// The tree (null when the target was refused). Shared so that FileItems keep it alive.
    std::shared_ptr<FileTree> tree;
    /// Final progress counters (same meaning as ScanProgress).
    std::int64_t items = 0;
    std::int64_t bytes = 0;
    double elapsedSeconds = 0;
    /// The walk was cancelled; the tree holds what was read until then.
    bool cancelled = false;
    /// The target could not be read; there is no tree.
    bool accessDenied = false;

    /// Handle to the root (null item when refused).
    FileItem rootItem() const { return tree ? FileItem::rootOf(tree) : FileItem(); }
};

/// Scans `rootPath` (trailing slashes ignored; the root itself may be a symbolic link) and
/// returns the finished, sorted tree. Blocks the calling thread, which takes part in the walk.
/// Stops early when `cancel` is set (the partial tree is returned with `cancelled`). A target
/// that cannot be opened and read gives `accessDenied` and no tree. Never throws for file
/// system errors.
ScanResult scanTree(const std::string& rootPath, const ScanOptions& options,
                    const CancelToken& cancel);

/// True when something exists at `path` and can be read: a folder that can be opened for
/// listing, or a file that can be opened for reading. Follows a symbolic link. Any thread.
bool isPathAccessibleAndReadable(const std::string& path);

} // namespace sondrel
