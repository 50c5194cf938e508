// Permanent removal never follows links, never leaves its item, and reports what stayed.

#include "core/removal/permanent_removal.h"
#include "removal_test_support.h"

#include <atomic>
#include <chrono>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <thread>

namespace sondrel {
namespace {

using test::exists;

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

TEST(PermanentRemoval, LinksAtEveryLevelAreRemovedNotFollowed) {
    test::TempDir dir;
    const std::string outside = dir.makeDir("outside");
    const std::string precious = dir.writeFile("outside/precious", "keep me");
    dir.makeDir("outside/sub");
    dir.writeFile("outside/sub/deep", "keep me too");

    dir.writeFile("victim/a/b/file", "x");
    ASSERT_EQ(symlink(outside.c_str(), (dir / "victim/link-to-dir").c_str()), 0);
    ASSERT_EQ(symlink(precious.c_str(), (dir / "victim/a/link-to-file").c_str()), 0);
    ASSERT_EQ(symlink(outside.c_str(), (dir / "victim/a/b/deep-link").c_str()), 0);
    ASSERT_EQ(symlink("nowhere", (dir / "victim/a/dangling").c_str()), 0);
    ASSERT_EQ(symlink("loop", (dir / "victim/a/loop").c_str()), 0);
    ASSERT_EQ(mkfifo((dir / "victim/a/fifo").c_str(), 0600), 0);
    const int sock = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string socketPath = dir / "victim/a/sock";
    if (socketPath.size() < sizeof address.sun_path) {
        socketPath.copy(address.sun_path, socketPath.size());
        ASSERT_EQ(bind(sock, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    }
    close(sock);
    // The item itself a link to a folder, and a file with a newline in its name.
    dir.writeFile("victim/a/new\nline $(touch pwned)", "x");
    ASSERT_EQ(symlink(outside.c_str(), (dir / "top-link").c_str()), 0);

    const RemovalReport report = removePermanently(dir / "victim");
    EXPECT_TRUE(report.removed);
    EXPECT_TRUE(report.failures.empty());
    EXPECT_FALSE(exists(dir / "victim"));
    const RemovalReport linkReport = removePermanently(dir / "top-link");
    EXPECT_TRUE(linkReport.removed);
    EXPECT_EQ(linkReport.removedEntries, 1U);

    EXPECT_EQ(test::readFile(precious), "keep me");
    EXPECT_EQ(test::readFile(dir / "outside/sub/deep"), "keep me too");
    EXPECT_FALSE(exists(dir / "pwned"));

    const RemovalReport missing = removePermanently(dir / "victim");
    EXPECT_TRUE(missing.removed);
    EXPECT_TRUE(missing.failures.empty());
}

// A thread keeps swapping folders inside the item for links to an outside folder while the
// removal walks; whatever the timing, nothing outside may go.
TEST(PermanentRemoval, RacingSwapNeverEscapes) {
    test::TempDir dir;
    const std::string outside = dir.makeDir("outside");
    constexpr int kSentinels = 50;
    for (int i = 0; i < kSentinels; ++i) {
        dir.writeFile("outside/sentinel-" + std::to_string(i), "s");
        dir.writeFile("outside/nested/sentinel-" + std::to_string(i), "s");
    }
    for (int round = 0; round < 20; ++round) {
        const std::string victim = dir / ("victim" + std::to_string(round));
        for (int i = 0; i < 20; ++i) {
            for (int j = 0; j < 5; ++j) {
                dir.writeFile("victim" + std::to_string(round) + "/d" + std::to_string(i) + "/e/f" +
                                  std::to_string(j),
                              "v");
            }
        }
        std::atomic<bool> stop{false};
        std::thread swapper([&] {
            int i = 0;
            while (!stop.load()) {
                const std::string folder = victim + "/d" + std::to_string(i % 20);
                const std::string aside = folder + ".aside";
                if (rename(folder.c_str(), aside.c_str()) == 0) {
                    symlink(outside.c_str(), folder.c_str());
                    // Leave the link in place a moment so the walk meets it between looking
                    // at the name and opening it.
                    std::this_thread::sleep_for(std::chrono::microseconds(i % 3 == 0 ? 0 : 50));
                    unlink(folder.c_str());
                    rename(aside.c_str(), folder.c_str());
                }
                symlink(outside.c_str(), (folder + "/e-link").c_str());
                ++i;
            }
        });
        removePermanently(victim);
        stop = true;
        swapper.join();
        removePermanently(victim);
        EXPECT_FALSE(exists(victim)) << victim;
        for (int i = 0; i < kSentinels; ++i) {
            ASSERT_TRUE(exists(outside + "/sentinel-" + std::to_string(i))) << "round " << round;
            ASSERT_TRUE(exists(outside + "/nested/sentinel-" + std::to_string(i)));
        }
    }
}

// The same swap at the worst possible moment, every time: between looking at a folder and
// opening it.
TEST(PermanentRemoval, SwapBetweenLookAndOpenNeverEscapes) {
    test::TempDir dir;
    const std::string outside = dir.makeDir("outside");
    const std::string precious = dir.writeFile("outside/precious", "keep");
    dir.writeFile("victim/a/b/c/file", "x");
    dir.writeFile("victim/a/other", "x");
    int swaps = 0;
    const std::string victim = dir / "victim";
    setRemovalRaceHookForTesting([&](const std::string& path) {
        if (path == victim) {
            return;
        }
        const std::string aside = path + ".aside";
        if (rename(path.c_str(), aside.c_str()) == 0 &&
            symlink(outside.c_str(), path.c_str()) == 0) {
            ++swaps;
        }
    });
    const RemovalReport report = removePermanently(dir / "victim");
    setRemovalRaceHookForTesting({});
    EXPECT_GT(swaps, 0);
    EXPECT_EQ(test::readFile(precious), "keep");
    EXPECT_TRUE(exists(outside));
    // What was set aside is still inside the item; a second pass takes it.
    EXPECT_FALSE(report.removed);
    EXPECT_TRUE(removePermanently(dir / "victim").removed);
    EXPECT_EQ(test::readFile(precious), "keep");
}

// A folder moved out of the item while its subfolder is emptied (its descriptor closed then):
// the walk goes on in the folder it left, wherever it is now, stops where it cannot climb back
// into the item, and touches nothing else where the folder went.
TEST(PermanentRemoval, FolderMovedAwayMidWalkStopsTheWalkThere) {
    test::TempDir dir;
    const std::string outside = dir.makeDir("outside");
    const std::string precious = dir.writeFile("outside/precious", "keep");
    dir.writeFile("victim/a/b/file", "x");
    const std::string victim = dir / "victim";
    bool moved = false;
    setRemovalRaceHookForTesting([&](const std::string& path) {
        if (path == victim + "/a/b" && !moved) {
            moved = rename((victim + "/a").c_str(), (outside + "/a").c_str()) == 0;
        }
    });
    const RemovalReport report = removePermanently(victim);
    setRemovalRaceHookForTesting({});
    ASSERT_TRUE(moved);
    EXPECT_FALSE(report.removed);
    ASSERT_EQ(report.failures.size(), 1U);
    EXPECT_EQ(report.failures[0].path, victim + "/a");
    EXPECT_NE(report.failures[0].reason.find("moved out"), std::string::npos);
    EXPECT_FALSE(exists(outside + "/a/b"));
    EXPECT_TRUE(exists(outside + "/a"));
    EXPECT_EQ(test::readFile(precious), "keep");
}

TEST(PermanentRemoval, ImmutableItemsFailCleanlyAndTheRestGoes) {
    test::TempDir dir;
    const std::string locked = dir.writeFile("victim/a/locked", "x");
    dir.writeFile("victim/a/free", "x");
    dir.writeFile("victim/b/free", "x");
    if (!setImmutable(locked, true)) {
        GTEST_SKIP() << "this file system has no immutable attribute";
    }
    const RemovalReport report = removePermanently(dir / "victim");
    setImmutable(locked, false);
    EXPECT_FALSE(report.removed);
    ASSERT_EQ(report.failures.size(), 1U);
    EXPECT_EQ(report.failures.front().path, locked);
    EXPECT_TRUE(exists(locked));
    EXPECT_FALSE(exists(dir / "victim/a/free"));
    EXPECT_FALSE(exists(dir / "victim/b"));

    // clearImmutableFlags lets the item go.
    ASSERT_TRUE(setImmutable(locked, true));
    EXPECT_TRUE(clearImmutableFlags(locked));
    EXPECT_TRUE(removePermanently(dir / "victim").removed);
}

// As an ordinary user: a read-only folder keeps its entries, reported, and the rest goes.
TEST(PermanentRemoval, ReadOnlyFolderAsOrdinaryUser) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "needs root to act as another user";
    }
    test::TempDir dir;
    const std::string kept = dir.writeFile("victim/readonly/kept", "k");
    dir.writeFile("victim/free/one", "1");
    constexpr uid_t kNobody = 65534;
    for (const char* path : {"", "victim", "victim/readonly", "victim/readonly/kept", "victim/free",
                             "victim/free/one"}) {
        const std::string full = *path == '\0' ? dir.path() : dir / path;
        ASSERT_EQ(chown(full.c_str(), kNobody, kNobody), 0);
    }
    ASSERT_EQ(chmod((dir / "victim/readonly").c_str(), 0555), 0);
    const pid_t child = fork();
    if (child == 0) {
        if (setgid(kNobody) != 0 || setuid(kNobody) != 0) {
            _exit(100);
        }
        const RemovalReport report = removePermanently(dir / "victim");
        const bool expected = !report.removed && report.failures.size() == 1 &&
                              report.failures[0].path == kept && !exists(dir / "victim/free") &&
                              exists(kept);
        _exit(expected ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    EXPECT_EQ(test::readFile(kept), "k");
}

TEST(PermanentRemoval, StaysOnOneFileSystemAndReportsReadOnly) {
    test::TempDir dir;
    dir.writeFile("victim/file", "x");
    test::ScratchMount inner(dir, "victim/mounted");
    if (!inner.mounted()) {
        GTEST_SKIP() << "could not mount a second file system (needs root and mount rights)";
    }
    const std::string kept = dir.writeFile("victim/mounted/kept", "keep");
    const RemovalReport report = removePermanently(dir / "victim");
    EXPECT_FALSE(report.removed);
    ASSERT_EQ(report.failures.size(), 1U);
    EXPECT_EQ(report.failures.front().path, dir / "victim/mounted");
    EXPECT_EQ(test::readFile(kept), "keep");
    EXPECT_FALSE(exists(dir / "victim/file"));
    // The mount point itself is refused as an item.
    EXPECT_FALSE(removePermanently(inner.path()).removed);
    EXPECT_EQ(test::readFile(kept), "keep");

    // A read-only file system: each entry fails with a reason, nothing crashes.
    dir.writeFile("victim/mounted/d/one", "1");
    ASSERT_EQ(mount(nullptr, inner.path().c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
    const RemovalReport readOnly = removePermanently(inner.path() + "/d");
    mount(nullptr, inner.path().c_str(), nullptr, MS_REMOUNT, nullptr);
    EXPECT_FALSE(readOnly.removed);
    ASSERT_FALSE(readOnly.failures.empty());
    EXPECT_EQ(test::readFile(inner.path() + "/d/one"), "1");
}

// A chain far deeper than the open-file limit goes whole (each level used to hold a descriptor).
TEST(PermanentRemoval, ChainsDeeperThanTheDescriptorLimit) {
    test::TempDir dir;
    const std::string victim = dir.makeDir("victim");
    ASSERT_TRUE(test::makeChain(victim, 600, 10));
    RemovalReport report;
    {
        const test::DescriptorLimit limit(32);
        report = removePermanently(victim);
    }
    EXPECT_TRUE(report.removed);
    EXPECT_TRUE(report.failures.empty()) << report.failures.front().reason;
    EXPECT_EQ(report.removedEntries, 602U);
    EXPECT_FALSE(exists(victim));
}

} // namespace
} // namespace sondrel
