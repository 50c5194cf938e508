// Both sizes of a scan: bytes on disk (allocated blocks) and apparent lengths, measured in one
// walk and switched without a new one. Sparse files make the two differ in size and in order.

#include "core/model/file_item.h"
#include "core/scan/tree_export.h"
#include "core/scan/tree_scan.h"
#include "tests/core/scan/tree_test_support.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace sondrel {
namespace {

using test::child;
using test::expectConsistent;
using test::TempDir;

constexpr std::int64_t kSparseLength = 64LL * 1024 * 1024;

std::int64_t allocatedOf(const std::string& path) {
    struct stat info {};
    EXPECT_EQ(lstat(path.c_str(), &info), 0) << path;
    return static_cast<std::int64_t>(info.st_blocks) * 512;
}

// A file of `length` bytes that holds no data blocks.
std::string makeSparse(const TempDir& dir, const std::string& relative, std::int64_t length) {
    const std::string path = dir.makeFile(relative, 0);
    EXPECT_EQ(truncate(path.c_str(), length), 0);
    return path;
}

ScanResult scanWith(const std::string& path, SizeMeasure measure, int maxDepth = 4) {
    ScanOptions options;
    options.maxDepth = maxDepth;
    options.threads = 2;
    options.measure = measure;
    CancelToken cancel;
    return scanTree(path, options, cancel);
}

TEST(SizeMeasure, OneWalkMeasuresBothAndEitherCanBeShownFirst) {
    TempDir dir;
    const std::string sparse = makeSparse(dir, "images/disk.img", kSparseLength);
    const std::string dense = dir.makeFile("docs/report.pdf", 300000);
    const std::string deep = dir.makeFile("deep/d1/d2/file.bin", 5000);
    makeSparse(dir, "deep/d1/d2/hole.bin", kSparseLength);
    const std::int64_t denseAllocated = allocatedOf(dense);
    const std::int64_t deepAllocated = allocatedOf(deep) + allocatedOf(dir / "deep/d1/d2/hole.bin");
    const std::int64_t allocated = allocatedOf(sparse) + denseAllocated + deepAllocated;
    const std::int64_t apparent = 2 * kSparseLength + 300000 + 5000;

    const ScanResult onDisk = scanWith(dir.path(), SizeMeasure::allocated, 1);
    FileItem root = onDisk.rootItem();
    EXPECT_EQ(onDisk.tree->measure(), SizeMeasure::allocated);
    EXPECT_EQ(root.size(), allocated);
    EXPECT_EQ(root.node()->otherSize, apparent);
    EXPECT_EQ(onDisk.bytes, allocated); // progress counts the measure shown
    // A collapsed folder carries both sums of its contents.
    EXPECT_EQ(child(root, "deep").size(), deepAllocated);
    EXPECT_EQ(child(root, "deep").node()->otherSize, 5000 + kSparseLength);
    // On disk the real document outweighs the empty image.
    EXPECT_EQ(root.children().front().name(), "docs");
    expectConsistent(root);

    onDisk.tree->setMeasure(SizeMeasure::apparent);
    EXPECT_EQ(root.size(), apparent);
    EXPECT_EQ(root.node()->otherSize, allocated);
    EXPECT_EQ(root.children().back().name(), "docs"); // re-sorted by length
    expectConsistent(root);

    // The same tree scanned apparent-first has the same figures.
    const ScanResult byLength = scanWith(dir.path(), SizeMeasure::apparent, 1);
    EXPECT_EQ(byLength.rootItem().size(), apparent);
    EXPECT_EQ(byLength.rootItem().node()->otherSize, allocated);
    EXPECT_EQ(byLength.bytes, apparent);
}

TEST(SizeMeasure, HardLinksCountOnceInBothMeasures) {
    TempDir dir;
    const std::string original = dir.makeFile("a/original", 10000);
    dir.makeDir("b");
    ASSERT_EQ(link(original.c_str(), (dir / "b/second").c_str()), 0);
    const ScanResult result = scanWith(dir.path(), SizeMeasure::allocated);
    EXPECT_EQ(result.rootItem().size(), allocatedOf(original));
    EXPECT_EQ(result.rootItem().node()->otherSize, 10000);
    EXPECT_EQ(child(child(result.rootItem(), "b"), "second").node()->otherSize, 0);
}

TEST(SizeMeasure, SwitchingKeepsTrashedItemsAndTheirUndoConsistent) {
    TempDir dir;
    makeSparse(dir, "box/hole.img", kSparseLength);
    const std::string dense = dir.makeFile("box/dense.bin", 200000);
    const ScanResult result = scanWith(dir.path(), SizeMeasure::allocated);
    const FileItem box = child(result.rootItem(), "box");
    const FileItem hole = child(box, "hole.img");
    const std::int64_t boxAllocated = box.size();

    ASSERT_TRUE(hole.removeFromParent());
    EXPECT_EQ(box.size(), allocatedOf(dense));
    result.tree->setMeasure(SizeMeasure::apparent);
    EXPECT_EQ(box.size(), 200000);
    EXPECT_EQ(hole.size(), kSparseLength); // a detached item switches too
    ASSERT_TRUE(hole.reattachToParent());
    EXPECT_EQ(box.size(), 200000 + kSparseLength);
    EXPECT_EQ(box.children().front().name(), "hole.img");
    result.tree->setMeasure(SizeMeasure::allocated);
    EXPECT_EQ(box.size(), boxAllocated);
    EXPECT_EQ(box.children().front().name(), "dense.bin");
}

TEST(SizeMeasure, NcduExportCarriesBothSizes) {
    TempDir dir;
    makeSparse(dir, "hole.img", kSparseLength);
    for (SizeMeasure measure : {SizeMeasure::allocated, SizeMeasure::apparent}) {
        const ScanResult result = scanWith(dir.path(), measure);
        std::ostringstream out;
        ASSERT_TRUE(writeNcduExport(out, result.rootItem(), 0));
        const std::string expected =
            "{\"name\":\"hole.img\",\"asize\":" + std::to_string(kSparseLength) +
            ",\"dsize\":" + std::to_string(allocatedOf(dir / "hole.img")) + "}";
        EXPECT_NE(out.str().find(expected), std::string::npos) << out.str();
    }
}

} // namespace
} // namespace sondrel
