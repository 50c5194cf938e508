// A scan while it runs and where it cannot go: cancel, throttled progress, and mounts below the
// root (foreign file systems and bind mounts), on real trees in a temporary folder.

#include "core/fs/mount_table.h"
#include "core/scan/tree_scan.h"
#include "tests/core/scan/tree_test_support.h"
#include "tests/support/bind_mount.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <dirent.h>
#include <mutex>
#include <string>
#include <vector>

namespace sondrel {
namespace {

using test::child;
using test::describe;
using test::expectConsistent;
using test::scan;
using test::TempDir;

TEST(TreeScan, CancelBeforeStartGivesAnEmptyPartialTree) {
    TempDir dir;
    dir.makeFile("a/b", 10);
    ScanOptions options;
    CancelToken cancel;
    cancel.cancel();
    const ScanResult result = scanTree(dir.path(), options, cancel);
    EXPECT_TRUE(result.cancelled);
    ASSERT_TRUE(result.rootItem());
    EXPECT_EQ(result.rootItem().size(), 0);
}

TEST(TreeScan, CancelFromProgressStopsEarlyWithAConsistentTree) {
    TempDir dir;
    for (int i = 0; i < 60; ++i) {
        for (int j = 0; j < 100; ++j) {
            dir.makeFile("d" + std::to_string(i) + "/f" + std::to_string(j), 1);
        }
    }
    CancelToken cancel;
    int reports = 0;
    ScanOptions options;
    options.threads = 1; // one worker: the callback runs on the calling thread
    options.progressIntervalSeconds = 0;
    options.onProgress = [&](const ScanProgress& progress) {
        EXPECT_GT(progress.items, 0);
        EXPECT_FALSE(progress.currentPath.empty());
        if (++reports == 2) {
            cancel.cancel();
        }
    };
    const ScanResult result = scanTree(dir.path(), options, cancel);
    EXPECT_TRUE(result.cancelled);
    EXPECT_EQ(reports, 2);
    EXPECT_LT(result.rootItem().fileCount(), 6000);
    EXPECT_GT(result.rootItem().fileCount(), 0);
    expectConsistent(result.rootItem());
}

TEST(TreeScan, ProgressIsPublishedAtMostEveryEightyMilliseconds) {
    TempDir dir;
    for (int i = 0; i < 3000; ++i) {
        dir.makeFile("d" + std::to_string(i % 30) + "/f" + std::to_string(i), 1);
    }
    std::vector<std::chrono::steady_clock::time_point> times;
    std::mutex mutex;
    ScanOptions options;
    options.threads = 4;
    options.onProgress = [&](const ScanProgress&) {
        std::lock_guard lock(mutex);
        times.push_back(std::chrono::steady_clock::now());
    };
    CancelToken cancel;
    for (int round = 0; round < 3; ++round) {
        scanTree(dir.path(), options, cancel);
    }
    std::sort(times.begin(), times.end());
    for (std::size_t i = 1; i < times.size(); ++i) {
        // A scan's first report also waits the interval from its start, so the gaps hold
        // across the three scans too.
        const auto gap = times[i] - times[i - 1];
        if (gap < std::chrono::milliseconds(79)) {
            ADD_FAILURE() << "reports " << i - 1 << " and " << i << " only "
                          << std::chrono::duration<double>(gap).count() << " s apart";
        }
    }
}

TEST(TreeScan, ForeignFilesystemsBelowTheRootAreEmptyFolders) {
    const MountTable table = MountTable::read();
    std::vector<std::string> mountPoints;
    for (const MountEntry& entry : table.entries()) {
        mountPoints.push_back(entry.mountPoint);
    }
    if (table.atMountPoint("/dev/pts") == nullptr) {
        GTEST_SKIP() << "no devpts mount at /dev/pts here";
    }
    ScanOptions options;
    options.maxDepth = 1;
    CancelToken cancel;
    const ScanResult skipped = scanTree("/dev", options, cancel);
    const FileItem pts = child(skipped.rootItem(), "pts");
    ASSERT_TRUE(pts);
    EXPECT_TRUE(pts.isDirectory());
    EXPECT_EQ(pts.childCount(), 0U);

    options.enterForeignFilesystems = true;
    const ScanResult entered = scanTree("/dev", options, cancel);
    EXPECT_GT(child(entered.rootItem(), "pts").childCount(), 0U); // ptmx at least

    // Scanning a pseudo file system itself walks its folders (/dev is devtmpfs or tmpfs and
    // has foreign mounts below it: its own subfolders are still entered).
    options.enterForeignFilesystems = false;
    options.maxDepth = 2;
    const ScanResult itself = scanTree("/dev", options, cancel);
    std::size_t enteredFolders = 0;
    std::size_t expectedFolders = 0; // non-empty subfolders that are not mount points
    for (const FileItem& item : itself.rootItem().children()) {
        enteredFolders += item.isDirectory() && item.childCount() > 0 ? 1 : 0;
        const std::string path = item.url();
        if (item.isDirectory() &&
            std::find(mountPoints.begin(), mountPoints.end(), path) == mountPoints.end()) {
            if (DIR* stream = opendir(path.c_str())) {
                while (dirent* entry = readdir(stream)) {
                    if (entry->d_name[0] != '.') {
                        ++expectedFolders;
                        break;
                    }
                }
                closedir(stream);
            }
        }
    }
    EXPECT_EQ(enteredFolders > 0, expectedFolders > 0) << describe(itself.rootItem());
}

TEST(TreeScan, CancelledScanShowsOnlyMeasuredEntries) {
    TempDir dir;
    // One wide folder: its files are listed first and sized afterwards in slices, so a cancel
    // in between finds listed files whose size is not known yet.
    for (int i = 0; i < 5000; ++i) {
        dir.makeFile("wide/f" + std::to_string(i), 1);
    }
    CancelToken cancel;
    ScanOptions options;
    options.threads = 1;
    options.progressIntervalSeconds = 0;
    options.onProgress = [&](const ScanProgress&) { cancel.cancel(); };
    const ScanResult result = scanTree(dir.path(), options, cancel);
    EXPECT_TRUE(result.cancelled);
    const FileItem wide = child(result.rootItem(), "wide");
    if (wide) {
        for (const FileItem& file : wide.children()) {
            ASSERT_EQ(file.size(), 1) << "a file shown without its size";
        }
        EXPECT_EQ(wide.size(), wide.fileCount());
    }
    expectConsistent(result.rootItem());
}

TEST(TreeScan, BindMountsAreEmptyFoldersAndCountNothingTwice) {
    TempDir dir;
    dir.makeFile("tree/photos/a.jpg", 10000);
    dir.makeFile("tree/notes.txt", 8000);
    dir.makeFile("elsewhere/b.bin", 5000);
    dir.makeDir("tree/photos-again");
    dir.makeDir("tree/elsewhere-view");
    const test::ScopedBindMount again(dir / "tree/photos", dir / "tree/photos-again");
    const test::ScopedBindMount view(dir / "elsewhere", dir / "tree/elsewhere-view");
    if (!again.mounted() || !view.mounted()) {
        GTEST_SKIP() << "bind mounts are not permitted here";
    }
    const ScanResult result = scan(dir / "tree");
    EXPECT_EQ(result.rootItem().size(), 18000) << describe(result.rootItem());
    const FileItem shown = child(result.rootItem(), "photos-again");
    ASSERT_TRUE(shown);
    EXPECT_TRUE(shown.isDirectory());
    EXPECT_EQ(shown.childCount(), 0U);
    expectConsistent(result.rootItem());
}

} // namespace
} // namespace sondrel
