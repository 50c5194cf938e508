#pragma once
// Permanent removal that cannot be tricked by symbolic links: folders are walked with
// openat(O_NOFOLLOW | O_DIRECTORY) and entries removed with unlinkat relative to the open folder,
// so swapping a folder for a link while the walk runs never leads outside the item.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace sondrel {

/// One thing that could not be removed.
struct RemovalFailure {
    std::string path;   ///< the entry's path as walked (bytes)
    std::string reason; ///< strerror text or a short explanation
};

/// What permanent removal did.
struct RemovalReport {
    bool removed = false;                 ///< nothing exists at the path afterwards
    std::uint64_t removedEntries = 0;     ///< files, links and folders unlinked
    std::vector<RemovalFailure> failures; ///< what stayed, with the reason
};

/// Removes `path` (absolute) and, for a folder, everything below it. A link at any level is
/// removed itself, never followed; mount points (told by mount identity, so bind mounts of the
/// same file system too; see mount_boundary.h) are neither entered nor removed and are
/// reported, the item itself included; entries that cannot be removed (immutable, permission) are
/// reported and the rest go on. When `path` is an entry of a trash's files/ folder (the home trash
/// under `homeTrash`, or a $topdir/.Trash-$uid / .Trash/$uid), its .trashinfo and directorysizes
/// line go too. Does not check the path against the safety rules: callers do (checkRemovablePath).
/// Blocking; safe on any thread. Any depth: one folder descriptor is held at a time
/// (folder_descent.h), so a tree deeper than the open-file limit goes too. The item's folder is
/// always reached from "/" without following any link: with `strict` (the removal chains and the
/// privileged helper, on a path they resolved and checked) `path` must be fully resolved, and
/// a folder swapped for a link after the check makes the removal fail; without it the item's
/// folder is resolved here first.
RemovalReport removePermanently(const std::string& path, const std::string& homeTrash = {},
                                bool strict = false);

/// Test seam: `hook` is called with a folder's path after the walk looked at it and before it
/// opens it, so a test can swap the folder for a link at exactly that moment. Empty by default;
/// set it only while no removal runs.
void setRemovalRaceHookForTesting(std::function<void(const std::string& path)> hook);

/// Clears the immutable and append-only attributes of `path` itself (FS_IOC_SETFLAGS) where the
/// caller may; links and special files are left alone. Returns whether the flags are now clear
/// (false also when the file system has no such flags). Never follows a final link.
bool clearImmutableFlags(const std::string& path);

/// True when something (of any kind, a dangling link too) exists at `path` (lstat).
bool pathExists(const std::string& path);

} // namespace sondrel
