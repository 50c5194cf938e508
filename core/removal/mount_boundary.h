#pragma once
// Telling mount points apart by mount identity. A bind mount of a folder of the same file system
// has the same device number as its surroundings, so comparing st_dev misses it; the kernel's
// own answer (statx's mount-root attribute or mount id, /proc/self/fdinfo's mnt_id, or the list
// in /proc/self/mountinfo on old kernels) does not. Removal never enters, removes inside or
// chowns across what these functions call a mount point.

#include <sys/stat.h>

namespace sondrel {

/// The ways of telling a mount point, tried in this order by `automatic`. The others force one
/// (tests), falling back to comparing device numbers when it is not available.
enum class MountProbe : unsigned char {
    automatic,      ///< the first the kernel supports
    statxAttribute, ///< statx's STATX_ATTR_MOUNT_ROOT (Linux 5.8)
    mountId,        ///< statx's stx_mnt_id compared with the folder's (Linux 5.8)
    fdInfo,         ///< mnt_id of /proc/self/fdinfo compared with the folder's (Linux 3.15)
    mountInfo,      ///< the object's path looked up among /proc/self/mountinfo's mount points
};

/// One entry of a folder as statx sees it without following a final link.
struct EntryStatus {
    struct statx stat {};
    bool mountPoint = false; ///< the entry is the root of a mount (a folder or a bound file)
};

/// statx of `name` in the open folder `dirFd` (AT_SYMLINK_NOFOLLOW, no automount) together with
/// whether it is a mount point. False with errno set when the entry cannot be looked at.
/// Any thread.
bool statEntryAt(int dirFd, const char* name, EntryStatus& status);

/// True when the object open at `fd` (a folder, or an O_PATH descriptor of any entry) is a
/// mount point seen from the folder open at `parentFd`: the root of a mount, on another mount
/// or on another device. Checks the descriptors themselves, so what it says holds for what was
/// opened whatever happens to the names afterwards. When nothing can be learnt (no statx mount
/// data, no /proc) only the device numbers are compared. Any thread.
bool isMountBoundary(int parentFd, int fd);

/// Test seam: forces one way of telling (automatic by default). Set it only while no removal
/// runs.
void setMountProbeForTesting(MountProbe probe);

} // namespace sondrel
