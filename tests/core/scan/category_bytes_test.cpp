// Bytes per category of every folder's whole subtree: counted by the walk also below the depth
// limit, kept with hard links counted once, switched with the measure, and adjusted when an item
// leaves or rejoins its folder. A folder's colour is the category that holds most of it.

#include "core/model/file_item.h"
#include "core/scan/tree_scan.h"
#include "tests/core/scan/tree_test_support.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace sondrel {
namespace {

using test::child;
using test::expectConsistent;
using test::TempDir;

std::int64_t bytesOf(const FileItem& item, FileCategory category) {
    return item.categoryBreakdown()[static_cast<std::size_t>(category)];
}

ScanResult scanApparent(const std::string& path, int maxDepth) {
    ScanOptions options;
    options.maxDepth = maxDepth;
    options.threads = 2;
    options.measure = SizeMeasure::apparent;
    CancelToken cancel;
    return scanTree(path, options, cancel);
}

TEST(CategoryBytes, CollapsedFoldersKnowWhatFillsThemAndLinksCountOnce) {
    TempDir dir;
    dir.makeFile("Media/2023/trip/day1/clip.MP4", 700000);
    dir.makeFile("Media/2023/trip/day1/photo.jpg", 200000);
    dir.makeFile("Media/notes", 1000); // no extension: other
    dir.makeFile("Media/.mp4", 3000);  // hidden: skipped by the scan
    dir.makeFile("Code/src/main.cpp", 50000);
    dir.makeFile("readme.md", 400);
    // Two links to one movie inside the collapsed folder: its bytes count once.
    ASSERT_EQ(link((dir / "Media/2023/trip/day1/clip.MP4").c_str(),
                   (dir / "Media/2023/copy.mp4").c_str()),
              0);

    const ScanResult result = scanApparent(dir.path(), 1);
    const FileItem root = result.rootItem();
    const FileItem media = child(root, "Media");
    ASSERT_TRUE(media);
    EXPECT_EQ(media.childCount(), 2U); // 2023 collapsed below the depth limit, notes
    EXPECT_EQ(bytesOf(media, FileCategory::video), 700000);
    EXPECT_EQ(bytesOf(media, FileCategory::image), 200000);
    EXPECT_EQ(bytesOf(media, FileCategory::other), 1000);
    EXPECT_EQ(bytesOf(child(media, "2023"), FileCategory::video), 700000);
    EXPECT_EQ(media.dominantCategory(), FileCategory::video);
    EXPECT_EQ(media.category(), FileCategory::other); // the folder's own kind is unchanged

    EXPECT_EQ(bytesOf(root, FileCategory::video), 700000);
    EXPECT_EQ(bytesOf(root, FileCategory::developer), 50000);
    EXPECT_EQ(bytesOf(root, FileCategory::document), 400);
    EXPECT_EQ(child(root, "Code").dominantCategory(), FileCategory::developer);
    EXPECT_EQ(child(root, "readme.md").dominantCategory(), FileCategory::document);
    expectConsistent(root);
}

TEST(CategoryBytes, EmptyFoldersKeepTheirOwnColourAndTiesGoToDisplayOrder) {
    TempDir dir;
    dir.makeDir("empty");
    dir.makeFile("even/a.png", 4096);
    dir.makeFile("even/b.mp4", 4096);
    const FileItem root = scanApparent(dir.path(), 4).rootItem();
    EXPECT_EQ(child(root, "empty").dominantCategory(), FileCategory::other);
    // Video precedes image in display order.
    EXPECT_EQ(child(root, "even").dominantCategory(), FileCategory::video);
}

TEST(CategoryBytes, FollowTheMeasureShown) {
    TempDir dir;
    const std::string image = dir.makeFile("box/deep/vm.iso", 0);
    ASSERT_EQ(truncate(image.c_str(), 64LL * 1024 * 1024), 0); // sparse: no blocks
    dir.makeFile("box/deep/song.mp3", 300000);

    const ScanResult result = scanApparent(dir.path(), 1);
    const FileItem box = child(result.rootItem(), "box");
    EXPECT_EQ(box.dominantCategory(), FileCategory::archive);
    EXPECT_EQ(bytesOf(box, FileCategory::archive), 64LL * 1024 * 1024);

    result.tree->setMeasure(SizeMeasure::allocated);
    EXPECT_EQ(box.dominantCategory(), FileCategory::audio);
    EXPECT_EQ(bytesOf(box, FileCategory::archive), 0);
    expectConsistent(result.rootItem());
}

TEST(CategoryBytes, LeavingAndRejoiningTheFolderMovesTheBytes) {
    TempDir dir;
    dir.makeFile("Downloads/film.mkv", 900000);
    dir.makeFile("Downloads/Albums/one.flac", 400000);
    dir.makeFile("Downloads/Albums/two.flac", 400000);
    const ScanResult result = scanApparent(dir.path(), 4);
    const FileItem downloads = child(result.rootItem(), "Downloads");
    const FileItem film = child(downloads, "film.mkv");
    const FileItem albums = child(downloads, "Albums");
    EXPECT_EQ(downloads.dominantCategory(), FileCategory::video);

    ASSERT_TRUE(film.removeFromParent());
    EXPECT_EQ(bytesOf(downloads, FileCategory::video), 0);
    EXPECT_EQ(downloads.dominantCategory(), FileCategory::audio);
    ASSERT_TRUE(albums.removeFromParent());
    EXPECT_EQ(downloads.dominantCategory(), FileCategory::other); // nothing left
    test::expectCategoriesAddUp(downloads);

    // Undone while the other measure is shown: both come back in the right measure.
    result.tree->setMeasure(SizeMeasure::allocated);
    ASSERT_TRUE(albums.reattachToParent());
    ASSERT_TRUE(film.reattachToParent());
    result.tree->setMeasure(SizeMeasure::apparent);
    EXPECT_EQ(bytesOf(downloads, FileCategory::video), 900000);
    EXPECT_EQ(bytesOf(downloads, FileCategory::audio), 800000);
    test::expectCategoriesAddUp(downloads);
}

} // namespace
} // namespace sondrel
