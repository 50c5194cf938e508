#pragma once
// The one rule book for what may be removed. Every removal chain and the privileged helper ask
// checkRemovablePath before touching anything; paths are compared by components, never by
// string prefix, so "/home/al" is not inside "/home/alice".

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sondrel {

/// Why a path may or may not be removed. `allowed` is the only verdict that permits removal.
enum class PathVerdict : unsigned char {
    allowed,
    empty,            ///< no path at all
    notAbsolute,      ///< does not start with '/'
    dotComponent,     ///< has a "." or ".." component ("/./", "/etc/..", "~/..")
    isFilesystemRoot, ///< "/", "//" and the like
    isHome,           ///< the home folder itself or one of its ancestors
    isAllowedRoot,    ///< one of the allowed roots itself (only what is inside a root goes)
    isProtected,      ///< ~/.ssh, ~/.gnupg, keyrings, or ~/.config, ~/.local/share as wholes
    outsideRoots,     ///< not inside any allowed root (also after resolving links)
    linkToProtected,  ///< a symbolic link whose target is "/", the home, a root or protected
};

/// A short English sentence for a verdict ("inside no folder this feature may clean").
std::string_view describe(PathVerdict verdict);

/// Lexical form of an absolute path: repeated '/' collapsed, trailing '/' dropped ("/" stays
/// "/"). Gives nothing for an empty or relative path or one with a "." or ".." component.
/// Never touches the disk.
std::optional<std::string> normalizeAbsolutePath(std::string_view path);

/// True when `path` equals `folder` or lies below it, comparing whole components of two
/// normalised paths ("/home/al" is not within "/home/alice", "/a" is within "/").
bool isWithinFolder(std::string_view path, std::string_view folder);

/// Decides whether `path` may be removed (or moved to a Trash) for a user whose home is `home`,
/// by a feature that owns `allowedRoots`. Refuses: empty or relative paths, "." and ".."
/// components, "/", the home and its ancestors, each root itself, protected paths (everything
/// under ~/.ssh, ~/.gnupg, ~/.pki, ~/.local/share/keyrings; ~/.config, ~/.local, ~/.local/share
/// and ~/.cache as wholes) and anything outside every root. The disk is consulted too: the
/// parent folder is resolved through links (realpath) and must still lie inside a root (after
/// resolving the roots the same way), and a path that is itself a symbolic link is refused when
/// its target resolves to "/", the home, a root or a protected path. A home that is not a clean
/// absolute path, or is "/", makes every path refused (isHome). A path that does not
/// exist is judged lexically (and its parent, when that exists). Pure function of its inputs
/// and the file system; safe on any thread.
PathVerdict checkRemovablePath(const std::string& path, const std::string& home,
                               const std::vector<std::string>& allowedRoots);

} // namespace sondrel
