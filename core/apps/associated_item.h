#pragma once
// A file or folder that belongs to an application without being the application itself: its
// settings, data, caches, saved state, sandbox container or logs. The uninstaller lists them
// with each application and, for applications that are gone, as orphaned leftovers.

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace sondrel {

/// The kind of an associated file, in display order.
enum class AssociatedFileType : unsigned char {
    appBundle,
    appSupport,
    caches,
    preferences,
    savedState,
    container,
    webkit,
    logs,
};

/// Every kind, in declaration order.
inline constexpr std::array<AssociatedFileType, 8> kAssociatedFileTypes{
    AssociatedFileType::appBundle,   AssociatedFileType::appSupport, AssociatedFileType::caches,
    AssociatedFileType::preferences, AssociatedFileType::savedState, AssociatedFileType::container,
    AssociatedFileType::webkit,      AssociatedFileType::logs};

/// The kind's display name ("Application Support").
std::string_view displayName(AssociatedFileType type);
/// The kind's symbol name ("folder.badge.gearshape"), mapped to an icon file by the interface.
std::string_view iconName(AssociatedFileType type);
/// The kind's stable key for JSON output ("appSupport").
std::string_view typeKey(AssociatedFileType type);

/// One associated file. Plain value.
struct AssociatedItem {
    std::uint64_t id = 0; ///< unique in this process (newItemId), never 0 for a made item
    std::string path;     ///< absolute, bytes
    AssociatedFileType type = AssociatedFileType::appSupport;
    std::int64_t size = 0;  ///< bytes (see the catalogue for which bytes)
    bool isSelected = true; ///< whether it goes with an uninstall / a clean
};

/// A fresh process-wide identifier for an item or an application. Thread-safe.
std::uint64_t newItemId();

} // namespace sondrel
