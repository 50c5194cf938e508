#pragma once
// Moving leftovers (of an uninstalled application, or orphaned ones) to the Trash through the
// application removal chain, one by one, reporting each.

#include "core/apps/associated_item.h"
#include "core/removal/removal_chains.h"
#include "core/util/cancel_token.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace sondrel {

/// What became of one leftover.
struct LeftoverOutcome {
    std::uint64_t id = 0; ///< the item's id
    std::string path;
    bool removed = false;    ///< nothing is at the path any more
    std::string message;     ///< why not, one line without the path ("" when removed)
    std::string trashedPath; ///< where it went, when it was moved to a Trash
};

/// The outcome of a run.
struct LeftoverTrashReport {
    std::vector<LeftoverOutcome> outcomes; ///< one per item reached, in the items' order
    std::size_t removed = 0;
    std::int64_t freed = 0; ///< sum of the removed items' sizes
    bool cancelled = false; ///< stopped early; items not reached are untouched
};

/// Moves each of `items` (whether selected or not: the caller passes what is to go) to the Trash
/// with safeMoveToTrash, which refuses paths outside `context`'s roots; a link is moved as the
/// link. `onProgress(done, total)` (may be empty) runs after each item on the calling thread.
/// Blocking; thread-safe (keeps no state); never throws.
LeftoverTrashReport
trashLeftovers(const std::vector<AssociatedItem>& items, const RemovalContext& context,
               const CancelToken& cancel,
               const std::function<void(std::size_t, std::size_t)>& onProgress = {});

} // namespace sondrel
