// The duplicate finder's default folders follow the XDG user folders and the macOS layout.

#include "platform/duplicate_folders.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

namespace sondrel {
namespace {

TEST(DuplicateFolders, FollowUserDirsAndLeaveOutTheHomeItself) {
    test::TempDir dir;
    const std::string home = dir.makeDir("home");
    dir.writeFile("home/.config/user-dirs.dirs", "XDG_DESKTOP_DIR=\"$HOME\"\n"
                                                 "XDG_VIDEOS_DIR=\"$HOME/Filme\"\n"
                                                 "XDG_PICTURES_DIR=\"$HOME/Documents\"\n");
    const Locations xdg = Locations::forLinux(home);
    EXPECT_EQ(
        defaultDuplicateFolders(xdg),
        (std::vector<std::string>{home + "/Downloads", home + "/Documents", home + "/Filme"}));

    const Locations mac = Locations::forMacos(home);
    EXPECT_EQ(defaultDuplicateFolders(mac),
              (std::vector<std::string>{home + "/Downloads", home + "/Documents", home + "/Desktop",
                                        home + "/Movies", home + "/Pictures"}));
}

} // namespace
} // namespace sondrel
