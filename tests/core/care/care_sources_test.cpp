// A Smart Clean on a temporary home, from what the junk and app scans found: each item goes
// back through the chain of its scan (Trash items removed for good with their records, caches
// and leftovers into the Trash), a row switched off stays untouched, dependency folders are
// never counted, items the scans did not find are refused, and cancel stops.

#include "core/care/care_sources.h"
#include "core/fs/measure_tree.h"
#include "core/removal/permanent_removal.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

namespace sondrel {
namespace {

using test::TempDir;

struct Home {
    TempDir dir;
    std::string home = dir.makeDir("home");
    std::string data = dir.makeDir("home/.local/share");
    std::string cache = dir.makeDir("home/.cache");
    std::string trashFiles = dir.makeDir("home/.local/share/Trash/files");
    std::string trashInfo = dir.makeDir("home/.local/share/Trash/info");

    RemovalContext context() const { return RemovalContext::forUser(home, data, {home}); }

    // An item already in the Trash, with its record.
    std::string trashed(const std::string& name, long long size) const {
        const std::string path = dir.makeFile("home/.local/share/Trash/files/" + name, size);
        dir.writeFile("home/.local/share/Trash/info/" + name + ".trashinfo",
                      "[Trash Info]\nPath=/somewhere/" + name +
                          "\nDeletionDate=2024-01-01T00:00:00\n");
        return path;
    }
};

JunkItem junkAt(const std::string& path, const std::string& root, JunkType type) {
    JunkItem item;
    item.path = path;
    item.root = root;
    item.type = type;
    item.size = measureTree(path).allocated;
    return item;
}

TEST(CareSources, DependencyFoldersAreNeitherCountedNorCleaned) {
    JunkGroup modules;
    modules.type = JunkType::nodeModules;
    modules.items.push_back({});
    modules.items.back().path = "/home/u/src/app/node_modules";
    JunkGroup logs;
    logs.type = JunkType::logs;
    logs.items.push_back({});
    logs.items.back().path = "/home/u/.local/state/app/log";
    logs.items.back().type = JunkType::logs;
    AssociatedItem orphan;
    orphan.path = "/home/u/.config/Gone";
    const CareSources sources = careSourcesOf({modules, logs}, {orphan});
    const std::vector<CareItem> items = careItemsOf(sources);
    ASSERT_EQ(items.size(), 2U);
    EXPECT_EQ(items[0].category, CareCategory::logs);
    EXPECT_EQ(items[1].category, CareCategory::orphanedLeftovers);
}

TEST(CareSources, EachItemGoesThroughItsScansChainAndSwitchedOffRowsStay) {
    Home h;
    const std::string thumbnails = h.dir.makeDir("home/.cache/thumbnails");
    h.dir.makeFile("home/.cache/thumbnails/big.png", 30000);
    const std::string orphan = h.dir.makeDir("home/.config/GoneApp");
    h.dir.makeFile("home/.config/GoneApp/settings.ini", 2000);
    const std::string inTrash = h.trashed("old.iso", 40000);
    CareSources sources;
    sources.junk = {junkAt(thumbnails, h.cache, JunkType::userCaches),
                    junkAt(inTrash, h.trashFiles, JunkType::trash)};
    AssociatedItem leftover;
    leftover.path = orphan;
    leftover.size = measureTree(orphan).allocated;
    sources.orphans = {leftover};
    const CareManifest manifest(careItemsOf(sources));

    CareSwitches switches;
    switches.set(CareCategory::trash, false);
    const CancelToken cancel;
    std::vector<std::pair<std::size_t, std::size_t>> steps;
    const CareCleanResult result = cleanFromSources(
        manifest.selectedItems(switches), sources, h.context(), cancel,
        [&](std::size_t done, std::size_t total) { steps.emplace_back(done, total); });

    EXPECT_TRUE(result.failures.empty()) << result.failures.front().reason;
    EXPECT_EQ(result.removedCount, 2U);
    EXPECT_EQ(result.bytesFreed, manifest.selectedBytes(switches));
    // The cache and the leftover went into the Trash, where the user can restore them.
    EXPECT_FALSE(pathExists(thumbnails));
    EXPECT_FALSE(pathExists(orphan));
    EXPECT_TRUE(pathExists(h.trashFiles + "/thumbnails"));
    EXPECT_TRUE(pathExists(h.trashFiles + "/GoneApp"));
    // The Trash row was off: its item and record are still there.
    EXPECT_TRUE(pathExists(inTrash));
    EXPECT_TRUE(pathExists(h.trashInfo + "/old.iso.trashinfo"));
    ASSERT_FALSE(steps.empty());
    EXPECT_EQ(steps.back(), std::make_pair(std::size_t{2}, std::size_t{2}));

    // Now the Trash row alone: the item goes for good, with its record.
    CareSwitches trashOnly;
    for (CareCategory category : kCareCategories) {
        trashOnly.set(category, category == CareCategory::trash);
    }
    const CareCleanResult emptied =
        cleanFromSources(manifest.selectedItems(trashOnly), sources, h.context(), cancel, {});
    EXPECT_EQ(emptied.removedCount, 1U);
    EXPECT_FALSE(pathExists(inTrash));
    EXPECT_FALSE(pathExists(h.trashInfo + "/old.iso.trashinfo"));
}

TEST(CareSources, ItemsTheScansDidNotFindAreRefusedAndCancelStops) {
    Home h;
    const std::string kept = h.dir.makeDir("home/.cache/kept");
    h.dir.makeFile("home/.cache/kept/file", 100);
    CareSources sources;
    sources.junk = {junkAt(kept, h.cache, JunkType::userCaches)};
    const CancelToken cancel;
    const CareCleanResult refused =
        cleanFromSources({{h.home, 1, CareCategory::appCaches, false},
                          {"/etc/passwd", 1, CareCategory::orphanedLeftovers, false}},
                         sources, h.context(), cancel, {});
    EXPECT_EQ(refused.removedCount, 0U);
    EXPECT_EQ(refused.failures.size(), 2U);
    EXPECT_TRUE(pathExists(h.home));
    EXPECT_TRUE(pathExists("/etc/passwd"));

    CancelToken cancelled;
    cancelled.cancel();
    const CareCleanResult stopped =
        cleanFromSources(careItemsOf(sources), sources, h.context(), cancelled, {});
    EXPECT_TRUE(stopped.cancelled);
    EXPECT_EQ(stopped.removedCount, 0U);
    EXPECT_TRUE(pathExists(kept));
}

} // namespace
} // namespace sondrel
