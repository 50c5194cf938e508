// The scanner's status texts.

#include "core/scan/scan_texts.h"

#include <gtest/gtest.h>

namespace sondrel {
namespace {

TEST(ScanTexts, StatusLines) {
    EXPECT_EQ(scanStartText("home"), "Fast scanning home...");
    EXPECT_EQ(scanProgressText(12, 1500000), "Scanning: 12 items (1.5 MB)");
    EXPECT_EQ(scanSummaryText(1000, 2000000, 0.5),
              "Scanned 1000 items (2 MB) in 0.50s (2000 items/s)");
    EXPECT_EQ(scanSummaryText(3, 0, 0), "Scanned 3 items (Zero KB) in 0.00s (0 items/s)");
    EXPECT_EQ(accessDeniedText("root"), "Access not allowed for 'root'. Permission was denied.");
    EXPECT_EQ(scanTargetName("/home/a/"), "a");
    EXPECT_EQ(scanTargetName("/"), "/");
    EXPECT_EQ(scanTargetName("/x/bad\xff"), "bad\xEF\xBF\xBD");
}

} // namespace
} // namespace sondrel
