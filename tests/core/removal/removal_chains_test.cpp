// The three removal chains: step order, refusals, and the administrator step through the real
// helper binary run in its test mode (no pkexec) or a scripted runner.

#include "core/removal/permanent_removal.h"
#include "core/removal/removal_chains.h"
#include "core/removal/trash_info.h"
#include "removal_test_support.h"

#include <atomic>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
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

// A runner that records what it was asked and answers with `status`, doing nothing.
struct RecordingRunner {
    int status = 0;
    std::vector<std::vector<std::string>> calls;
    std::vector<std::string> inputs;
    CommandRunner runner() {
        return [this](const std::vector<std::string>& argv, const std::string& input) {
            calls.push_back(argv);
            inputs.push_back(input);
            return CommandOutcome{true, status, {}};
        };
    }
};

using Chain = RemovalOutcome (*)(const std::string&, const RemovalContext&);

std::vector<Chain> allChains() {
    return {
        safeMoveToTrash,
        moveDuplicateToTrash,
        [](const std::string& p, const RemovalContext& c) { return deleteItemSafely(p, false, c); },
        [](const std::string& p, const RemovalContext& c) { return deleteItemSafely(p, true, c); },
    };
}

// The item's parent is swapped for a link to an outside folder after the chain checked the
// path and before it acts: every chain, file and folder items, round after round. Nothing
// outside may be removed or trashed.
TEST(RemovalChains, ParentSwappedAfterTheCheckLeadsNowhere) {
    test::TempHome t;
    const std::string outside = t.dir.makeDir("outside");
    const std::string parent = t.home + "/a/b";
    const std::string aside = t.home + "/a/b.aside";
    const RemovalContext context = t.context();
    const std::vector<Chain> chains = allChains();
    for (int round = 0; round < 40; ++round) {
        const bool folder = round % 8 < 4;
        const std::string name = "victim-" + std::to_string(round);
        const std::string sentinel = outside + "/" + name + (folder ? "/inner" : "");
        t.dir.writeFile("home/a/b/" + name + (folder ? "/inner" : ""), "v");
        t.dir.writeFile("outside/" + name + (folder ? "/inner" : ""), "keep");
        setRemovalChainHookForTesting([&](const std::string&) {
            if (rename(parent.c_str(), aside.c_str()) == 0) {
                symlink(outside.c_str(), parent.c_str());
            }
        });
        const RemovalOutcome outcome =
            chains[static_cast<std::size_t>(round) % chains.size()](parent + "/" + name, context);
        setRemovalChainHookForTesting({});
        ASSERT_EQ(test::readFile(sentinel), "keep")
            << "round " << round << ": " << describe(outcome.step);
        EXPECT_FALSE(outcome.removed) << "round " << round;
        ASSERT_EQ(unlink(parent.c_str()), 0);
        ASSERT_EQ(rename(aside.c_str(), parent.c_str()), 0);
        EXPECT_TRUE(exists(parent + "/" + name));
        EXPECT_TRUE(removePermanently(parent + "/" + name).removed);
    }
}

