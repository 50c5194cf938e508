// The large-file search on temporary trees of sparse files: the 20 MiB floor, what is never
// entered (pruned names at any depth, hidden names, bundles, links), one entry per inode across
// roots and hard links, missing roots, cancel and progress.

#include "core/search/large_file_search.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace sondrel {
namespace {

using test::TempDir;

// A sparse file of `size` bytes (no blocks written), parents created.
std::string sparse(const TempDir& dir, const std::string& relative, off_t size) {
    const std::string path = dir.makeFile(relative);
    EXPECT_EQ(truncate(path.c_str(), size), 0);
    return path;
}

std::vector<std::string> names(const LargeSearchResult& result) {
    std::vector<std::string> list;
    for (const LargeFile& file : result.files) {
        list.push_back(file.name);
    }
    return list;
}

LargeSearchResult search(const std::vector<std::string>& roots) {
    const CancelToken cancel;
    return searchLargeFiles(roots, LargeSearchOptions{}, cancel);
}

TEST(LargeFileSearch, KeepsFilesFromTwentyMebibytesAndNeverEntersExcludedFolders) {
    TempDir dir;
    const std::string root = dir.makeDir("root");
    sparse(dir, "root/exact.iso", kLargeFileMinimum);
    sparse(dir, "root/one-less.iso", kLargeFileMinimum - 1);
    sparse(dir, "root/a/b/c/d/e/deep Movie.MKV", 300 << 20);
    // A folder named "build" hides its files at any depth, and so does every other pruned name.
    sparse(dir, "root/build/top.bin", 64 << 20);
    sparse(dir, "root/a/build/mid.bin", 64 << 20);
    sparse(dir, "root/a/b/c/d/build/x/deep.bin", 64 << 20);
    for (std::string_view pruned : kSearchPruneNames) {
        sparse(dir, "root/p/" + std::string(pruned) + "/in-" + std::string(pruned), 64 << 20);
    }
    // Near misses of pruned names are entered: the names are exact and case-sensitive.
    sparse(dir, "root/Build/kept-Build.bin", 64 << 20);
    sparse(dir, "root/builds/kept-builds.bin", 64 << 20);
    // Hidden names, bundles and links.
    sparse(dir, "root/.hidden/in-hidden.bin", 64 << 20);
    sparse(dir, "root/.hidden-file.bin", 64 << 20);
    sparse(dir, "root/Tool.app/Contents/in-bundle.bin", 64 << 20);
    sparse(dir, "root/Other.APP/in-upper-bundle.bin", 64 << 20);
    const std::string outside = sparse(dir, "outside/target.bin", 64 << 20);
    ASSERT_EQ(symlink(outside.c_str(), (dir / "root/link-to-large").c_str()), 0);
    ASSERT_EQ(symlink((dir / "outside").c_str(), (dir / "root/link-to-folder").c_str()), 0);
    ASSERT_EQ(mkfifo((dir / "root/fifo").c_str(), 0600), 0);

    const LargeSearchResult result = search({root});
    EXPECT_EQ(names(result), (std::vector<std::string>{"deep Movie.MKV", "kept-Build.bin",
                                                       "kept-builds.bin", "exact.iso"}));
    ASSERT_EQ(result.roots.size(), 1U);
    EXPECT_TRUE(result.roots[0].walked);
    EXPECT_FALSE(result.cancelled);

    const LargeFile& movie = result.files.front();
    EXPECT_EQ(movie.path, root + "/a/b/c/d/e/deep Movie.MKV");
    EXPECT_EQ(movie.size, 300 << 20);
    EXPECT_EQ(movie.category, FileCategory::video);
    struct stat info {};
    ASSERT_EQ(stat(movie.path.c_str(), &info), 0);
    EXPECT_EQ(movie.modified, info.st_mtim.tv_sec);
    EXPECT_EQ(movie.inode, static_cast<std::uint64_t>(info.st_ino));
    EXPECT_EQ(result.files.back().size, kLargeFileMinimum);
}

TEST(LargeFileSearch, ListsAFileOnceWhateverReachesItAndSortsLargestFirst) {
    TempDir dir;
    const std::string home = dir.makeDir("home");
    const std::string shared = sparse(dir, "home/Documents/Inner/shared.bin", 40 << 20);
    // A hard link of the same file in another root, and a second, nested root.
    sparse(dir, "home/Videos/big.mp4", 90 << 20);
    ASSERT_EQ(link(shared.c_str(), (dir / "home/Videos/aaa-link.bin").c_str()), 0);
    sparse(dir, "home/Documents/tie-b.pdf", 30 << 20);
    sparse(dir, "home/Documents/tie-a.pdf", 30 << 20);
    const std::vector<std::string> roots = {home + "/Documents", home + "/Documents/Inner/",
                                            home + "/Videos", home + "/Documents"};

    const LargeSearchResult result = search(roots);
    EXPECT_EQ(names(result),
              (std::vector<std::string>{"big.mp4", "shared.bin", "tie-a.pdf", "tie-b.pdf"}));
    // The earliest root's path is kept, though "aaa-link.bin" sorts before it.
    EXPECT_EQ(result.files[1].path, shared);
    ASSERT_EQ(result.roots.size(), 4U);
    EXPECT_EQ(result.roots[1].path, home + "/Documents/Inner");
    for (const SearchRootOutcome& root : result.roots) {
        EXPECT_TRUE(root.walked) << root.path;
    }
    // Files checked counts each walk: the repeated root was not walked again.
    EXPECT_EQ(result.filesChecked, 3 + 1 + 2);
}

TEST(LargeFileSearch, SkipsMissingRootsAndStopsWhenCancelled) {
    TempDir dir;
    sparse(dir, "a/one.bin", 25 << 20);
    for (int i = 0; i < 50; ++i) {
        dir.makeFile("a/small/s" + std::to_string(i), 10);
    }
    const LargeSearchResult result = search({dir / "missing", dir / "a", dir / "a/one.bin"});
    ASSERT_EQ(result.roots.size(), 3U);
    EXPECT_FALSE(result.roots[0].walked);
    EXPECT_EQ(result.roots[0].error, ENOENT);
    EXPECT_TRUE(result.roots[1].walked);
    EXPECT_FALSE(result.roots[2].walked); // a file is not a folder to search
    EXPECT_EQ(names(result), std::vector<std::string>{"one.bin"});

    std::atomic<std::int64_t> lastChecked{0};
    LargeSearchOptions options;
    options.progressIntervalSeconds = 0;
    options.onProgress = [&](const LargeSearchProgress& progress) {
        lastChecked = progress.filesChecked;
    };
    const CancelToken running;
    searchLargeFiles({dir / "a"}, options, running);
    EXPECT_GT(lastChecked.load(), 0);

    CancelToken cancelled;
    cancelled.cancel();
    const LargeSearchResult stopped = searchLargeFiles({dir / "a"}, options, cancelled);
    EXPECT_TRUE(stopped.cancelled);
    EXPECT_TRUE(stopped.files.empty());
}

TEST(LargeFileSearch, ExcludedFolderNames) {
    EXPECT_TRUE(isSearchExcludedFolder("build"));
    EXPECT_TRUE(isSearchExcludedFolder("TemporaryItems"));
    EXPECT_TRUE(isSearchExcludedFolder("Photos.APP"));
    EXPECT_FALSE(isSearchExcludedFolder("Build"));
    EXPECT_FALSE(isSearchExcludedFolder(".app"));
    EXPECT_FALSE(isSearchExcludedFolder("apps"));
}

} // namespace
} // namespace sondrel
