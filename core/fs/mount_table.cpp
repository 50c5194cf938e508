#include "core/fs/mount_table.h"

#include "core/util/path_text.h"

#include <array>
#include <charconv>
#include <fstream>
#include <sstream>
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

// Paths in mountinfo escape space, tab, newline and backslash as \ooo (octal).
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

template <class Number> bool parseNumber(std::string_view text, Number& value) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size();
}

// Fields: id parent major:minor root mountpoint options [optional...] - fstype source ...
bool parseLine(std::string_view line, MountEntry& entry) {
    const std::size_t separator = line.find(" - ");
    if (separator == std::string_view::npos) {
        return false;
    }
    std::istringstream fields{std::string(line.substr(0, separator))};
    std::string id, parent, majorMinor, root, mountPoint;
    if (!(fields >> id >> parent >> majorMinor >> root >> mountPoint)) {
        return false;
    }
    std::istringstream tail{std::string(line.substr(separator + 3))};
    std::string type;
    if (!(tail >> type)) {
        return false;
    }
    const std::size_t colon = majorMinor.find(':');
    unsigned major = 0;
    unsigned minor = 0;
    if (colon == std::string::npos || !parseNumber(id, entry.id) ||
        !parseNumber(std::string_view(majorMinor).substr(0, colon), major) ||
        !parseNumber(std::string_view(majorMinor).substr(colon + 1), minor)) {
        return false;
    }
    entry.device = static_cast<std::uint64_t>(makedev(major, minor));
    entry.root = unescapeMountPath(root);
    entry.mountPoint = unescapeMountPath(mountPoint);
    entry.type = std::move(type);
    return true;
}

} // namespace

MountTable MountTable::parse(std::string_view text) {
    MountTable table;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const std::string_view line = text.substr(0, end);
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
        MountEntry entry;
        if (parseLine(line, entry)) {
            table.m_entries.push_back(std::move(entry));
        }
    }
    return table;
}

MountTable MountTable::read() {
    std::ifstream in("/proc/self/mountinfo");
    std::stringstream text;
    text << in.rdbuf();
    return parse(text.str());
}

const MountEntry* MountTable::byId(std::uint64_t id) const {
    for (const MountEntry& entry : m_entries) {
        if (entry.id == id) {
            return &entry;
        }
    }
    return nullptr;
}

const MountEntry* MountTable::atMountPoint(std::string_view path) const {
    for (auto it = m_entries.rbegin(); it != m_entries.rend(); ++it) {
        if (it->mountPoint == path) {
            return &*it;
        }
    }
    return nullptr;
}

bool MountTable::anyBelow(std::string_view folder) const {
    std::string prefix(folder);
    if (prefix.empty() || prefix.back() != '/') {
        prefix += '/';
    }
    for (const MountEntry& entry : m_entries) {
        if (entry.mountPoint.size() > prefix.size() && startsWith(entry.mountPoint, prefix)) {
            return true;
        }
    }
    return false;
}

} // namespace sondrel
