// Parsers of recorded /proc/stat, /proc/meminfo and os-release texts.

#include "core/monitor/meminfo.h"
#include "core/monitor/os_release.h"
#include "core/monitor/processor_ticks.h"
#include "tests/core/monitor/fixture_text.h"

#include <gtest/gtest.h>

namespace sondrel {
namespace {

using test::procFixture;

TEST(ParseProcStatTest, RecordedTextGivesOneRecordPerProcessor) {
    const std::string text = procFixture("debian12-a/stat");
    ASSERT_FALSE(text.empty());
    const std::vector<ProcessorTicks> ticks = parseProcStat(text);
    ASSERT_EQ(ticks.size(), 2u);
    // cpu0 6380 0 1661 181720 65 0 22 7 0 0: system takes irq + softirq, idle takes iowait.
    EXPECT_EQ(ticks[0], (ProcessorTicks{6380, 1661 + 0 + 22, 181720 + 65, 0}));
    EXPECT_EQ(ticks[1], (ProcessorTicks{7813, 2546 + 0 + 67, 178839 + 621, 0}));
}

TEST(ParseProcStatTest, OddTexts) {
    struct Case {
        const char* name;
        const char* text;
        std::vector<ProcessorTicks> expected;
    };
    const Case cases[] = {
        {"empty", "", {}},
        {"aggregate line only", "cpu  1 2 3 4 5 6 7\n", {}},
        {"old kernel with four counters", "cpu0 10 1 5 100\n", {{10, 5, 100, 1}}},
        {"too few counters", "cpu0 10 1 5\n", {}},
        {"not a number", "cpu0 10 x 5 100 0 0 0\ncpu1 1 0 1 1 0 0 0\n", {{1, 1, 1, 0}}},
        {"negative counter", "cpu0 -10 0 5 100\n", {}},
        {"no final newline", "cpu0 1 2 3 4 5 6 7", {{1, 3 + 6 + 7, 4 + 5, 2}}},
        {"label lookalikes", "cpux 1 2 3 4\ncpu 1 2 3 4\nintr 1 2 3 4\n", {}},
        {"tabs and CRLF", "cpu3\t1\t0\t2\t3\r\n", {{1, 2, 3, 0}}},
        {"huge counters",
         "cpu0 18446744073709551615 0 0 0\n",
         {{18446744073709551615ull, 0, 0, 0}}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(parseProcStat(c.text), c.expected) << c.name;
    }
}

TEST(ParseMeminfoTest, RecordedTextUsedIsTotalMinusAvailable) {
    const std::string text = procFixture("debian12-a/meminfo");
    ASSERT_FALSE(text.empty());
    const MemoryStats stats = parseMeminfo(text);
    constexpr std::uint64_t KiB = 1024;
    EXPECT_EQ(stats.totalBytes, 24684084 * KiB);
    EXPECT_EQ(stats.freeBytes, 23980456 * KiB);
    EXPECT_EQ(stats.usedBytes(), (24684084 - 24161256) * KiB);
    EXPECT_EQ(stats.wiredBytes, (23852 + 1644 + 2480) * KiB);
    EXPECT_EQ(stats.compressedBytes, 0u);
    EXPECT_EQ(stats.activeBytes, stats.usedBytes() - stats.wiredBytes);
}

TEST(ParseMeminfoTest, BreakdownAlwaysAddsUpToUsed) {
    struct Case {
        const char* name;
        const char* text;
        std::uint64_t used;
        std::uint64_t active;
        std::uint64_t wired;
        std::uint64_t compressed;
    };
    const Case cases[] = {
        {"zswap pool",
         "MemTotal: 1000 kB\nMemFree: 100 kB\nMemAvailable: 400 kB\nZswap: 50 kB\n"
         "SUnreclaim: 30 kB\nKernelStack: 10 kB\nPageTables: 20 kB\n",
         600, 490, 60, 50},
        {"kernel larger than used",
         "MemTotal: 1000 kB\nMemAvailable: 950 kB\nSUnreclaim: 80 kB\nZswap: 20 kB\n", 50, 0, 30,
         20},
        {"available above total", "MemTotal: 1000 kB\nMemAvailable: 1200 kB\n", 0, 0, 0, 0},
        {"kernel without MemAvailable",
         "MemTotal: 1000 kB\nMemFree: 300 kB\nBuffers: 100 kB\nCached: 200 kB\n", 400, 400, 0, 0},
        {"no MemTotal", "MemFree: 300 kB\nMemAvailable: 10 kB\n", 0, 0, 0, 0},
        {"garbage lines ignored",
         "junk\n: 5 kB\nMemTotal: 1000 kB\nMemAvailable: x kB\nMemAvailable: 500 kB\n"
         "HugePages_Total: 7\nSUnreclaim: 10 MB\n",
         500, 500, 0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const MemoryStats stats = parseMeminfo(c.text);
        EXPECT_EQ(stats.usedBytes(), c.used * 1024);
        EXPECT_EQ(stats.activeBytes, c.active * 1024);
        EXPECT_EQ(stats.wiredBytes, c.wired * 1024);
        EXPECT_EQ(stats.compressedBytes, c.compressed * 1024);
    }
}

TEST(OsReleaseTest, PrettyNameAndVersionText) {
    EXPECT_EQ(prettyNameFromOsRelease("NAME=\"Debian\"\nPRETTY_NAME=\"Debian GNU/Linux 12 "
                                      "(bookworm)\"\nID=debian\n"),
              "Debian GNU/Linux 12 (bookworm)");
    EXPECT_EQ(prettyNameFromOsRelease("PRETTY_NAME='Arch Linux'"), "Arch Linux");
    EXPECT_EQ(prettyNameFromOsRelease("PRETTY_NAME=Plain\r\n"), "Plain");
    EXPECT_EQ(prettyNameFromOsRelease("PRETTY_NAME=\"Say \\\"hi\\\" \\$(x)\""), "Say \"hi\" $(x)");
    EXPECT_EQ(prettyNameFromOsRelease("NAME=Debian\n# PRETTY_NAME=x\n"), "");
    EXPECT_EQ(prettyNameFromOsRelease(""), "");

    EXPECT_EQ(osVersionText("Debian GNU/Linux 12 (bookworm)", "6.1.0-18-amd64"),
              "Debian GNU/Linux 12 (bookworm), kernel 6.1.0-18-amd64");
    EXPECT_EQ(osVersionText("", "6.1.0"), "kernel 6.1.0");
    EXPECT_EQ(osVersionText("Debian", ""), "Debian");
    EXPECT_EQ(osVersionText("", ""), "");
}

} // namespace
} // namespace sondrel
