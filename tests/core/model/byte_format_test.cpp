#include "core/model/byte_format.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace sondrel {
namespace {

struct ByteCase {
    std::int64_t bytes;
    const char* text;
};

TEST(FormatBytes, MatchesTheFileStyleAroundEveryUnitBoundary) {
    const ByteCase cases[] = {
        {0, "Zero KB"},
        {1, "1 byte"},
        {2, "2 bytes"},
        {999, "999 bytes"},
        {1000, "1 KB"},
        {1499, "1 KB"},
        {1500, "2 KB"},
        {999'499, "999 KB"},
        {999'500, "1 MB"},
        {999'999, "1 MB"},
        {1'000'000, "1 MB"},
        {1'040'000, "1 MB"},
        {1'050'000, "1.1 MB"},
        {1'500'000, "1.5 MB"},
        {10'485'760, "10.5 MB"},
        {999'949'999, "999.9 MB"},
        {999'950'000, "1 GB"},
        {999'999'999, "1 GB"},
        {1'000'000'000, "1 GB"},
        {1'230'000'000, "1.23 GB"},
        {1'234'567'890, "1.23 GB"},
        {1'205'000'000, "1.21 GB"},
        {1'200'000'000, "1.2 GB"},
        {999'995'000'000, "1 TB"},
        {2'000'000'000'000, "2 TB"},
        {1'500'000'000'000'000, "1.5 PB"},
        {std::numeric_limits<std::int64_t>::max(), "9.22 EB"},
    };
    for (const ByteCase& c : cases) {
        EXPECT_EQ(formatBytes(c.bytes), c.text) << c.bytes;
    }
}

TEST(FormatBytes, NegativeCountsKeepTheirSign) {
    EXPECT_EQ(formatBytes(-1), "-1 byte");
    EXPECT_EQ(formatBytes(-500), "-500 bytes");
    EXPECT_EQ(formatBytes(-1'500'000), "-1.5 MB");
    EXPECT_EQ(formatBytes(std::numeric_limits<std::int64_t>::min()), "-9.22 EB");
}

TEST(FormatPercent, OneDecimalOfTheFraction) {
    EXPECT_EQ(formatPercent(0.0), "0.0%");
    EXPECT_EQ(formatPercent(0.1234), "12.3%");
    EXPECT_EQ(formatPercent(1.0), "100.0%");
    EXPECT_EQ(formatPercent(0.0005), "0.1%");
}

} // namespace
} // namespace sondrel
