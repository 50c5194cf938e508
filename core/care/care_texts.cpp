#include "core/care/care_texts.h"

#include "core/model/byte_format.h"

namespace sondrel {

namespace {

std::string term(std::string_view text, TextPlatform platform) {
    return withPlatformTerms(text, platform);
}

} // namespace

std::string careReadyStatus() {
    return "Ready for Smart Scan";
}

std::string careScanningStatus() {
    return "Analyzing system health, developer caches, and orphaned residues...";
}

std::string careScanCompletedStatus(std::int64_t totalBytes, TextPlatform platform) {
    if (totalBytes > 0) {
        return "Smart Scan completed: " + formatBytes(totalBytes) + " can be reclaimed";
    }
    return term("Smart Scan completed: Your Mac is running lean and optimized", platform);
}

std::string careCleaningStatus(TextPlatform platform) {
    return term("Safely purging selected caches and residues to macOS Trash...", platform);
}

std::string careCleanCompletedStatus(std::int64_t cleanedBytes) {
    return "Clean complete! Reclaimed " + formatBytes(cleanedBytes);
}

std::string careScanPhaseText(bool junkRunning, bool appsRunning) {
    if (junkRunning && appsRunning) {
        return "Scanning junk and developer caches, looking for leftovers of removed apps...";
    }
    if (junkRunning) {
        return "Scanning junk and developer caches...";
    }
    if (appsRunning) {
        return "Looking for leftovers of removed apps...";
    }
    return {};
}

std::string careCleanProgressText(std::size_t done, std::size_t total) {
    if (total == 0 || done >= total) {
        return {};
    }
    return "Removing " + std::to_string(done + 1) + " of " + std::to_string(total) + " items...";
}

std::string careConditionLine(int healthScore, std::int64_t totalBytes) {
    if (healthScore >= 85 || totalBytes <= 0) {
        return "System Condition: Optimal";
    }
    if (healthScore >= 70) {
        return "System Condition: Good";
    }
    if (healthScore >= 55) {
        return "System Condition: Moderate Clutter";
    }
    return "System Condition: Action Recommended";
}

bool careGaugeIsGreen(int healthScore) {
    return healthScore >= 80;
}

std::string careSummarySentence(std::int64_t totalBytes, TextPlatform platform) {
    if (totalBytes > 0) {
        return "You can reclaim " + formatBytes(totalBytes) +
               " of safe-to-delete caches, leftovers, and logs.";
    }
    return term("Your Mac is currently running lean and optimized.", platform);
}

std::string careCleanButtonText(bool isCleaning, std::int64_t totalBytes) {
    if (isCleaning) {
        return "Cleaning...";
    }
    return "Smart Clean (" + formatBytes(totalBytes) + ")";
}

std::string careSavedText(std::int64_t cleanedBytes) {
    return "Saved " + formatBytes(cleanedBytes);
}

std::string careClutterDetail(std::int64_t totalBytes) {
    if (totalBytes > 0) {
        return formatBytes(totalBytes) + " Clutter";
    }
    return "0 KB Junk (Clean)";
}

std::string careExecuteButtonText(std::int64_t selectedBytes) {
    if (selectedBytes > 0) {
        return "Execute Cleanup (" + formatBytes(selectedBytes) + ")";
    }
    return "No Items Selected";
}

CareCardText careCardText(CareCategory category, TextPlatform platform) {
    switch (category) {
    case CareCategory::developerCaches:
        return {"Developer Bloat", term("DerivedData, Simulators", platform), "hammer.fill"};
    case CareCategory::orphanedLeftovers:
        return {"Orphaned Residue", "Deleted app remnants", "puzzlepiece.extension.fill"};
    case CareCategory::appCaches:
        return {"System & App Caches", "Temporary app caches", "sparkles"};
    case CareCategory::logs:
        return {"Diagnostic Logs", "Crash logs & traces", "doc.plaintext.fill"};
    case CareCategory::trash:
        return {term("macOS Trash", platform), "Items waiting in Trash", "trash.fill"};
    }
    return {};
}

CareCardText careInfoCardText(TextPlatform /*platform*/) {
    return {"100% Local & Safe", "Moves to Trash, never wiped", "shield.checkerboard"};
}

CareRowText careRowText(CareCategory category, TextPlatform platform) {
    switch (category) {
    case CareCategory::developerCaches:
        return {"Developer & Build Caches",
                term("Xcode DerivedData, build indexes, and transient compilation caches. Safe to "
                     "purge; rebuilt automatically on your next build.",
                     platform),
                "hammer.fill", "Safe to Clean", false};
    case CareCategory::orphanedLeftovers:
        return {"Orphaned App Leftovers",
                term("Abandoned preferences and Application Support files belonging to apps that "
                     "have already been deleted from your Mac.",
                     platform),
                "trash.circle.fill", "Safe to Clean", false};
    case CareCategory::appCaches:
        return {"User Application Caches",
                term("Temporary web and application disk caches stored in ~/Library/Caches. "
                     "Rebuilt on demand without affecting saved logins.",
                     platform),
                "internaldrive.fill", "Safe to Clean", false};
    case CareCategory::logs:
        return {"Diagnostic & Crash Logs",
                "Historical system crash logs, diagnostic dumps, and diagnostic trace reports "
                "older than 7 days.",
                "doc.plaintext.fill", "Safe to Clean", false};
    case CareCategory::trash:
        return {term("Empty macOS Trash Bin", platform),
                term("Files you previously dragged to the macOS Trash. Emptying permanently "
                     "reclaims disk blocks for these staged files.",
                     platform),
                "trash.fill", "User Review", true};
    }
    return {};
}

std::string careTransparencyBadge(TextPlatform platform) {
    return platform == TextPlatform::macos ? "APFS Aware" : "Snapshot Aware";
}

std::string careTransparencyText(TextPlatform platform) {
    if (platform == TextPlatform::macos) {
        return "• **APFS Local Snapshots**: If Finder free space differs after cleanup, Time "
               "Machine local snapshots may retain freed blocks until macOS automatically prunes "
               "them.\n• **Safety First**: Smart Clean moves files to macOS Trash via Apple's "
               "`trashItem` API, preserving the Put Back undo mechanism.";
    }
    return "• **Snapshots and reserved blocks**: If free space in Files differs after cleanup, "
           "Btrfs or ZFS snapshots may still hold the freed blocks, and the blocks a file system "
           "keeps for root never count as free.\n• **Safety First**: Smart Clean moves files to "
           "the Trash as the freedesktop.org Trash specification describes, so Files can restore "
           "them; only emptying the Trash removes files for good.";
}

std::string careSafetyHeading(TextPlatform platform) {
    return term("100% Undoable macOS Trash Safety Net", platform);
}

std::string careSafetyText(TextPlatform platform) {
    if (platform == TextPlatform::macos) {
        return "All selected caches and leftovers are moved into the native macOS Trash using "
               "Apple APIs. You can restore any item using macOS 'Put Back' at any time.";
    }
    return "All selected caches and leftovers are moved into your Trash. You can restore any "
           "item with 'Restore' in the Trash of Files until the Trash is emptied; emptying the "
           "Trash is the one step that cannot be undone.";
}

std::string careFreeSpaceTitle(TextPlatform platform) {
    return term("Why might reported free space in Finder differ after cleanup?", platform);
}

std::vector<std::string> careFreeSpaceReasons(TextPlatform platform) {
    if (platform == TextPlatform::macos) {
        return {
            "1. **APFS Local Snapshots (Time Machine)**: macOS uses Apple File System (APFS) "
            "snapshots. When you delete files, the physical disk blocks may remain allocated "
            "within local snapshots until macOS thins them or Time Machine finishes a backup.",
            "2. **Purgeable Space**: macOS marks some freed files as 'Purgeable' before zeroing "
            "blocks. Finder combines Purgeable and Free space into 'Available Space'.",
            "3. **Scan Scope & Permissions**: Standard sandboxed applications cannot access "
            "protected folders (Mail, Messages, CloudKit) without Full Disk Access granted in "
            "macOS System Settings > Privacy & Security.",
        };
    }
    return {
        "1. **Files still in the Trash**: caches and leftovers moved to the Trash keep their "
        "disk blocks until the Trash is emptied. Only the emptied Trash frees space at once.",
        "2. **Btrfs and ZFS snapshots**: a snapshot taken before the cleanup (by Snapper, "
        "Timeshift or zfs-auto-snapshot) keeps the removed files' blocks allocated until that "
        "snapshot is deleted.",
        "3. **Blocks reserved for root**: ext4 keeps a share of the disk (5% by default) for the "
        "administrator. It is neither used nor free for you, so Files and `df` show less free "
        "space than the total minus the used space.",
        "4. **Files still held open**: a deleted file that a running program still has open keeps "
        "its space until the program closes it or quits (`lsof +L1` lists such files).",
    };
}

} // namespace sondrel
