// Smart Care's texts: the condition line's thresholds, the lines that change with a zero total,
// and the Linux wording (no macOS-only word survives; the free-space reasons are Linux's own).

#include "core/care/care_texts.h"

#include <gtest/gtest.h>

namespace sondrel {
namespace {

constexpr TextPlatform kLinux = TextPlatform::gnuLinux;
constexpr TextPlatform kMac = TextPlatform::macos;

TEST(CareTexts, ConditionLineThresholds) {
    EXPECT_EQ(careConditionLine(84, 1), "System Condition: Good");
    EXPECT_EQ(careConditionLine(85, 1), "System Condition: Optimal");
    EXPECT_EQ(careConditionLine(70, 1), "System Condition: Good");
    EXPECT_EQ(careConditionLine(69, 1), "System Condition: Moderate Clutter");
    EXPECT_EQ(careConditionLine(55, 1), "System Condition: Moderate Clutter");
    EXPECT_EQ(careConditionLine(54, 1), "System Condition: Action Recommended");
    for (int score : {25, 54, 79, 84, 100}) {
        EXPECT_EQ(careConditionLine(score, 0), "System Condition: Optimal") << score;
    }
    EXPECT_FALSE(careGaugeIsGreen(79));
    EXPECT_TRUE(careGaugeIsGreen(80));
}

TEST(CareTexts, LinesForSomethingAndForNothing) {
    EXPECT_EQ(careScanCompletedStatus(0, kMac),
              "Smart Scan completed: Your Mac is running lean and optimized");
    EXPECT_EQ(careScanCompletedStatus(0, kLinux),
              "Smart Scan completed: Your system is running lean and optimized");
    EXPECT_EQ(careScanCompletedStatus(1500000, kLinux),
              "Smart Scan completed: 1.5 MB can be reclaimed");
    EXPECT_EQ(careSummarySentence(0, kLinux),
              "Your system is currently running lean and optimized.");
    EXPECT_EQ(careSummarySentence(2000, kLinux),
              "You can reclaim 2 KB of safe-to-delete caches, leftovers, and logs.");
    EXPECT_EQ(careCleanButtonText(false, 0), "Smart Clean (Zero KB)");
    EXPECT_EQ(careCleanButtonText(true, 5000), "Cleaning...");
    EXPECT_EQ(careCleanCompletedStatus(0), "Clean complete! Reclaimed Zero KB");
    EXPECT_EQ(careClutterDetail(0), "0 KB Junk (Clean)");
    EXPECT_EQ(careClutterDetail(3000), "3 KB Clutter");
    EXPECT_EQ(careCleaningStatus(kMac),
              "Safely purging selected caches and residues to macOS Trash...");
    EXPECT_EQ(careCleaningStatus(kLinux),
              "Safely purging selected caches and residues to Trash...");
    EXPECT_EQ(careScanPhaseText(false, false), "");
    EXPECT_EQ(careCleanProgressText(2, 12), "Removing 3 of 12 items...");
    EXPECT_EQ(careCleanProgressText(12, 12), "");
}

std::vector<std::string> everyLinuxText() {
    std::vector<std::string> texts = {careScanCompletedStatus(0, kLinux),
                                      careCleaningStatus(kLinux),
                                      careSummarySentence(0, kLinux),
                                      careTransparencyBadge(kLinux),
                                      careTransparencyText(kLinux),
                                      careSafetyHeading(kLinux),
                                      careSafetyText(kLinux),
                                      careFreeSpaceTitle(kLinux),
                                      careInfoCardText(kLinux).subtitle};
    for (CareCategory category : kCareCategories) {
        const CareCardText card = careCardText(category, kLinux);
        const CareRowText row = careRowText(category, kLinux);
        texts.insert(texts.end(), {card.title, card.subtitle, row.title, row.rationale});
    }
    for (const std::string& reason : careFreeSpaceReasons(kLinux)) {
        texts.push_back(reason);
    }
    return texts;
}

TEST(CareTexts, LinuxWordingNamesNoMacOnlyThing) {
    for (const std::string& text : everyLinuxText()) {
        for (const char* word : {"macOS", "Mac ", "Mac.", "Finder", "APFS", "Time Machine", "Xcode",
                                 "Apple", "Library/", "Put Back", "Purgeable", "DerivedData"}) {
            EXPECT_EQ(text.find(word), std::string::npos) << word << " in: " << text;
        }
    }
    EXPECT_EQ(careCardText(CareCategory::trash, kLinux).title, "Trash");
    EXPECT_EQ(careRowText(CareCategory::trash, kLinux).title, "Empty Trash Bin");
    EXPECT_EQ(careFreeSpaceTitle(kLinux),
              "Why might reported free space in Files differ after cleanup?");
    const std::vector<std::string> reasons = careFreeSpaceReasons(kLinux);
    ASSERT_EQ(reasons.size(), 4U);
    EXPECT_NE(reasons[0].find("Trash"), std::string::npos);
    EXPECT_NE(reasons[1].find("Btrfs"), std::string::npos);
    EXPECT_NE(reasons[2].find("reserved for root"), std::string::npos);
    EXPECT_NE(reasons[3].find("held open"), std::string::npos);
}

TEST(CareTexts, MacosKeepsTheOriginalWords) {
    EXPECT_EQ(careRowText(CareCategory::trash, kMac).title, "Empty macOS Trash Bin");
    EXPECT_EQ(careRowText(CareCategory::trash, kMac).badge, "User Review");
    EXPECT_TRUE(careRowText(CareCategory::trash, kMac).needsReview);
    EXPECT_EQ(careRowText(CareCategory::logs, kMac).badge, "Safe to Clean");
    EXPECT_EQ(careCardText(CareCategory::developerCaches, kMac).subtitle,
              "DerivedData, Simulators");
    EXPECT_EQ(careSafetyHeading(kMac), "100% Undoable macOS Trash Safety Net");
    EXPECT_EQ(careFreeSpaceReasons(kMac).size(), 3U);
    EXPECT_EQ(careTransparencyBadge(kMac), "APFS Aware");
    EXPECT_EQ(careRowText(CareCategory::appCaches, kMac).rationale,
              "Temporary web and application disk caches stored in ~/Library/Caches. Rebuilt on "
              "demand without affecting saved logins.");
}

} // namespace
} // namespace sondrel
