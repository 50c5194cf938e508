#pragma once
// The safety verdict and the one-sentence removal rationale of an item. Both are pure functions
// of the item's path text and category; neither touches the disk.

#include "core/model/file_category.h"
#include "core/model/rgb.h"

#include <array>
#include <string_view>

namespace sondrel {

/// Safety verdict shown next to a selected item, in display order.
enum class ReclaimableStatus : unsigned char {
    safeToClean,
    cautionUserData,
    systemProtected,
};

/// Every verdict in display order.
inline constexpr std::array<ReclaimableStatus, 3> kAllReclaimableStatuses = {
    ReclaimableStatus::safeToClean, ReclaimableStatus::cautionUserData,
    ReclaimableStatus::systemProtected};

/// Label: "Safe to Clean", "User Data (Caution)" or "System Managed".
std::string_view displayName(ReclaimableStatus status);

/// Symbol name of the verdict's badge icon.
std::string_view iconName(ReclaimableStatus status);

/// Badge colour of the verdict.
Rgb badgeColor(ReclaimableStatus status);

/// Verdict for the item at `path`. The rules are plain (raw) substring and prefix tests on the
/// lower-cased path, first match wins, so "/tmp" also matches ".../tmpfiles" and an item under
/// /Applications whose path mentions "cache" anywhere falls through to the cache rules.
ReclaimableStatus reclaimableStatusFor(std::string_view path);

/// The one-sentence rationale for the item at `path` of `category`. Its rule order differs from
/// the verdict's on purpose: cache rules come before the system prefixes, and some verdict-only
/// paths (/tmp, /sbin, ...) have no rule of their own.
std::string_view removalRationaleFor(std::string_view path, FileCategory category);

} // namespace sondrel
