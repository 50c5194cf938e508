// `sondrel-cli trash` as a user runs it against a temporary home.

#include "core/removal/trash_info.h"
#include "tests/support/run_process.h"
#include "tests/support/temp_dir.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <sys/stat.h>

namespace sondrel {
namespace {

using test::runProcess;

bool exists(const std::string& path) {
    struct stat info {};
    return lstat(path.c_str(), &info) == 0;
}

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

TEST(TrashCli, TrashesEachPathAndReportsOneLinePerFailure) {
    test::TempDir dir;
    const std::string home = dir.makeDir("home");
    const std::map<std::string, std::string> environment = {
        {"HOME", home}, {"XDG_DATA_HOME", home + "/.local/share"}};
    const std::string odd = dir.writeFile("home/$(touch pwned) `x`\n-rf", "a");
    const std::string plain = dir.writeFile("home/plain.txt", "b");
    const std::string outside = dir.writeFile("outside.txt", "c");

    const auto ok = runProcess({SONDREL_CLI_PATH, "trash", "--", odd, plain}, {}, environment);
    EXPECT_EQ(ok.exitCode, 0) << ok.err;
    EXPECT_TRUE(ok.err.empty());
    // One line per item saying where it went, names escaped visibly.
    const std::string files = home + "/.local/share/Trash/files/";
    EXPECT_EQ(ok.out, "Moved " + dir.path() + "/home/$(touch pwned) `x`\\n-rf to the Trash: " +
                          files + "$(touch pwned) `x`\\n-rf\n" + "Moved " + plain +
                          " to the Trash: " + files + "plain.txt\n");
    EXPECT_FALSE(exists(odd));
    EXPECT_FALSE(exists(plain));
    const auto info = parseTrashInfo(
        readFile(home + "/.local/share/Trash/info/$(touch pwned) `x`\n-rf.trashinfo"));
    ASSERT_TRUE(info);
    EXPECT_EQ(info->path, odd);
    EXPECT_FALSE(exists(home + "/pwned"));

    const auto mixed = runProcess(
        {SONDREL_CLI_PATH, "trash", outside, home, "/", dir.writeFile("home/c.txt", "c")}, {},
        environment);
    EXPECT_EQ(mixed.exitCode, 1);
    EXPECT_EQ(std::count(mixed.err.begin(), mixed.err.end(), '\n'), 3) << mixed.err;
    EXPECT_EQ(readFile(outside), "c");
    EXPECT_TRUE(exists(home));
    EXPECT_FALSE(exists(home + "/c.txt"));

    // --root widens what may go; a missing path is said to be missing.
    const auto rooted = runProcess(
        {SONDREL_CLI_PATH, "--json", "trash", "--root", dir.path(), outside, home + "/none"}, {},
        environment);
    EXPECT_EQ(rooted.exitCode, 1) << rooted.err;
    EXPECT_EQ(rooted.err, "sondrel-cli: nothing at " + home + "/none\n");
    EXPECT_FALSE(exists(outside));
    EXPECT_NE(rooted.out.find("\"removed\": true"), std::string::npos) << rooted.out;
    EXPECT_NE(
        rooted.out.find("\"trashedPath\": \"" + home + "/.local/share/Trash/files/outside.txt\""),
        std::string::npos)
        << rooted.out;

    EXPECT_EQ(runProcess({SONDREL_CLI_PATH, "trash"}, {}, environment).exitCode, 2);
}

TEST(TrashCli, RefusesArgumentsThatNameTheWorkingFolder) {
    test::TempDir dir;
    const std::string home = dir.makeDir("home");
    const std::string work = dir.makeDir("home/work");
    const std::string kept = dir.writeFile("home/work/kept.txt", "k");
    const std::string other = dir.writeFile("home/work/other.txt", "o");
    // The working folder is inside the home, so each of these would move it (or the home).
    const std::string script = "cd \"$1\" && shift && exec \"$@\"";
    for (const std::string& arg :
         std::vector<std::string>{"", "./", ".", ".//", "sub/..", "..", "../work/.", work + "/."}) {
        const auto result =
            runProcess({"/bin/sh", "-c", script, "sh", work, SONDREL_CLI_PATH, "trash", other, arg},
                       {}, {{"HOME", home}, {"XDG_DATA_HOME", home + "/.local/share"}});
        EXPECT_EQ(result.exitCode, 2) << "'" << arg << "' " << result.err;
        EXPECT_NE(result.err.find("names the working folder"), std::string::npos) << result.err;
        EXPECT_TRUE(exists(work)) << arg;
        EXPECT_TRUE(exists(other)) << arg; // nothing at all was moved
    }
    EXPECT_EQ(readFile(kept), "k");
}

TEST(TrashCli, MessagesShowControlBytesEscaped) {
    test::TempDir dir;
    const std::string home = dir.makeDir("home");
    const auto result = runProcess({SONDREL_CLI_PATH, "trash", home + "/\x1b[2J\rgone\xE9"}, {},
                                   {{"HOME", home}, {"XDG_DATA_HOME", home + "/.local/share"}});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.err, "sondrel-cli: nothing at " + home + "/\\033[2J\\rgone\\351\n");
}

} // namespace
} // namespace sondrel
