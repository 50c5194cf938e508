#pragma once
// Uninstalling one application the way it was installed: a bundle or an AppImage goes to the
// Trash (an AppImage with its desktop entry and icons), a Flatpak through `flatpak uninstall`,
// a Debian package or a Snap through the system's package manager. Its processes are asked to
// quit first; its selected leftovers go to the Trash afterwards.

#include "core/apps/app_info.h"
#include "core/apps/leftover_trash.h"
#include "core/util/subprocess.h"
#include "platform/locations.h"

#include <functional>
#include <string>
#include <vector>

namespace sondrel {

/// Runs an external program; the seam tests replace. Must be thread-safe.
using PackageCommandRunner = std::function<SubprocessResult(const SubprocessRequest&)>;

/// The outcome of removing a package.
struct PackageRemoval {
    bool removed = false;
    bool cancelled = false; ///< the password prompt was dismissed: nothing was removed
    std::string message;    ///< why not, one line
};

/// Removes packages for the uninstaller. Implementations must be callable from a worker
/// thread and must never go through a shell.
class PackageRemover {
public:
    virtual ~PackageRemover() = default;
    /// Other packages that removing `app`'s package would remove with it (empty when none or
    /// when it cannot tell). Blocking.
    virtual std::vector<std::string> alsoRemoved(const AppInfo& app) = 0;
    /// Removes `app`'s package (Debian, Snap or Flatpak). Blocking; may show a password prompt.
    virtual PackageRemoval remove(const AppInfo& app) = 0;
};

/// The package tools run as programs through `runner`: `flatpak uninstall` for a Flatpak (its
/// own installation), `pkexec apt-get remove` (or PackageKit's client) for a Debian package and
/// `pkexec snap remove` for a Snap; `apt-get -s remove` tells which other packages would go.
/// pkexec's status 126 or 127 means the prompt was dismissed.
class CommandPackageRemover final : public PackageRemover {
public:
    /// With `throughPackageKit`, a Debian package is removed by PackageKit's own client
    /// (`pkcon remove`, which talks to the daemon over D-Bus and lets polkit ask) instead of
    /// pkexec and apt-get; an authorisation it could not get counts as cancelled.
    explicit CommandPackageRemover(PackageCommandRunner runner, bool throughPackageKit = false)
        : m_run(std::move(runner)), m_packageKit(throughPackageKit) {}
    /// Whether PackageKit's client is installed (/usr/bin/pkcon).
    static bool packageKitClientInstalled();
    std::vector<std::string> alsoRemoved(const AppInfo& app) override;
    PackageRemoval remove(const AppInfo& app) override;

private:
    PackageCommandRunner m_run;
    bool m_packageKit = false;
};

/// The package names an `apt-get -s remove` output removes ("Remv NAME ..." lines), in order.
std::vector<std::string> parseSimulatedRemovals(const std::string& output);

/// What uninstallApp did.
struct UninstallResult {
    bool success = false;
    bool cancelled = false;        ///< a password prompt was dismissed; nothing was removed
    std::string error;             ///< for a failure, the text to show ("" on success)
    int terminated = 0;            ///< processes asked to quit
    LeftoverTrashReport leftovers; ///< the leftover step (empty when it did not run)
};

/// What uninstallApp needs besides the app.
struct UninstallTools {
    PackageRemover* packages = nullptr; ///< not owned; null refuses package removals
    std::string procRoot = "/proc";     ///< where processes are looked up
    bool terminateProcesses = true;
};

/// Uninstalls `app` of the home `locations`: SIGTERM to its processes, then its removal, then
/// (with `deleteAssociated`) its selected leftovers to the Trash through the app chain, only
/// within the home. When the application itself cannot be removed nothing else is touched and
/// `error` says so ("Could not move NAME.app to Trash. Please verify permissions or
/// administrator credentials." for a bundle). Blocking; any thread.
UninstallResult uninstallApp(const AppInfo& app, bool deleteAssociated, const Locations& locations,
                             const UninstallTools& tools);

/// The files that go with an AppImage: its desktop entry when it lies in the home, and the
/// icon files named after its icon below the home's icon folder.
std::vector<std::string> appImageCompanions(const AppInfo& app, const Locations& locations);

} // namespace sondrel
