#pragma once
// The Smart Clean manifest: the exact items a clean would remove, grouped into the five category
// rows. The summary, the rows' sizes and the selected total are all sums over these same items,
// so what the manifest lists is exactly what a clean with the same switches removes.

#include "core/care/smart_clean_summary.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace sondrel {

/// One thing a clean may remove. Plain value.
struct CareItem {
    std::string path;      ///< absolute path (bytes)
    std::int64_t size = 0; ///< bytes it occupies (allocated, as measured by its scanner)
    CareCategory category = CareCategory::appCaches;
    bool needsAdmin = false; ///< owned by another user: removal needs the administrator step
    bool operator==(const CareItem&) const = default;
};

/// Which categories a clean touches, indexed by indexOf(CareCategory). All on by default.
struct CareSwitches {
    std::array<bool, kCareCategoryCount> on = {true, true, true, true, true};

    /// Whether `category` is switched on.
    bool isOn(CareCategory category) const { return on[indexOf(category)]; }
    /// Switches `category` on or off.
    void set(CareCategory category, bool value) { on[indexOf(category)] = value; }
    /// True when no category is on.
    bool noneOn() const;
    bool operator==(const CareSwitches&) const = default;
};

/// One row of the manifest: a category and its items, largest first.
struct CareManifestRow {
    CareCategory category = CareCategory::appCaches;
    std::vector<CareItem> items;
    std::int64_t totalBytes = 0; ///< the sum of the items' sizes (saturating)
};

/// The manifest of one scan. Pure value; safe to copy between threads.
class CareManifest {
public:
    /// An empty manifest (five empty rows).
    CareManifest();
    /// The manifest of `items`: each goes into its category's row. Items with a negative size
    /// count as 0 bytes; an item listed twice (same path and category) is kept once.
    explicit CareManifest(std::vector<CareItem> items);

    /// The five rows in manifest order (rows()[indexOf(c)].category == c).
    const std::array<CareManifestRow, kCareCategoryCount>& rows() const { return m_rows; }
    /// The row of `category`.
    const CareManifestRow& row(CareCategory category) const { return m_rows[indexOf(category)]; }
    /// The summary: each field is its row's total.
    SmartCleanSummary summary() const;
    /// The items of the rows switched on, in row order.
    std::vector<CareItem> selectedItems(const CareSwitches& switches) const;
    /// The sum of the items of the rows switched on.
    std::int64_t selectedBytes(const CareSwitches& switches) const;
    /// Number of items over all rows.
    std::size_t itemCount() const;
    /// True when some item of a row switched on needs the administrator step.
    bool selectionNeedsAdmin(const CareSwitches& switches) const;

private:
    std::array<CareManifestRow, kCareCategoryCount> m_rows;
};

} // namespace sondrel
