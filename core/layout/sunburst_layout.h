#pragma once
// Colour-ring (sunburst) layout: up to three concentric rings of annular sectors around an
// empty centre. Ring 1 holds the viewed folder's children, ring 2 their children and ring 3 a
// third level, each sector's sweep proportional to its size. Pure functions over the plain
// FileNode records of the size tree; safe on any thread while nobody mutates the tree.
//
// Angles are degrees: 0 points right of the centre (3 o'clock) and angles grow clockwise on
// screen (the y axis points down), up to 360.

#include "core/layout/layout_geometry.h"
#include "core/model/file_tree.h"
#include "core/model/rgb.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace sondrel {

/// Fixed radii, gaps and minimum sweeps of one ring.
struct RingGeometry {
    double innerRadiusRatio; ///< inner edge as a fraction of the ring radius R
    double outerRadiusRatio; ///< outer edge as a fraction of R
    double gap;              ///< degrees left empty on each side of a sector
    double minimumSweep;     ///< items with a smaller sweep get no sector
    double minimumWidth;     ///< narrowest drawn sector, degrees
};

/// Geometry of rings 1 (inner), 2 (middle) and 3 (outer), by index level - 1.
inline constexpr std::array<RingGeometry, 3> kRingGeometry = {{
    {0.28, 0.58, 0.5, 0.5, 0.5},
    {0.61, 0.84, 0.3, 0.6, 0.4},
    {0.86, 0.98, 0.2, 0.8, 0.3},
}};

/// Outer-ring sectors are drawn only under middle-ring sectors whose sweep exceeds this.
inline constexpr double kOuterRingMinimumParentSweep = 6.0;
/// At most this many largest grandchildren are considered under one middle-ring sector.
inline constexpr std::size_t kOuterRingMaximumItems = 8;

/// One drawn sector. Recomputed on every computation; a view identifies it by position.
struct SunburstSector {
    const FileNode* node = nullptr; ///< the file or folder the sector stands for
    int level = 1;                  ///< 1 (inner), 2 (middle) or 3 (outer)
    double startAngle = 0.0;        ///< degrees
    double endAngle = 0.0;          ///< degrees, always greater than startAngle
    double innerRadiusRatio = 0.0;  ///< inner edge as a fraction of R
    double outerRadiusRatio = 0.0;  ///< outer edge as a fraction of R
    Rgb color;                      ///< fill colour (from ringColorPalette)
    double opacity = 1.0;           ///< fill opacity, 0..1
    double percentage = 0.0;        ///< share of the inner ring's total, 0..1, at every level
};

/// The twelve ring colours (sRGB, full opacity), the same for every theme. Built once.
std::span<const Rgb, 12> ringColorPalette();

/// Computes the sectors of all three rings for `items` (the viewed folder's children after the
/// view's threshold filter, any order) within a folder of `totalSize` bytes. The result is in
/// generation order: each inner sector is followed by its middle sectors, each of which is
/// followed by its outer sectors. Empty when `totalSize` <= 0 or no item has a positive size.
/// Items whose sweep is under a ring's minimum are skipped without moving the cursor, so the
/// arc they would have taken stays empty at the end of their parent's span.
std::vector<SunburstSector> computeSunburstSectors(std::span<const FileNode* const> items,
                                                   std::int64_t totalSize);

/// Ring radius R of a canvas: half the smaller side minus 8 points (may be <= 0 when tiny).
double ringRadius(double width, double height);

/// The first sector (in list order) under `pointer`, as an index into `sectors`, for rings
/// centred at `centre` with ring radius `radius`. Bounds are inclusive on both radii and both
/// angles. None for the centre hole, a gap, the empty arc of skipped items, outside the rings,
/// or when `radius` <= 0.
std::optional<std::size_t> hitTestSector(LayoutPoint pointer, LayoutPoint centre, double radius,
                                         std::span<const SunburstSector> sectors);

} // namespace sondrel
