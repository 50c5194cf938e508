// The junk scan's folders taken from a home's Locations in both layouts: XDG overrides and the
// user-dirs file decide where caches and dependency roots are, and a scan over them finds the
// junk there.

#include "core/junk/junk_scan.h"
#include "platform/locations.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

namespace sondrel {
namespace {

using test::TempDir;

TEST(JunkFolders, FollowTheLocationsOfEitherLayout) {
    TempDir dir;
    const std::string home = dir.makeDir("home");
    dir.writeFile("home/.config/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n");
    const JunkFolders linuxFolders = JunkFolders::from(
        Locations::forLinux(home, {{"XDG_CACHE_HOME", dir.path() + "/elsewhere-cache"}}));
    EXPECT_FALSE(linuxFolders.macosLayout);
    EXPECT_EQ(linuxFolders.cacheHome, dir.path() + "/elsewhere-cache");
    EXPECT_EQ(linuxFolders.trashFiles, home + "/.local/share/Trash/files");
    EXPECT_EQ(linuxFolders.documents, home + "/Dokumente");

    const JunkFolders macFolders = JunkFolders::from(Locations::forMacos(home));
    EXPECT_TRUE(macFolders.macosLayout);
    EXPECT_EQ(macFolders.cacheHome, home + "/Library/Caches");
    EXPECT_EQ(macFolders.logsHome, home + "/Library/Logs");
    EXPECT_EQ(macFolders.trashFiles, home + "/.Trash");

    // node_modules in the user-dirs Documents folder is found; the cache moved by XDG too.
    dir.makeFile("home/Dokumente/site/node_modules/lib.js", 11 * 1024 * 1024);
    dir.makeFile("elsewhere-cache/pip/wheel.whl", 2 * 1024 * 1024);
    const CancelToken cancel;
    const std::vector<JunkGroup> groups = scanJunk(linuxFolders, cancel);
    ASSERT_EQ(groups.size(), 2u);
    EXPECT_EQ(groups[0].items.front().path, dir.path() + "/elsewhere-cache/pip");
    EXPECT_EQ(groups[1].items.front().title, "site/node_modules");
    for (const JunkGroup& group : groups) {
        for (const JunkItem& item : group.items) {
            const std::vector<std::string> roots = junkRoots(linuxFolders);
            EXPECT_NE(std::find(roots.begin(), roots.end(), item.root), roots.end()) << item.root;
        }
    }
}

} // namespace
} // namespace sondrel
