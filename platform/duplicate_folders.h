#pragma once
// The folders the duplicate finder scans when the user names none, and the removal context its
// trash runs use.

#include "core/removal/removal_chains.h"
#include "platform/locations.h"

#include <string>
#include <vector>

namespace sondrel {

/// The everyday folders of the home, in this order: Downloads, Documents, Desktop, Videos and
/// Pictures (the XDG user folders on Linux, following user-dirs.dirs; Downloads, Documents,
/// Desktop, Movies and Pictures in the macOS layout). A user folder that is the home itself
/// (the XDG way of turning one off) and repeats are left out; folders that do not exist are
/// kept (the scan skips them).
std::vector<std::string> defaultDuplicateFolders(const Locations& locations);

/// The removal context for trashing duplicates found in `roots` by the user of `locations`:
/// the user's home trash, the roots as the only allowed places, no administrator step.
RemovalContext duplicateRemovalContext(const Locations& locations,
                                       const std::vector<std::string>& roots);

} // namespace sondrel
