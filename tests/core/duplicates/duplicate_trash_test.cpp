// Trashing the selection: only true copies go, each verified against the kept copy; what
// fails stays selected in its group; groups reduced to one file disappear.

#include "core/duplicates/duplicate_finder.h"
#include "core/duplicates/duplicate_texts.h"
#include "core/duplicates/duplicate_trash.h"
#include "core/duplicates/duplicate_verify.h"
#include "tests/core/duplicates/duplicate_test_files.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace sondrel {
namespace {

using test::exists;
using test::randomBytes;
using test::readBytes;
using test::setModified;
using test::writeBytes;

// A temporary home with a Pictures folder to scan and a home trash.
struct DupHome {
    test::TempDir dir;
    std::string home = dir.makeDir("home");
    std::string pictures = dir.makeDir("home/Pictures");
    std::string trashFiles = home + "/.local/share/Trash/files";

    RemovalContext context() const {
        RemovalContext c;
        c.trash.home = home;
        c.trash.dataHome = home + "/.local/share";
        c.trash.uid = getuid();
        c.trash.gid = getgid();
        c.allowedRoots = {pictures};
        return c;
    }

    std::vector<DuplicateGroup> scan() const {
        DuplicateScanOptions options;
        options.folders = {pictures};
        CancelToken cancel;
        return findDuplicates(options, cancel).groups;
    }

    DuplicateTrashReport trash(std::vector<DuplicateGroup> groups) const {
        CancelToken cancel;
        return trashSelectedDuplicates(std::move(groups), context(), cancel);
    }

