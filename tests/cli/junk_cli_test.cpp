// `sondrel-cli junk` and `junk clean` as a user runs them against a temporary home.

#include "tests/support/run_process.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>
#include <map>
#include <sys/stat.h>
#include <unistd.h>

namespace sondrel {
namespace {

using test::runProcess;

bool exists(const std::string& path) {
    struct stat info {};
    return lstat(path.c_str(), &info) == 0;
}

struct CliHome {
    test::TempDir dir;
    std::string home = dir.makeDir("home");
    std::map<std::string, std::string> environment = {{"HOME", home},
                                                      {"XDG_DATA_HOME", home + "/.local/share"},
                                                      {"XDG_CACHE_HOME", home + "/.cache"},
                                                      {"XDG_CONFIG_HOME", home + "/.config"},
                                                      {"XDG_STATE_HOME", home + "/.local/state"}};
};

TEST(JunkCli, ListsGroupsAndCleansTheDefaultSelectionAfterConfirmation) {
    CliHome t;
    t.dir.makeFile("home/.cache/pip/wheel.whl", 2 * 1024 * 1024);
    t.dir.makeFile("home/projects/site/node_modules/lib.js", 11 * 1024 * 1024);
    t.dir.makeFile("home/.local/share/Trash/files/old.txt", 0);

    const auto listed = runProcess({SONDREL_CLI_PATH, "--json", "junk"}, {}, t.environment);
    ASSERT_EQ(listed.exitCode, 0) << listed.err;
    EXPECT_NE(listed.out.find("\"type\": \"developer\""), std::string::npos) << listed.out;
    EXPECT_NE(listed.out.find("\"title\": \"site/node_modules\""), std::string::npos);
    EXPECT_NE(listed.out.find("\"title\": \"Trash\""), std::string::npos);

    const auto human = runProcess({SONDREL_CLI_PATH, "junk"}, {}, t.environment);
    EXPECT_NE(human.out.find("pip Cache"), std::string::npos) << human.out;

    const auto refused = runProcess({SONDREL_CLI_PATH, "junk", "clean"}, "n\n", t.environment);
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(exists(t.home + "/.cache/pip"));

    const auto cleaned =
        runProcess({SONDREL_CLI_PATH, "junk", "clean", "--yes"}, {}, t.environment);
    EXPECT_EQ(cleaned.exitCode, 0) << cleaned.err;
    EXPECT_NE(cleaned.out.find("Freed "), std::string::npos) << cleaned.out;
    EXPECT_FALSE(exists(t.home + "/.cache/pip"));
    EXPECT_TRUE(exists(t.home + "/.local/share/Trash/files/pip/wheel.whl"));
    EXPECT_FALSE(exists(t.home + "/.local/share/Trash/files/old.txt"));
    // Dependency folders are opted into, never cleaned by default.
    EXPECT_TRUE(exists(t.home + "/projects/site/node_modules/lib.js"));
}

TEST(JunkCli, CleansOnlyTheNamedGroupAndRejectsUnknownOnes) {
    CliHome t;
    t.dir.makeFile("home/.cache/pip/wheel.whl", 2 * 1024 * 1024);
    t.dir.makeFile("home/projects/site/node_modules/lib.js", 11 * 1024 * 1024);

    const auto bad =
        runProcess({SONDREL_CLI_PATH, "junk", "clean", "--group", "xcode"}, {}, t.environment);
    EXPECT_EQ(bad.exitCode, 2);
    EXPECT_NE(bad.err.find("--group"), std::string::npos);

    const auto cleaned = runProcess(
        {SONDREL_CLI_PATH, "--json", "junk", "clean", "--group", "node_modules", "--yes"}, {},
        t.environment);
    EXPECT_EQ(cleaned.exitCode, 0) << cleaned.err;
    EXPECT_NE(cleaned.out.find("\"removed\": 1"), std::string::npos) << cleaned.out;
    EXPECT_FALSE(exists(t.home + "/projects/site/node_modules"));
    EXPECT_TRUE(exists(t.home + "/.cache/pip/wheel.whl"));
}

TEST(JunkCli, ReadsAMacHomeWithTheLayoutOption) {
    CliHome t;
    t.dir.makeFile("home/Library/Developer/Xcode/DerivedData/App/Build/x.o", 2 * 1024 * 1024);
    const auto listed = runProcess(
        {SONDREL_CLI_PATH, "--home", t.home, "--layout", "macos", "junk"}, {}, t.environment);
    ASSERT_EQ(listed.exitCode, 0) << listed.err;
    EXPECT_NE(listed.out.find("Xcode & Developer Caches"), std::string::npos) << listed.out;
    EXPECT_NE(listed.out.find("Xcode DerivedData"), std::string::npos);
}

} // namespace
} // namespace sondrel
