// Mount points inside what is removed or trashed: a bind mount of a folder of the same file
// system has the same device number, so only the mount identity tells it apart. Nothing is
// removed inside one, nothing is chowned across one, and a folder holding one stays put.

#include "core/removal/mount_boundary.h"
#include "core/removal/permanent_removal.h"
#include "core/removal/trash.h"
#include "removal_test_support.h"

#include <gtest/gtest.h>

namespace sondrel {
namespace {

using test::exists;
using test::readFile;

uid_t ownerOf(const std::string& path) {
    struct stat info {};
    return lstat(path.c_str(), &info) == 0 ? info.st_uid : static_cast<uid_t>(-1);
}

// A home with a root-owned folder outside it and, inside the home, a folder holding a bind mount
// of that outside folder and a bind-mounted file.
struct MountedHome {
    test::TempHome t;
    std::string outside = t.dir.makeDir("outside");
    std::string secret = t.dir.writeFile("outside/secret", "root only");
    std::string outsideFile = t.dir.writeFile("outside-file", "keep");
    std::string holder = t.dir.makeDir("home/holder");
    std::string plain = t.dir.writeFile("home/holder/plain", "p");
    std::string folderMount = t.dir.makeDir("home/holder/bound");
    std::string fileMount = t.dir.writeFile("home/holder/bound-file", "");
    test::BindMount folder{outside, folderMount};
    test::BindMount file{outsideFile, fileMount};

    bool mounted() const { return folder.mounted() && file.mounted(); }
    void expectOutsideIntact() const {
        EXPECT_EQ(readFile(secret), "root only");
        EXPECT_EQ(readFile(outsideFile), "keep");
        EXPECT_EQ(readFile(folderMount + "/secret"), "root only");
        EXPECT_EQ(ownerOf(secret), 0U);
        EXPECT_EQ(ownerOf(outside), 0U);
        EXPECT_EQ(ownerOf(outsideFile), 0U);
    }
};

TEST(MountPoints, PermanentRemovalNeverEntersABindMount) {
    MountedHome m;
    if (!m.mounted()) {
        GTEST_SKIP() << "bind mounts are not permitted here (needs root)";
    }
    for (const bool strict : {false, true}) {
        const RemovalReport report = removePermanently(m.holder, {}, strict);
        EXPECT_FALSE(report.removed);
        m.expectOutsideIntact();
        EXPECT_FALSE(exists(m.plain));
        ASSERT_EQ(report.failures.size(), 2U) << strict;
        for (const RemovalFailure& failure : report.failures) {
            EXPECT_NE(failure.reason.find("mount point"), std::string::npos) << failure.reason;
        }
        // The mount points themselves as items.
        EXPECT_FALSE(removePermanently(m.folderMount, {}, strict).removed);
        EXPECT_FALSE(removePermanently(m.fileMount, {}, strict).removed);
        m.expectOutsideIntact();
    }
}

TEST(MountPoints, AFolderHoldingAMountIsNotTrashed) {
    MountedHome m;
    if (!m.mounted()) {
        GTEST_SKIP() << "bind mounts are not permitted here (needs root)";
    }
    const TrashContext context = m.t.context().trash;
    const TrashResult folder = moveToTrash(m.holder, context);
    EXPECT_FALSE(folder.ok);
    EXPECT_NE(folder.error.find("mount point"), std::string::npos) << folder.error;
    const TrashResult manual = moveIntoHomeTrashManually(m.holder, context);
    EXPECT_FALSE(manual.ok);
    EXPECT_NE(manual.error.find("mount point"), std::string::npos) << manual.error;
    for (const std::string& item : {m.folderMount, m.fileMount}) {
        const TrashResult direct = moveToTrash(item, context);
        EXPECT_FALSE(direct.ok) << item;
        EXPECT_NE(direct.error.find("mount point"), std::string::npos) << direct.error;
    }
    EXPECT_TRUE(exists(m.plain));
    EXPECT_FALSE(exists(m.t.trash + "/info/holder.trashinfo"));
    m.expectOutsideIntact();
}

// A file bound over another a few levels down is enough to keep its folder where it is, also
// when the walk cannot read everything (a descriptor limit below what it needs).
TEST(MountPoints, ABindMountedFileAloneKeepsItsFolderOutOfTheTrash) {
    test::TempHome t;
    const std::string outsideFile = t.dir.writeFile("outside-file", "keep");
    t.dir.writeFile("home/holder/plain", "p");
    const std::string bound = t.dir.writeFile("home/holder/a/b/bound-file", "");
    test::BindMount file{outsideFile, bound};
    if (!file.mounted()) {
        GTEST_SKIP() << "bind mounts are not permitted here (needs root)";
    }
    for (const rlim_t limit : {rlim_t{1024}, rlim_t{12}}) {
        TrashResult result;
        {
            const test::DescriptorLimit tight(limit);
            result = moveToTrash(t.home + "/holder", t.context().trash);
        }
        EXPECT_FALSE(result.ok) << limit;
        EXPECT_NE(result.error.find("mount point"), std::string::npos) << result.error;
        EXPECT_TRUE(exists(t.home + "/holder/plain"));
        EXPECT_EQ(readFile(outsideFile), "keep");
    }
}

// The privileged helper trashing for another user (root acting for uid 4242): nothing across
// the mount is handed over, and the folder is refused before anything is moved or chowned.
TEST(MountPoints, TrashForAnotherUserChownsNothingAcrossAMount) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "needs root to act for another user";
    }
    MountedHome m;
    if (!m.mounted()) {
        GTEST_SKIP() << "bind mounts are not permitted here (needs root)";
    }
    TrashContext context = m.t.context().trash;
    context.uid = 4242;
    context.gid = 4242;
    context.strictPaths = true;
    const TrashResult result = moveToTrash(m.holder, context);
    EXPECT_FALSE(result.ok);
    EXPECT_TRUE(exists(m.plain));
    EXPECT_EQ(ownerOf(m.plain), 0U);
    m.expectOutsideIntact();
}

