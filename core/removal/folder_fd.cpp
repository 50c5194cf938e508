#include "core/removal/folder_fd.h"

#include "core/fs/folder_listing.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace sondrel {

namespace {

constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

// Calls `step(parentFd, component)` for each component of `path` from "/", replacing the
// parent with what it returns; stops at the first failure.
template <typename Step> FolderFd walk(const std::string& path, Step step) {
    if (path.empty() || path.front() != '/') {
        errno = EINVAL;
        return FolderFd();
    }
    FolderFd current(open("/", kFolderFlags | O_NOFOLLOW));
    std::size_t i = 0;
    while (current.valid() && i < path.size()) {
        while (i < path.size() && path[i] == '/') {
            ++i;
        }
        const std::size_t end = std::min(path.find('/', i), path.size());
        if (end > i) {
            const std::string name = path.substr(i, end - i);
            if (name == "." || name == "..") {
                errno = EINVAL;
                return FolderFd();
            }
            current = step(current.get(), name);
        }
        i = end;
    }
    return current;
}

} // namespace

FolderFd& FolderFd::operator=(FolderFd&& other) noexcept {
    if (this != &other) {
        if (m_fd >= 0) {
            close(m_fd);
        }
        m_fd = other.release();
    }
    return *this;
}

FolderFd::~FolderFd() {
    if (m_fd >= 0) {
        close(m_fd);
    }
}

int FolderFd::release() {
    const int fd = m_fd;
    m_fd = -1;
    return fd;
}

bool listFolder(int fd, std::vector<FolderEntry>& entries) {
    // Heap memory is aligned for dirent64; one buffer per call keeps deep recursion off the stack.
    std::vector<std::byte> buffer(kListingBufferBytes);
    const ListingEnd end =
        forEachEntryAt(fd, buffer.data(), buffer.size(), [&entries](const ListedEntry& entry) {
            entries.push_back({std::string(entry.name), entry.type});
            return true;
        });
    return end == ListingEnd::complete;
}

FolderFd openFolder(const std::string& path, bool strict) {
    if (!strict) {
        return FolderFd(open(path.c_str(), kFolderFlags));
    }
    return walk(path, [](int parent, const std::string& name) {
        return FolderFd(openat(parent, name.c_str(), kFolderFlags | O_NOFOLLOW));
    });
}

FolderFd openOrMakeFolderAt(int parent, const std::string& name, mode_t mode, uid_t uid,
                            gid_t gid) {
    const bool made = mkdirat(parent, name.c_str(), mode) == 0;
    FolderFd folder(openat(parent, name.c_str(), kFolderFlags | O_NOFOLLOW));
    if (made && folder.valid() && geteuid() != uid) {
        [[maybe_unused]] const int ignored = fchown(folder.get(), uid, gid);
    }
    return folder;
}

FolderFd openOrMakeFolderPath(const std::string& path, bool strict, uid_t uid, gid_t gid) {
    if (strict) {
        return walk(path, [uid, gid](int parent, const std::string& name) {
            return openOrMakeFolderAt(parent, name, 0700, uid, gid);
        });
    }
    // Links on the way are the user's own choice here (a linked ~/.local, say): make what is
    // missing by path, then open normally.
    std::size_t slash = 0;
    while (true) {
        slash = path.find('/', slash + 1);
        const std::string part = path.substr(0, slash);
        struct stat info {};
        if (stat(part.c_str(), &info) != 0 && mkdir(part.c_str(), 0700) == 0 && geteuid() != uid) {
            [[maybe_unused]] const int ignored = lchown(part.c_str(), uid, gid);
        }
        if (slash == std::string::npos) {
            break;
        }
    }
    return openFolder(path, false);
}

} // namespace sondrel
