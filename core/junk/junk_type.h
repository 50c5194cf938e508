#pragma once
// The kinds of junk the cleaner groups its findings by, in the order the screen shows them.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sondrel {

/// One kind of junk. The order of the enumerators is the order of the groups.
/// `orphaned` is never produced by the junk scan: Smart Care fills it from the app scanner.
enum class JunkType : unsigned char { xcode, nodeModules, userCaches, logs, trash, orphaned };

/// Every JunkType in declaration order.
const std::vector<JunkType>& allJunkTypes();

/// The type's display name and identity ("Xcode & Developer", "node_modules Bloat", "User
/// Caches", "System & App Logs", "macOS Trash", "Orphaned App Residue"), untranslated.
std::string_view junkTypeName(JunkType type);

/// The type's icon symbol ("hammer.fill", "cube.box.fill", ...).
std::string_view junkTypeIcon(JunkType type);

/// A short lower-case key for the command line and JSON ("developer", "node_modules",
/// "user_caches", "logs", "trash", "orphaned").
std::string_view junkTypeKey(JunkType type);

/// The type whose key is `key`; nothing for an unknown key.
std::optional<JunkType> junkTypeFromKey(std::string_view key);

} // namespace sondrel
