#pragma once
// What the junk scan looks for, as tables: one per category and layout, each row a place
// relative to one of the home's folders. Reviewing what the cleaner may offer for removal means
// reading these tables.

#include "core/junk/junk_folders.h"

#include <string>
#include <string_view>
#include <vector>

namespace sondrel {

/// The folder a table row is relative to.
enum class JunkBase : unsigned char { home, cacheHome, dataHome, stateHome, logsHome };

/// One developer cache: a folder its tool rebuilds on demand.
struct JunkCacheRow {
    std::string_view title;
    JunkBase base;
    std::string_view relative; ///< path below the base
    std::string_view detail;
};

/// Where user logs are: the entries of one folder whose names match a pattern.
struct JunkLogSource {
    JunkBase base;
    std::string_view relative; ///< folder below the base ("" for the base itself)
    std::string_view pattern;  ///< fnmatch pattern over entry names ("*" for every entry)
};

/// Linux developer caches (package managers, compilers, IDEs). Never configuration, credentials,
/// toolchains or bin/ folders.
const std::vector<JunkCacheRow>& linuxDeveloperCaches();
/// The macOS developer caches (Xcode, simulators, CocoaPods, Gradle), in the screen's order.
const std::vector<JunkCacheRow>& macosDeveloperCaches();

/// Folders below the home searched for node_modules on Linux, besides the Desktop and
/// Documents folders of the user-dirs file.
const std::vector<std::string_view>& linuxDependencyRoots();
/// The macOS search roots below the home, in order.
const std::vector<std::string_view>& macosDependencyRoots();

/// Entry names of the Linux cache folder never offered: removing them breaks a running desktop
/// (fnmatch patterns).
const std::vector<std::string_view>& userCacheKeepList();
/// True when `name` matches an entry of userCacheKeepList().
bool isKeptUserCache(std::string_view name);

/// Where Linux user logs are.
const std::vector<JunkLogSource>& linuxLogSources();
/// Where macOS user logs are.
const std::vector<JunkLogSource>& macosLogSources();

/// The absolute folder of `base` in `folders`.
const std::string& junkBaseFolder(const JunkFolders& folders, JunkBase base);
/// `relative` below `base` in `folders` ("" gives the base itself).
std::string junkPath(const JunkFolders& folders, JunkBase base, std::string_view relative);

} // namespace sondrel
