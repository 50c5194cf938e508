#pragma once
// Putting an item moved to a Trash back where it came from, as the file manager's "Restore"
// does: the .trashinfo names the original place, the item is renamed back (never copied, never
// over anything that now exists there), and its .trashinfo and directorysizes line go.

#include <string>

namespace sondrel {

/// The outcome of one restore.
struct RestoreResult {
    bool ok = false;          ///< the item is back at `restoredPath`
    std::string restoredPath; ///< the original place read from the .trashinfo (when it was read)
    std::string error; ///< why nothing was restored (empty when ok): a short lower-case phrase
};

/// Restores the item at `trashedPath` (TRASH/files/NAME) whose record is `infoPath`
/// (TRASH/info/NAME.trashinfo), as moveToTrash reported them. The original path is the
/// record's `Path=`, taken relative to the trash's top directory when it is relative
/// ($topdir/.Trash-$uid, $topdir/.Trash/$uid). Refuses, changing nothing, when the two paths do
/// not belong together, the record is unreadable or malformed, the original path has "." or
/// ".." components, its folder no longer exists, or something exists at the original path
/// (the rename never replaces). Only a rename within one file system is done. On success the
/// .trashinfo and the directorysizes line are removed; failing to remove them does not undo the
/// restore. Blocking I/O on the caller's thread; safe on any thread.
RestoreResult restoreFromTrash(const std::string& trashedPath, const std::string& infoPath);

} // namespace sondrel
