#pragma once
// The removal chains the features use. Each tries its steps in order and stops at the first
// after which nothing exists at the path; nothing at the path counts as success. Every chain
// first asks checkRemovablePath and refuses a path the rules do not allow.
//   junk chain      deleteItemSafely: Trash -> permanent removal -> administrator removal
//                   (a Trash-group item: permanent removal -> administrator removal)
//   app chain       safeMoveToTrash: clear immutable flags -> Trash -> manual move into the home
//                   trash -> administrator move into the user's Trash
//   duplicate chain moveDuplicateToTrash: the app chain without the administrator step

#include "core/removal/path_safety.h"
#include "core/removal/privileged_helper_client.h"
#include "core/removal/trash.h"

#include <functional>
#include <string>
#include <vector>

namespace sondrel {

/// What a chain needs: the user's trash, the roots the calling feature owns and, optionally, the
/// privileged helper. The helper client is not owned and must outlive the calls; null means
/// there is no administrator step.
struct RemovalContext {
    TrashContext trash;
    std::vector<std::string> allowedRoots;
    const PrivilegedHelperClient* administrator = nullptr;

    /// The context for the running user (getuid/getgid) with the home `home` and the data
    /// folder `dataHome` (the home trash is dataHome + "/Trash"), allowing `allowedRoots`, or
    /// the home alone when none are given. No administrator step; the clock is the system's.
    static RemovalContext forUser(const std::string& home, const std::string& dataHome,
                                  std::vector<std::string> allowedRoots = {});
    /// The same for the user `uid`/`gid` (the privileged helper acting for its caller).
    static RemovalContext forUser(const std::string& home, const std::string& dataHome,
                                  std::vector<std::string> allowedRoots, uid_t uid, gid_t gid);
    /// The same from anything that names `home` and `dataHome` (the platform's Locations).
    template <class Folders>
    static RemovalContext forUser(const Folders& locations,
                                  std::vector<std::string> allowedRoots = {}) {
        return forUser(locations.home, locations.dataHome, std::move(allowedRoots));
    }
};

/// The step of a chain that removed the item (or that the chain stopped at).
enum class RemovalStep : unsigned char {
    refused,       ///< the safety rules refused the path; nothing was tried
    alreadyGone,   ///< nothing existed at the path
    trash,         ///< moved to a Trash
    manualMove,    ///< renamed into the home trash's files/
    permanent,     ///< removed permanently
    administrator, ///< removed or moved by the privileged helper
    failed,        ///< every step failed; something remains at the path
};

/// The result of one chain. `removed` is what the features count.
struct RemovalOutcome {
    bool removed = false;
    RemovalStep step = RemovalStep::failed;
    std::string message; ///< for a failure or refusal: why, in one line (no path in it)
    explicit operator bool() const { return removed; }
};

/// Junk chain for one path. With `isTrashGroup` (the item lies in the Trash already) the item
/// is removed permanently, never trashed again, together with its .trashinfo. Blocking.
RemovalOutcome deleteItemSafely(const std::string& path, bool isTrashGroup,
                                const RemovalContext& context);

/// Administrator removal of one path through the helper; true when nothing remains at the path
/// afterwards (a cancelled password dialog gives false). Blocking.
RemovalOutcome deleteWithAdminPrivileges(const std::string& path, const RemovalContext& context);

/// App chain for one path (applications, their leftovers, orphans). Blocking; keeps no state.
RemovalOutcome safeMoveToTrash(const std::string& path, const RemovalContext& context);

/// Duplicate chain for one path: like safeMoveToTrash without the administrator step, so it
/// never asks for a password. Blocking; keeps no state.
RemovalOutcome moveDuplicateToTrash(const std::string& path, const RemovalContext& context);

/// Test seam: `hook` is called by every chain with the item's path after the path passed the
/// safety rules and before the first step acts on it, so a test can swap a folder on the way for
/// a link at exactly that moment. Empty by default; set it only while no chain runs.
void setRemovalChainHookForTesting(std::function<void(const std::string& path)> hook);

/// A one-line English description of a step ("moved to the Trash").
std::string_view describe(RemovalStep step);

} // namespace sondrel
