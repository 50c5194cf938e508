#pragma once
// Moving items to a Trash as the freedesktop.org Trash specification 1.0 describes: the home
// trash ($XDG_DATA_HOME/Trash) for items on the home trash's filesystem, $topdir/.Trash/$uid or
// $topdir/.Trash-$uid for items on other filesystems. Items are only ever renamed, never copied:
// when no trash on the item's filesystem can be used the result says so and the caller decides.

#include <ctime>
#include <functional>
#include <string>
#include <sys/types.h>

namespace sondrel {

/// Who is trashing and into which home trash. Plain values; cheap to copy.
struct TrashContext {
    std::string home;     ///< the user's home folder (absolute)
    std::string dataHome; ///< $XDG_DATA_HOME (absolute); the home trash is dataHome + "/Trash"
    uid_t uid = 0;        ///< the user whose trash is used (names .Trash-$uid and .Trash/$uid)
    gid_t gid = 0;        ///< group given to what is created when running for another user
    /// Strict mode for the privileged helper: `path`, `dataHome` and the top directories must be
    /// fully resolved (no links), and every folder is reached without following any link, so a
    /// folder swapped for a link after the paths were checked makes the move fail instead of
    /// acting elsewhere. Moved items are also given to `uid`/`gid` when running as another user.
    bool strictPaths = false;
    /// The clock for DeletionDate; empty means std::time(nullptr).
    std::function<std::time_t()> clock;

    /// dataHome + "/Trash".
    std::string homeTrash() const;
    /// The current time from `clock`, or std::time(nullptr).
    std::time_t now() const;
};

/// Which trash an item went to.
enum class TrashLocation : unsigned char {
    none,         ///< nowhere: the move did not happen
    home,         ///< the home trash
    topDirShared, ///< $topdir/.Trash/$uid
    topDirUser,   ///< $topdir/.Trash-$uid
};

/// The outcome of one move to a Trash.
struct TrashResult {
    bool ok = false; ///< the item was renamed into a trash's files/
    TrashLocation location = TrashLocation::none;
    std::string trashDir;    ///< the trash folder used (holds files/, info/)
    std::string trashedPath; ///< where the item now is (files/<name>)
    std::string infoPath;    ///< its .trashinfo
    std::string error;       ///< why it failed (empty when ok)
    /// Moved for another user (the privileged helper), but something in it could not be given
    /// back to them (path and reason of the first); empty otherwise. The move itself stands.
    std::string handBackProblem;
};

/// Moves `path` (absolute; the item itself, never a link's target) to the Trash of its
/// filesystem. The .trashinfo is created first with O_EXCL (a clash takes the next name,
/// "name (1).ext", "name (2).ext", ...), the item is renamed into files/, and the .trashinfo is
/// removed again if the rename fails. A trashed folder gets a directorysizes line with the size
/// `du -B1` gives for it (its own blocks included, hard links once; measured with the shared
/// walk, so at any depth); a directorysizes that is not the user's own single-link file is
/// replaced, never read. A mount point, and a folder holding one anywhere below it (a folder or
/// a bind-mounted file, found by the walk or listed below it in the mount table), is refused
/// (moving it would move the mount along). When the walk cannot read the whole folder (an
/// unreadable subfolder, no descriptor left), the mount table alone decides: the folder is
/// moved when the table lists no mount point below it, but gets no directorysizes line (a
/// partial size would be wrong; readers then measure it themselves), and it is refused when the
/// table cannot be read either. The item's
/// folder is resolved (unless `strictPaths`) and then reached from "/" without following links. A
/// top-directory trash is used only when .Trash is a real folder with the sticky bit (then
/// .Trash/$uid, created 0700) or .Trash-$uid is (or can be created as) a 0700 folder owned by
/// `context.uid` that is not a link. When the process runs as another user than `context.uid`
/// (the privileged helper), what it creates is given to `context.uid`/`context.gid`, and so is
/// the moved item: each entry checked on its own descriptor, only folders, inodes with a single
/// link and what the user owns already, never across a mount point, at any depth; what could
/// not be handed back is named in `handBackProblem`. Blocking
/// I/O on the caller's thread; safe on any thread.
TrashResult moveToTrash(const std::string& path, const TrashContext& context);

/// The fallback move into the home trash's files/ under the first free "name (n).ext", with its
/// .trashinfo written first (O_EXCL) and removed again when the rename fails. Works only within
/// one filesystem (rename); never copies. Creates the home trash folders when missing.
TrashResult moveIntoHomeTrashManually(const std::string& path, const TrashContext& context);

/// The candidate name number `n` for `name`: n == 0 gives `name`; otherwise base + " (" + n +
/// ")" + "." + extension, or base + " (" + n + ")" when the name has no extension
/// ("report.pdf", 2 -> "report (2).pdf"; ".bashrc", 1 -> ".bashrc (1)").
std::string numberedName(const std::string& name, unsigned n);

/// Removes the .trashinfo and the directorysizes line that belong to `name` in `trashDir`
/// (after files/<name> was removed). Missing pieces are not an error. Returns false only when
/// something present could not be removed. With `strict` the trash folder is opened without
/// following any link (see TrashContext::strictPaths).
bool forgetTrashEntry(const std::string& trashDir, const std::string& name, bool strict = false);

} // namespace sondrel
