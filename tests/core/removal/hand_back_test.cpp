// What the privileged helper gives back to the user after trashing for them: only inodes that
// are the user's alone, never a hard link to someone else's file, and never a copy of another
// file's content in a file the user owns. And the size it records for a trashed folder.

#include "core/removal/trash.h"
#include "removal_test_support.h"
#include "tests/support/ordinary_user.h"

#include <cstdio>
#include <gtest/gtest.h>

namespace sondrel {
namespace {

using test::exists;
using test::readFile;

constexpr uid_t kUser = 4242;

struct stat statOf(const std::string& path) {
    struct stat info {};
    lstat(path.c_str(), &info);
    return info;
}

TrashContext forAnotherUser(const test::TempHome& t) {
    TrashContext context = t.context().trash;
    context.uid = kUser;
    context.gid = kUser;
    context.strictPaths = true;
    return context;
}

TEST(HandBack, HardLinksToOtherPeoplesFilesStayTheirs) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "needs root to act for another user";
    }
    test::TempHome t;
    const std::string shadow = t.dir.writeFile("outside/shadow", "root:secret\n");
    ASSERT_EQ(chmod(shadow.c_str(), 0600), 0);
    const std::string own = t.dir.writeFile("home/docs/root-owned-alone", "mine now");
    ASSERT_EQ(link(shadow.c_str(), (t.home + "/docs/linked").c_str()), 0);
    const std::string users = t.dir.writeFile("home/docs/sub/users", "u");
    ASSERT_EQ(link(users.c_str(), (t.home + "/users-elsewhere").c_str()), 0);
    ASSERT_EQ(chown(users.c_str(), kUser, kUser), 0);

    const TrashResult result = moveToTrash(t.home + "/docs", forAnotherUser(t));
    ASSERT_TRUE(result.ok) << result.error;
    const std::string files = result.trashedPath;
    EXPECT_EQ(statOf(shadow).st_uid, 0U);
    EXPECT_EQ(statOf(files + "/linked").st_uid, 0U);
    EXPECT_EQ(statOf(shadow).st_mode & 07777, 0600U);
    EXPECT_EQ(readFile(shadow), "root:secret\n");
    // What is the user's alone is handed over; what they owned already stays theirs.
    EXPECT_EQ(statOf(files).st_uid, kUser);
    EXPECT_EQ(statOf(files + "/sub").st_uid, kUser);
    EXPECT_EQ(statOf(files + "/root-owned-alone").st_uid, kUser);
    EXPECT_EQ(statOf(files + "/sub/users").st_uid, kUser);
    (void)own;
}

// A directorysizes that is a hard link to a root-only file is neither read into the new
// directorysizes nor changed; the record is started afresh beside it.
TEST(HandBack, ForeignDirectorySizesIsNotCopied) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "needs root to act for another user";
    }
    test::TempHome t;
    const std::string shadow = t.dir.writeFile("outside/shadow", "root:secret\n");
    ASSERT_EQ(chmod(shadow.c_str(), 0600), 0);
    t.dir.makeDir("home/.local/share/Trash/files");
    t.dir.makeDir("home/.local/share/Trash/info");
    ASSERT_EQ(link(shadow.c_str(), (t.trash + "/directorysizes").c_str()), 0);
    t.dir.writeFile("home/folder/inside", "x");

    const TrashResult result = moveToTrash(t.home + "/folder", forAnotherUser(t));
    ASSERT_TRUE(result.ok) << result.error;
    const std::string sizes = readFile(t.trash + "/directorysizes");
    EXPECT_EQ(sizes.find("secret"), std::string::npos) << sizes;
    EXPECT_NE(sizes.find(" folder\n"), std::string::npos) << sizes;
    EXPECT_EQ(readFile(shadow), "root:secret\n");
    EXPECT_EQ(statOf(shadow).st_uid, 0U);
    EXPECT_EQ(statOf(t.trash + "/directorysizes").st_uid, kUser);
}

