#pragma once
// The items a Smart Clean chooses from, as the junk scan and the application scan found them,
// and the clean that hands every chosen item back to the removal chain of the scan that found
// it: junk through the junk clean (its own roots, the Trash group removed for good, one
// administrator call for everything that needs it), orphaned leftovers to the Trash. So the
// manifest, the junk screen and the uninstaller remove a given file in exactly the same way.

#include "core/apps/associated_item.h"
#include "core/care/care_clean.h"
#include "core/care/care_manifest.h"
#include "core/junk/junk_group.h"
#include "core/removal/removal_chains.h"
#include "core/util/cancel_token.h"

#include <optional>
#include <vector>

namespace sondrel {

/// What one Smart Scan found, kept until the clean. Plain values.
struct CareSources {
    std::vector<JunkItem> junk;          ///< items of the groups Smart Care counts
    std::vector<AssociatedItem> orphans; ///< orphaned leftovers of removed applications
};

/// The manifest category of a junk group's type; none for dependency folders, which Smart
/// Care never counts nor removes.
std::optional<CareCategory> careCategoryOf(JunkType type);

/// The sources of a scan: every item of the counted junk groups, and `orphans`.
CareSources careSourcesOf(const std::vector<JunkGroup>& groups,
                          std::vector<AssociatedItem> orphans);

/// The manifest items of `sources`, in their order (junk first, then orphans).
std::vector<CareItem> careItemsOf(const CareSources& sources);

/// Removes the `chosen` items (manifest items of `sources`; one that `sources` does not hold is
/// reported as a failure and left alone). Junk items go through cleanJunkItems with `context`
/// (its administrator, when set, is asked once); orphans through trashLeftovers within
/// `context`'s roots. Polls `cancel`; `progress` may be empty. Blocking; any thread.
CareCleanResult cleanFromSources(const std::vector<CareItem>& chosen, const CareSources& sources,
                                 const RemovalContext& context, const CancelToken& cancel,
                                 const CareCleanProgress& progress);

} // namespace sondrel
