#include "core/layout/treemap_layout.h"

#include <gtest/gtest.h>

#include <vector>

namespace sondrel {
namespace {

constexpr double kEps = 1e-9;

struct RectCase {
    const char* name;
    LayoutRect rect;
    bool expectTiles;
};

TEST(TreemapLayout, TilesOnlyForRectanglesLargerThanTenPoints) {
    const RectCase cases[] = {
        {"narrow", {0, 0, 10, 500}, false},      {"flat", {0, 0, 500, 10}, false},
        {"just over", {0, 0, 10.5, 10.5}, true}, {"zero", {0, 0, 0, 0}, false},
        {"negative", {0, 0, -50, 100}, false},   {"normal", {0, 0, 300, 200}, true},
    };
    const std::vector<std::int64_t> sizes = {5, 3, 1};
    for (const auto& c : cases) {
        EXPECT_EQ(!computeLayout(sizes, c.rect).empty(), c.expectTiles) << c.name;
    }
}

TEST(TreemapLayout, ZeroAndNegativeSizesGetNoTile) {
    struct Case {
        std::vector<std::int64_t> sizes;
        std::vector<std::size_t> placed; // input indices in placement order
    };
    const Case cases[] = {
        {{}, {}},
        {{0, 0, 0}, {}},
        {{0, 7, -3, 0, 2}, {1, 4}},
        {{4}, {0}},
    };
    for (const auto& c : cases) {
        const auto nodes = computeLayout(c.sizes, {0, 0, 100, 100});
        std::vector<std::size_t> placed;
        for (const auto& n : nodes) {
            placed.push_back(n.index);
        }
        EXPECT_EQ(placed, c.placed);
    }
}

TEST(TreemapLayout, SingleItemFillsTheRectangle) {
    const std::vector<std::int64_t> sizes = {42};
    const auto nodes = computeLayout(sizes, {5, 7, 300, 200});
    ASSERT_EQ(nodes.size(), 1U);
    EXPECT_EQ(nodes[0].rect, (LayoutRect{5, 7, 300, 200}));
    EXPECT_DOUBLE_EQ(nodes[0].percentage, 1.0);
}

TEST(TreemapLayout, TwoEqualItemsInWideRectangleBecomeTwoSquares) {
    const std::vector<std::int64_t> sizes = {50, 50};
    const auto nodes = computeLayout(sizes, {0, 0, 200, 100});
    ASSERT_EQ(nodes.size(), 2U);
    EXPECT_EQ(nodes[0].rect, (LayoutRect{0, 0, 100, 100}));
    EXPECT_EQ(nodes[1].rect, (LayoutRect{100, 0, 100, 100}));
    EXPECT_DOUBLE_EQ(nodes[0].percentage, 0.5);
}

TEST(TreemapLayout, TallFreeSpaceMakesStripsAlongTheTop) {
    const std::vector<std::int64_t> sizes = {50, 50};
    const auto nodes = computeLayout(sizes, {0, 0, 100, 200});
    ASSERT_EQ(nodes.size(), 2U);
    EXPECT_EQ(nodes[0].rect, (LayoutRect{0, 0, 100, 100}));
    EXPECT_EQ(nodes[1].rect, (LayoutRect{0, 100, 100, 100}));
}

TEST(TreemapLayout, TinyItemStillGetsOneSquarePoint) {
    const std::vector<std::int64_t> sizes = {999'999, 1};
    const auto nodes = computeLayout(sizes, {0, 0, 100, 100});
    ASSERT_EQ(nodes.size(), 2U);
    EXPECT_EQ(nodes[1].index, 1U);
    EXPECT_NEAR(nodes[1].rect.width * nodes[1].rect.height, 1.0, kEps);
    EXPECT_DOUBLE_EQ(nodes[1].percentage, 1e-6);
}

TEST(TreemapLayout, EqualSizesKeepInputOrderAndLargerComeFirst) {
    const std::vector<std::int64_t> sizes = {3, 9, 3, 3, 9, 1};
    const auto nodes = computeLayout(sizes, {0, 0, 400, 300});
    std::vector<std::size_t> placed;
    for (const auto& n : nodes) {
        placed.push_back(n.index);
    }
    EXPECT_EQ(placed, (std::vector<std::size_t>{1, 4, 0, 2, 3, 5}));
}

TEST(TreemapLayout, AreasAreProportionalAndCoverTheRectangle) {
    const std::vector<std::int64_t> sizes = {600, 300, 100, 100, 50, 25, 25};
    const LayoutRect in{0, 0, 640, 480};
    const auto nodes = computeLayout(sizes, in);
    ASSERT_EQ(nodes.size(), sizes.size());
    double covered = 0;
    for (const auto& n : nodes) {
        const double area = n.rect.width * n.rect.height;
        EXPECT_NEAR(area, in.width * in.height * n.percentage, 1e-6);
        covered += area;
    }
    EXPECT_NEAR(covered, in.width * in.height, 1e-6);
}

TEST(TreemapLayout, HitTestIsInclusiveAndFirstMatchWins) {
    const std::vector<std::int64_t> sizes = {50, 50};
    const auto nodes = computeLayout(sizes, {0, 0, 200, 100});
    struct Case {
        LayoutPoint p;
        std::optional<std::size_t> hit;
    };
    const Case cases[] = {
        {{0, 0}, 0},
        {{50, 50}, 0},
        {{100, 50}, 0}, // shared edge: first tile
        {{100.5, 50}, 1},
        {{200, 100}, 1},
        {{200.1, 50}, std::nullopt},
        {{-1, 5}, std::nullopt},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(hitTestTile(c.p, nodes), c.hit) << c.p.x << "," << c.p.y;
    }
}

} // namespace
} // namespace sondrel
