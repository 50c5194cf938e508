#pragma once
// What a Smart Clean did (see care_sources.h for the clean itself).

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

} // namespace sondrel
