// The manifest: rows hold exactly their category's items, every total is the sum of listed
// items, and the switches decide both the selected total and the items a clean gets.

#include "core/care/care_manifest.h"
#include "core/care/care_texts.h"

#include <gtest/gtest.h>

namespace sondrel {
namespace {

std::vector<CareItem> sampleItems() {
    return {
        {"/h/.cache/pip", 700, CareCategory::developerCaches, false},
        {"/h/.config/OldApp", 40, CareCategory::orphanedLeftovers, false},
        {"/h/.cache/thumbnails", 300, CareCategory::appCaches, false},
        {"/h/.cache/npm", 900, CareCategory::developerCaches, false},
        {"/h/.xsession-errors", 5, CareCategory::logs, false},
        {"/h/.local/share/Trash/files/a", 1000, CareCategory::trash, false},
        {"/var/cache/app", 60, CareCategory::appCaches, true},
    };
}

std::int64_t sumOf(const std::vector<CareItem>& items) {
    std::int64_t sum = 0;
    for (const CareItem& item : items) {
        sum += item.size;
    }
    return sum;
}

TEST(CareManifest, RowsGroupTheItemsLargestFirst) {
    const CareManifest manifest(sampleItems());
    EXPECT_EQ(manifest.itemCount(), 7U);
    for (CareCategory category : kCareCategories) {
        const CareManifestRow& row = manifest.row(category);
        EXPECT_EQ(row.category, category);
        EXPECT_EQ(row.totalBytes, sumOf(row.items));
        for (const CareItem& item : row.items) {
            EXPECT_EQ(item.category, category);
        }
    }
    const CareManifestRow& developer = manifest.row(CareCategory::developerCaches);
    ASSERT_EQ(developer.items.size(), 2U);
    EXPECT_EQ(developer.items[0].path, "/h/.cache/npm");
    EXPECT_EQ(manifest.summary(), (SmartCleanSummary{1600, 40, 360, 5, 1000}));
    EXPECT_EQ(manifest.selectedBytes(CareSwitches{}), 3005);
}

TEST(CareManifest, SwitchesDecideTheTotalAndTheItems) {
    const CareManifest manifest(sampleItems());
    CareSwitches switches;
    switches.set(CareCategory::trash, false);
    const std::vector<CareItem> selected = manifest.selectedItems(switches);
    EXPECT_EQ(manifest.selectedBytes(switches), sumOf(selected));
    EXPECT_EQ(manifest.selectedBytes(switches), 2005);
    for (const CareItem& item : selected) {
        EXPECT_NE(item.category, CareCategory::trash);
    }
    EXPECT_TRUE(manifest.selectionNeedsAdmin(switches));
    switches.set(CareCategory::appCaches, false);
    EXPECT_FALSE(manifest.selectionNeedsAdmin(switches));

    // Every combination of switches: the total is exactly the listed items of the rows on.
    for (unsigned mask = 0; mask < 32; ++mask) {
        CareSwitches some;
        for (CareCategory category : kCareCategories) {
            some.set(category, (mask >> indexOf(category)) & 1U);
        }
        EXPECT_EQ(manifest.selectedBytes(some), sumOf(manifest.selectedItems(some))) << mask;
    }
}

TEST(CareManifest, AllSwitchesOffSelectsNothing) {
    const CareManifest manifest(sampleItems());
    CareSwitches off;
    for (CareCategory category : kCareCategories) {
        off.set(category, false);
    }
    EXPECT_TRUE(off.noneOn());
    EXPECT_TRUE(manifest.selectedItems(off).empty());
    EXPECT_EQ(manifest.selectedBytes(off), 0);
    EXPECT_EQ(careExecuteButtonText(manifest.selectedBytes(off)), "No Items Selected");
    EXPECT_EQ(careExecuteButtonText(manifest.selectedBytes(CareSwitches{})),
              "Execute Cleanup (3 KB)");
}

TEST(CareManifest, DuplicatesOnceAndNegativeSizesAsZero) {
    const CareManifest manifest({
        {"/h/.cache/a", 10, CareCategory::appCaches, false},
        {"/h/.cache/a", 10, CareCategory::appCaches, false},
        {"/h/.cache/b", -50, CareCategory::appCaches, false},
    });
    EXPECT_EQ(manifest.row(CareCategory::appCaches).items.size(), 2U);
    EXPECT_EQ(manifest.summary().systemCacheBytes, 10);
    EXPECT_EQ(CareManifest().itemCount(), 0U);
    EXPECT_EQ(CareManifest().summary(), SmartCleanSummary{});
}

} // namespace
} // namespace sondrel
