#pragma once
// Trashing the selected copies of duplicate groups. Every selected copy is first verified
// against the copy that is kept (duplicate_verify.h) and only then moved through the duplicate
// removal chain (Trash, then a manual move into the home trash; never an administrator step).

#include "core/duplicates/duplicate_group.h"
#include "core/removal/removal_chains.h"
#include "core/util/cancel_token.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace sondrel {

/// A selected copy that stayed where it was, and why.
struct DuplicateTrashFailure {
    std::string path;   ///< bytes
    std::string reason; ///< one line, no path in it
};

/// The outcome of a trash run.
struct DuplicateTrashReport {
    /// Copies moved to the Trash plus selected copies that were already gone (nothing at their
    /// path when their turn came): either way the copy is no longer there.
    std::size_t moved = 0;
    std::int64_t freed = 0; ///< sum of the sizes of the copies this run moved (not the gone ones)
    std::vector<std::string> movedPaths;       ///< the copies this run moved
    std::vector<std::string> alreadyGonePaths; ///< the selected copies that were already gone
    std::vector<DuplicateTrashFailure> failures;
    /// The groups afterwards, in the same order: moved and already gone copies are dropped,
    /// failed copies stay (still selected), groups left with fewer than two files are dropped.
    std::vector<DuplicateGroup> remaining;
    bool cancelled = false; ///< stopped early; copies not reached stay as they were
};

/// Moves every selected copy of `groups` to the Trash, group by group and file by file in
/// order. A selected copy with nothing at its path counts as removed without being verified.
/// In each group the reference is the first unselected file (when every file is
/// selected, the first file, which is then trashed last and only checked unchanged). Each other
/// selected copy is trashed only when verifyCopy finds it identical to the reference; otherwise
/// it counts as failed with the verdict as reason. `onProgress(done, total)` (may be empty) is
/// called after each selected copy, on the calling thread. Blocks.
DuplicateTrashReport
trashSelectedDuplicates(std::vector<DuplicateGroup> groups, const RemovalContext& context,
                        const CancelToken& cancel,
                        const std::function<void(std::size_t, std::size_t)>& onProgress = {});

} // namespace sondrel
