#pragma once
// Removing the items of a Smart Clean, and listing the home Trash as manifest items. The clean
// sends each item through the removal chain of its kind: items in the Trash are removed for good
// (with their .trashinfo), orphaned leftovers go through the app chain into the Trash, the other
// junk through the junk chain (Trash first). Items that need administrator rights are gathered
// and handed to the privileged helper in one batch at the end, so one password prompt covers the
// whole clean.

#include "core/care/care_manifest.h"
#include "core/removal/removal_chains.h"
#include "core/util/cancel_token.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace sondrel {

/// One item a clean could not remove.
struct CareCleanFailure {
    std::string path;
    std::string reason; ///< one line, no path in it
};

/// What a clean did.
struct CareCleanResult {
    std::int64_t bytesFreed = 0;  ///< the sizes of the items that are gone afterwards
    std::size_t removedCount = 0; ///< items that are gone afterwards
    std::vector<CareCleanFailure> failures;
    bool cancelled = false; ///< the token was set before every item was tried
};

/// Progress of a clean: `done` of `total` items handled. Called on the cleaning thread.
using CareCleanProgress = std::function<void(std::size_t done, std::size_t total)>;

/// Removes `items` in order through their chains (see above) within `context` (its roots and,
/// when set, its administrator client, used once for the items no other step removed and that
/// need it). An item with nothing at its path counts as not freed and not failed. Polls `cancel`
/// before each item; `progress` may be empty. Blocking; safe on any thread.
CareCleanResult cleanCareItems(const std::vector<CareItem>& items, const RemovalContext& context,
                               const CancelToken& cancel, const CareCleanProgress& progress);

/// The entries of the home trash's files/ folder `trashFiles` as Trash items (allocated bytes,
/// each measured as `du` does). An unreadable or missing folder gives no items. Blocking.
std::vector<CareItem> listTrashItems(const std::string& trashFiles, const CancelToken& cancel);

} // namespace sondrel
