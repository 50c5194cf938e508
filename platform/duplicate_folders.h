#pragma once
// The folders the duplicate finder scans when the user names none.

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

} // namespace sondrel
