// The junk scan on fake homes in both layouts: what each category lists, its thresholds,
// order and default selection, and the rule that no byte shows in two groups.

#include "core/fs/measure_tree.h"
#include "core/junk/junk_scan.h"
#include "core/junk/junk_tables.h"
#include "core/junk/junk_texts.h"
#include "tests/core/junk/junk_test_home.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace sondrel {
namespace {

using test::groupOf;
using test::JunkHome;
using test::kMiB;
using test::titlesOf;
using ::testing::ElementsAre;

TEST(JunkScan, EmptyHomeGivesNoGroupsAndAZeroStatus) {
    const JunkHome linuxHome;
    EXPECT_TRUE(linuxHome.scan().empty());
    EXPECT_EQ(junkFoundText({}), "Found Zero KB of cleanable space");
    const JunkHome macHome(true);
    EXPECT_TRUE(macHome.scan().empty());
}

TEST(JunkScan, MacosDeveloperCachesKeepTheTableOrderAndTheOneMebibyteThreshold) {
    const JunkHome home(true);
    // Single files are measured by their length: exactly 1 MiB is not listed, one byte more is.
    home.sparse("Library/Developer/Xcode/DerivedData", kMiB);
    home.sparse("Library/Developer/Xcode/Archives", kMiB + 1);
    home.file("Library/Caches/CocoaPods/Specs/pod.json", 2 * kMiB);
    home.file(".gradle/caches/modules-2/lib.jar", 3 * kMiB);

    const auto groups = home.scan();
    ASSERT_FALSE(groups.empty());
    EXPECT_EQ(groups.front().type, JunkType::xcode);
    EXPECT_EQ(groups.front().title, "Xcode & Developer Caches");
    EXPECT_THAT(titlesOf(groups, JunkType::xcode),
                ElementsAre("Xcode Archives", "CocoaPods Cache", "Gradle Caches"));
    const JunkItem& archives = groups.front().items.front();
    EXPECT_EQ(archives.size, kMiB + 1);
    EXPECT_EQ(archives.detail, "Old build archives and dSYMs");
    EXPECT_TRUE(archives.isSelected);
    EXPECT_FALSE(archives.isPermissionLocked);
    // A folder counts its allocated bytes, as du does.
    const JunkItem& gradle = groups.front().items.back();
    EXPECT_EQ(gradle.size, measureTree(home.home + "/.gradle/caches").allocated);
    // CocoaPods lies in the cache folder: it is claimed by the developer group only.
    EXPECT_EQ(groupOf(groups, JunkType::userCaches), nullptr);
}

TEST(JunkScan, NodeModulesAreFoundOnceUnselectedAndNeverInsideHiddenFolders) {
    const JunkHome home(true);
    home.file("Projects/webapp/node_modules/react/index.js", 11 * kMiB);
    home.file("Projects/webapp/node_modules/react/node_modules/x/big.bin", 11 * kMiB);
    home.file("Projects/.archive/old/node_modules/a.js", 11 * kMiB);
    home.file("Desktop/small/node_modules/a.js", 4096);
    home.file("Elsewhere/app/node_modules/a.js", 11 * kMiB); // not a search root

    const auto groups = home.scan();
    const JunkGroup* group = groupOf(groups, JunkType::nodeModules);
    ASSERT_NE(group, nullptr);
    ASSERT_EQ(group->items.size(), 1u);
    const JunkItem& item = group->items.front();
    EXPECT_EQ(item.title, "webapp/node_modules");
    EXPECT_EQ(item.path, home.home + "/Projects/webapp/node_modules");
    EXPECT_EQ(item.detail, "Project dependencies");
    EXPECT_FALSE(item.isSelected);
    EXPECT_GT(item.size, 22 * kMiB); // the nested folder is inside this one's size
    EXPECT_EQ(group->title, "Node Modules Packages");
}

TEST(JunkScan, NodeModulesOfExactlyTenMebibytesIsNotListed) {
    const JunkHome home;
    const std::string folder = home.folder("code/app/node_modules");
    const std::int64_t own = measureTree(folder).allocated;
    home.file("code/app/node_modules/pkg.tgz", 10 * kMiB - own);
    if (measureTree(folder).allocated != 10 * kMiB) {
        GTEST_SKIP() << "this file system allocates other than the written blocks";
    }
    EXPECT_EQ(groupOf(home.scan(), JunkType::nodeModules), nullptr);
    home.file("code/app/node_modules/one-more", 1);
    const auto groups = home.scan();
    ASSERT_NE(groupOf(groups, JunkType::nodeModules), nullptr);
    EXPECT_THAT(titlesOf(groups, JunkType::nodeModules), ElementsAre("app/node_modules"));
}

TEST(JunkScan, ASearchRootThatIsALinkIsSearched) {
    const JunkHome home;
    const std::string elsewhere = home.dir.makeDir("disk/work");
    home.dir.makeFile("disk/work/api/node_modules/pkg.tgz", 11 * kMiB);
    ASSERT_EQ(symlink(elsewhere.c_str(), (home.home + "/workspace").c_str()), 0);
    const auto groups = home.scan();
    ASSERT_NE(groupOf(groups, JunkType::nodeModules), nullptr);
    const JunkItem& item = groupOf(groups, JunkType::nodeModules)->items.front();
    EXPECT_EQ(item.path, home.home + "/workspace/api/node_modules");
    EXPECT_EQ(item.root, home.home + "/workspace");
}

TEST(JunkScan, UserCachesKeepTheTwentyLargestLargestFirst) {
    const JunkHome home(true);
    for (int i = 0; i < 25; ++i) {
        home.sparse("Library/Caches/app" + std::to_string(i), 11 * kMiB + i * 1000);
    }
    home.sparse("Library/Caches/tiny", 10 * kMiB); // exactly the threshold: not listed
    home.sparse("Library/Caches/.hidden", 50 * kMiB);

    const auto groups = home.scan();
    const JunkGroup* group = groupOf(groups, JunkType::userCaches);
    ASSERT_NE(group, nullptr);
    ASSERT_EQ(group->items.size(), 20u);
    EXPECT_EQ(group->items.front().title, "app24");
    EXPECT_EQ(group->items.back().title, "app5");
    for (std::size_t i = 1; i < group->items.size(); ++i) {
        EXPECT_GE(group->items[i - 1].size, group->items[i].size);
    }
    EXPECT_EQ(group->items.front().detail, "Application cache data");
    EXPECT_EQ(group->description, "Temporary internet and app caches stored in ~/Library/Caches.");
}

TEST(JunkScan, AReadOnlyCacheIsLockedAndStillSelected) {
    const JunkHome home;
    const std::string locked = home.sparse(".cache/system-thing", 20 * kMiB);
    home.sparse(".cache/browser", 30 * kMiB);
    JunkScanOptions options;
    options.isWritable = [locked](const std::string& path) { return path != locked; };

    const auto groups = home.scan(options);
    const JunkGroup* group = groupOf(groups, JunkType::userCaches);
    ASSERT_NE(group, nullptr);
    ASSERT_EQ(group->items.size(), 2u);
    const JunkItem& item = group->items.back();
    EXPECT_EQ(item.path, locked);
    EXPECT_TRUE(item.isPermissionLocked);
    EXPECT_TRUE(item.isSelected);
    EXPECT_EQ(item.detail, "Root-owned cache (requires admin permissions)");
    EXPECT_FALSE(group->items.front().isPermissionLocked);
    EXPECT_EQ(group->description, "Temporary internet and app caches stored in ~/.cache.");
}

TEST(JunkScan, LinuxDeveloperCachesAreNotListedAgainAsUserCaches) {
    const JunkHome home;
    home.file(".cache/pip/http/wheel.bin", 12 * kMiB);
    home.file(".cache/go-build/00/obj", 2 * kMiB);
    home.file(".cargo/registry/cache/index/crate.crate", 2 * kMiB);
    home.file(".cargo/bin/cargo", 3 * kMiB); // a toolchain: never offered
    home.file(".npm/_cacache/content/blob", 2 * kMiB);
    home.sparse(".cache/thumbnails", 15 * kMiB);
    home.sparse(".cache/fontconfig", 40 * kMiB); // on the keep list
    home.sparse(".cache/mesa_shader_cache_db", 40 * kMiB);

    const auto groups = home.scan();
    EXPECT_THAT(titlesOf(groups, JunkType::xcode),
                ElementsAre("npm Cache", "pip Cache", "Go Build Cache", "Cargo Registry Cache"));
    EXPECT_THAT(titlesOf(groups, JunkType::userCaches), ElementsAre("thumbnails"));
    EXPECT_EQ(groups.front().title, "Developer Caches");
    // Every path appears once across all groups.
    std::vector<std::string> paths;
    for (const JunkGroup& group : groups) {
        for (const JunkItem& item : group.items) {
            for (const std::string& other : paths) {
                EXPECT_NE(other, item.path);
            }
            paths.push_back(item.path);
        }
    }
}

TEST(JunkScan, LinuxLogsComeFromTheSessionErrorsXorgAndLogFiles) {
    const JunkHome home;
    home.sparse(".xsession-errors", 3 * kMiB);
    home.sparse(".xsession-errors.old", kMiB); // exactly 1 MiB: not listed
    home.sparse(".local/share/xorg/Xorg.0.log", 2 * kMiB);
    home.sparse(".local/state/editor.log", 4 * kMiB);
    home.sparse(".local/state/history.txt", 9 * kMiB);

    const auto groups = home.scan();
    EXPECT_THAT(titlesOf(groups, JunkType::logs),
                ElementsAre("editor.log", ".xsession-errors", "Xorg.0.log"));
    EXPECT_EQ(groupOf(groups, JunkType::logs)->items.front().detail, "Log files and crash traces");
}

TEST(JunkScan, TrashListsEveryEntryLargestFirstIncludingEmptyAndHiddenOnes) {
    const JunkHome home;
    home.file(".local/share/Trash/files/report.pdf", 5000);
    home.file(".local/share/Trash/files/empty.txt", 0);
    home.file(".local/share/Trash/files/.dotfile", 100);

    const auto groups = home.scan();
    ASSERT_EQ(groups.size(), 1u);
    EXPECT_EQ(groups.front().title, "Trash");
    EXPECT_THAT(titlesOf(groups, JunkType::trash),
                ElementsAre("report.pdf", ".dotfile", "empty.txt"));
    EXPECT_EQ(groups.front().items.back().size, 0);
    EXPECT_EQ(groups.front().items.front().detail, "Deleted item in Trash");

    const JunkHome mac(true);
    mac.file(".Trash/old.zip", 10);
    EXPECT_EQ(mac.scan().front().items.front().detail, "Deleted item in macOS Trash");
}

TEST(JunkScan, GroupsComeInTheFixedOrderWithFreshIds) {
    const JunkHome home;
    home.file(".local/share/Trash/files/a", 10);
    home.sparse(".xsession-errors", 2 * kMiB);
    home.sparse(".cache/browser", 20 * kMiB);
    home.file("projects/site/node_modules/x", 11 * kMiB);
    home.file(".gradle/caches/x", 2 * kMiB);

    const auto first = home.scan();
    std::vector<JunkType> types;
    for (const JunkGroup& group : first) {
        types.push_back(group.type);
    }
    EXPECT_THAT(types, ElementsAre(JunkType::xcode, JunkType::nodeModules, JunkType::userCaches,
                                   JunkType::logs, JunkType::trash));
    const auto second = home.scan();
    EXPECT_NE(first.front().id, second.front().id);
    EXPECT_NE(first.front().items.front().id, second.front().items.front().id);
    EXPECT_EQ(junkFoundText(first).rfind("Found ", 0), 0u);
}

TEST(JunkScan, AnUnreadableCacheFolderIsSkippedAndTheScanGoesOn) {
    const JunkHome home;
    home.file(".cache/pip/x", 12 * kMiB);
    // A link in place of a developer cache is not followed or listed.
    const std::string outside = home.dir.makeDir("outside");
    home.dir.makeFile("outside/big", 3 * kMiB);
    ASSERT_EQ(symlink(outside.c_str(), (home.home + "/.cache/go-build").c_str()), 0);
    home.sparse(".local/share/Trash/files/a", 1);
    const auto groups = home.scan();
    EXPECT_THAT(titlesOf(groups, JunkType::xcode), ElementsAre("pip Cache"));
    EXPECT_NE(groupOf(groups, JunkType::trash), nullptr);
}

TEST(JunkSelection, GroupToggleSelectsAPartlySelectedGroupThenDeselectsIt) {
    JunkGroup group;
    group.id = 7;
    for (std::uint64_t i = 1; i <= 3; ++i) {
        JunkItem item;
        item.id = i;
        item.size = static_cast<std::int64_t>(i) * 100;
        item.isSelected = i == 1;
        group.items.push_back(item);
    }
    std::vector<JunkGroup> groups{group};
    EXPECT_TRUE(groups[0].hasSomeSelected());
    EXPECT_FALSE(groups[0].allSelected());
    EXPECT_EQ(groups[0].selectedSize(), 100);

    ASSERT_TRUE(toggleGroupSelection(groups, 7));
    EXPECT_TRUE(groups[0].allSelected());
    EXPECT_EQ(junkSelectedSize(groups), 600);
    ASSERT_TRUE(toggleGroupSelection(groups, 7));
    EXPECT_FALSE(groups[0].hasSomeSelected());

    EXPECT_TRUE(toggleItemSelection(groups, 7, 2));
    EXPECT_EQ(selectedJunkItems(groups).size(), 1u);
    EXPECT_FALSE(toggleItemSelection(groups, 7, 99));
    EXPECT_FALSE(toggleItemSelection(groups, 8, 2));
    EXPECT_FALSE(toggleGroupSelection(groups, 8));

    JunkGroup empty;
    empty.id = 9;
    groups.push_back(empty);
    EXPECT_FALSE(groups[1].allSelected());
    EXPECT_FALSE(groups[1].hasSomeSelected());
    EXPECT_FALSE(toggleGroupSelection(groups, 9));
}

TEST(JunkTables, KeepListAndTypeKeys) {
    EXPECT_TRUE(isKeptUserCache("doc"));
    EXPECT_TRUE(isKeptUserCache("qtshadercache-x86_64"));
    EXPECT_TRUE(isKeptUserCache("icon-cache.kcache"));
    EXPECT_FALSE(isKeptUserCache("docs"));
    for (JunkType type : allJunkTypes()) {
        EXPECT_EQ(junkTypeFromKey(junkTypeKey(type)), type);
    }
    EXPECT_FALSE(junkTypeFromKey("xcode-ish").has_value());
    EXPECT_EQ(junkTypeName(JunkType::trash), "macOS Trash");
    // No developer cache is a configuration, credential or bin folder.
    for (const JunkCacheRow& row : linuxDeveloperCaches()) {
        const std::string path(row.relative);
        EXPECT_EQ(path.find("bin"), std::string::npos) << path;
        EXPECT_EQ(path.find(".config"), std::string::npos) << path;
        EXPECT_EQ(path.find("credentials"), std::string::npos) << path;
    }
}

TEST(JunkTexts, LastUsedReadsInTheLargestWholeUnit) {
    constexpr std::int64_t now = 1'700'000'000;
    constexpr std::int64_t day = 86'400;
    EXPECT_EQ(junkLastUsedText(0, now), "");
    EXPECT_EQ(junkLastUsedText(now + 50, now), "last used today");
    EXPECT_EQ(junkLastUsedText(now - day, now), "last used yesterday");
    EXPECT_EQ(junkLastUsedText(now - 13 * day, now), "last used 13 days ago");
    EXPECT_EQ(junkLastUsedText(now - 14 * day, now), "last used 2 weeks ago");
    EXPECT_EQ(junkLastUsedText(now - 95 * day, now), "last used 3 months ago");
    EXPECT_EQ(junkLastUsedText(now - 365 * day, now), "last used 1 year ago");
}

} // namespace
} // namespace sondrel
