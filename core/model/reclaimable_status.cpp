#include "core/model/reclaimable_status.h"

#include "core/util/path_text.h"

#include <initializer_list>
#include <string>

namespace sondrel {

namespace {

bool startsWithAny(std::string_view p, std::initializer_list<std::string_view> prefixes) {
    for (std::string_view prefix : prefixes) {
        if (startsWith(p, prefix)) {
            return true;
        }
    }
    return false;
}

bool containsAny(std::string_view p, std::initializer_list<std::string_view> parts) {
    for (std::string_view part : parts) {
        if (contains(p, part)) {
            return true;
        }
    }
    return false;
}

bool isInstallerExtension(std::string_view extension) {
    return extension == "dmg" || extension == "pkg" || extension == "iso";
}

} // namespace

std::string_view displayName(ReclaimableStatus status) {
    switch (status) {
    case ReclaimableStatus::safeToClean:
        return "Safe to Clean";
    case ReclaimableStatus::cautionUserData:
        return "User Data (Caution)";
    case ReclaimableStatus::systemProtected:
        return "System Managed";
    }
    return {};
}

std::string_view iconName(ReclaimableStatus status) {
    switch (status) {
    case ReclaimableStatus::safeToClean:
        return "checkmark.shield.fill";
    case ReclaimableStatus::cautionUserData:
        return "exclamationmark.triangle.fill";
    case ReclaimableStatus::systemProtected:
        return "lock.shield.fill";
    }
    return {};
}

Rgb badgeColor(ReclaimableStatus status) {
    switch (status) {
    case ReclaimableStatus::safeToClean:
        return {0.2, 0.8, 0.4};
    case ReclaimableStatus::cautionUserData:
        return {0.98, 0.65, 0.15};
    case ReclaimableStatus::systemProtected:
        return {0.55, 0.6, 0.7};
    }
    return {};
}

ReclaimableStatus reclaimableStatusFor(std::string_view path) {
    const std::string p = asciiLower(path);
    const std::string e = asciiLower(pathExtension(path));
    if (startsWithAny(p, {"/system", "/usr", "/bin", "/sbin", "/private/var/db"})) {
        return ReclaimableStatus::systemProtected;
    }
    if (startsWith(p, "/applications") && !contains(p, "cache")) {
        return ReclaimableStatus::systemProtected;
    }
    if (containsAny(p, {"/library/caches", "/deriveddata", "/library/logs", "/.cache", "/tmp",
                        "/private/var/tmp", "/node_modules", "/.trash", "cocoapods/cache",
                        ".gradle/caches", ".cargo/registry"})) {
        return ReclaimableStatus::safeToClean;
    }
    if (contains(p, "/downloads/")) {
        return isInstallerExtension(e) ? ReclaimableStatus::safeToClean
                                       : ReclaimableStatus::cautionUserData;
    }
    return ReclaimableStatus::cautionUserData;
}

std::string_view removalRationaleFor(std::string_view path, FileCategory category) {
    const std::string p = asciiLower(path);
    const std::string e = asciiLower(pathExtension(path));
    if (contains(p, "/deriveddata")) {
        return "Xcode build cache and indexed symbols. Xcode will automatically rebuild this "
               "cleanly when needed.";
    }
    if (containsAny(p, {"/library/caches", "/.cache"})) {
        return "Application disk cache. Safe to purge; the respective app will recreate fresh "
               "cache files as needed.";
    }
    if (contains(p, "/library/logs")) {
        return "Historical diagnostic logs and crash reports. Safe to remove to reclaim storage.";
    }
    if (contains(p, "/node_modules")) {
        return "Local JavaScript package dependencies. Can be restored anytime with 'npm install' "
               "or 'yarn'.";
    }
    if (contains(p, "/.trash")) {
        return "Items already placed into the Trash. These files are waiting to be permanently "
               "emptied.";
    }
    if (containsAny(p, {".gradle/caches", ".cargo/registry"})) {
        return "Build tool package cache. Safe to clear; tools re-download dependencies when "
               "required.";
    }
    if (contains(p, "/downloads/") && isInstallerExtension(e)) {
        return "Downloaded software installer. Once installed, disk images are usually no longer "
               "needed.";
    }
    if (startsWithAny(p, {"/system", "/usr", "/bin"})) {
        return "Core macOS operating system component. Protected and managed by Apple System "
               "Integrity Protection.";
    }
    if (startsWith(p, "/applications")) {
        return "Installed application bundle. Use Sondrel App Uninstaller to remove cleanly with "
               "leftover eradication.";
    }
    switch (category) {
    case FileCategory::document:
    case FileCategory::image:
    case FileCategory::video:
    case FileCategory::audio:
        return "Personal user file. Review before deleting to ensure you no longer need this "
               "content.";
    default:
        return "User storage item. Review path and ensure you have backups before moving to "
               "Trash.";
    }
}

} // namespace sondrel