// The same swap by a thread that never stops, with no seam: whatever the timing, nothing
// outside goes.
TEST(RemovalChains, ParentSwappedByAnotherThreadLeadsNowhere) {
    test::TempHome t;
    const std::string outside = t.dir.makeDir("outside");
    const std::string parent = t.home + "/a/b";
    const std::string aside = t.home + "/a/b.aside";
    const RemovalContext context = t.context();
    const std::vector<Chain> chains = allChains();
    t.dir.makeDir("home/a/b");
    constexpr int kSentinels = 1000;
    for (int i = 0; i < kSentinels; ++i) {
        t.dir.writeFile("outside/victim-" + std::to_string(i), "keep");
    }
    std::atomic<bool> stop{false};
    std::thread swapper([&] {
        while (!stop.load()) {
            if (rename(parent.c_str(), aside.c_str()) == 0) {
                symlink(outside.c_str(), parent.c_str());
                std::this_thread::yield();
                unlink(parent.c_str());
                rename(aside.c_str(), parent.c_str());
            }
        }
    });
    for (int i = 0; i < kSentinels; ++i) {
        const std::string name = "/victim-" + std::to_string(i);
        // Made in the real folder, or through the link where the sentinel already is (then
        // nothing is made and the sentinel is left as it is).
        const int fd = open((parent + name).c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (fd >= 0) {
            close(fd);
        }
        chains[static_cast<std::size_t>(i) % chains.size()](parent + name, context);
    }
    stop = true;
    swapper.join();
    for (int i = 0; i < kSentinels; ++i) {
        EXPECT_EQ(test::readFile(outside + "/victim-" + std::to_string(i)), "keep") << i;
    }
}

TEST(RemovalChains, RefusalsAndAbsentPaths) {
    test::TempHome t;
    const std::string outside = t.dir.writeFile("outside/keep", "k");
    const RemovalContext context = t.context();
    for (const Chain chain : allChains()) {
        for (const std::string& path : {std::string("/"), t.home, t.home + "/", t.home + "/..",
                                        outside, t.dir.path(), std::string("relative")}) {
            const RemovalOutcome outcome = chain(path, context);
            EXPECT_FALSE(outcome.removed) << path;
            EXPECT_EQ(outcome.step, RemovalStep::refused) << path;
        }
        const RemovalOutcome absent = chain(t.home + "/never-was", context);
        EXPECT_TRUE(absent.removed);
        EXPECT_EQ(absent.step, RemovalStep::alreadyGone);
    }
    EXPECT_TRUE(exists(outside));
    EXPECT_TRUE(exists(t.home));
}

TEST(RemovalChains, JunkChainTrashesAndRemovesTrashGroupItemsForGood) {
    test::TempHome t;
    RemovalContext context = t.context({t.home, t.trash + "/files"});
    const std::string cache = t.dir.writeFile("home/.cache/app/blob", "b");
    const RemovalOutcome trashed = deleteItemSafely(t.home + "/.cache/app", false, context);
    EXPECT_TRUE(trashed.removed);
    EXPECT_EQ(trashed.step, RemovalStep::trash);
    EXPECT_TRUE(exists(t.trash + "/files/app/blob"));

    // A Trash-group item is removed permanently with its record, never trashed again.
    const RemovalOutcome emptied = deleteItemSafely(t.trash + "/files/app", true, context);
    EXPECT_TRUE(emptied.removed);
    EXPECT_EQ(emptied.step, RemovalStep::permanent);
    EXPECT_FALSE(exists(t.trash + "/files/app"));
    EXPECT_FALSE(exists(t.trash + "/info/app.trashinfo"));
    EXPECT_FALSE(exists(cache));
}

TEST(RemovalChains, AppAndDuplicateChainsClearImmutableFlags) {
    test::TempHome t;
    const RemovalContext context = t.context();
    const std::string a = t.dir.writeFile("home/app/locked.bin", "a");
    const std::string b = t.dir.writeFile("home/dups/locked.jpg", "b");
    if (!setImmutable(a, true) || !setImmutable(b, true)) {
        GTEST_SKIP() << "this file system has no immutable attribute";
    }
    const RemovalOutcome app = safeMoveToTrash(a, context);
    const RemovalOutcome dup = moveDuplicateToTrash(b, context);
    EXPECT_TRUE(app.removed) << app.message;
    EXPECT_TRUE(dup.removed) << dup.message;
    EXPECT_EQ(app.step, RemovalStep::trash);
    EXPECT_TRUE(exists(t.trash + "/files/locked.bin"));
    EXPECT_TRUE(exists(t.trash + "/files/locked.jpg"));
}

TEST(RemovalChains, AdministratorStepOnlyWhereTheChainHasOne) {
    test::TempHome t;
    RecordingRunner recorder;
    recorder.status = 126; // the password dialog was dismissed
    const PrivilegedHelperClient client("/usr/libexec/sondrel/sondrel-helper", recorder.runner());
    RemovalContext context = t.context();
    context.administrator = &client;

    const std::string dirPath = t.dir.makeDir("home/stuck");
    const std::string file = t.dir.writeFile("home/stuck/file", "f");
    if (!setImmutable(dirPath, true)) {
        GTEST_SKIP() << "this file system has no immutable attribute";
    }
    // Only the item's own flags are cleared: its locked folder keeps it in place.
    const RemovalOutcome dup = moveDuplicateToTrash(file, context);
    EXPECT_TRUE(recorder.calls.empty());
    const RemovalOutcome app = safeMoveToTrash(file, context);
    const RemovalOutcome junk = deleteItemSafely(file, false, context);
    setImmutable(dirPath, false);

    EXPECT_FALSE(dup.removed);
    EXPECT_FALSE(app.removed);
    EXPECT_FALSE(junk.removed);
    EXPECT_NE(app.message.find("cancelled"), std::string::npos) << app.message;
    ASSERT_EQ(recorder.calls.size(), 2U);
    EXPECT_EQ(recorder.calls[0],
              (std::vector<std::string>{"pkexec", "/usr/libexec/sondrel/sondrel-helper", "trash"}));
    EXPECT_EQ(recorder.calls[1].back(), "remove");
    // The path travels on stdin only, NUL-terminated.
    EXPECT_EQ(recorder.inputs[0],
              "R" + t.home + std::string(1, '\0') + "P" + file + std::string(1, '\0'));
    EXPECT_EQ(test::readFile(file), "f");
    EXPECT_FALSE(exists(t.trash + "/info/file.trashinfo"));
}

TEST(RemovalChains, AdministratorStepThroughTheHelperBinary) {
    const std::string helper = test::helperBinary();
    if (helper.empty()) {
        GTEST_SKIP() << "sondrel-helper is not built next to this test (build the "
                        "sondrel-helper target or set SONDREL_HELPER_PATH)";
    }
    test::TempHome t;
    const PrivilegedHelperClient client(helper, runCommand, false,
                                        {"--home", t.home, "--data-home", t.dataHome});
    RemovalContext context = t.context();
    context.administrator = &client;
    const std::string file = t.dir.writeFile("home/x", "x");
    const RemovalOutcome outcome = deleteWithAdminPrivileges(file, context);
    EXPECT_TRUE(outcome.removed) << outcome.message;
    EXPECT_EQ(outcome.step, RemovalStep::administrator);
    EXPECT_FALSE(exists(file));
}

} // namespace
} // namespace sondrel