    // Writes `bytes` as `name` in Pictures with modification time `seconds`.
    std::string put(const std::string& name, const std::string& bytes, long seconds) const {
        const std::string path = pictures + "/" + name;
        writeBytes(path, bytes);
        setModified(path, seconds);
        return path;
    }
};

TEST(DuplicateTrash, MovesVerifiedCopiesAndDropsGroupsLeftWithOne) {
    DupHome home;
    const std::string bytes = randomBytes(2000000, 20);
    const std::string oldest = home.put("oldest.jpg", bytes, 1700000000);
    // Odd names are trashed literally.
    const std::string quoted = home.put("it's \"copy\"\nline.jpg", bytes, 1700000100);
    const std::string latin1 = home.put("caf\xe9.jpg", bytes, 1700000200);

    const DuplicateTrashReport report = home.trash(home.scan());
    EXPECT_EQ(report.moved, 2U);
    EXPECT_EQ(report.freed, 4000000);
    EXPECT_TRUE(report.failures.empty());
    EXPECT_TRUE(report.remaining.empty());
    EXPECT_TRUE(exists(oldest));
    EXPECT_FALSE(exists(quoted));
    EXPECT_FALSE(exists(latin1));
    EXPECT_EQ(readBytes(home.trashFiles + "/it's \"copy\"\nline.jpg"), bytes);
    EXPECT_TRUE(exists(home.trashFiles + "/caf\xe9.jpg"));
    EXPECT_EQ(duplicateTrashResultText(report.moved, report.freed, 0),
              "Successfully moved 2 duplicate files (4 MB) to Trash.");
}

TEST(DuplicateTrash, RefusesACopyThatDiffersOutsideTheSamples) {
    DupHome home;
    const std::string bytes = randomBytes(5000000, 21);
    const std::string kept = home.put("a.jpg", bytes, 1700000000);
    const std::string other = home.put("b.jpg", bytes, 1700000100);
    test::flipByte(other, 1000000);
    std::vector<DuplicateGroup> groups = home.scan();
    ASSERT_EQ(groups.size(), 1U); // grouped by the sampled digest
    EXPECT_EQ(verifyCopy(groups[0].files[1], groups[0].files[0], CancelToken()),
              CopyVerdict::differs);

    const DuplicateTrashReport report = home.trash(groups);
    EXPECT_EQ(report.moved, 0U);
    ASSERT_EQ(report.failures.size(), 1U);
    EXPECT_EQ(report.failures[0].path, other);
    EXPECT_EQ(report.failures[0].reason, "differs from the kept copy");
    EXPECT_TRUE(exists(kept));
    EXPECT_TRUE(exists(other));
    ASSERT_EQ(report.remaining.size(), 1U);
    EXPECT_TRUE(report.remaining[0].files[1].isSelected);
    EXPECT_EQ(duplicateTrashResultText(report.moved, report.freed, 1),
              "Moved 0 duplicate files (Zero KB) to Trash. 1 file(s) could not be removed.");
}

TEST(DuplicateTrash, RefusesCopiesChangedAfterTheScan) {
    DupHome home;
    const std::string bytes = randomBytes(1500000, 22);
    home.put("a.jpg", bytes, 1700000000);
    const std::string touched = home.put("b.jpg", bytes, 1700000100);
    const std::string rewritten = home.put("c.jpg", bytes, 1700000200);
    const std::vector<DuplicateGroup> groups = home.scan();
    ASSERT_EQ(groups.size(), 1U);
    setModified(touched, 1700009999); // same bytes, new time
    unlink(rewritten.c_str());
    writeBytes(rewritten, bytes); // same bytes, another file

    const DuplicateTrashReport report = home.trash(groups);
    EXPECT_EQ(report.moved, 0U);
    ASSERT_EQ(report.failures.size(), 2U);
    EXPECT_EQ(report.failures[0].reason, "changed since the scan");
    EXPECT_EQ(report.failures[1].reason, "changed since the scan");
    EXPECT_TRUE(exists(touched));
    EXPECT_TRUE(exists(rewritten));

    // The kept copy changed: nothing is compared against it.
    std::vector<DuplicateGroup> fresh = home.scan();
    ASSERT_EQ(fresh.size(), 1U);
    setModified(fresh[0].files[0].path, 1600000000);
    const DuplicateTrashReport keptGone = home.trash(fresh);
    EXPECT_EQ(keptGone.moved, 0U);
    ASSERT_FALSE(keptGone.failures.empty());
    EXPECT_EQ(keptGone.failures[0].reason, "the kept copy is gone or changed since the scan");
}

TEST(DuplicateTrash, AFailedCopyStaysSelectedInItsGroup) {
    DupHome home;
    const std::string bytes = randomBytes(1200000, 23);
    home.put("a.jpg", bytes, 1700000000);
    home.put("b.jpg", bytes, 1700000100);
    const std::string outside = home.dir.makeDir("home/Elsewhere") + "/c.jpg";
    writeBytes(outside, bytes);
    setModified(outside, 1700000200);
    DuplicateScanOptions options;
    options.folders = {home.pictures, home.home + "/Elsewhere"};
    CancelToken cancel;
    // Only Pictures is an allowed root: the copy outside it is refused by the removal rules.
    const DuplicateTrashReport report =
        trashSelectedDuplicates(findDuplicates(options, cancel).groups, home.context(), cancel);
    EXPECT_EQ(report.moved, 1U);
    ASSERT_EQ(report.failures.size(), 1U);
    EXPECT_EQ(report.failures[0].path, outside);
    ASSERT_EQ(report.remaining.size(), 1U);
    ASSERT_EQ(report.remaining[0].files.size(), 2U);
    EXPECT_FALSE(report.remaining[0].files[0].isSelected);
    EXPECT_TRUE(report.remaining[0].files[1].isSelected);
    EXPECT_EQ(report.remaining[0].files[1].path, outside);
    EXPECT_EQ(report.remaining[0].wastedSize(), 1200000);
}

TEST(DuplicateTrash, KeepNewestLeavesTheNewestAndUnselectedCopiesStay) {
    DupHome home;
    const std::string first = randomBytes(1100000, 24);
    const std::string second = randomBytes(1400000, 25);
    home.put("old1.jpg", first, 1700000000);
    const std::string newest1 = home.put("new1.jpg", first, 1700000500);
    home.put("mid1.jpg", first, 1700000200);
    home.put("old2.jpg", second, 1700000000);
    const std::string newest2 = home.put("new2.jpg", second, 1700000900);
    std::vector<DuplicateGroup> groups = home.scan();
    autoSelect(groups, true);
    const DuplicateTrashReport report = home.trash(groups);
    EXPECT_EQ(report.moved, 3U);
    EXPECT_TRUE(report.remaining.empty());
    EXPECT_TRUE(exists(newest1));
    EXPECT_TRUE(exists(newest2));
    EXPECT_FALSE(exists(home.pictures + "/old1.jpg"));
    EXPECT_FALSE(exists(home.pictures + "/mid1.jpg"));
    EXPECT_FALSE(exists(home.pictures + "/old2.jpg"));

    // Nothing selected: nothing moves, the group stays as it was.
    home.put("x.jpg", first, 1);
    std::vector<DuplicateGroup> again = home.scan();
    ASSERT_EQ(again.size(), 1U);
    for (DuplicateFile& file : again[0].files) {
        file.isSelected = false;
    }
    const DuplicateTrashReport none = home.trash(again);
    EXPECT_EQ(none.moved, 0U);
    EXPECT_EQ(none.remaining.size(), 1U);
}

TEST(DuplicateTrash, ACopyAlreadyGoneCountsAsRemovedAndLeavesItsGroup) {
    DupHome home;
    const std::string first = randomBytes(1300000, 28);
    const std::string second = randomBytes(1600000, 29);
    home.put("a.jpg", first, 1700000000);
    const std::string goneFromThree = home.put("b.jpg", first, 1700000100);
    const std::string differing = home.put("c.jpg", first, 1700000200);
    test::flipByte(differing, 600000);
    home.put("x.jpg", second, 1700000000);
    const std::string goneFromTwo = home.put("y.jpg", second, 1700000100);
    const std::vector<DuplicateGroup> groups = home.scan();
    ASSERT_EQ(groups.size(), 2U);
    ASSERT_EQ(unlink(goneFromThree.c_str()), 0);
    ASSERT_EQ(unlink(goneFromTwo.c_str()), 0);

    const DuplicateTrashReport report = home.trash(groups);
    EXPECT_EQ(report.moved, 2U);
    EXPECT_EQ(report.freed, 0); // removed by someone else: nothing freed by this run
    EXPECT_TRUE(report.movedPaths.empty());
    EXPECT_EQ(report.alreadyGonePaths, (std::vector<std::string>{goneFromThree, goneFromTwo}));
    ASSERT_EQ(report.failures.size(), 1U);
    EXPECT_EQ(report.failures[0].path, differing);
    // The set of two is gone; the set of three keeps its kept copy and the refused one.
    ASSERT_EQ(report.remaining.size(), 1U);
    ASSERT_EQ(report.remaining[0].files.size(), 2U);
    EXPECT_EQ(report.remaining[0].files[0].name(), "a.jpg");
    EXPECT_EQ(report.remaining[0].files[1].path, differing);
    EXPECT_TRUE(report.remaining[0].files[1].isSelected);
    EXPECT_FALSE(exists(home.trashFiles + "/b.jpg"));
    EXPECT_EQ(duplicateTrashResultText(report.moved, report.freed, report.failures.size()),
              "Moved 2 duplicate files (Zero KB) to Trash. 1 file(s) could not be removed.");
}

TEST(DuplicateTrash, EveryCopySelectedTrashesTheWholeGroup) {
    DupHome home;
    const std::string bytes = randomBytes(1100000, 26);
    home.put("a.jpg", bytes, 1700000000);
    home.put("b.jpg", bytes, 1700000100);
    std::vector<DuplicateGroup> groups = home.scan();
    ASSERT_EQ(groups.size(), 1U);
    groups[0].files[0].isSelected = true;
    const DuplicateTrashReport report = home.trash(groups);
    EXPECT_EQ(report.moved, 2U);
    EXPECT_FALSE(exists(home.pictures + "/a.jpg"));
    EXPECT_FALSE(exists(home.pictures + "/b.jpg"));
}

TEST(DuplicateVerify, NamesOfOneFileAreNeverCopiesOfEachOther) {
    DupHome home;
    const std::string bytes = randomBytes(1100000, 27);
    const std::string a = home.put("a.jpg", bytes, 1700000000);
    const std::string b = home.pictures + "/b.jpg";
    ASSERT_EQ(link(a.c_str(), b.c_str()), 0);
    struct stat info {};
    stat(a.c_str(), &info);
    DuplicateFile first{1, a, 1100000, 1700000000LL * 1000000000, info.st_dev, info.st_ino, false};
    DuplicateFile second = first;
    second.path = b;
    EXPECT_EQ(verifyCopy(second, first, CancelToken()), CopyVerdict::sameFile);
}

} // namespace
} // namespace sondrel