// The size of a trashed folder is what `du -B1` reports for it: its own blocks included, each
// hard-linked file once.
TEST(HandBack, DirectorySizesCountWhatDuCounts) {
    test::TempHome t;
    t.dir.makeFile("home/folder/big", 200000);
    t.dir.makeFile("home/folder/empty", 0);
    const std::string linked = t.dir.makeFile("home/folder/sub/linked", 50000);
    ASSERT_EQ(link(linked.c_str(), (t.home + "/folder/sub/linked-again").c_str()), 0);
    ASSERT_EQ(symlink("big", (t.home + "/folder/link").c_str()), 0);
    t.dir.makeDir("home/folder/sub/deeper/deepest");
    for (int i = 0; i < 300; ++i) {
        t.dir.writeFile("home/folder/many/file-with-a-longish-name-" + std::to_string(i), "m");
    }

    const TrashResult result = moveToTrash(t.home + "/folder", t.context().trash);
    ASSERT_TRUE(result.ok) << result.error;
    const test::ProcessResult du =
        test::runProcess({test::systemProgram("du"), "-s", "-B1", result.trashedPath});
    ASSERT_EQ(du.exitCode, 0) << du.err;
    const std::string expected = du.out.substr(0, du.out.find('\t'));
    const std::string sizes = readFile(t.trash + "/directorysizes");
    EXPECT_EQ(sizes.substr(0, sizes.find(' ')), expected) << sizes;
}

// A folder far deeper than the open-file limit: its recorded size is still the whole of it, and
// when trashed for another user every level is given back to them.
TEST(HandBack, FoldersDeeperThanTheDescriptorLimit) {
    test::TempHome t;
    const std::string deep = t.dir.makeDir("home/deep");
    ASSERT_TRUE(test::makeChain(deep, 600, 1 << 20));
    const test::ProcessResult du = test::runProcess({test::systemProgram("du"), "-sB1", deep});
    ASSERT_EQ(du.exitCode, 0) << du.err;
    const std::string expected = du.out.substr(0, du.out.find('\t'));
    const bool root = geteuid() == 0;
    TrashResult result;
    {
        const test::DescriptorLimit limit(128);
        result = moveToTrash(deep, root ? forAnotherUser(t) : t.context().trash);
    }
    ASSERT_TRUE(result.ok) << result.error;
    EXPECT_EQ(result.handBackProblem, "");
    const std::string sizes = readFile(t.trash + "/directorysizes");
    EXPECT_EQ(sizes.substr(0, sizes.find(' ')), expected) << sizes;
    if (root) {
        std::string path = result.trashedPath;
        for (int level = 0; level < 600; ++level) {
            path += "/d";
        }
        EXPECT_EQ(statOf(path).st_uid, kUser);
        EXPECT_EQ(statOf(path + "/leaf").st_uid, kUser);
    }
}

// A folder the survey cannot read whole is still moved when the mount table lists no mount
// below it, but records no size rather than a short one.
TEST(HandBack, APartlyUnreadableFolderRecordsNoSize) {
    test::TempHome t;
    t.dir.writeFile("home/folder/kept", "k");
    const std::string closed = t.dir.makeDir("home/folder/closed");
    t.dir.writeFile("home/folder/closed/secret", "s");
    ASSERT_EQ(chmod(closed.c_str(), 0), 0);
    EXPECT_TRUE(test::runAsOrdinaryUser(t.dir.path(), [&] {
        const TrashResult result = moveToTrash(t.home + "/folder", t.context().trash);
        const std::string sizes = readFile(t.trash + "/directorysizes");
        if (!result.ok || sizes.find(" folder\n") != std::string::npos) {
            std::fprintf(stderr, "%s / %s\n", result.error.c_str(), sizes.c_str());
            return false;
        }
        return !exists(t.home + "/folder") && exists(result.trashedPath + "/kept");
    }));
    chmod((t.trash + "/files/folder/closed").c_str(), 0755);
}

} // namespace
} // namespace sondrel
