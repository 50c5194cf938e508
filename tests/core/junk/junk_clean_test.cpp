// Cleaning junk: the Trash group goes permanently with its .trashinfo, other items go to the
// Trash; a clean touches only the items given; a disk changed since the scan is checked again;
// everything needing administrator rights goes to the helper in one call.

#include "core/junk/junk_clean.h"
#include "core/removal/trash.h"
#include "tests/core/junk/junk_test_home.h"

#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <linux/fs.h>
#include <sstream>
#include <sys/ioctl.h>
#include <unistd.h>

namespace sondrel {
namespace {

using test::exists;
using test::groupOf;
using test::JunkHome;
using test::kMiB;

RemovalContext contextFor(const JunkHome& home) {
    return RemovalContext::forUser(home.home, home.folders.dataHome);
}

JunkCleanReport clean(const std::vector<JunkItem>& items, const RemovalContext& context) {
    CancelToken cancel;
    return cleanJunkItems(items, context, cancel);
}

std::string readText(const std::string& path) {
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
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

// A runner standing in for pkexec: records each call and answers with `status`.
struct RecordingRunner {
    int status = 0;
    std::vector<std::string> inputs;
    CommandRunner runner() {
        return [this](const std::vector<std::string>&, const std::string& input) {
            inputs.push_back(input);
            return CommandOutcome{true, status, {}};
        };
    }
};

TEST(JunkClean, TrashEntriesGoPermanentlyWithTheirInfoAndOnlyTheChosenGroupIsTouched) {
    const JunkHome home;
    home.file(".cache/pip/wheels/a.whl", 2 * kMiB);
    home.sparse(".cache/browser", 20 * kMiB);
    // Put a folder into the Trash the regular way, so it has its .trashinfo and sizes line.
    const std::string doomed = home.file("old-project/readme", 3000);
    const TrashResult trashed = moveToTrash(home.home + "/old-project", contextFor(home).trash);
    ASSERT_TRUE(trashed.ok) << trashed.error;
    ASSERT_NE(readText(home.folders.dataHome + "/Trash/directorysizes").find("old-project"),
              std::string::npos);

    const auto groups = home.scan();
    const JunkGroup* trash = groupOf(groups, JunkType::trash);
    ASSERT_NE(trash, nullptr);
    const JunkCleanReport report = clean(selectedJunkItems(groups, trash->id), contextFor(home));

    EXPECT_EQ(report.removed, 1u);
    EXPECT_TRUE(report.failures.empty());
    EXPECT_EQ(report.freed, trash->totalSize());
    EXPECT_FALSE(exists(trashed.trashedPath));
    EXPECT_FALSE(exists(trashed.infoPath));
    EXPECT_EQ(readText(home.folders.dataHome + "/Trash/directorysizes").find("old-project"),
              std::string::npos);
    // Not moved into the Trash again, and the other groups' items stay.
    EXPECT_FALSE(exists(home.folders.trashFiles + "/old-project (1)"));
    EXPECT_TRUE(exists(home.home + "/.cache/pip/wheels/a.whl"));
    EXPECT_TRUE(exists(home.home + "/.cache/browser"));
}

TEST(JunkClean, OtherItemsMoveToTheTrash) {
    const JunkHome home;
    home.file(".cache/pip/wheels/a.whl", 2 * kMiB);
    const auto groups = home.scan();
    const JunkCleanReport report = clean(selectedJunkItems(groups), contextFor(home));
    ASSERT_EQ(report.removed, 1u);
    EXPECT_FALSE(exists(home.home + "/.cache/pip"));
    EXPECT_TRUE(exists(home.folders.trashFiles + "/pip/wheels/a.whl"));
    EXPECT_TRUE(exists(home.folders.dataHome + "/Trash/info/pip.trashinfo"));
    EXPECT_EQ(report.freed, groups.front().items.front().size);
    EXPECT_EQ(junkCleanResultText(report).rfind("Freed ", 0), 0u);
}

TEST(JunkClean, ALinkInsideACacheIsRemovedAsALinkAndItsTargetSurvives) {
    const JunkHome home;
    const std::string outside = home.dir.makeDir("outside");
    const std::string precious = home.dir.makeFile("outside/precious", 100);
    home.sparse(".local/share/Trash/files/bundle/payload", 5000);
    ASSERT_EQ(symlink(outside.c_str(), (home.folders.trashFiles + "/bundle/link").c_str()), 0);
    ASSERT_EQ(symlink(outside.c_str(), (home.folders.trashFiles + "/toplink").c_str()), 0);

    const JunkCleanReport report = clean(selectedJunkItems(home.scan()), contextFor(home));
    EXPECT_EQ(report.removed, 2u);
    EXPECT_FALSE(exists(home.folders.trashFiles + "/bundle"));
    EXPECT_FALSE(exists(home.folders.trashFiles + "/toplink"));
    EXPECT_TRUE(exists(precious));
}

TEST(JunkClean, AnItemSwappedForALinkOrMovedOutOfItsRootIsRefused) {
    const JunkHome home;
    home.sparse(".cache/browser", 20 * kMiB);
    const std::string outside = home.dir.makeDir("outside");
    const std::string precious = home.dir.makeFile("outside/precious", 100);
    auto groups = home.scan();
    ASSERT_EQ(groups.size(), 1u);

    // Between scan and clean the cache becomes a link to a folder outside the home.
    const std::string cache = home.home + "/.cache/browser";
    ASSERT_EQ(unlink(cache.c_str()), 0);
    ASSERT_EQ(symlink(outside.c_str(), cache.c_str()), 0);
    JunkItem tampered = groups.front().items.front();
    tampered.id = 99;
    tampered.path = outside + "/precious"; // a path that no longer lies in its root
    const JunkCleanReport report =
        clean({groups.front().items.front(), tampered}, contextFor(home));

    EXPECT_EQ(report.removed, 0u);
    ASSERT_EQ(report.failures.size(), 2u);
    EXPECT_EQ(report.failures[0].reason, "is now a symbolic link");
    EXPECT_EQ(report.failures[1].reason, "no longer inside the folder it was found in");
    EXPECT_TRUE(exists(precious));
    EXPECT_TRUE(exists(cache));
}

TEST(JunkClean, VanishedItemsCountAsRemovedAndHostileNamesAreRemovedLiterally) {
    const JunkHome home;
    const std::vector<std::string> names = {"line\nbreak", std::string("bad\xff\xfe", 5),
                                            "quote\"'s", "$(touch pwned)", "back\\slash"};
    for (const std::string& name : names) {
        home.file(".local/share/Trash/files/" + name, 10);
    }
    home.file(".local/share/Trash/files/vanishing", 10);
    const auto groups = home.scan();
    ASSERT_EQ(unlink((home.folders.trashFiles + "/vanishing").c_str()), 0);

    const JunkCleanReport report = clean(selectedJunkItems(groups), contextFor(home));
    EXPECT_EQ(report.removed, names.size() + 1);
    EXPECT_TRUE(report.failures.empty());
    for (const std::string& name : names) {
        EXPECT_FALSE(exists(home.folders.trashFiles + "/" + name));
    }
    EXPECT_FALSE(exists(home.home + "/pwned"));
    EXPECT_FALSE(exists("pwned"));
}

TEST(JunkClean, ItemsNeedingAdministratorRightsGoToTheHelperInOneCall) {
    const JunkHome home;
    const std::string a = home.sparse(".cache/system-a", 20 * kMiB);
    const std::string b = home.sparse(".cache/system-b", 30 * kMiB);
    home.sparse(".cache/free", 40 * kMiB);
    // An immutable file can be neither renamed nor unlinked, even by root.
    if (!setImmutable(a, true)) {
        GTEST_SKIP() << "this file system has no immutable attribute";
    }
    setImmutable(b, true);
    RecordingRunner recorder;
    recorder.status = 126; // the password dialog was dismissed
    const PrivilegedHelperClient client("/usr/libexec/sondrel/sondrel-helper", recorder.runner());
    RemovalContext context = contextFor(home);
    context.administrator = &client;

    std::vector<std::string> progress;
    CancelToken cancel;
    const JunkCleanReport report =
        cleanJunkItems(selectedJunkItems(home.scan()), context, cancel,
                       [&progress](std::size_t done, std::size_t total, const std::string&) {
                           progress.push_back(junkCleaningText(done, total));
                       });
    setImmutable(a, false);
    setImmutable(b, false);

    ASSERT_EQ(recorder.inputs.size(), 1u);
    EXPECT_NE(recorder.inputs.front().find(a), std::string::npos);
    EXPECT_NE(recorder.inputs.front().find(b), std::string::npos);
    EXPECT_TRUE(report.administratorCancelled);
    EXPECT_EQ(report.removed, 1u);
    EXPECT_EQ(report.failures.size(), 2u);
    EXPECT_TRUE(exists(a));
    EXPECT_TRUE(exists(b));
    EXPECT_EQ(progress, (std::vector<std::string>{"Cleaning 1 of 3 ...", "Cleaning 2 of 3 ...",
                                                  "Cleaning 3 of 3 ..."}));
    EXPECT_NE(junkCleanResultText(report).find("cancelled"), std::string::npos);
}

TEST(JunkClean, ACancelledCleanStopsBeforeTheNextItem) {
    const JunkHome home;
    home.file(".local/share/Trash/files/a", 10);
    home.file(".local/share/Trash/files/b", 10);
    CancelToken cancel;
    const JunkCleanReport report = cleanJunkItems(
        selectedJunkItems(home.scan()), contextFor(home), cancel,
        [&cancel](std::size_t, std::size_t, const std::string&) { cancel.cancel(); });
    EXPECT_TRUE(report.cancelled);
    EXPECT_EQ(report.removed, 1u);
}

} // namespace
} // namespace sondrel
