// The pieces under the walk: the work-stealing pool, foreign file systems and the status texts.

#include "core/scan/foreign_mounts.h"
#include "core/scan/scan_texts.h"
#include "core/scan/work_stealing_pool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace sondrel {
namespace {

TEST(WorkStealingPool, RunsEveryPushedJobExactlyOnce) {
    for (const unsigned threads : {1U, 2U, 5U}) {
        WorkStealingPool<int> pool(threads);
        std::atomic<int> runs{0};
        std::vector<std::atomic<int>> seen(1 << 12);
        // A binary tree of jobs: job n pushes 2n and 2n+1 below 4096.
        pool.run(1, [&](unsigned worker, int job) {
            ++runs;
            ++seen[static_cast<std::size_t>(job)];
            EXPECT_LT(worker, pool.workerCount());
            for (const int next : {2 * job, 2 * job + 1}) {
                if (next < (1 << 12)) {
                    pool.push(worker, next);
                }
            }
        });
        EXPECT_EQ(runs.load(), (1 << 12) - 1) << threads;
        for (std::size_t i = 1; i < seen.size(); ++i) {
            ASSERT_EQ(seen[i].load(), 1) << i;
        }
    }
}

TEST(ForeignMounts, PseudoNetworkAndFuseTypesAreNotEntered) {
    for (const char* type : {"proc", "sysfs", "devtmpfs", "cgroup2", "tracefs", "debugfs",
                             "securityfs", "nfs4", "cifs", "fuse", "fuse.sshfs", "fuseblk"}) {
        EXPECT_TRUE(isForeignFilesystemType(type)) << type;
    }
    for (const char* type : {"ext4", "btrfs", "xfs", "tmpfs", "vfat", "zfs", "overlay"}) {
        EXPECT_FALSE(isForeignFilesystemType(type)) << type;
    }
    ForeignMounts mounts;
    mounts.mountPoints = {"/proc", "/home/u/remote dir", "/homework/x"};
    EXPECT_TRUE(mounts.anyBelow("/"));
    EXPECT_TRUE(mounts.anyBelow("/home/u"));
    EXPECT_TRUE(mounts.anyBelow("/home/u/"));
    EXPECT_FALSE(mounts.anyBelow("/home/u/remote dir")); // the mount point itself: scanned
    EXPECT_FALSE(mounts.anyBelow("/home/v"));
    EXPECT_FALSE(mounts.anyBelow("/hom"));

    // This machine's own table names at least /proc.
    const ForeignMounts live = foreignMounts();
    EXPECT_TRUE(live.anyBelow("/"));
    EXPECT_FALSE(live.devices.empty());
}

TEST(ScanTexts, StatusLines) {
    EXPECT_EQ(scanStartText("home"), "Fast scanning home...");
    EXPECT_EQ(scanProgressText(12, 1500000), "Scanning: 12 items (1.5 MB)");
    EXPECT_EQ(scanSummaryText(1000, 2000000, 0.5),
              "Scanned 1000 items (2 MB) in 0.50s (2000 items/s)");
    EXPECT_EQ(scanSummaryText(3, 0, 0), "Scanned 3 items (Zero KB) in 0.00s (0 items/s)");
    EXPECT_EQ(accessDeniedText("root"), "Access not allowed for 'root'. Permission was denied.");
    EXPECT_EQ(scanTargetName("/home/a/"), "a");
    EXPECT_EQ(scanTargetName("/"), "/");
    EXPECT_EQ(scanTargetName("/x/bad\xff"), "bad\xEF\xBF\xBD");
}

} // namespace
} // namespace sondrel
