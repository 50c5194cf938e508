// The roots of the large-file search on fake homes: the six user folders (following
// user-dirs.dirs), the cloud folders that only the home target adds, another folder alone, and
// the search over those roots end to end.

#include "core/search/large_file_search.h"
#include "platform/search_roots.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <string>
#include <unistd.h>
#include <vector>

namespace sondrel {
namespace {

using test::TempDir;

std::string sparse(const TempDir& dir, const std::string& relative, off_t size) {
    const std::string path = dir.makeFile(relative);
    EXPECT_EQ(truncate(path.c_str(), size), 0);
    return path;
}

std::vector<std::string> foundNames(const std::vector<std::string>& roots) {
    const CancelToken cancel;
    std::vector<std::string> names;
    for (const LargeFile& file : searchLargeFiles(roots, LargeSearchOptions{}, cancel).files) {
        names.push_back(file.name);
    }
    return names;
}

TEST(SearchRoots, UserFoldersFollowUserDirsAndOnlyTheHomeAddsCloudFolders) {
    TempDir dir;
    const std::string home = dir.makeDir("home");
    dir.writeFile("home/.config/user-dirs.dirs",
                  "XDG_VIDEOS_DIR=\"$HOME/Filme\"\nXDG_DOWNLOAD_DIR=\"$HOME/Incoming\"\n");
    const Locations locations = Locations::forLinux(home);
    const std::vector<std::string> six = {home + "/Incoming", home + "/Documents",
                                          home + "/Desktop",  home + "/Filme",
                                          home + "/Music",    home + "/Pictures"};
    EXPECT_EQ(userSearchFolders(locations), six);
    EXPECT_EQ(largeSearchRoots(locations, std::nullopt, {"/cloud"}), six);

    std::vector<std::string> withCloud = six;
    withCloud.push_back("/cloud");
    for (const std::string& spelling : {home, home + "/", home + "/./Music/..", home + "//"}) {
        EXPECT_EQ(largeSearchRoots(locations, spelling, {"/cloud"}), withCloud) << spelling;
    }
    EXPECT_EQ(largeSearchRoots(locations, home + "/Music/", {"/cloud"}),
              std::vector<std::string>{home + "/Music"});
    EXPECT_EQ(largeSearchRoots(locations, "/", {"/cloud"}), std::vector<std::string>{"/"});

    const Locations mac = Locations::forMacos(home);
    EXPECT_EQ(userSearchFolders(mac)[3], home + "/Movies");
}

TEST(SearchRoots, CloudFoldersThatExist) {
    TempDir dir;
    const std::string home = dir.makeDir("home");
    dir.makeDir("home/Dropbox");
    dir.makeDir("home/Google Drive");
    const std::string gvfs = dir.makeDir("gvfs");
    dir.makeDir("gvfs/google-drive:host=gmail.com,user=alice");
    dir.makeDir("gvfs/sftp:host=server");
    dir.makeDir("gvfs/dav:host=cloud.example.org,ssl=true");
    const std::string mine = dir.makeDir("mnt/my remote");
    const std::string mounts = "remote: " + dir.path() +
                               "/mnt/my\\040remote fuse.rclone rw,nosuid 0 0\n"
                               "other: /nonexistent fuse.rclone rw 0 0\n"
                               "/dev/vda /srv ext4 rw 0 0\n";
    const std::vector<std::string> found =
        cloudFolderPaths(Locations::forLinux(home), gvfs, mounts, getuid());
    EXPECT_EQ(found,
              (std::vector<std::string>{home + "/Dropbox", home + "/Google Drive",
                                        gvfs + "/dav:host=cloud.example.org,ssl=true",
                                        gvfs + "/google-drive:host=gmail.com,user=alice", mine}));
    EXPECT_TRUE(cloudFolderPaths(Locations::forLinux(home), gvfs, mounts, getuid() + 1).size() ==
                4);

    dir.makeDir("home/Library/CloudStorage/OneDrive-Personal");
    EXPECT_EQ(cloudFolderPaths(Locations::forMacos(home), gvfs, mounts, getuid()),
              std::vector<std::string>{home + "/Library/CloudStorage"});
}

TEST(SearchRoots, HomeTargetCoversCloudFoldersAndAnotherFolderOnlyItself) {
    TempDir dir;
    const std::string home = dir.makeDir("home");
    sparse(dir, "home/Downloads/download.iso", 30 << 20);
    sparse(dir, "home/Dropbox/synced.zip", 30 << 20);
    sparse(dir, "home/Projects/project.bin", 30 << 20);
    sparse(dir, "home/loose.bin", 30 << 20);
    const Locations locations = Locations::forLinux(home);
    const std::vector<std::string> cloud =
        cloudFolderPaths(locations, dir / "no-gvfs", "", getuid());

    EXPECT_EQ(foundNames(largeSearchRoots(locations, home, cloud)),
              (std::vector<std::string>{"download.iso", "synced.zip"}));
    EXPECT_EQ(foundNames(largeSearchRoots(locations, std::nullopt, cloud)),
              std::vector<std::string>{"download.iso"});
    EXPECT_EQ(foundNames(largeSearchRoots(locations, home + "/Projects", cloud)),
              std::vector<std::string>{"project.bin"});
}

} // namespace
} // namespace sondrel
