#pragma once
// The installed-application catalogue: every application of a home, with its size and the
// leftovers it keeps in the home, and the leftovers of applications that are gone. One source
// per kind (macOS bundles; desktop entries matched to Debian packages, Flatpaks, Snaps and
// AppImages), each giving the same AppInfo record.

#include "core/apps/app_info.h"
#include "core/util/cancel_token.h"
#include "platform/locations.h"

#include <functional>
#include <string>
#include <vector>

namespace sondrel {

/// Where the package systems of the machine keep their state. Tests point these at fake roots;
/// an empty path turns that source off.
struct SystemRoots {
    std::string dpkgAdminDir;          ///< /var/lib/dpkg
    std::string flatpakSystemDir;      ///< /var/lib/flatpak
    std::string snapDir;               ///< /snap
    std::string snapDesktopDir;        ///< /var/lib/snapd/desktop/applications
    std::string snapSnapsDir;          ///< /var/lib/snapd/snaps
    std::vector<std::string> pathDirs; ///< the folders of $PATH, for the orphan rules

    /// This machine's folders and the process's $PATH.
    static SystemRoots forThisMachine();
};

/// What a discovery found.
struct AppDiscovery {
    std::vector<AppInfo> apps;           ///< largest total size first (stable)
    std::vector<AssociatedItem> orphans; ///< largest first (stable)
    bool cancelled = false;              ///< stopped early; the lists are partial
};

/// Progress of a discovery: a short phase text for the status line. Called on the discovering
/// thread; must be thread-safe and quick.
using AppDiscoveryProgress = std::function<void(const std::string& phase)>;

/// Discovers the applications of `locations` (macOS layout: ".app" bundles of its application
/// folders; Linux: desktop entries and the package systems of `roots`), their leftovers, and
/// the orphaned leftovers. `now` (seconds since the epoch) is the clock of the 7-day rule.
/// Blocking; any thread; never throws for file-system errors (what cannot be read is left out).
AppDiscovery discoverApps(const Locations& locations, const SystemRoots& roots,
                          const CancelToken& cancel, std::int64_t now,
                          const AppDiscoveryProgress& progress = {});

/// The applications alone, without leftovers or orphans, in discovery order (unsorted).
std::vector<AppInfo> listApplications(const Locations& locations, const SystemRoots& roots,
                                      const CancelToken& cancel);

/// The macOS-layout applications: ".app" children of each application folder, in order.
std::vector<AppInfo> listMacosBundles(const Locations& locations, const CancelToken& cancel);

/// The Linux applications: desktop entries, Flatpaks, Snaps and AppImages.
std::vector<AppInfo> listLinuxApps(const Locations& locations, const SystemRoots& roots,
                                   const CancelToken& cancel);

/// A PNG or SVG file for the desktop icon `icon` (a theme name or an absolute file): the hicolor
/// theme of the home's and the system's data folders at common sizes, then the pixmaps folder.
/// "" when none exists.
std::string findIconFile(const Locations& locations, const std::string& icon);

/// The size the uninstaller shows for what is at `path`: allocated bytes of a file or tree; on
/// the macOS layout a single file counts its length (as that layout's figures do). 0 when
/// nothing is there.
std::int64_t appItemSize(const std::string& path, HomeLayout layout, const CancelToken& cancel);

} // namespace sondrel
