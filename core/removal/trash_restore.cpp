#include "core/removal/trash_restore.h"

#include "core/removal/path_safety.h"
#include "core/removal/trash.h"
#include "core/removal/trash_info.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace sondrel {

namespace {

constexpr std::string_view kInfoSuffix = ".trashinfo";
constexpr std::size_t kMaxInfoBytes = 64 * 1024;

std::string parentOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) {
        return {};
    }
    return slash == 0 ? std::string("/") : path.substr(0, slash);
}

std::string leafOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

// A small regular file's bytes, read without following a link; nothing when it cannot be read.
std::optional<std::string> readRecord(const std::string& path) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) {
        return std::nullopt;
    }
    std::optional<std::string> text;
    struct stat info {};
    if (::fstat(fd, &info) == 0 && S_ISREG(info.st_mode) &&
        static_cast<std::size_t>(info.st_size) <= kMaxInfoBytes) {
        std::string bytes(kMaxInfoBytes, '\0');
        const ssize_t got = ::read(fd, bytes.data(), bytes.size());
        if (got >= 0) {
            bytes.resize(static_cast<std::size_t>(got));
            text = std::move(bytes);
        }
    }
    ::close(fd);
    return text;
}

// The top directory a trash folder belongs to: $topdir/.Trash-$uid -> $topdir,
// $topdir/.Trash/$uid -> $topdir; the home trash's Path= values are absolute and need none.
std::string topDirectoryOfTrash(const std::string& trashDir) {
    const std::string parent = parentOf(trashDir);
    if (leafOf(trashDir).rfind(".Trash-", 0) == 0) {
        return parent;
    }
    if (leafOf(parent) == ".Trash") {
        return parentOf(parent);
    }
    return {};
}

RestoreResult refused(std::string error, std::string restoredPath = {}) {
    RestoreResult result;
    result.error = std::move(error);
    result.restoredPath = std::move(restoredPath);
    return result;
}

} // namespace

RestoreResult restoreFromTrash(const std::string& trashedPath, const std::string& infoPath) {
    // TRASH/info/NAME.trashinfo and TRASH/files/NAME, with the same TRASH and NAME.
    const std::string infoLeaf = leafOf(infoPath);
    const std::string infoFolder = parentOf(infoPath);
    if (infoLeaf.size() <= kInfoSuffix.size() ||
        std::string_view(infoLeaf).substr(infoLeaf.size() - kInfoSuffix.size()) != kInfoSuffix ||
        leafOf(infoFolder) != "info") {
        return refused("the Trash record is not a .trashinfo file");
    }
    const std::string name = infoLeaf.substr(0, infoLeaf.size() - kInfoSuffix.size());
    const std::string trashDir = parentOf(infoFolder);
    if (trashedPath != trashDir + "/files/" + name) {
        return refused("the item and its Trash record do not belong together");
    }
    const std::optional<std::string> text = readRecord(infoPath);
    if (!text) {
        return refused("its Trash record could not be read");
    }
    const std::optional<TrashInfo> record = parseTrashInfo(*text);
    if (!record) {
        return refused("its Trash record is damaged");
    }
    std::string original = record->path;
    if (original.front() != '/') {
        const std::string top = topDirectoryOfTrash(trashDir);
        if (top.empty()) {
            return refused("its Trash record names no absolute place");
        }
        original = (top == "/" ? std::string() : top) + "/" + original;
    }
    const std::optional<std::string> target = normalizeAbsolutePath(original);
    if (!target || *target == "/") {
        return refused("its Trash record names an unusable place", original);
    }

    struct stat info {};
    if (::lstat(trashedPath.c_str(), &info) != 0) {
        return refused("it is no longer in the Trash", *target);
    }
    const std::string folder = parentOf(*target);
    const int folderFd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folderFd < 0) {
        return refused("the folder it came from no longer exists", *target);
    }
    const std::string leaf = leafOf(*target);
    const int moved =
        ::renameat2(AT_FDCWD, trashedPath.c_str(), folderFd, leaf.c_str(), RENAME_NOREPLACE);
    const int error = errno;
    ::close(folderFd);
    if (moved != 0) {
        switch (error) {
        case EEXIST:
            return refused("something else now exists at its original place", *target);
        case EXDEV:
            return refused("its original place is on another file system", *target);
        case EACCES:
        case EPERM:
            return refused("permission was denied", *target);
        default:
            return refused(std::string("it could not be moved back: ") + std::strerror(error),
                           *target);
        }
    }
    forgetTrashEntry(trashDir, name);
    RestoreResult result;
    result.ok = true;
    result.restoredPath = *target;
    return result;
}

} // namespace sondrel
