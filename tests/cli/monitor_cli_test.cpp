// sondrel-cli monitor: sample count, JSON fields and argument checks.

#include "tests/support/run_process.h"

#include <gtest/gtest.h>

namespace sondrel {
namespace {

using test::runProcess;

std::size_t occurrences(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

TEST(CliMonitor, TextSamples) {
    const auto result =
        runProcess({SONDREL_CLI_PATH, "monitor", "--samples", "2", "--interval", "0.05"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(occurrences(result.out, "Processor Load:"), 2u);
    EXPECT_NE(result.out.find("Sample 2 of 2"), std::string::npos);
    EXPECT_NE(result.out.find("System Uptime: "), std::string::npos);
    EXPECT_NE(result.out.find("User: "), std::string::npos);
}

TEST(CliMonitor, JsonSamples) {
    const auto result =
        runProcess({SONDREL_CLI_PATH, "--json", "monitor", "--samples", "3", "--interval", "0.05"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.out.front(), '[');
    EXPECT_EQ(occurrences(result.out, "\"totalUsagePercent\""), 3u);
    EXPECT_EQ(occurrences(result.out, "\"effectiveAvailableBytes\""), 3u);
    EXPECT_EQ(occurrences(result.out, "\"hostName\""), 3u);
}

TEST(CliMonitor, BadArguments) {
    for (const std::vector<std::string>& args :
         {std::vector<std::string>{SONDREL_CLI_PATH, "monitor", "--samples", "0"},
          {SONDREL_CLI_PATH, "monitor", "--samples", "x"},
          {SONDREL_CLI_PATH, "monitor", "--interval", "0"},
          {SONDREL_CLI_PATH, "monitor", "--interval", "nan"},
          {SONDREL_CLI_PATH, "monitor", "--interval", "99999"},
          {SONDREL_CLI_PATH, "monitor", "extra"}}) {
        const auto result = runProcess(args);
        EXPECT_EQ(result.exitCode, 2) << args[2];
        EXPECT_FALSE(result.err.empty());
    }
    for (const std::string interval : {"-1", "0", "-0.5"}) {
        const auto result = runProcess({SONDREL_CLI_PATH, "monitor", "--interval", interval});
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_EQ(result.err,
                  "sondrel-cli: --interval must be positive: a number of seconds above 0\n");
    }
}

} // namespace
} // namespace sondrel
