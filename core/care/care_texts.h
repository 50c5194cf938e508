#pragma once
// Every text Smart Care shows: the engine's status messages, the dashboard's lines and labels,
// the category cards, the manifest's rows, its safety note and the explanation of why free space
// can differ after a clean. Texts that name macOS-only things go through the platform-terms
// table; the explanations that only hold on one platform have a text per platform. Pure
// functions; any thread.

#include "core/care/smart_clean_summary.h"
#include "core/model/platform_terms.h"

#include <cstdint>
#include <string>
#include <vector>

namespace sondrel {

/// "Ready for Smart Scan": the status before the first scan.
std::string careReadyStatus();
/// The status while a scan runs.
std::string careScanningStatus();
/// The status after a scan: "Smart Scan completed: X can be reclaimed", or the "running lean"
/// sentence when the total is 0 or less.
std::string careScanCompletedStatus(std::int64_t totalBytes,
                                    TextPlatform platform = currentTextPlatform());
/// The status while a clean runs.
std::string careCleaningStatus(TextPlatform platform = currentTextPlatform());
/// "Clean complete! Reclaimed X" (X may be "Zero KB").
std::string careCleanCompletedStatus(std::int64_t cleanedBytes);

/// What a running scan is waiting for: "Scanning junk and developer caches..." and/or
/// "Looking for leftovers of removed apps...", joined; "" when neither runs.
std::string careScanPhaseText(bool junkRunning, bool appsRunning);
/// "Removing 3 of 12 items..." while a clean runs (done < total), else "".
std::string careCleanProgressText(std::size_t done, std::size_t total);

/// "System Condition: Optimal" (score >= 85 or nothing reclaimable), "... Good" (>= 70),
/// "... Moderate Clutter" (>= 55), otherwise "... Action Recommended".
std::string careConditionLine(int healthScore, std::int64_t totalBytes);
/// True when the gauge starts green: a health score of 80 or more.
bool careGaugeIsGreen(int healthScore);
/// "You can reclaim X of safe-to-delete caches, leftovers, and logs." or the lean sentence.
std::string careSummarySentence(std::int64_t totalBytes,
                                TextPlatform platform = currentTextPlatform());
/// "Cleaning..." while cleaning, else "Smart Clean (X)" ("Smart Clean (Zero KB)" for nothing).
std::string careCleanButtonText(bool isCleaning, std::int64_t totalBytes);
/// "Saved X" for the badge after a clean.
std::string careSavedText(std::int64_t cleanedBytes);
/// The "Disk Hygiene" card's detail: "X Clutter", or "0 KB Junk (Clean)" for nothing.
std::string careClutterDetail(std::int64_t totalBytes);
/// "Execute Cleanup (X)" when something is selected, else "No Items Selected".
std::string careExecuteButtonText(std::int64_t selectedBytes);

/// One category tile of "Optimization Breakdown".
struct CareCardText {
    std::string title;
    std::string subtitle;
    std::string icon; ///< symbol name
};
/// The tile of `category`.
CareCardText careCardText(CareCategory category, TextPlatform platform = currentTextPlatform());
/// The sixth, information-only tile ("100% Local & Safe").
CareCardText careInfoCardText(TextPlatform platform = currentTextPlatform());

/// One row of the manifest.
struct CareRowText {
    std::string title;
    std::string rationale;
    std::string icon;         ///< symbol name
    std::string badge;        ///< "Safe to Clean" or "User Review"
    bool needsReview = false; ///< the badge asks for the user's review (drawn in a warning colour)
};
/// The manifest row of `category`.
CareRowText careRowText(CareCategory category, TextPlatform platform = currentTextPlatform());

/// The dashboard's transparency section: its badge and its Markdown text.
std::string careTransparencyBadge(TextPlatform platform = currentTextPlatform());
std::string careTransparencyText(TextPlatform platform = currentTextPlatform());
/// The manifest's safety note: heading and text.
std::string careSafetyHeading(TextPlatform platform = currentTextPlatform());
std::string careSafetyText(TextPlatform platform = currentTextPlatform());
/// The title of the free-space explanation and its paragraphs (Markdown), in order.
std::string careFreeSpaceTitle(TextPlatform platform = currentTextPlatform());
std::vector<std::string> careFreeSpaceReasons(TextPlatform platform = currentTextPlatform());

} // namespace sondrel
