#pragma once
// One installed application as the catalogue finds it, whatever installed it: a macOS
// application bundle, a Debian package, a Flatpak, a Snap, an AppImage or a desktop entry that
// no package owns.

#include "core/apps/associated_item.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace sondrel {

/// What installed an application, and so how it is uninstalled.
enum class AppKind : unsigned char {
    bundle,   ///< a macOS ".app" bundle: moved to the Trash
    debian,   ///< a Debian package: removed by the package manager
    flatpak,  ///< a Flatpak app: `flatpak uninstall` for its installation
    snap,     ///< a Snap: removed by the package manager
    appImage, ///< an AppImage file: the file, its desktop entry and icons go to the Trash
    local,    ///< a desktop entry no package owns: only an entry in the home can be removed
};

/// The kind's stable key ("debian"), also used in JSON output.
std::string_view appKindKey(AppKind kind);

/// One application. Plain value; the list the catalogue returns owns them.
struct AppInfo {
    std::uint64_t id = 0;    ///< unique in this process (newItemId)
    std::string name;        ///< display name
    std::string identifier;  ///< bundle id, Flatpak id, snap name or desktop-file id sans .desktop
    std::string version;     ///< as the package says, "1.0" when it says nothing
    std::string location;    ///< the bundle, AppImage file, deploy folder, snap or desktop file
    std::string desktopFile; ///< the desktop entry shown in menus, "" when none
    std::string icon;        ///< icon name of the desktop's theme or an absolute icon file
    std::string iconFile;    ///< a PNG or SVG file of that icon, "" when none was found
    std::int64_t bundleSize = 0; ///< bytes of the application's own files
    AppKind kind = AppKind::local;
    std::string package;                  ///< Debian package, Flatpak id or snap name; "" otherwise
    bool systemInstallation = true;       ///< Flatpak: the system installation (else the user's)
    std::vector<std::string> executables; ///< files whose running processes belong to the app
    std::vector<AssociatedItem> associatedItems;

    /// Sum of every associated item's size, selected or not.
    std::int64_t leftoverSize() const;
    /// bundleSize + leftoverSize.
    std::int64_t totalSize() const { return bundleSize + leftoverSize(); }
};

/// The scanner's status line after a scan: "Found N applications, M leftover items".
std::string appScanFoundText(std::size_t apps, std::size_t orphans);

/// The status line while discovering.
inline constexpr std::string_view kAppScanDiscoveringText = "Discovering installed applications...";

} // namespace sondrel
