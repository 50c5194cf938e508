#include "core/layout/annular_sector.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace sondrel {

LayoutPoint pointOnCircle(LayoutPoint centre, double radius, double angleDegrees) {
    const double radians = angleDegrees * std::numbers::pi / 180.0;
    return {centre.x + radius * std::cos(radians), centre.y + radius * std::sin(radians)};
}

AnnularSectorOutline AnnularSectorShape::outline(LayoutRect rect) const {
    const LayoutPoint centre{rect.x + rect.width / 2.0, rect.y + rect.height / 2.0};
    return {centre,
            {std::max(outerRadius, 1.0), startAngle, endAngle},
            pointOnCircle(centre, innerRadius, endAngle),
            {std::max(innerRadius, 1.0), endAngle, startAngle}};
}

} // namespace sondrel
