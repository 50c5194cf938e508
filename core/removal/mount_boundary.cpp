#include "core/removal/mount_boundary.h"

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <unistd.h>

namespace sondrel {

namespace {

std::atomic<MountProbe> g_probe{MountProbe::automatic};

constexpr unsigned kStatxWanted = STATX_BASIC_STATS | STATX_MNT_ID;

bool allows(MountProbe probe) {
    const MountProbe chosen = g_probe.load(std::memory_order_relaxed);
    return chosen == MountProbe::automatic || chosen == probe;
}

bool statxOf(int fd, struct statx& out) {
    return statx(fd, "", AT_EMPTY_PATH | AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, kStatxWanted,
                 &out) == 0;
}

// The kernel's mount-root attribute, when it reports one.
std::optional<bool> mountRootAttribute(const struct statx& info) {
    if (!allows(MountProbe::statxAttribute) ||
        (info.stx_attributes_mask & STATX_ATTR_MOUNT_ROOT) == 0) {
        return std::nullopt;
    }
    return (info.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
}

// mnt_id from /proc/self/fdinfo/<fd>.
std::optional<unsigned long long> fdInfoMountId(int fd) {
    std::ifstream in("/proc/self/fdinfo/" + std::to_string(fd));
    std::string line;
    while (std::getline(in, line)) {
        if (line.rfind("mnt_id:", 0) == 0) {
            return std::strtoull(line.c_str() + 7, nullptr, 10);
        }
    }
    return std::nullopt;
}

// A mount point field of /proc/self/mountinfo with its octal escapes ("\040") undone.
std::string unescapeMountField(const std::string& field) {
    std::string out;
    for (std::size_t i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && i + 3 < field.size()) {
            const std::string digits = field.substr(i + 1, 3);
            if (digits.size() == 3 && digits.find_first_not_of("01234567") == std::string::npos) {
                out += static_cast<char>(std::strtol(digits.c_str(), nullptr, 8));
                i += 3;
                continue;
            }
        }
        out += field[i];
    }
    return out;
}

// Whether the object open at `fd` is listed as a mount point in /proc/self/mountinfo; nothing
// when /proc cannot tell.
std::optional<bool> listedAsMountPoint(int fd) {
    char target[PATH_MAX];
    const ssize_t length =
        readlink(("/proc/self/fd/" + std::to_string(fd)).c_str(), target, sizeof target - 1);
    std::ifstream in("/proc/self/mountinfo");
    if (length <= 0 || target[0] != '/' || !in) {
        return std::nullopt;
    }
    const std::string path(target, static_cast<std::size_t>(length));
    std::string line;
    while (std::getline(in, line)) {
        std::istringstream fields(line);
        std::string id;
        std::string parent;
        std::string device;
        std::string root;
        std::string mountPoint;
        if (fields >> id >> parent >> device >> root >> mountPoint &&
            unescapeMountField(mountPoint) == path) {
            return true;
        }
    }
    return false;
}

} // namespace

bool isMountBoundary(int parentFd, int fd) {
    struct statx parent {};
    struct statx child {};
    if (!statxOf(parentFd, parent) || !statxOf(fd, child)) {
        return true; // what cannot be looked at is not entered
    }
    if (parent.stx_dev_major != child.stx_dev_major ||
        parent.stx_dev_minor != child.stx_dev_minor) {
        return true;
    }
    if (const std::optional<bool> root = mountRootAttribute(child)) {
        return *root;
    }
    if (allows(MountProbe::mountId) && (parent.stx_mask & child.stx_mask & STATX_MNT_ID) != 0) {
        return parent.stx_mnt_id != child.stx_mnt_id;
    }
    if (allows(MountProbe::fdInfo)) {
        const std::optional<unsigned long long> parentId = fdInfoMountId(parentFd);
        const std::optional<unsigned long long> childId = fdInfoMountId(fd);
        if (parentId && childId) {
            return *parentId != *childId;
        }
    }
    if (allows(MountProbe::mountInfo)) {
        if (const std::optional<bool> listed = listedAsMountPoint(fd)) {
            return *listed;
        }
    }
    return false;
}

bool statEntryAt(int dirFd, const char* name, EntryStatus& status) {
    if (statx(dirFd, name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, kStatxWanted, &status.stat) !=
        0) {
        return false;
    }
    if (const std::optional<bool> root = mountRootAttribute(status.stat)) {
        status.mountPoint = *root;
        return true;
    }
    const int fd = openat(dirFd, name, O_PATH | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    status.mountPoint = isMountBoundary(dirFd, fd);
    close(fd);
    return true;
}

void setMountProbeForTesting(MountProbe probe) {
    g_probe.store(probe, std::memory_order_relaxed);
}

} // namespace sondrel
