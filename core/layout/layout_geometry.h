#pragma once
// Plain geometry values shared by the storage layouts: points and rectangles in canvas points
// (doubles, y axis pointing down). No GUI types, so layouts stay testable without Qt.

namespace sondrel {

/// A point in canvas coordinates (y grows downwards).
struct LayoutPoint {
    double x = 0.0;
    double y = 0.0;

    friend bool operator==(const LayoutPoint&, const LayoutPoint&) = default;
};

/// An axis-aligned rectangle: origin at the top-left corner, width and height in points.
struct LayoutRect {
    double x = 0.0;
    double y = 0.0;
    double width = 0.0;
    double height = 0.0;

    /// True when `p` lies inside or on the border (inclusive bounds on every side).
    bool contains(LayoutPoint p) const {
        return p.x >= x && p.x <= x + width && p.y >= y && p.y <= y + height;
    }

    friend bool operator==(const LayoutRect&, const LayoutRect&) = default;
};

} // namespace sondrel
