#include "core/scan/foreign_mounts.h"

#include "core/util/path_text.h"

#include <array>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/sysmacros.h>

namespace sondrel {

bool isForeignFilesystemType(std::string_view type) {
    static constexpr std::array<std::string_view, 36> kTypes = {
        "proc",       "sysfs",     "devtmpfs",   "devpts", "cgroup",      "cgroup2",
        "tracefs",    "debugfs",   "securityfs", "pstore", "bpf",         "configfs",
        "fusectl",    "mqueue",    "hugetlbfs",  "autofs", "binfmt_misc", "efivarfs",
        "rpc_pipefs", "nfsd",      "selinuxfs",  "nsfs",   "ramfs",       "nfs",
        "nfs4",       "cifs",      "smb3",       "smbfs",  "ncpfs",       "afs",
        "ceph",       "glusterfs", "davfs",      "9p",     "coda",        "lustre",
    };
    if (startsWith(type, "fuse")) { // fuse, fuseblk, fuse.sshfs, fuse.gvfsd-fuse, ...
        return true;
    }
    for (std::string_view known : kTypes) {
        if (type == known) {
            return true;
        }
    }
    return false;
}

namespace {

// Mount points in mountinfo escape space, tab, newline and backslash as \ooo (octal).
std::string unescapeMountPath(std::string_view text) {
    const auto isOctal = [](char c) { return c >= '0' && c <= '7'; };
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 3 < text.size() && isOctal(text[i + 1]) &&
            isOctal(text[i + 2]) && isOctal(text[i + 3])) {
            out += static_cast<char>(((text[i + 1] - '0') << 6) | ((text[i + 2] - '0') << 3) |
                                     (text[i + 3] - '0'));
            i += 3;
            continue;
        }
        out += text[i];
    }
    return out;
}

} // namespace

bool ForeignMounts::anyBelow(std::string_view folder) const {
    std::string prefix(folder);
    if (prefix.empty() || prefix.back() != '/') {
        prefix += '/';
    }
    for (const std::string& point : mountPoints) {
        if (point.size() > prefix.size() && startsWith(point, prefix)) {
            return true;
        }
    }
    return false;
}

ForeignMounts foreignMounts() {
    ForeignMounts mounts;
    std::ifstream in("/proc/self/mountinfo");
    std::string line;
    // Fields: id parent major:minor root mountpoint options [optional...] - fstype source ...
    while (std::getline(in, line)) {
        std::istringstream fields(line);
        std::string id, parent, majorMinor, root, mountPoint;
        fields >> id >> parent >> majorMinor >> root >> mountPoint;
        const std::size_t separator = line.find(" - ");
        if (separator == std::string::npos) {
            continue;
        }
        std::istringstream tail(line.substr(separator + 3));
        std::string type;
        tail >> type;
        const std::size_t colon = majorMinor.find(':');
        if (colon == std::string::npos || !isForeignFilesystemType(type)) {
            continue;
        }
        try {
            const auto major = static_cast<unsigned>(std::stoul(majorMinor.substr(0, colon)));
            const auto minor = static_cast<unsigned>(std::stoul(majorMinor.substr(colon + 1)));
            mounts.devices.insert(static_cast<std::uint64_t>(makedev(major, minor)));
            mounts.mountPoints.push_back(unescapeMountPath(mountPoint));
        } catch (const std::exception&) {
            continue; // a malformed line names no device
        }
    }
    return mounts;
}

} // namespace sondrel
