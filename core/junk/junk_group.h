#pragma once
// The junk cleaner's values: one removable thing (a cache folder, a node_modules folder, a log,
// a Trash entry) and the group of one kind that holds it, with the selection rules.

#include "core/junk/junk_type.h"

#include <cstdint>
#include <string>
#include <vector>

namespace sondrel {

/// One removable thing found by the junk scan. Plain value. Two items are the same item when
/// their ids are equal; ids are unique within one scan result.
struct JunkItem {
    std::uint64_t id = 0;
    std::string title;     ///< shown as the item's name (bytes of a file name, or a table title)
    std::string path;      ///< absolute, bytes
    std::int64_t size = 0; ///< allocated bytes of a folder, length of a single file
    std::string detail;    ///< one-line explanation
    bool isSelected = false;
    bool canClean = true;
    /// The user cannot write to the item's folder: removal needs administrator rights.
    bool isPermissionLocked = false;
    JunkType type = JunkType::xcode; ///< the group it belongs to (decides how it is removed)
    /// The folder the item was found in; a clean refuses the item unless it still lies inside.
    std::string root;
    /// The item was a symbolic link when scanned (a Trash entry may be one); any other item
    /// that is a link at clean time is refused.
    bool isLink = false;
    /// Last modification time of the item itself, seconds since the epoch (0: unknown).
    std::int64_t modifiedSeconds = 0;

    /// The size as the byte formatter writes it.
    std::string formattedSize() const;
    bool operator==(const JunkItem& other) const { return id == other.id; }
};

/// The items of one kind. Plain value.
struct JunkGroup {
    std::uint64_t id = 0; ///< unique within one scan result
    JunkType type = JunkType::xcode;
    std::string title;
    std::string description;
    std::vector<JunkItem> items;

    /// Sum of all items' sizes. Aborts on overflow (impossible for real files).
    std::int64_t totalSize() const;
    /// Sum of the selected items' sizes.
    std::int64_t selectedSize() const;
    /// Number of selected items.
    std::size_t selectedCount() const;
    /// False for an empty group; otherwise whether every item is selected.
    bool allSelected() const;
    /// False for an empty group; otherwise whether at least one item is selected.
    bool hasSomeSelected() const;
    std::string formattedTotalSize() const;
    std::string formattedSelectedSize() const;
};

/// Sum of totalSize() over `groups`.
std::int64_t junkTotalSize(const std::vector<JunkGroup>& groups);
/// Sum of selectedSize() over `groups`.
std::int64_t junkSelectedSize(const std::vector<JunkGroup>& groups);

/// Flips the selection of item `itemId` of group `groupId`; false (nothing changed) when
/// either is not found.
bool toggleItemSelection(std::vector<JunkGroup>& groups, std::uint64_t groupId,
                         std::uint64_t itemId);

/// Selects every item of group `groupId` unless all are selected already, in which case it
/// deselects every item (a partly selected group becomes fully selected). False when the group
/// is not found or has no items.
bool toggleGroupSelection(std::vector<JunkGroup>& groups, std::uint64_t groupId);

/// The selected items of `groups`, in group and item order (what a clean of everything takes).
std::vector<JunkItem> selectedJunkItems(const std::vector<JunkGroup>& groups);

/// The selected items of the one group `groupId` (empty when not found).
std::vector<JunkItem> selectedJunkItems(const std::vector<JunkGroup>& groups,
                                        std::uint64_t groupId);

} // namespace sondrel
