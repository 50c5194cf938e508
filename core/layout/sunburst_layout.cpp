#include "core/layout/sunburst_layout.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace sondrel {

namespace {

constexpr double kFullCircle = 360.0;
constexpr double kRingRadiusInset = 8.0;
constexpr double kMiddleEvenOpacity = 0.85;
constexpr double kOuterEvenOpacity = 0.7;
constexpr double kOuterOddOpacity = 0.9;
// Narrowest parent span shared out among a sector's children, degrees.
constexpr double kMiddleMinimumSpan = 0.5;
constexpr double kOuterMinimumSpan = 0.4;

// Positive-size children of `node`, largest first (stable), into `out`; returns their total.
std::int64_t sortedChildren(const FileNode* node, std::vector<const FileNode*>& out) {
    out.clear();
    std::int64_t sum = 0;
    for (const FileNode* child = node->firstChild; child != nullptr; child = child->nextSibling) {
        if (child->size > 0) {
            out.push_back(child);
            sum += child->size;
        }
    }
    // Scanned children are already largest first; only sort when they are not.
    const auto larger = [](const FileNode* a, const FileNode* b) { return a->size > b->size; };
    if (!std::is_sorted(out.begin(), out.end(), larger)) {
        std::stable_sort(out.begin(), out.end(), larger);
    }
    return sum;
}

class SectorBuilder {
public:
    SectorBuilder(std::vector<SunburstSector>& out, double innerTotal)
        : m_out(out), m_innerTotal(innerTotal) {}

    // Appends one sector of `level`.
    void emit(const FileNode* node, int level, double start, double end, Rgb color,
              double opacity) {
        const RingGeometry& ring = kRingGeometry[static_cast<std::size_t>(level - 1)];
        m_out.push_back({node, level, start, end, ring.innerRadiusRatio, ring.outerRadiusRatio,
                         color, opacity, static_cast<double>(node->size) / m_innerTotal});
    }

    // Middle ring under an inner sector spanning [start, end) (end unclamped).
    void middleRing(const FileNode* parent, double start, double end, Rgb color) {
        const std::int64_t sum = sortedChildren(parent, m_middle);
        if (sum <= 0) {
            return;
        }
        const RingGeometry& ring = kRingGeometry[1];
        const double span = std::max(end - start, kMiddleMinimumSpan);
        const auto total = static_cast<double>(sum);
        double cursor = start;
        for (std::size_t j = 0; j < m_middle.size(); ++j) {
            const FileNode* child = m_middle[j];
            const double sweep = static_cast<double>(child->size) / total * span;
            if (sweep < ring.minimumSweep) {
                continue;
            }
            const double sectorStart = cursor + ring.gap;
            cursor += sweep;
            const double sectorEnd = std::max(sectorStart + ring.minimumWidth, cursor - ring.gap);
            emit(child, 2, sectorStart, sectorEnd, color, j % 2 == 0 ? kMiddleEvenOpacity : 1.0);
            if (sweep > kOuterRingMinimumParentSweep) {
                outerRing(child, sectorStart, cursor - ring.gap, color);
            }
        }
    }

private:
    // Outer ring under a middle sector spanning [start, end) (end unclamped).
    void outerRing(const FileNode* parent, double start, double end, Rgb color) {
        const std::int64_t sum = sortedChildren(parent, m_outer);
        if (sum <= 0) {
            return;
        }
        const RingGeometry& ring = kRingGeometry[2];
        const double span = std::max(end - start, kOuterMinimumSpan);
        const auto total = static_cast<double>(sum);
        double cursor = start;
        const std::size_t considered = std::min(m_outer.size(), kOuterRingMaximumItems);
        for (std::size_t k = 0; k < considered; ++k) {
            const FileNode* child = m_outer[k];
            const double sweep = static_cast<double>(child->size) / total * span;
            if (sweep < ring.minimumSweep) {
                continue;
            }
            const double sectorStart = cursor + ring.gap;
            cursor += sweep;
            const double sectorEnd = std::max(sectorStart + ring.minimumWidth, cursor - ring.gap);
            emit(child, 3, sectorStart, sectorEnd, color,
                 k % 2 == 0 ? kOuterEvenOpacity : kOuterOddOpacity);
        }
    }

private:
    std::vector<SunburstSector>& m_out;
    double m_innerTotal;
    std::vector<const FileNode*> m_middle;
    std::vector<const FileNode*> m_outer;
};

} // namespace

std::span<const Rgb, 12> ringColorPalette() {
    static constexpr std::array<Rgb, 12> kPalette = {{
        {1.0, 0.28, 0.38},
        {1.0, 0.6, 0.0},
        {0.0, 0.85, 0.65},
        {0.0, 0.82, 1.0},
        {0.3, 0.55, 1.0},
        {0.65, 0.35, 1.0},
        {0.98, 0.35, 0.85},
        {1.0, 0.45, 0.2},
        {0.2, 0.88, 0.45},
        {0.95, 0.8, 0.15},
        {0.1, 0.75, 0.9},
        {0.85, 0.4, 0.65},
    }};
    return kPalette;
}

std::vector<SunburstSector> computeSunburstSectors(std::span<const FileNode* const> items,
                                                   std::int64_t totalSize) {
    std::vector<SunburstSector> sectors;
    if (totalSize <= 0) {
        return sectors;
    }
    std::vector<const FileNode*> kept;
    kept.reserve(items.size());
    std::int64_t sum = 0;
    for (const FileNode* item : items) {
        if (item != nullptr && item->size > 0) {
            kept.push_back(item);
            sum += item->size;
        }
    }
    if (sum <= 0 || kept.empty()) {
        return sectors;
    }
    std::stable_sort(kept.begin(), kept.end(),
                     [](const FileNode* a, const FileNode* b) { return a->size > b->size; });

    const auto total = static_cast<double>(sum);
    const RingGeometry& ring = kRingGeometry[0];
    const auto palette = ringColorPalette();
    SectorBuilder builder(sectors, total);
    double cursor = 0.0;
    for (std::size_t i = 0; i < kept.size(); ++i) {
        const double sweep = static_cast<double>(kept[i]->size) / total * kFullCircle;
        if (sweep < ring.minimumSweep) {
            continue;
        }
        const double start = cursor + ring.gap;
        const double unclampedEnd = cursor + sweep - ring.gap;
        const double end = std::max(start + ring.minimumWidth, unclampedEnd);
        const Rgb color = palette[i % palette.size()];
        builder.emit(kept[i], 1, start, end, color, 1.0);
        builder.middleRing(kept[i], start, unclampedEnd, color);
        cursor += sweep;
    }
    return sectors;
}

double ringRadius(double width, double height) {
    return std::min(width, height) * 0.5 - kRingRadiusInset;
}

std::optional<std::size_t> hitTestSector(LayoutPoint pointer, LayoutPoint centre, double radius,
                                         std::span<const SunburstSector> sectors) {
    if (!(radius > 0.0)) {
        return std::nullopt;
    }
    const double dx = pointer.x - centre.x;
    const double dy = pointer.y - centre.y;
    const double ratio = std::hypot(dx, dy) / radius;
    double angle = std::atan2(dy, dx) * 180.0 / std::numbers::pi;
    if (angle < 0.0) {
        angle += kFullCircle;
    }
    for (std::size_t i = 0; i < sectors.size(); ++i) {
        const SunburstSector& s = sectors[i];
        if (s.innerRadiusRatio <= ratio && ratio <= s.outerRadiusRatio && s.startAngle <= angle &&
            angle <= s.endAngle) {
            return i;
        }
    }
    return std::nullopt;
}

} // namespace sondrel
