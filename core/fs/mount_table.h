#pragma once
// The mounts of this process's namespace as /proc/self/mountinfo lists them, and which of them a
// walk leaves out: pseudo file systems (proc, sysfs, cgroup, tracefs, ...), network file systems
// and FUSE mounts. Their contents are not files on the local disk, reading them can hang (a dead
// network server) or never end, and they make a walk of "/" take minutes instead of seconds.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace sondrel {

/// True for a file-system type name (as in /proc/self/mountinfo) that a walk does not enter.
bool isForeignFilesystemType(std::string_view type);

/// One line of mountinfo.
struct MountEntry {
    std::uint64_t id = 0;     ///< mount ID (statx's stx_mnt_id)
    std::uint64_t device = 0; ///< st_dev of the files on it
    std::string root;         ///< the folder of its file system mounted here ("/" for a whole one)
    std::string mountPoint;   ///< where it is mounted (unescaped bytes)
    std::string type;         ///< file-system type ("ext4", "fuse.sshfs", ...)
};

/// A snapshot of the mount table. Plain value; any thread.
class MountTable {
public:
    /// Reads /proc/self/mountinfo; an empty table when it cannot be read.
    static MountTable read();
    /// Parses mountinfo text (malformed lines are skipped).
    static MountTable parse(std::string_view text);

    /// Every mount, in mountinfo order.
    const std::vector<MountEntry>& entries() const { return m_entries; }
    /// The mount with this ID, or null.
    const MountEntry* byId(std::uint64_t id) const;
    /// The last mount at exactly this absolute path (the one visible there), or null.
    const MountEntry* atMountPoint(std::string_view path) const;
    /// True when a mount point lies strictly below `folder` (an absolute path without symbolic
    /// links), compared by whole path components.
    bool anyBelow(std::string_view folder) const;

private:
    std::vector<MountEntry> m_entries;
};

} // namespace sondrel
