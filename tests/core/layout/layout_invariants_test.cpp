// Properties that must hold for any input: checked over many seeded random folders.
#include "core/layout/sunburst_layout.h"
#include "core/layout/treemap_layout.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <vector>

namespace sondrel {
namespace {

double overlapArea(const LayoutRect& a, const LayoutRect& b) {
    const double w = std::min(a.x + a.width, b.x + b.width) - std::max(a.x, b.x);
    const double h = std::min(a.y + a.height, b.y + b.height) - std::max(a.y, b.y);
    return w > 0 && h > 0 ? w * h : 0.0;
}

// Sizes spread over many orders of magnitude, with some zeros and ties.
std::vector<std::int64_t> randomSizes(std::mt19937_64& rng) {
    std::uniform_int_distribution<int> count(1, 300);
    std::uniform_real_distribution<double> exponent(0.0, 12.0);
    std::uniform_int_distribution<int> kind(0, 9);
    std::vector<std::int64_t> sizes(static_cast<std::size_t>(count(rng)));
    for (auto& s : sizes) {
        const int k = kind(rng);
        s = k == 0 ? 0 : k == 1 ? 4096 : static_cast<std::int64_t>(std::pow(10.0, exponent(rng)));
    }
    return sizes;
}

TEST(LayoutInvariants, TreemapTilesStayInsideAndDoNotOverlap) {
    std::mt19937_64 rng(20240611);
    std::uniform_real_distribution<double> side(11.0, 1600.0);
    for (int round = 0; round < 300; ++round) {
        const auto sizes = randomSizes(rng);
        const LayoutRect in{0, 0, side(rng), side(rng)};
        const auto nodes = computeLayout(sizes, in);

        std::int64_t total = 0;
        std::size_t positive = 0;
        for (const auto s : sizes) {
            total += std::max<std::int64_t>(s, 0);
            positive += s > 0 ? 1 : 0;
        }
        ASSERT_EQ(nodes.size(), positive);
        // Area added by the 1-square-point floor: the only allowed overrun.
        double added = 0;
        for (const auto s : sizes) {
            if (s > 0) {
                const double area =
                    in.width * in.height * static_cast<double>(s) / static_cast<double>(total);
                added += std::max(1.0 - area, 0.0);
            }
        }
        const double eps = 1e-6 * in.width * in.height;
        double outside = 0;
        double percentSum = 0;
        for (const auto& n : nodes) {
            ASSERT_TRUE(std::isfinite(n.rect.x) && std::isfinite(n.rect.y));
            ASSERT_TRUE(std::isfinite(n.rect.width) && std::isfinite(n.rect.height));
            ASSERT_GE(n.rect.width, 0.0);
            ASSERT_GE(n.rect.height, 0.0);
            const double area = n.rect.width * n.rect.height;
            outside += area - overlapArea(n.rect, in);
            percentSum += n.percentage;
        }
        EXPECT_LE(outside, added + eps) << "round " << round;
        EXPECT_NEAR(percentSum, 1.0, 1e-9);
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            for (std::size_t j = i + 1; j < nodes.size(); ++j) {
                ASSERT_LE(overlapArea(nodes[i].rect, nodes[j].rect), 1e-6)
                    << "round " << round << " tiles " << i << "," << j;
            }
        }
    }
}

TEST(LayoutInvariants, SectorsStayInTheCircleAndDoNotOverlapPerRing) {
    std::mt19937_64 rng(7);
    for (int round = 0; round < 200; ++round) {
        auto tree = std::make_shared<FileTree>("/r");
        NodeArena& arena = tree->arena();
        // Builds a random folder `depth` levels deep; returns it with its size summed.
        std::function<FileNode*(int)> build = [&](int depth) -> FileNode* {
            std::uniform_int_distribution<int> count(0, depth > 0 ? 25 : 0);
            const int n = count(rng);
            if (n == 0) {
                std::uniform_real_distribution<double> exponent(0.0, 9.0);
                return arena.create("f", false,
                                    static_cast<std::int64_t>(std::pow(10.0, exponent(rng))));
            }
            std::vector<FileNode*> children;
            std::int64_t sum = 0;
            for (int i = 0; i < n; ++i) {
                children.push_back(build(depth - 1));
                sum += children.back()->size;
            }
            FileNode* folder = arena.create("d", true, sum);
            setChildren(folder, children);
            return folder;
        };
        FileNode* root = build(3);
        std::vector<const FileNode*> items;
        for (const FileNode* c = root->firstChild; c != nullptr; c = c->nextSibling) {
            items.push_back(c);
        }
        const auto sectors = computeSunburstSectors(items, root->size);
        for (int level = 1; level <= 3; ++level) {
            std::vector<std::pair<double, double>> spans;
            for (const auto& s : sectors) {
                ASSERT_GE(s.startAngle, 0.0);
                // The minimum drawn width may carry the last inner sector up to half a degree
                // past 360; that overhang must stay clear of the ring's first sector (below).
                ASSERT_LE(s.endAngle, 360.5);
                ASSERT_LT(s.startAngle, s.endAngle);
                ASSERT_GE(s.level, 1);
                ASSERT_LE(s.level, 3);
                if (s.level == level) {
                    spans.emplace_back(s.startAngle, s.endAngle);
                }
            }
            std::sort(spans.begin(), spans.end());
            if (!spans.empty()) {
                ASSERT_LE(spans.back().second - 360.0, spans.front().first + 1e-9);
            }
            for (std::size_t i = 1; i < spans.size(); ++i) {
                ASSERT_LE(spans[i - 1].second, spans[i].first + 1e-9)
                    << "round " << round << " level " << level;
            }
        }
    }
}

} // namespace
} // namespace sondrel
