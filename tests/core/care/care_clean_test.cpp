// A Smart Clean on a temporary home: each item goes through its chain (Trash items removed for
// good with their records, leftovers and caches into the Trash), a category switched off stays
// untouched, items that need the administrator go to the helper in one batch, and cancel stops.

#include "core/care/care_clean.h"
#include "core/fs/measure_tree.h"
#include "core/removal/permanent_removal.h"
#include "tests/support/temp_dir.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace sondrel {
namespace {

using test::TempDir;

struct Home {
    TempDir dir;
    std::string home = dir.makeDir("home");
    std::string data = dir.makeDir("home/.local/share");
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

CareItem itemAt(const std::string& path, CareCategory category) {
    return {path, measureTree(path).allocated, category, false};
}

TEST(CareClean, ListsTheTrashAsMeasured) {
    Home h;
    h.trashed("report.pdf", 10000);
    h.dir.makeFile("home/.local/share/Trash/files/folder/inner.bin", 50000);
    const CancelToken cancel;
    std::vector<CareItem> items = listTrashItems(h.trashFiles, cancel);
    ASSERT_EQ(items.size(), 2U);
    std::int64_t total = 0;
    for (const CareItem& item : items) {
        EXPECT_EQ(item.category, CareCategory::trash);
        EXPECT_EQ(item.size, measureTree(item.path).allocated);
        total += item.size;
    }
    EXPECT_GT(total, 60000);
    EXPECT_TRUE(listTrashItems(h.dir / "missing", cancel).empty());
}

TEST(CareClean, EachCategoryThroughItsChainAndSwitchedOffRowsStay) {
    Home h;
    const std::string cache = h.dir.makeFile("home/.cache/thumbnails/big.png", 30000);
    const std::string orphan = h.dir.makeFile("home/.config/GoneApp/settings.ini", 2000);
    const std::string inTrash = h.trashed("old.iso", 40000);
    const CareManifest manifest(
        {itemAt(h.dir / "home/.cache/thumbnails", CareCategory::appCaches),
         itemAt(h.dir / "home/.config/GoneApp", CareCategory::orphanedLeftovers),
         itemAt(inTrash, CareCategory::trash)});

    CareSwitches switches;
    switches.set(CareCategory::trash, false);
    const CancelToken cancel;
    std::vector<std::pair<std::size_t, std::size_t>> steps;
    const CareCleanResult result = cleanCareItems(
        manifest.selectedItems(switches), h.context(), cancel,
        [&](std::size_t done, std::size_t total) { steps.emplace_back(done, total); });

    EXPECT_TRUE(result.failures.empty()) << result.failures.front().reason;
    EXPECT_EQ(result.removedCount, 2U);
    EXPECT_EQ(result.bytesFreed, manifest.selectedBytes(switches));
    EXPECT_FALSE(pathExists(cache));
    EXPECT_FALSE(pathExists(orphan));
    // The Trash row was off: its item and record are still there.
    EXPECT_TRUE(pathExists(inTrash));
    EXPECT_TRUE(pathExists(h.trashInfo + "/old.iso.trashinfo"));
    // The cache and the leftover went into the Trash, where the user can restore them.
    EXPECT_TRUE(pathExists(h.trashFiles + "/thumbnails"));
    EXPECT_TRUE(pathExists(h.trashFiles + "/GoneApp"));
    ASSERT_FALSE(steps.empty());
    EXPECT_EQ(steps.back(), std::make_pair(std::size_t{2}, std::size_t{2}));

    // Now the Trash row alone: the item goes for good, with its record.
    CareSwitches trashOnly;
    for (CareCategory category : kCareCategories) {
        trashOnly.set(category, category == CareCategory::trash);
    }
    const CareCleanResult emptied =
        cleanCareItems(manifest.selectedItems(trashOnly), h.context(), cancel, {});
    EXPECT_EQ(emptied.removedCount, 1U);
    EXPECT_FALSE(pathExists(inTrash));
    EXPECT_FALSE(pathExists(h.trashInfo + "/old.iso.trashinfo"));
}

TEST(CareClean, MissingItemsFreeNothingAndRefusalsAreReported) {
    Home h;
    const CancelToken cancel;
    const CareCleanResult result =
        cleanCareItems({{h.home + "/.cache/gone", 500, CareCategory::appCaches, false},
                        {h.home, 1, CareCategory::appCaches, false},
                        {"/etc/passwd", 1, CareCategory::logs, false}},
                       h.context(), cancel, {});
    EXPECT_EQ(result.bytesFreed, 0);
    EXPECT_EQ(result.removedCount, 0U);
    EXPECT_EQ(result.failures.size(), 2U);
    EXPECT_TRUE(pathExists(h.home));
    EXPECT_TRUE(pathExists("/etc/passwd"));
}

TEST(CareClean, CancelledBeforeTheFirstItemRemovesNothing) {
    Home h;
    const std::string cache = h.dir.makeFile("home/.cache/a/file", 100);
    CancelToken cancel;
    cancel.cancel();
    const CareCleanResult result = cleanCareItems(
        {itemAt(h.dir / "home/.cache/a", CareCategory::appCaches)}, h.context(), cancel, {});
    EXPECT_TRUE(result.cancelled);
    EXPECT_EQ(result.removedCount, 0U);
    EXPECT_TRUE(pathExists(cache));
}

bool setImmutable(const std::string& path, bool on) {
    const int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    int flags = 0;
    bool ok = ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0;
    flags = on ? (flags | FS_IMMUTABLE_FL) : (flags & ~FS_IMMUTABLE_FL);
    ok = ok && ioctl(fd, FS_IOC_SETFLAGS, &flags) == 0;
    close(fd);
    return ok;
}

TEST(CareClean, OnePasswordPromptForEveryItemThatNeedsIt) {
    Home h;
    const std::string locked = h.dir.makeDir("home/.cache/locked");
    const std::string first = h.dir.makeFile("home/.cache/locked/one", 10);
    const std::string second = h.dir.makeFile("home/.cache/locked/two", 10);
    if (!setImmutable(locked, true)) {
        GTEST_SKIP() << "this file system has no immutable attribute";
    }
    std::vector<std::vector<std::string>> calls;
    const PrivilegedHelperClient client(
        "/usr/libexec/sondrel/sondrel-helper",
        [&](const std::vector<std::string>& argv, const std::string&) {
            calls.push_back(argv);
            return CommandOutcome{true, 126, {}}; // the password dialog was dismissed
        });
    RemovalContext context = h.context();
    context.administrator = &client;
    const CancelToken cancel;
    const CareCleanResult result = cleanCareItems(
        {{first, 10, CareCategory::appCaches, true}, {second, 10, CareCategory::logs, true}},
        context, cancel, {});
    setImmutable(locked, false);
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_EQ(calls[0].back(), "remove");
    EXPECT_EQ(result.removedCount, 0U);
    ASSERT_EQ(result.failures.size(), 2U);
    EXPECT_EQ(result.failures[0].reason, "cancelled");
    EXPECT_TRUE(pathExists(first));
    EXPECT_TRUE(pathExists(second));
}

} // namespace
} // namespace sondrel