TEST(MountPoints, HelperBinaryKeepsOffMounts) {
    const std::string helper = test::helperBinary();
    if (helper.empty()) {
        GTEST_SKIP() << "sondrel-helper is not built next to this test";
    }
    MountedHome m;
    if (!m.mounted()) {
        GTEST_SKIP() << "bind mounts are not permitted here (needs root)";
    }
    for (const char* verb : {"remove", "trash"}) {
        const test::ProcessResult result = test::runProcess(
            {helper, verb, "--home", m.t.home, "--data-home", m.t.dataHome},
            "R" + m.t.home + std::string(1, '\0') + "P" + m.holder + std::string(1, '\0'));
        EXPECT_EQ(result.exitCode, 1) << verb << result.out << result.err;
        EXPECT_NE(result.out.find("mount point"), std::string::npos) << result.out;
        m.expectOutsideIntact();
    }
}

// Each way of telling a mount point, forced in turn, finds the same bind mounts.
TEST(MountPoints, EveryProbeFindsABindMount) {
    MountedHome m;
    if (!m.mounted()) {
        GTEST_SKIP() << "bind mounts are not permitted here (needs root)";
    }
    for (const MountProbe probe : {MountProbe::statxAttribute, MountProbe::mountId,
                                   MountProbe::fdInfo, MountProbe::mountInfo}) {
        setMountProbeForTesting(probe);
        const RemovalReport report = removePermanently(m.holder);
        const TrashResult trashed = moveToTrash(m.holder, m.t.context().trash);
        setMountProbeForTesting(MountProbe::automatic);
        EXPECT_FALSE(report.removed);
        EXPECT_EQ(report.failures.size(), 2U) << static_cast<int>(probe);
        EXPECT_FALSE(trashed.ok);
        m.expectOutsideIntact();
        m.t.dir.writeFile("home/holder/plain", "p");
    }
}

} // namespace
} // namespace sondrel
