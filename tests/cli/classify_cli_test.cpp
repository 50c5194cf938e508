// sondrel-cli as a user runs it: help, version, exit statuses and the classify command.

#include "tests/support/run_process.h"
#include "tests/support/temp_dir.h"

#include <algorithm>
#include <cctype>
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

// The command names of `sondrel-cli --help`: the first word of each line of its Commands block.
std::vector<std::string> commandNames(const std::string& help) {
    std::vector<std::string> names;
    const std::size_t block = help.find("Commands:\n");
    std::size_t line = block == std::string::npos ? help.size() : block + 10;
    while (line < help.size() && help.compare(line, 2, "  ") == 0) {
        const std::size_t end = help.find(' ', line + 2);
        names.push_back(help.substr(line + 2, end - line - 2));
        line = help.find('\n', line);
        line = line == std::string::npos ? help.size() : line + 1;
    }
    return names;
}

std::size_t countWord(std::string text, const std::string& lowerWord) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    std::size_t count = 0;
    for (std::size_t at = text.find(lowerWord); at != std::string::npos;
         at = text.find(lowerWord, at + 1)) {
        ++count;
    }
    return count;
}

TEST(CliBasics, EveryCommandHelpHasOneUsageHeadingAndFormsOfItsOwn) {
    const auto help = runProcess({SONDREL_CLI_PATH, "--help"});
    ASSERT_EQ(help.exitCode, 0);
    const std::vector<std::string> names = commandNames(help.out);
    ASSERT_GE(names.size(), 9U) << help.out;
    for (const std::string& name : names) {
        const auto usage = runProcess({SONDREL_CLI_PATH, name, "--help"});
        EXPECT_EQ(usage.exitCode, 0) << name;
        EXPECT_EQ(usage.out.rfind("Usage: sondrel-cli " + name + " ", 0), 0U) << usage.out;
        EXPECT_EQ(countWord(usage.out, "usage"), 1U) << usage.out;
        // Further forms stand under the first, each naming the same command.
        for (std::size_t at = usage.out.find("\n       "); at != std::string::npos;
             at = usage.out.find("\n       ", at + 1)) {
            EXPECT_EQ(usage.out.compare(at + 8, 13 + name.size(), "sondrel-cli " + name + " "), 0)
                << usage.out;
        }
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
