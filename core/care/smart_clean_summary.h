#pragma once
// What a Smart Care scan found that a clean may reclaim: five byte counts, one per category, and
// the category names shared by the summary, the manifest and the command line.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace sondrel {

/// The five categories a Smart Clean handles, in the manifest's order. The values index
/// CareSwitches and the manifest's rows.
enum class CareCategory : unsigned char {
    developerCaches,   ///< caches that developer tools rebuild (the junk's developer group)
    orphanedLeftovers, ///< files of applications that are no longer installed
    appCaches,         ///< the user's application caches
    logs,              ///< the user's logs and crash reports
    trash,             ///< what is waiting in the Trash
};

/// Number of CareCategory values.
inline constexpr std::size_t kCareCategoryCount = 5;

/// The categories in manifest order.
inline constexpr std::array<CareCategory, kCareCategoryCount> kCareCategories = {
    CareCategory::developerCaches, CareCategory::orphanedLeftovers, CareCategory::appCaches,
    CareCategory::logs, CareCategory::trash};

/// The category's index in manifest order (0..4).
constexpr std::size_t indexOf(CareCategory category) {
    return static_cast<std::size_t>(category);
}

/// The command line's name of a category: "developer", "orphans", "caches", "logs", "trash".
std::string_view careCategoryKey(CareCategory category);
/// The category a command-line name means (the keys above; case-sensitive); nothing otherwise.
std::optional<CareCategory> careCategoryFromKey(std::string_view key);

/// Reclaimable bytes by category. Default: all zero. Pure value; safe on any thread.
struct SmartCleanSummary {
    std::int64_t developerJunkBytes = 0;
    std::int64_t orphanedResidueBytes = 0;
    std::int64_t systemCacheBytes = 0;
    std::int64_t logBytes = 0;
    std::int64_t trashBytes = 0;

    /// The field of `category`.
    std::int64_t bytesOf(CareCategory category) const;
    /// Adds `bytes` to the field of `category` (saturating at the largest count).
    void add(CareCategory category, std::int64_t bytes);
    /// The sum of the five fields. A sum beyond the 64-bit range (no real disk comes near)
    /// saturates at the largest count instead of wrapping.
    std::int64_t totalReclaimableBytes() const;
    /// The total in the application's byte format ("1.2 GB"; "Zero KB" for nothing).
    std::string formattedTotal() const;

    bool operator==(const SmartCleanSummary&) const = default;
};

/// a + b, saturating at the ends of the 64-bit range.
std::int64_t saturatingAdd(std::int64_t a, std::int64_t b);

} // namespace sondrel
