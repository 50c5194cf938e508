#pragma once
// The walk visitor that builds the storage section's size tree (internal to core/scan; see
// tree_scan.h for what the tree holds). Nodes are created in per-worker arenas as the listing
// finds entries; sizes arrive with the stats; finish() settles hard links, sums, drops what was
// never measured and sorts.

#include "core/fs/walk_visitor.h"
#include "core/model/file_tree.h"
#include "core/scan/link_sightings.h"

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace sondrel {

/// Builds the size tree of one walk. Callbacks run on the walk's workers; the constructor and
/// finish() on the thread that runs the walk, before and after it.
class SizeTreeVisitor final : public WalkVisitor {
public:
    /// A visitor whose root node is named `rootName`; folders 1..maxDepth below the root get
    /// children (maxDepth below 1 counts as 1). Nodes' `size` holds `measure`, `otherSize` the
    /// other measure; progress counts `measure`.
    SizeTreeVisitor(std::string_view rootName, int maxDepth, SizeMeasure measure);

    /// The token the walk needs for the root.
    FolderToken rootToken() const;

    /// After the walk: keeps each multiply-linked file's bytes at one link, drops folders that
    /// could not be opened and entries that were never measured (a cancelled walk), sums sizes,
    /// counts and bytes per category bottom-up and sorts every child list largest first (equal
    /// sizes in listing order). Moves the nodes into `tree` and sets its root. Returns the bytes to
    /// take off the progress counter for the links counted more than once.
    std::int64_t finish(FileTree& tree);

    void prepare(unsigned workers) override;
    bool folderFound(WalkWorker& worker, const WalkEntry& entry, FolderToken& child) override;
    bool fileFound(WalkWorker& worker, const WalkEntry& entry, void*& slot) override;
    void fileStat(WalkWorker& worker, FolderToken parent, void* slot, std::string_view name,
                  const struct stat* info) override;
    void statBatchDone(WalkWorker& worker, FolderToken folder) override;
    void folderSkipped(WalkWorker& worker, FolderToken folder, FolderSkip why) override;

private:
    struct alignas(64) WorkerState {
        NodeArena arena;
        std::int64_t pendingBytes = 0; // regular files of a collapsed folder or bundle
        std::int64_t pendingOther = 0; // the same in the other measure
        std::int64_t pendingFiles = 0;
        CategoryBytes pendingCategories; // the pending bytes of a collapsed folder by category
        std::vector<LinkSighting> links;
    };

    FileNode* m_root = nullptr;
    NodeArena m_rootArena;
    int m_maxDepth;
    SizeMeasure m_measure;
    std::vector<WorkerState> m_workers;
};

} // namespace sondrel
