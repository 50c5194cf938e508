// The scan: which files group, which never do, and how groups are ordered and pre-selected.

#include "core/duplicates/duplicate_finder.h"
#include "core/duplicates/duplicate_texts.h"
#include "core/duplicates/sample_hash.h"
#include "tests/core/duplicates/duplicate_test_files.h"
#include "tests/support/temp_dir.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>

namespace sondrel {
namespace {

using test::randomBytes;
using test::setModified;
using test::TempDir;
using test::writeBytes;

constexpr std::size_t kFiveMb = 5000000;

DuplicateScanResult scan(const std::vector<std::string>& folders) {
    DuplicateScanOptions options;
    options.folders = folders;
    CancelToken cancel;
    return findDuplicates(options, cancel);
}

std::vector<std::string> namesOf(const DuplicateGroup& group) {
    std::vector<std::string> names;
    for (const DuplicateFile& file : group.files) {
        names.push_back(file.name());
    }
    return names;
}

TEST(SampleHash, SeesExactlyTheThreeSamples) {
    TempDir dir;
    const std::string path = dir / "f.bin";
    const std::size_t length = 3000001;
    const std::string bytes = randomBytes(length, 1);
    writeBytes(path, bytes);
    const std::optional<std::string> original = computeQuickHash(path);
    ASSERT_TRUE(original);
    EXPECT_EQ(original->size(), 64U);
    EXPECT_EQ(original->find_first_not_of("0123456789abcdef"), std::string::npos);

    const long middle = static_cast<long>(length / 2);
    const long tail = static_cast<long>(length) - 65536;
    // Inside a sample: the digest changes. Just outside each sample: it does not.
    for (long offset : {0L, 65535L, middle, middle + 65535, tail, static_cast<long>(length) - 1}) {
        writeBytes(path, bytes);
        test::flipByte(path, offset);
        EXPECT_NE(computeQuickHash(path), original) << "offset " << offset;
    }
    for (long offset : {65536L, middle - 1, middle + 65536, tail - 1}) {
        writeBytes(path, bytes);
        test::flipByte(path, offset);
        EXPECT_EQ(computeQuickHash(path), original) << "offset " << offset;
    }
}

TEST(SampleHash, ShortFilesAndNonRegularFiles) {
    TempDir dir;
    // 200,000 bytes: head and tail only, so a change at the middle is not seen.
    const std::string path = dir / "short.bin";
    const std::string bytes = randomBytes(200000, 2);
    writeBytes(path, bytes);
    const auto original = computeQuickHash(path);
    test::flipByte(path, 100000);
    EXPECT_EQ(computeQuickHash(path), original);
    test::flipByte(path, 199999);
    EXPECT_NE(computeQuickHash(path), original);
    writeBytes(path, "abc");
    EXPECT_TRUE(computeQuickHash(path));

    // A FIFO named like a video is never read (opening it would block without O_NONBLOCK), a
    // link is not followed, a folder is not a file.
    const std::string fifo = dir / "movie.mp4";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_FALSE(computeQuickHash(fifo));
    ASSERT_EQ(symlink(path.c_str(), (dir / "link.bin").c_str()), 0);
    EXPECT_FALSE(computeQuickHash(dir / "link.bin"));
    EXPECT_FALSE(computeQuickHash(dir.path()));
    EXPECT_FALSE(computeQuickHash(dir / "missing"));
}

TEST(DuplicateFinder, GroupsBySizeAndSamplesOnly) {
    TempDir dir;
    const std::string a = dir.makeDir("a");
    const std::string b = dir.makeDir("b");
    const std::string bytes = randomBytes(kFiveMb, 3);
    writeBytes(a + "/one.bin", bytes);
    writeBytes(b + "/two.bin", bytes);
    test::flipByte(b + "/two.bin", 1000000); // outside the samples: still a copy by the rule
    // Equal samples but different sizes (all zero): never grouped.
    writeBytes(a + "/zeros.bin", std::string(2000000, '\0'));
    writeBytes(b + "/zeros-longer.bin", std::string(2000001, '\0'));
    // Below the floor never; exactly 1 MiB counts.
    writeBytes(a + "/small.bin", std::string(1048575, 'x'));
    writeBytes(b + "/small.bin", std::string(1048575, 'x'));
    writeBytes(a + "/mib.bin", std::string(1048576, 'y'));
    writeBytes(b + "/mib.bin", std::string(1048576, 'y'));

    const DuplicateScanResult result = scan({a, b});
    ASSERT_EQ(result.groups.size(), 2U);
    EXPECT_EQ(result.groups[0].size, static_cast<std::int64_t>(kFiveMb));
    EXPECT_EQ(namesOf(result.groups[0]), (std::vector<std::string>{"one.bin", "two.bin"}));
    EXPECT_EQ(result.groups[1].size, 1048576);
    EXPECT_EQ(result.clusterCount, 2U);
    EXPECT_EQ(result.candidateCount, 6U);
}

TEST(DuplicateFinder, ThreeCopiesKeepTheOldestAndSortByWastedSpace) {
    TempDir dir;
    const std::string bytes = randomBytes(2000000, 4);
    writeBytes(dir / "new.bin", bytes);
    writeBytes(dir / "old.bin", bytes);
    writeBytes(dir / "mid.bin", bytes);
    setModified(dir / "new.bin", 1700000300);
    setModified(dir / "old.bin", 1700000100);
    setModified(dir / "mid.bin", 1700000200);
    // A larger pair whose wasted space (one copy) is below the triple's (two copies).
    const std::string pair = randomBytes(3000000, 5);
    writeBytes(dir / "p1.bin", pair);
    writeBytes(dir / "p2.bin", pair);

    DuplicateScanResult result = scan({dir.path()});
    ASSERT_EQ(result.groups.size(), 2U);
    DuplicateGroup& triple = result.groups[0];
    EXPECT_EQ(namesOf(triple), (std::vector<std::string>{"old.bin", "mid.bin", "new.bin"}));
    EXPECT_FALSE(triple.files[0].isSelected);
    EXPECT_TRUE(triple.files[1].isSelected);
    EXPECT_TRUE(triple.files[2].isSelected);
    EXPECT_EQ(triple.wastedSize(), 2 * 2000000);
    EXPECT_EQ(result.groups[1].wastedSize(), 3000000);
    EXPECT_EQ(duplicateFoundText(result.groups), "Found 2 duplicate groups (7 MB reclaimable)");

    EXPECT_TRUE(toggleFile(result.groups, triple.files[1].id));
    EXPECT_EQ(triple.wastedSize(), 2000000);
    EXPECT_TRUE(toggleFile(result.groups, triple.files[0].id));
    EXPECT_TRUE(toggleFile(result.groups, triple.files[1].id));
    EXPECT_EQ(triple.wastedSize(), 3 * 2000000); // every copy selected: the whole group
    EXPECT_FALSE(toggleFile(result.groups, 999999));

    autoSelect(result.groups, true);
    EXPECT_EQ(namesOf(triple), (std::vector<std::string>{"new.bin", "mid.bin", "old.bin"}));
    EXPECT_FALSE(triple.files[0].isSelected);
    EXPECT_EQ(totalSelectedCount(result.groups), 3U);
    autoSelect(result.groups, false);
    EXPECT_EQ(triple.files[0].name(), "old.bin");
    EXPECT_FALSE(triple.files[0].isSelected);
}

TEST(DuplicateFinder, HardLinksAreOneFile) {
    TempDir dir;
    const std::string bytes = randomBytes(1500000, 6);
    writeBytes(dir / "a.bin", bytes);
    ASSERT_EQ(link((dir / "a.bin").c_str(), (dir / "a-link.bin").c_str()), 0);
    // Only links: no group; the folder given twice changes nothing.
    EXPECT_TRUE(scan({dir.path(), dir.path()}).groups.empty());

    writeBytes(dir / "copy.bin", bytes);
    const DuplicateScanResult result = scan({dir.path()});
    ASSERT_EQ(result.groups.size(), 1U);
    EXPECT_EQ(namesOf(result.groups[0]), (std::vector<std::string>{"a-link.bin", "copy.bin"}));
    EXPECT_EQ(result.groups[0].wastedSize(), 1500000);
}

TEST(DuplicateFinder, LeavesOutHiddenBundlesLinksAndSpecialFiles) {
    TempDir dir;
    const std::string bytes = randomBytes(1200000, 7);
    writeBytes(dir / "visible.bin", bytes);
    writeBytes(dir / ".hidden.bin", bytes);
    dir.makeDir(".cache");
    writeBytes(dir / ".cache/copy.bin", bytes);
    dir.makeDir("Tool.app/Contents");
    writeBytes(dir / "Tool.app/Contents/copy.bin", bytes);
    ASSERT_EQ(symlink((dir / "visible.bin").c_str(), (dir / "link.bin").c_str()), 0);
    ASSERT_EQ(mkfifo((dir / "video.mkv").c_str(), 0600), 0);
    EXPECT_TRUE(scan({dir.path()}).groups.empty());
    // The scan found nothing and says so.
    EXPECT_EQ(duplicateFoundText({}), "Found 0 duplicate groups (Zero KB reclaimable)");
    // A missing folder is skipped.
    writeBytes(dir / "sub-copy.bin", bytes);
    EXPECT_EQ(scan({dir / "missing", dir.path()}).groups.size(), 1U);
}

TEST(DuplicateFinder, FilesChangedBetweenThePassesAreDropped) {
    TempDir dir;
    const std::string bytes = randomBytes(1300000, 8);
    for (const char* name :
         {"a.bin", "b.bin", "vanishes.bin", "shrinks.bin", "grows.bin", "replaced.bin"}) {
        writeBytes(dir / name, bytes);
    }
    CancelToken cancel;
    std::vector<DuplicateCandidate> candidates =
        collectCandidates({dir.path()}, kDuplicateMinimumSize, cancel);
    ASSERT_EQ(candidates.size(), 6U);
    unlink((dir / "vanishes.bin").c_str());
    truncate((dir / "shrinks.bin").c_str(), 1299999);
    test::writeBytes(dir / "grows.bin", bytes + "z");
    // Same size and bytes, another file: written beside it and renamed over it, so the old
    // inode is still in use when the new one is allocated and the numbers differ.
    writeBytes(dir / "replacement.tmp", bytes);
    rename((dir / "replacement.tmp").c_str(), (dir / "replaced.bin").c_str());

    DuplicateScanOptions options;
    const DuplicateScanResult result = groupCandidates(std::move(candidates), options, cancel);
    ASSERT_EQ(result.groups.size(), 1U);
    EXPECT_EQ(namesOf(result.groups[0]), (std::vector<std::string>{"a.bin", "b.bin"}));
}

TEST(DuplicateFinder, ReportsHashingProgressAndStopsWhenCancelled) {
    TempDir dir;
    for (std::uint32_t i = 0; i < 3; ++i) {
        const std::string bytes = randomBytes(1100000 + i, 10 + i);
        writeBytes(dir / ("x" + std::to_string(i)), bytes);
        writeBytes(dir / ("y" + std::to_string(i)), bytes);
    }
    std::mutex mutex;
    std::vector<DuplicateScanProgress> seen;
    DuplicateScanOptions options;
    options.folders = {dir.path()};
    options.hashThreads = 3;
    options.onProgress = [&](const DuplicateScanProgress& progress) {
        std::lock_guard lock(mutex);
        seen.push_back(progress);
    };
    CancelToken cancel;
    EXPECT_EQ(findDuplicates(options, cancel).groups.size(), 3U);
    const auto hashing = std::find_if(seen.begin(), seen.end(), [](const auto& progress) {
        return progress.phase == DuplicateScanProgress::Phase::hashing;
    });
    ASSERT_NE(hashing, seen.end());
    EXPECT_EQ(hashing->clusterCount, 3U);
    EXPECT_EQ(seen.back().clustersDone, 3U); // the last cluster is always reported
    EXPECT_EQ(duplicateHashingText(0, 120), "Hashing 120 candidate clusters...");
    EXPECT_EQ(duplicateHashingText(41, 120), "Hashing 41 of 120 candidate clusters...");

    cancel.cancel();
    const DuplicateScanResult cancelled = findDuplicates(options, cancel);
    EXPECT_TRUE(cancelled.cancelled);
    EXPECT_TRUE(cancelled.groups.empty());
}

} // namespace
} // namespace sondrel
