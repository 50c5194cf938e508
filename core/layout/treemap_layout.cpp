#include "core/layout/treemap_layout.h"

#include <algorithm>
#include <limits>
#include <numeric>

namespace sondrel {

namespace {

constexpr double kMinimumSide = 10.0;
constexpr double kMinimumArea = 1.0;

struct Entry {
    std::size_t index;
    double area;
    double percentage;
};

// Worst aspect ratio of a row whose areas are sorted largest first. The ratio
// max(side^2 r / s^2, s^2 / (side^2 r)) is largest at the row's extreme areas, so only the first
// (largest) and last (smallest) entries need evaluating; the values are the same as those of a
// scan over the whole row.
double worstRatio(double largest, double smallest, double sum, double side) {
    if (side <= 0.0 || sum <= 0.0) {
        return std::numeric_limits<double>::infinity();
    }
    const double side2 = side * side;
    const double sum2 = sum * sum;
    const double atLargest = std::max(side2 * largest / sum2, sum2 / (side2 * largest));
    const double atSmallest = std::max(side2 * smallest / sum2, sum2 / (side2 * smallest));
    return std::max(atLargest, atSmallest);
}

// Places the row entries [first, last) into `free` and shrinks it.
void layoutRow(const std::vector<Entry>& entries, std::size_t first, std::size_t last, double sum,
               LayoutRect& free, std::vector<TreemapNode>& result) {
    if (free.width >= free.height) {
        const double columnWidth = free.height > 0.0 ? sum / free.height : 0.0;
        double y = free.y;
        for (std::size_t i = first; i < last; ++i) {
            const double height = columnWidth > 0.0 ? entries[i].area / columnWidth : 0.0;
            result.push_back(
                {entries[i].index, {free.x, y, columnWidth, height}, entries[i].percentage});
            y += height;
        }
        free = {free.x + columnWidth, free.y, std::max(free.width - columnWidth, 0.0), free.height};
    } else {
        const double stripHeight = free.width > 0.0 ? sum / free.width : 0.0;
        double x = free.x;
        for (std::size_t i = first; i < last; ++i) {
            const double width = stripHeight > 0.0 ? entries[i].area / stripHeight : 0.0;
            result.push_back(
                {entries[i].index, {x, free.y, width, stripHeight}, entries[i].percentage});
            x += width;
        }
        free = {free.x, free.y + stripHeight, free.width, std::max(free.height - stripHeight, 0.0)};
    }
}

} // namespace

std::vector<TreemapNode> computeLayout(std::span<const std::int64_t> sizes, LayoutRect in) {
    std::vector<TreemapNode> result;
    if (sizes.empty() || !(in.width > kMinimumSide) || !(in.height > kMinimumSide)) {
        return result;
    }
    std::vector<std::size_t> order;
    order.reserve(sizes.size());
    std::int64_t total = 0;
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        if (sizes[i] > 0) {
            order.push_back(i);
            total += sizes[i];
        }
    }
    if (total <= 0) {
        return result;
    }
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return sizes[a] > sizes[b]; });

    const double totalArea = in.width * in.height;
    const auto totalBytes = static_cast<double>(total);
    std::vector<Entry> entries;
    entries.reserve(order.size());
    for (const std::size_t index : order) {
        const double percentage = static_cast<double>(sizes[index]) / totalBytes;
        entries.push_back({index, std::max(totalArea * percentage, kMinimumArea), percentage});
    }

    result.reserve(entries.size());
    LayoutRect free = in;
    std::size_t rowFirst = 0;
    std::size_t rowLast = 0; // the row is [rowFirst, rowLast)
    double rowSum = 0.0;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const double side = std::min(free.width, free.height);
        if (rowLast == rowFirst) {
            rowLast = i + 1;
            rowSum = entries[i].area;
            continue;
        }
        const double largest = entries[rowFirst].area;
        const double current = worstRatio(largest, entries[rowLast - 1].area, rowSum, side);
        const double candidate =
            worstRatio(largest, entries[i].area, rowSum + entries[i].area, side);
        if (candidate <= current) {
            rowLast = i + 1;
            rowSum += entries[i].area;
        } else {
            layoutRow(entries, rowFirst, rowLast, rowSum, free, result);
            rowFirst = i;
            rowLast = i + 1;
            rowSum = entries[i].area;
        }
    }
    if (rowLast > rowFirst) {
        layoutRow(entries, rowFirst, rowLast, rowSum, free, result);
    }
    return result;
}

std::optional<std::size_t> hitTestTile(LayoutPoint point, std::span<const TreemapNode> nodes) {
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (nodes[i].rect.contains(point)) {
            return i;
        }
    }
    return std::nullopt;
}

} // namespace sondrel
