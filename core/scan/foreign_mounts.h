#pragma once
// Which mounted file systems a folder scan does not enter: pseudo file systems (proc, sysfs,
// cgroup, tracefs, ...), network file systems and FUSE mounts. Their contents are not files on
// the local disk, reading them can hang (a dead network server) or never end, and they make a
// scan of "/" take minutes instead of seconds.

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace sondrel {

/// True for a file-system type name (as in /proc/self/mountinfo) that a scan does not enter.
bool isForeignFilesystemType(std::string_view type);

/// The foreign file systems mounted now: their device numbers (st_dev) and mount points.
struct ForeignMounts {
    std::unordered_set<std::uint64_t> devices;
    std::vector<std::string> mountPoints;

    /// True when a mount point lies strictly below `folder` (an absolute path without symbolic
    /// links), compared by whole path components.
    bool anyBelow(std::string_view folder) const;
};

/// Reads /proc/self/mountinfo (nothing when it cannot be read). Safe on any thread.
ForeignMounts foreignMounts();

} // namespace sondrel
