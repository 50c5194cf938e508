#pragma once
// The files an application leaves in the home (its leftovers), and the leftovers of
// applications that are no longer installed (orphans). Matching is by exact names only; the
// orphan rules err on the side of keeping things.

#include "core/apps/app_info.h"
#include "core/util/cancel_token.h"
#include "platform/app_catalogue.h"
#include "platform/locations.h"

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace sondrel {

/// Orphans are reported only above this size, in bytes.
inline constexpr std::int64_t kOrphanMinimumBytes = 102400;
/// On Linux, nothing modified within this many seconds is an orphan.
inline constexpr std::int64_t kOrphanQuietSeconds = 7 * 24 * 3600;

/// The leftovers of `app` in the home of `locations`, in the layout's candidate order, each
/// path once and only when it exists with a size above 0. macOS layout: the ten ~/Library
/// places by name and bundle identifier. Linux: ~/.config, ~/.local/share, ~/.cache and
/// ~/.local/state entries named like the application, its identifier or its package, the
/// Flatpak's ~/.var/app/<id>, the Snap's ~/snap/<name> and its autostart entry; never a path
/// outside the home. Blocking.
std::vector<AssociatedItem> findAssociatedFiles(const Locations& locations, const AppInfo& app,
                                                const CancelToken& cancel);

/// The orphaned leftovers, largest first. macOS layout: children of Application Support, Caches
/// and Saved Application State whose lower-cased name contains no exclusion word, no installed
/// application name and no bundle identifier, above kOrphanMinimumBytes. Linux: entries of
/// ~/.var/app whose Flatpak is gone, and entries of ~/.config, ~/.local/share and ~/.cache that
/// match no installed application, package or executable on the path and no keep word; above
/// kOrphanMinimumBytes and unchanged for kOrphanQuietSeconds before `now`. Blocking.
std::vector<AssociatedItem> findOrphanedLeftovers(const Locations& locations,
                                                  const std::vector<AppInfo>& apps,
                                                  const SystemRoots& roots, std::int64_t now,
                                                  const CancelToken& cancel);

/// Whether the lower-cased name `name` is protected on Linux by a keep word (toolkits, the
/// desktop, shells, version control, the program itself).
bool hasKeepWord(const std::string& name);

} // namespace sondrel
