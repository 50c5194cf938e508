#pragma once
// Outline of one ring sector as plain geometry (arcs and a line), which a view turns into its
// own path type. Angles in degrees, 0 at 3 o'clock, growing clockwise on screen.

#include "core/layout/layout_geometry.h"

namespace sondrel {

/// A circular arc around the outline's centre, walked from `fromAngle` to `toAngle`: clockwise
/// on screen when toAngle > fromAngle, counter-clockwise otherwise.
struct ArcSegment {
    double radius = 0.0;
    double fromAngle = 0.0;
    double toAngle = 0.0;
};

/// The closed outline of an annular sector: start on the outer arc at its `fromAngle`, follow
/// `outer`, draw a straight line to `lineTo`, follow `inner` back, close.
struct AnnularSectorOutline {
    LayoutPoint centre;
    ArcSegment outer;   ///< radius max(outerRadius, 1), startAngle -> endAngle
    LayoutPoint lineTo; ///< centre + innerRadius * (cos endAngle, sin endAngle)
    ArcSegment inner;   ///< radius max(innerRadius, 1), endAngle -> startAngle
};

/// Parameters of an annular sector shape. `cornerRadius` is carried for drawing styles but the
/// outline does not round its corners.
struct AnnularSectorShape {
    double startAngle = 0.0;
    double endAngle = 0.0;
    double innerRadius = 0.0;
    double outerRadius = 0.0;
    double cornerRadius = 2.0;

    /// The outline within `rect` (centred on the rectangle's middle). Pure.
    AnnularSectorOutline outline(LayoutRect rect) const;
};

/// The point at `radius` and `angleDegrees` from `centre` (screen coordinates, y down).
LayoutPoint pointOnCircle(LayoutPoint centre, double radius, double angleDegrees);

} // namespace sondrel
