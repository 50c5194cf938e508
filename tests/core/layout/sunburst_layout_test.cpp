#include "core/layout/annular_sector.h"
#include "core/layout/sunburst_layout.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

namespace sondrel {
namespace {

// A folder tree built in memory: `folder(size, {children})` and `file(size)`.
class TreeBuilder {
public:
    TreeBuilder() : m_tree(std::make_shared<FileTree>("/t")) {}

    FileNode* file(std::int64_t size) { return m_tree->arena().create("f", false, size); }
    FileNode* folder(std::int64_t size, const std::vector<FileNode*>& children = {}) {
        FileNode* node = m_tree->arena().create("d", true, size);
        setChildren(node, children);
        return node;
    }
    // Folder whose children have the given sizes (files).
    FileNode* folderOf(const std::vector<std::int64_t>& sizes) {
        std::vector<FileNode*> children;
        std::int64_t total = 0;
        for (const auto s : sizes) {
            children.push_back(file(s));
            total += s;
        }
        return folder(total, children);
    }

private:
    std::shared_ptr<FileTree> m_tree;
};

std::vector<const FileNode*> childrenOf(const FileNode* node) {
    std::vector<const FileNode*> out;
    for (const FileNode* c = node->firstChild; c != nullptr; c = c->nextSibling) {
        out.push_back(c);
    }
    return out;
}

std::vector<SunburstSector> ofLevel(const std::vector<SunburstSector>& all, int level) {
    std::vector<SunburstSector> out;
    for (const auto& s : all) {
        if (s.level == level) {
            out.push_back(s);
        }
    }
    return out;
}

TEST(SunburstLayout, InnerRingAngles) {
    struct Case {
        const char* name;
        std::vector<std::int64_t> sizes;
        std::vector<std::pair<double, double>> angles;
    };
    const Case cases[] = {
        {"single child", {100}, {{0.5, 359.5}}},
        {"two equal", {50, 50}, {{0.5, 179.5}, {180.5, 359.5}}},
        // 1 of 1000 bytes is a 0.36 degree sliver: skipped, later sectors do not move past it.
        {"sliver", {1, 499, 500}, {{0.5, 179.5}, {180.5, 359.14}}},
        {"two slivers", {1, 500, 1, 498}, {{0.5, 179.5}, {180.5, 358.78}}},
        {"unsorted input", {25, 75}, {{0.5, 269.5}, {270.5, 359.5}}},
    };
    TreeBuilder tree;
    for (const auto& c : cases) {
        const FileNode* folder = tree.folderOf(c.sizes);
        const auto items = childrenOf(folder);
        const auto inner = ofLevel(computeSunburstSectors(items, folder->size), 1);
        ASSERT_EQ(inner.size(), c.angles.size()) << c.name;
        for (std::size_t i = 0; i < inner.size(); ++i) {
            EXPECT_NEAR(inner[i].startAngle, c.angles[i].first, 1e-9) << c.name << i;
            EXPECT_NEAR(inner[i].endAngle, c.angles[i].second, 1e-9) << c.name << i;
            EXPECT_DOUBLE_EQ(inner[i].innerRadiusRatio, 0.28);
            EXPECT_DOUBLE_EQ(inner[i].outerRadiusRatio, 0.58);
        }
    }
}

TEST(SunburstLayout, NothingForEmptyOrZeroInput) {
    TreeBuilder tree;
    const FileNode* zeros = tree.folderOf({0, 0});
    const FileNode* some = tree.folderOf({5});
    EXPECT_TRUE(computeSunburstSectors(childrenOf(zeros), 10).empty());
    EXPECT_TRUE(computeSunburstSectors(childrenOf(some), 0).empty());
    EXPECT_TRUE(computeSunburstSectors({}, 10).empty());
}

TEST(SunburstLayout, PaletteCyclesByInnerPositionAndPercentagesUseInnerTotal) {
    TreeBuilder tree;
    const FileNode* folder = tree.folderOf(std::vector<std::int64_t>(13, 10));
    const auto sectors = computeSunburstSectors(childrenOf(folder), folder->size * 2);
    ASSERT_EQ(sectors.size(), 13U);
    const auto palette = ringColorPalette();
    EXPECT_EQ(sectors[0].color, palette[0]);
    EXPECT_EQ(sectors[1].color, palette[1]);
    EXPECT_EQ(sectors[12].color, palette[0]);
    EXPECT_EQ(sectors[12].color, (Rgb{1.0, 0.28, 0.38}));
    // Shares of the kept items' sum, not of the folder size passed in.
    EXPECT_DOUBLE_EQ(sectors[0].percentage, 1.0 / 13.0);
}

TEST(SunburstLayout, MiddleRingSharesTheParentSpanWithGapsAndOpacities) {
    TreeBuilder tree;
    FileNode* child = tree.folderOf({60, 40});
    const FileNode* root = tree.folder(100, {child});
    const auto sectors = computeSunburstSectors(childrenOf(root), 100);
    ASSERT_EQ(sectors.size(), 3U);
    EXPECT_EQ(sectors[0].level, 1);
    // The span is 0.5..359.5 = 359 degrees; the 60% child takes 215.4 of it.
    EXPECT_EQ(sectors[1].level, 2);
    EXPECT_NEAR(sectors[1].startAngle, 0.8, 1e-9);
    EXPECT_NEAR(sectors[1].endAngle, 0.5 + 215.4 - 0.3, 1e-9);
    EXPECT_DOUBLE_EQ(sectors[1].opacity, 0.85);
    EXPECT_NEAR(sectors[2].startAngle, 0.5 + 215.4 + 0.3, 1e-9);
    EXPECT_NEAR(sectors[2].endAngle, 359.5 - 0.3, 1e-9);
    EXPECT_DOUBLE_EQ(sectors[2].opacity, 1.0);
    EXPECT_DOUBLE_EQ(sectors[2].percentage, 0.4);
    EXPECT_EQ(sectors[2].color, ringColorPalette()[0]);
}

// Level-3 sector count under a middle child of `middleSize` bytes beside a sibling of
// `siblingSize`, holding `grandchildren` equal files. The inner item takes 193 of 360 degrees,
// so its children share a span of exactly 192 degrees.
std::size_t outerSectorCount(std::int64_t middleSize, std::int64_t siblingSize, int grandchildren) {
    TreeBuilder tree;
    std::vector<FileNode*> gc;
    for (int i = 0; i < grandchildren; ++i) {
        gc.push_back(tree.file(1000));
    }
    FileNode* middle = tree.folder(middleSize, gc);
    FileNode* sibling = tree.file(siblingSize);
    FileNode* inner = tree.folder(193, {sibling, middle});
    FileNode* other = tree.file(167);
    const FileNode* root = tree.folder(360, {inner, other});
    const auto sectors = computeSunburstSectors(childrenOf(root), root->size);
    return ofLevel(sectors, 3).size();
}

TEST(SunburstLayout, OuterRingRules) {
    struct Case {
        const char* name;
        std::int64_t middleSize;
        std::int64_t siblingSize;
        int grandchildren;
        std::size_t expected;
    };
    const Case cases[] = {
        {"exactly 6.0 degrees: no outer ring", 1, 31, 2, 0},
        {"6.01 degrees: outer ring", 601, 19200 - 601, 2, 2},
        {"20 grandchildren capped at 8", 100, 0, 20, 8},
        // 40 equal grandchildren of a 20 degree sector are under 0.5 degrees each: all skipped.
        {"all below minimum sweep", 20, 172, 40, 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(outerSectorCount(c.middleSize, c.siblingSize, c.grandchildren), c.expected)
            << c.name;
    }
}

TEST(SunburstLayout, OuterRingLeavesTheRestOfTheArcEmptyAndAlternatesOpacity) {
    TreeBuilder tree;
    std::vector<FileNode*> gc;
    for (int i = 0; i < 20; ++i) {
        gc.push_back(tree.file(10));
    }
    FileNode* middle = tree.folder(200, gc);
    FileNode* inner = tree.folder(200, {middle});
    const FileNode* root = tree.folder(200, {inner});
    const auto sectors = computeSunburstSectors(childrenOf(root), 200);
    const auto outer = ofLevel(sectors, 3);
    const auto mid = ofLevel(sectors, 2);
    ASSERT_EQ(outer.size(), 8U);
    ASSERT_EQ(mid.size(), 1U);
    // Eight of twenty equal shares: the outer ring covers 40% of the middle sector's span.
    const double span = (359.5 - 0.3) - mid[0].startAngle;
    EXPECT_NEAR(outer.back().endAngle, mid[0].startAngle + span * 0.4 - 0.2, 1e-9);
    EXPECT_DOUBLE_EQ(outer[0].opacity, 0.7);
    EXPECT_DOUBLE_EQ(outer[1].opacity, 0.9);
    EXPECT_DOUBLE_EQ(outer[0].innerRadiusRatio, 0.86);
    EXPECT_DOUBLE_EQ(outer[0].outerRadiusRatio, 0.98);
    // Generation order: inner, its middle, then that middle's outer sectors.
    EXPECT_EQ(sectors[0].level, 1);
    EXPECT_EQ(sectors[1].level, 2);
    EXPECT_EQ(sectors[2].level, 3);
}

TEST(SunburstLayout, HitTest) {
    TreeBuilder tree;
    const FileNode* folder = tree.folderOf({500, 500, 1}); // the 1 is a skipped sliver
    const auto sectors = computeSunburstSectors(childrenOf(folder), folder->size);
    ASSERT_EQ(sectors.size(), 2U);
    const LayoutPoint c{200, 200};
    const double radius = 100;
    const auto at = [&](double ratio, double angle) {
        return pointOnCircle(c, ratio * radius, angle);
    };
    struct Case {
        const char* name;
        LayoutPoint p;
        std::optional<std::size_t> hit;
    };
    const Case cases[] = {
        {"middle of first", at(0.4, 90), 0},
        {"outer boundary 0.58", {c.x, c.y + 58}, 0},
        {"inner boundary 0.28", {c.x, c.y + 28}, 0},
        {"second sector", at(0.4, 270), 1},
        {"centre hole", at(0.1, 90), std::nullopt},
        {"centre itself", c, std::nullopt},
        {"gap between sectors", at(0.4, 180), std::nullopt},
        {"empty arc of the sliver", at(0.4, 359.8), std::nullopt},
        {"radial gap", at(0.595, 90), std::nullopt},
        {"outside", at(1.2, 90), std::nullopt},
    };
    for (const auto& k : cases) {
        EXPECT_EQ(hitTestSector(k.p, c, radius, sectors), k.hit) << k.name;
    }
    EXPECT_EQ(hitTestSector(at(0.4, 90), c, 0.0, sectors), std::nullopt);
}

TEST(SunburstLayout, RingRadiusAndOutline) {
    EXPECT_DOUBLE_EQ(ringRadius(800, 600), 292.0);
    EXPECT_DOUBLE_EQ(ringRadius(10, 600), -3.0);
    const AnnularSectorShape shape{0.0, 90.0, 20.0, 0.5};
    const auto outline = shape.outline({0, 0, 100, 60});
    EXPECT_EQ(outline.centre, (LayoutPoint{50, 30}));
    EXPECT_DOUBLE_EQ(outline.outer.radius, 1.0); // radii below 1 are drawn at 1
    EXPECT_DOUBLE_EQ(outline.outer.fromAngle, 0.0);
    EXPECT_DOUBLE_EQ(outline.outer.toAngle, 90.0);
    EXPECT_DOUBLE_EQ(outline.inner.radius, 20.0);
    EXPECT_DOUBLE_EQ(outline.inner.fromAngle, 90.0);
    EXPECT_DOUBLE_EQ(outline.inner.toAngle, 0.0);
    EXPECT_NEAR(outline.lineTo.x, 50.0, 1e-9); // 90 degrees points down on screen
    EXPECT_NEAR(outline.lineTo.y, 50.0, 1e-9);
}

} // namespace
} // namespace sondrel
