#pragma once
// Opening folders for the removal code. In strict mode a folder is reached component by
// component from "/" with O_NOFOLLOW, so a link anywhere on the way makes the open fail: the
// privileged helper uses it on paths it has resolved and checked, so that swapping a folder for
// a link after the check cannot redirect what it does.

#include "core/fs/folder_listing.h"

#include <string>
#include <sys/types.h>
#include <vector>

namespace sondrel {

/// Owns one file descriptor; closes it on destruction. Move-only.
class FolderFd {
public:
    FolderFd() = default;
    explicit FolderFd(int fd) : m_fd(fd) {}
    FolderFd(FolderFd&& other) noexcept : m_fd(other.release()) {}
    FolderFd& operator=(FolderFd&& other) noexcept;
    FolderFd(const FolderFd&) = delete;
    FolderFd& operator=(const FolderFd&) = delete;
    ~FolderFd();

    int get() const { return m_fd; }
    bool valid() const { return m_fd >= 0; }
    /// Gives up ownership and returns the descriptor.
    int release();

private:
    int m_fd = -1;
};

/// Appends the entries of the folder open at `fd` (without "." and "..", read from the
/// descriptor's current offset) to `entries`. Reading all names before acting on them keeps the
/// listing stable while entries are renamed or unlinked. False with errno set when the listing
/// failed part way; what was read is kept.
bool listFolder(int fd, std::vector<FolderEntry>& entries);

/// Opens the folder at absolute `path` (read-only, O_DIRECTORY, close-on-exec). Without
/// `strict` links on the way are followed like open(2) does; with `strict` every component is
/// opened with O_NOFOLLOW from "/". Invalid on failure, with errno set.
FolderFd openFolder(const std::string& path, bool strict);

/// Opens the folder `name` inside `parent` without following a link, creating it with `mode`
/// when missing; a folder this call creates is given to `uid`/`gid` when the process runs as
/// another user. Invalid on failure (a link or a file in the way counts as failure).
FolderFd openOrMakeFolderAt(int parent, const std::string& name, mode_t mode, uid_t uid, gid_t gid);

/// Opens (creating what is missing, mode 0700) the folder at absolute `path`, the way
/// openFolder does for `strict`, giving created folders to `uid`/`gid` as above.
FolderFd openOrMakeFolderPath(const std::string& path, bool strict, uid_t uid, gid_t gid);

} // namespace sondrel
