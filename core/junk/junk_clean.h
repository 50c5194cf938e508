#pragma once
// Cleaning junk: removes chosen items of a junk scan through the junk removal chain (Trash,
// then permanent removal, then the administrator step), after checking each item again, since
// the disk may have changed since the scan. Items of the Trash group are removed permanently
// with their .trashinfo and directorysizes line, never trashed again. Everything that needs
// administrator rights in one clean goes to the privileged helper in a single call, so the user
// is asked for the password once.

#include "core/junk/junk_group.h"
#include "core/removal/removal_chains.h"
#include "core/util/cancel_token.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace sondrel {

/// An item that stayed, and why.
struct JunkCleanFailure {
    std::string title;
    std::string path;   ///< bytes
    std::string reason; ///< one line, no path in it
};

/// What a clean did.
struct JunkCleanReport {
    std::size_t removed = 0; ///< items gone afterwards (an item already gone counts)
    std::int64_t freed = 0;  ///< sum of the removed items' scanned sizes
    std::vector<std::string> removedPaths;
    std::vector<JunkCleanFailure> failures;
    /// The administrator step was needed and the user dismissed the password dialog: none of
    /// the items handed to it were removed.
    bool administratorCancelled = false;
    bool cancelled = false; ///< stopped early; items not reached stay as they were
};

/// Called after each item with the number of items done, the total and the item's title.
/// Runs on the cleaning thread; must be thread-safe and quick.
using JunkCleanProgress =
    std::function<void(std::size_t done, std::size_t total, const std::string& title)>;

/// Removes each of `items` (values from scanJunk; their `isSelected` is not consulted) in
/// order. Each item is refused when its path no longer lies inside its scanned root, or is now
/// a symbolic link although it was none when scanned; otherwise it goes through the junk chain
/// with its own root as the only allowed root (plus the rules of `context`). Items whose chain
/// fails are collected and, when `context.administrator` is set, handed to the helper together
/// in one call. Blocks; safe on any thread (no shared state).
JunkCleanReport cleanJunkItems(const std::vector<JunkItem>& items, const RemovalContext& context,
                               const CancelToken& cancel, const JunkCleanProgress& onProgress = {});

/// "Cleaning 3 of 12 ..." (the progress line while a clean runs).
std::string junkCleaningText(std::size_t current, std::size_t total);

/// The result of a clean: "Freed 1.2 GB." or, with failures, "Freed 1.2 GB. 2 items could not
/// be removed." (adds "Administrator authorization was cancelled." when it was).
std::string junkCleanResultText(const JunkCleanReport& report);

} // namespace sondrel
