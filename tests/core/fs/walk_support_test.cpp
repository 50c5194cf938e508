// The pieces under the walk: the work-stealing pool and the mount table.

#include "core/fs/mount_table.h"
#include "core/fs/work_stealing_pool.h"

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

TEST(MountTable, ParsesMountinfoAndKnowsWhichTypesAreNotEntered) {
    for (const char* type : {"proc", "sysfs", "devtmpfs", "cgroup2", "tracefs", "debugfs",
                             "securityfs", "nfs4", "cifs", "fuse", "fuse.sshfs", "fuseblk"}) {
        EXPECT_TRUE(isForeignFilesystemType(type)) << type;
    }
    for (const char* type : {"ext4", "btrfs", "xfs", "tmpfs", "vfat", "zfs", "overlay"}) {
        EXPECT_FALSE(isForeignFilesystemType(type)) << type;
    }
    const MountTable mounts =
        MountTable::parse("22 1 0:21 / /proc rw - proc proc rw\n"
                          "40 1 8:1 / /home/u/remote\\040dir rw shared:1 - fuse.sshfs host: rw\n"
                          "41 1 8:1 /srv/x /homework/x rw - ext4 /dev/sda1 rw\n"
                          "malformed line\n");
    ASSERT_EQ(mounts.entries().size(), 3U);
    const MountEntry* remote = mounts.byId(40);
    ASSERT_NE(remote, nullptr);
    EXPECT_EQ(remote->mountPoint, "/home/u/remote dir");
    EXPECT_EQ(remote->type, "fuse.sshfs");
    EXPECT_EQ(mounts.atMountPoint("/homework/x")->root, "/srv/x");
    EXPECT_EQ(mounts.atMountPoint("/homework"), nullptr);
    EXPECT_TRUE(mounts.anyBelow("/"));
    EXPECT_TRUE(mounts.anyBelow("/home/u"));
    EXPECT_TRUE(mounts.anyBelow("/home/u/"));
    EXPECT_FALSE(mounts.anyBelow("/home/u/remote dir")); // the mount point itself: scanned
    EXPECT_FALSE(mounts.anyBelow("/home/v"));
    EXPECT_FALSE(mounts.anyBelow("/hom"));

    // This machine's own table names at least /proc.
    const MountTable live = MountTable::read();
    EXPECT_TRUE(live.anyBelow("/"));
    ASSERT_NE(live.atMountPoint("/proc"), nullptr);
    EXPECT_EQ(live.atMountPoint("/proc")->type, "proc");
}

} // namespace
} // namespace sondrel
