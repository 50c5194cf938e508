#pragma once
// The nine kinds of file that colour the visualisations and group the details pane.

#include "core/model/rgb.h"

#include <array>
#include <optional>
#include <string_view>

namespace sondrel {

/// Kind of a scanned item, in display order. `system` is never produced by categoryFrom; it
/// exists for display only.
enum class FileCategory : unsigned char {
    developer,
    application,
    video,
    image,
    audio,
    document,
    archive,
    system,
    other,
};

/// Every category in display order.
inline constexpr std::array<FileCategory, 9> kAllFileCategories = {
    FileCategory::developer, FileCategory::application, FileCategory::video,
    FileCategory::image,     FileCategory::audio,       FileCategory::document,
    FileCategory::archive,   FileCategory::system,      FileCategory::other,
};

/// Classifies an item from its path text alone (never touches the disk).
/// Folders: a path ending in ".app" (any case) is `application`; a path containing "/xcode",
/// "deriveddata", "node_modules", ".git" or ".cargo" anywhere is `developer`; else `other`.
/// Files: by the lower-cased extension of the last component; unknown or none -> `other`.
FileCategory categoryFrom(std::string_view path, bool isDirectory);

/// Display name, for example "Developer", "Applications", "System Data".
std::string_view displayName(FileCategory category);

/// Symbol name of the category's icon (mapped to an icon file by the ui layer).
std::string_view iconName(FileCategory category);

/// Fixed colour of the category; it does not follow the theme.
Rgb color(FileCategory category);

/// The category whose display name is `name` exactly, if any.
std::optional<FileCategory> categoryFromDisplayName(std::string_view name);

} // namespace sondrel
