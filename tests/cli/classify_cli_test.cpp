// sondrel-cli as a user runs it: help, version, exit statuses and the classify command.

#include "tests/support/run_process.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

namespace sondrel {
namespace {

using test::runProcess;

TEST(CliBasics, HelpVersionAndBadArguments) {
    const auto help = runProcess({SONDREL_CLI_PATH, "--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_NE(help.out.find("classify"), std::string::npos);

    const auto version = runProcess({SONDREL_CLI_PATH, "--version"});
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_EQ(version.out.rfind("sondrel-cli ", 0), 0U);

    for (const std::vector<std::string>& args :
         {std::vector<std::string>{SONDREL_CLI_PATH, "no-such-command"},
          {SONDREL_CLI_PATH, "classify"},
          {SONDREL_CLI_PATH, "classify", "--bogus", "/x"},
          {SONDREL_CLI_PATH, "--layout", "windows", "classify", "/x"},
          {SONDREL_CLI_PATH}}) {
        const auto result = runProcess(args);
        EXPECT_EQ(result.exitCode, 2) << args.back();
        EXPECT_FALSE(result.err.empty());
    }
}

TEST(CliClassify, HumanAndJsonOutput) {
    test::TempDir dir;
    const std::string folder = dir.makeDir("Foo.app");
    const auto human = runProcess({SONDREL_CLI_PATH, "classify", folder, "/tmp/x/photo.JPG"});
    ASSERT_EQ(human.exitCode, 0) << human.err;
    EXPECT_NE(human.out.find("Category:  Applications"), std::string::npos);
    EXPECT_NE(human.out.find("Category:  Images"), std::string::npos);
    EXPECT_NE(human.out.find("Verdict:   Safe to Clean"), std::string::npos);

    const auto json = runProcess({SONDREL_CLI_PATH, "--json", "classify", "/usr/lib/x.so"});
    ASSERT_EQ(json.exitCode, 0);
    EXPECT_NE(json.out.find("\"reclaimableStatus\": \"System Managed\""), std::string::npos);
    EXPECT_NE(json.out.find("\"removalRationale\": \"Core Linux operating system"),
              std::string::npos);
}

TEST(CliClassify, OddNamesAreNeitherInterpretedNorCorrupted) {
    // A name with a newline, quotes, a command substitution and an invalid UTF-8 byte.
    const std::string odd = "/tmp/a\nb \"q\" $(touch pwned) \xff.txt";
    const auto json = runProcess({SONDREL_CLI_PATH, "--json", "classify", "--", odd, "-dash"});
    ASSERT_EQ(json.exitCode, 0) << json.err;
    EXPECT_NE(json.out.find("a\\nb \\\"q\\\" $(touch pwned) \\udcff.txt"), std::string::npos)
        << json.out;
    EXPECT_NE(json.out.find("\"category\": \"Documents\""), std::string::npos);
    EXPECT_NE(json.out.find("\"path\": \"-dash\""), std::string::npos);

    const auto human = runProcess({SONDREL_CLI_PATH, "classify", "--", odd});
    ASSERT_EQ(human.exitCode, 0) << human.err;
    EXPECT_EQ(human.out.rfind("/tmp/a\\nb \"q\" $(touch pwned) \\377.txt\n", 0), 0U) << human.out;
}

} // namespace
} // namespace sondrel
