// measureTree against du on generated trees: allocated bytes as `du -sB1`, apparent bytes as
// `du -sb`, with sparse files, hard links inside and across folders, links and odd names.

#include "core/fs/measure_tree.h"
#include "tests/support/bind_mount.h"
#include "tests/support/ordinary_user.h"
#include "tests/support/run_process.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fcntl.h>
#include <random>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace sondrel {
namespace {

using test::runProcess;
using test::TempDir;

// The first number `du -s` prints for `path` with `flags`, or -1.
long long du(const std::string& flags, const std::string& path) {
    const test::ProcessResult result = test::runProcess({"/usr/bin/du", "-s", flags, "--", path});
    long long value = -1;
    if (std::sscanf(result.out.c_str(), "%lld", &value) != 1) {
        value = -1;
    }
    return value;
}

void makeSparse(const std::string& path, off_t length, const std::string& tail) {
    const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    ASSERT_GE(fd, 0);
    ASSERT_EQ(pwrite(fd, tail.data(), tail.size(), length - static_cast<off_t>(tail.size())),
              static_cast<ssize_t>(tail.size()));
    close(fd);
}

TEST(MeasureTree, EqualsDuOnGeneratedTreesWithSparseFilesAndHardLinks) {
    std::mt19937 random(7);
    for (int round = 0; round < 3; ++round) {
        TempDir dir;
        const std::string root = dir.makeDir("root");
        for (int i = 0; i < 400; ++i) {
            const std::string folder = "root/d" + std::to_string(random() % 13) + "/e" +
                                       std::to_string(random() % 5) +
                                       (i % 7 == 0 ? "/.hidden" : "");
            dir.makeFile(folder + "/f" + std::to_string(i),
                         static_cast<long long>(random() % 20000));
        }
        makeSparse(dir / "root/d1/sparse.img", 64 << 20, "end");
        makeSparse(dir / "root/sparse-small", 100000, "x");
        // Hard links: inside one folder, across folders, and one to a file outside the root.
        const std::string target = dir.makeFile("root/d2/linked", 50000);
        ASSERT_EQ(link(target.c_str(), (dir / "root/d2/linked-again").c_str()), 0);
        ASSERT_EQ(link(target.c_str(), (dir / "root/d3/linked-elsewhere").c_str()), 0);
        const std::string outside = dir.makeFile("outside", 8000);
        ASSERT_EQ(link(outside.c_str(), (dir / "root/from-outside").c_str()), 0);
        ASSERT_EQ(symlink("/usr", (dir / "root/d4/to-usr").c_str()), 0);
        dir.makeFile("root/d5/name with 'quote' and\nnewline", 123);

        const CancelToken cancel;
        for (const unsigned threads : {1U, 4U}) {
            MeasureOptions options;
            options.threads = threads;
            const TreeSize size = measureTree(root, options, cancel);
            EXPECT_TRUE(size.exists);
            EXPECT_TRUE(size.complete);
            EXPECT_EQ(size.allocated, du("-B1", root)) << "round " << round;
            EXPECT_EQ(size.apparent, du("-b", root)) << "round " << round;
        }
    }
}

TEST(MeasureTree, FilesLinksAndNothing) {
    TempDir dir;
    const std::string file = dir.makeFile("file", 5000);
    EXPECT_EQ(measureTree(file).apparent, 5000);
    EXPECT_EQ(measureTree(file).allocated, du("-B1", file));
    EXPECT_EQ(measureTree(file).files, 1);

    // A link is measured as itself, never as what it points at.
    dir.makeFile("big/blob", 1 << 20);
    ASSERT_EQ(symlink((dir / "big").c_str(), (dir / "link").c_str()), 0);
    const TreeSize link = measureTree(dir / "link");
    EXPECT_TRUE(link.exists);
    EXPECT_EQ(link.apparent, static_cast<long long>((dir / "big").size()));

    const TreeSize missing = measureTree(dir / "missing");
    EXPECT_FALSE(missing.exists);
    EXPECT_EQ(missing.allocated, 0);
}

// A folder that cannot be opened adds its own blocks, as du counts them, and the figure says it
// is not whole.
TEST(MeasureTree, UnreadableFoldersAddTheirOwnSize) {
    TempDir dir;
    dir.makeFile("closed/inner/secret", 40000);
    dir.makeFile("closed/inner/deeper/more", 40000);
    dir.makeFile("closed/open/file", 5000);
    for (int i = 0; i < 300; ++i) {
        // Enough names that the closed folder's own blocks are more than the minimum.
        dir.makeFile("closed/inner/name-long-enough-to-grow-the-folder-" + std::to_string(i), 1);
    }
    ASSERT_EQ(chmod((dir / "closed/inner").c_str(), 0), 0);
    const std::string closed = dir / "closed";
    EXPECT_TRUE(test::runAsOrdinaryUser(dir.path(), [&] {
        const TreeSize partial = measureTree(closed);
        const long long allocated = du("-B1", closed);
        const long long apparent = du("-b", closed);
        if (!partial.exists || partial.complete || partial.allocated != allocated ||
            partial.apparent != apparent) {
            std::fprintf(stderr, "measured %lld/%lld, du %lld/%lld, complete %d\n",
                         static_cast<long long>(partial.allocated),
                         static_cast<long long>(partial.apparent), allocated, apparent,
                         static_cast<int>(partial.complete));
            return false;
        }
        return true;
    }));
    chmod((dir / "closed/inner").c_str(), 0755);
}

// A file bound over another, or a folder mounted below, is noted; the bound folder is not
// entered (one file system), the bound file is counted as the file it shows.
TEST(MeasureTree, MountsInsideAreNoted) {
    TempDir dir;
    dir.makeFile("tree/a", 10);
    const std::string outsideFile = dir.writeFile("outside-file", "keep");
    const std::string boundFile = dir.writeFile("tree/sub/deeper/bound", "");
    dir.makeFile("outside/big", 100000);
    const std::string boundFolder = dir.makeDir("tree/view");
    EXPECT_FALSE(measureTree(dir / "tree").mountInside);
    {
        const test::ScopedBindMount file(outsideFile, boundFile);
        if (!file.mounted()) {
            GTEST_SKIP() << "bind mounts are not permitted here";
        }
        const TreeSize size = measureTree(dir / "tree");
        EXPECT_TRUE(size.mountInside);
        EXPECT_TRUE(size.complete);
    }
    const test::ScopedBindMount folder(dir / "outside", boundFolder);
    const TreeSize size = measureTree(dir / "tree");
    EXPECT_TRUE(size.mountInside);
    EXPECT_LT(size.apparent, 100000);
}

TEST(MeasureTree, CancelGivesAnIncompleteFigure) {
    TempDir dir;
    for (int i = 0; i < 200; ++i) {
        dir.makeFile("d" + std::to_string(i) + "/f", 10);
    }
    CancelToken cancel;
    cancel.cancel();
    const TreeSize size = measureTree(dir.path(), MeasureOptions{}, cancel);
    EXPECT_TRUE(size.exists);
    EXPECT_FALSE(size.complete);
    EXPECT_LT(size.apparent, du("-b", dir.path()));
}

} // namespace
} // namespace sondrel
