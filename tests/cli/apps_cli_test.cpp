// `sondrel-cli apps`, `apps orphans` and `apps uninstall` on a Mac home analysed from here.

#include "tests/support/run_process.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace sondrel {
namespace {

using test::runProcess;

bool exists(const std::string& path) {
    struct stat info {};
    return lstat(path.c_str(), &info) == 0;
}

TEST(AppsCli, ListsUninstallsAndKeepsLeftoversOnRequest) {
    const test::TempDir dir;
    const std::string home = dir.makeDir("home");
    dir.writeFile("home/Applications/Editor.app/Contents/Info.plist",
                  "<plist><dict><key>CFBundleIdentifier</key><string>com.example.editor</string>"
                  "</dict></plist>");
    dir.makeFile("home/Applications/Editor.app/Contents/MacOS/editor", 300000);
    dir.makeFile("home/Applications/Viewer.app/Contents/MacOS/viewer", 1000);
    dir.makeFile("home/Library/Caches/com.example.editor/c", 5000);
    dir.makeFile("home/Library/Caches/unknown.viewer/c", 5000);
    dir.makeFile("home/Library/Application Support/GoneTool/data", 200000);
    const std::vector<std::string> base{SONDREL_CLI_PATH, "--home", home, "--layout", "macos"};
    const auto with = [&base](std::initializer_list<std::string> more) {
        std::vector<std::string> argv = base;
        argv.insert(argv.end(), more);
        return argv;
    };

    const auto listed = runProcess(with({"--json", "apps"}));
    ASSERT_EQ(listed.exitCode, 0) << listed.err;
    EXPECT_NE(listed.out.find("\"status\": \"Found 2 applications, 1 leftover items\""),
              std::string::npos)
        << listed.out;
    EXPECT_LT(listed.out.find("com.example.editor"), listed.out.find("unknown.viewer"));
    const auto orphans = runProcess(with({"apps", "orphans"}));
    EXPECT_NE(orphans.out.find("GoneTool"), std::string::npos) << orphans.out;

    const auto unknown = runProcess(with({"apps", "uninstall", "com.example.none", "--yes"}));
    EXPECT_EQ(unknown.exitCode, 1);
    const auto refused = runProcess(with({"apps", "uninstall", "com.example.editor"}), "n\n");
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(exists(home + "/Applications/Editor.app"));

    const auto removed = runProcess(with({"apps", "uninstall", "com.example.editor", "--yes"}));
    EXPECT_EQ(removed.exitCode, 0) << removed.err;
    EXPECT_NE(removed.out.find("Successfully uninstalled Editor"), std::string::npos);
    EXPECT_FALSE(exists(home + "/Applications/Editor.app"));
    EXPECT_FALSE(exists(home + "/Library/Caches/com.example.editor"));

    const auto kept =
        runProcess(with({"apps", "uninstall", "Viewer", "--keep-leftovers", "--yes"}));
    EXPECT_EQ(kept.exitCode, 0) << kept.err;
    EXPECT_FALSE(exists(home + "/Applications/Viewer.app"));
    EXPECT_TRUE(exists(home + "/Library/Caches/unknown.viewer/c"));

    EXPECT_EQ(runProcess(with({"apps", "--yes"})).exitCode, 2);
    EXPECT_EQ(runProcess(with({"apps", "uninstall"})).exitCode, 2);
}

} // namespace
} // namespace sondrel
