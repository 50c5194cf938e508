#pragma once
// A fake home for the junk tests, in either layout, with helpers that make files of exact
// lengths (sparse, so a 12 MiB cache costs no disk) and folders of real allocated bytes.

#include "core/junk/junk_folders.h"
#include "core/junk/junk_group.h"
#include "core/junk/junk_scan.h"
#include "tests/support/temp_dir.h"

#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace sondrel::test {

inline constexpr std::int64_t kMiB = 1024 * 1024;

struct JunkHome {
    explicit JunkHome(bool macos = false) : home(dir.makeDir("home")) {
        folders.macosLayout = macos;
        folders.home = home;
        if (macos) {
            folders.cacheHome = home + "/Library/Caches";
            folders.dataHome = home + "/Library/Application Support";
            folders.stateHome = home + "/Library/Saved Application State";
            folders.logsHome = home + "/Library/Logs";
            folders.trashFiles = home + "/.Trash";
        } else {
            folders.cacheHome = home + "/.cache";
            folders.dataHome = home + "/.local/share";
            folders.stateHome = home + "/.local/state";
            folders.logsHome = home + "/.local/state";
            folders.trashFiles = home + "/.local/share/Trash/files";
        }
        folders.desktop = home + "/Desktop";
        folders.documents = home + "/Documents";
    }

    /// A file of exactly `length` bytes of content and (almost) no blocks, at home/relative.
    std::string sparse(const std::string& relative, std::int64_t length) const {
        const std::string path = dir.makeFile("home/" + relative, 0);
        if (truncate(path.c_str(), length) != 0) {
            return {};
        }
        return path;
    }

    /// A real file of `length` bytes at home/relative.
    std::string file(const std::string& relative, std::int64_t length) const {
        return dir.makeFile("home/" + relative, length);
    }

    std::string folder(const std::string& relative) const {
        return dir.makeDir("home/" + relative);
    }

    std::vector<JunkGroup> scan(JunkScanOptions options = {}) const {
        CancelToken cancel;
        return scanJunk(folders, options, cancel);
    }

    TempDir dir;
    std::string home;
    JunkFolders folders;
};

/// The group of `type` in `groups`, or null.
inline const JunkGroup* groupOf(const std::vector<JunkGroup>& groups, JunkType type) {
    for (const JunkGroup& group : groups) {
        if (group.type == type) {
            return &group;
        }
    }
    return nullptr;
}

/// The titles of a group's items in order (empty for a missing group).
inline std::vector<std::string> titlesOf(const std::vector<JunkGroup>& groups, JunkType type) {
    std::vector<std::string> titles;
    if (const JunkGroup* group = groupOf(groups, type)) {
        for (const JunkItem& item : group->items) {
            titles.push_back(item.title);
        }
    }
    return titles;
}

inline bool exists(const std::string& path) {
    struct stat info {};
    return lstat(path.c_str(), &info) == 0;
}

} // namespace sondrel::test
