#pragma once
// Squarified treemap of one folder level: turns item sizes into tiles whose areas are
// proportional to the sizes. Pure functions over plain values; safe on any thread.

#include "core/layout/layout_geometry.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace sondrel {

/// One laid-out tile. Tiles are recomputed on every layout; `index` is the identity a view uses
/// to find the item again (nodes are not stable across layouts).
struct TreemapNode {
    std::size_t index = 0;   ///< position of the item in the `sizes` passed to computeLayout
    LayoutRect rect;         ///< the tile's frame in canvas coordinates
    double percentage = 0.0; ///< the item's share of the laid-out total, 0..1
};

/// Lays out `sizes` (one entry per candidate item, any order) in `in` and returns the tiles in
/// placement order, largest first. Rules:
/// - no tiles when `sizes` is empty or the rectangle is not wider and taller than 10 points;
/// - items of size <= 0 get no tile; equal sizes keep their input order (stable sort);
/// - every placed item receives at least 1 square point, so the areas may add up to slightly
///   more than the rectangle and the last tiles may overrun it (accepted, not corrected);
/// - a row grows while its worst aspect ratio does not get worse (a tie keeps the item in the
///   row); a row becomes a column at the left edge when the free space is at least as wide as
///   tall, otherwise a strip along the top edge.
/// No gaps are inserted between tiles. Once the free space has collapsed to zero along the
/// dividing side, the remaining tiles are empty rectangles at the free corner.
std::vector<TreemapNode> computeLayout(std::span<const std::int64_t> sizes, LayoutRect in);

/// The first tile (in list order) whose rectangle contains `point`, bounds inclusive, as an
/// index into `nodes`; none when the point is on no tile.
std::optional<std::size_t> hitTestTile(LayoutPoint point, std::span<const TreemapNode> nodes);

} // namespace sondrel
