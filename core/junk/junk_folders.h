#pragma once
// The folders of one home that the junk scan reads, in either layout. Built from the platform's
// Locations (any type with its fields), so the core scan runs on a fake home in tests and on
// another machine's home from the command line exactly as on the user's own.

#include <string>

namespace sondrel {

/// Where the junk of one home lives. Plain values; absolute paths without a trailing slash.
struct JunkFolders {
    bool macosLayout = false; ///< the home follows the macOS layout (~/Library/...)
    std::string home;
    std::string cacheHome;  ///< ~/.cache or ~/Library/Caches
    std::string dataHome;   ///< ~/.local/share or ~/Library/Application Support
    std::string stateHome;  ///< ~/.local/state
    std::string logsHome;   ///< ~/Library/Logs (macOS); ~/.local/state on Linux
    std::string trashFiles; ///< the home trash's files/ (or ~/.Trash)
    std::string desktop;    ///< the user's Desktop folder
    std::string documents;  ///< the user's Documents folder

    /// The folders of `locations` (platform/locations.h, or anything with the same members:
    /// `layout` with a `macos` enumerator, home, cacheHome, dataHome, stateHome, logsHome,
    /// trashFiles and userDir(kind)).
    template <class Locations> static JunkFolders from(const Locations& locations) {
        JunkFolders folders;
        folders.macosLayout = locations.layout == decltype(locations.layout)::macos;
        folders.home = locations.home;
        folders.cacheHome = locations.cacheHome;
        folders.dataHome = locations.dataHome;
        folders.stateHome = locations.stateHome;
        folders.logsHome = locations.logsHome;
        folders.trashFiles = locations.trashFiles;
        folders.desktop = locations.userDir("Desktop");
        folders.documents = locations.userDir("Documents");
        return folders;
    }
};

} // namespace sondrel
