#include "core/removal/trash.h"

#include "core/removal/path_safety.h"
#include "core/removal/trash_info.h"
#include "core/util/path_text.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace sondrel {

namespace {

// Attempts at a free name before giving up; a trash with that many clashes of one name is
// broken in some way that more attempts will not mend.
constexpr unsigned kMaxNameAttempts = 10000;

std::string errorText(const std::string& what, int error) {
    return what + ": " + std::strerror(error);
}

// Gives what this process created to the trash's user when running for another user (the
// privileged helper runs as root for the calling user).
void giveToUser(int fd, const TrashContext& context) {
    if (geteuid() != context.uid) {
        [[maybe_unused]] const int ignored = fchown(fd, context.uid, context.gid);
    }
}

// A real folder (not a link) at `path`.
bool isRealFolder(const std::string& path, struct stat* out = nullptr) {
    struct stat info {};
    if (lstat(path.c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) {
        return false;
    }
    if (out != nullptr) {
        *out = info;
    }
    return true;
}

// Makes `path` a folder with `mode` if it is missing; true when a real folder is there after.
bool ensureFolder(const std::string& path, mode_t mode, const TrashContext& context) {
    if (mkdir(path.c_str(), mode) == 0) {
        const int fd = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        if (fd >= 0) {
            giveToUser(fd, context);
            close(fd);
        }
    }
    return isRealFolder(path);
}

// Creates the folders of `path` that are missing (like mkdir -p, mode 0700).
bool ensureFolderPath(const std::string& path, const TrashContext& context) {
    for (std::size_t slash = path.find('/', 1); slash != std::string::npos;
         slash = path.find('/', slash + 1)) {
        struct stat info {};
        const std::string part = path.substr(0, slash);
        if (stat(part.c_str(), &info) != 0) {
            ensureFolder(part, 0700, context);
        }
    }
    struct stat info {};
    if (stat(path.c_str(), &info) != 0) {
        ensureFolder(path, 0700, context);
    }
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

// files/ and info/ inside `trashDir`, created when missing; both must be real folders.
bool ensureTrashSubfolders(const std::string& trashDir, const TrashContext& context) {
    return ensureFolder(trashDir + "/files", 0700, context) &&
           ensureFolder(trashDir + "/info", 0700, context);
}

// The home trash, created when missing. Empty when it cannot be used.
std::string ensureHomeTrash(const TrashContext& context) {
    const std::optional<std::string> dataHome = normalizeAbsolutePath(context.dataHome);
    if (!dataHome || !ensureFolderPath(*dataHome, context)) {
        return {};
    }
    const std::string trashDir = (*dataHome == "/" ? "" : *dataHome) + "/Trash";
    if (!ensureFolder(trashDir, 0700, context) || !ensureTrashSubfolders(trashDir, context)) {
        return {};
    }
    return trashDir;
}

// Bytes allocated below the open folder `dirFd`, walked without following links.
unsigned long long folderBytes(int dirFd, dev_t device) {
    unsigned long long total = 0;
    const int copy = dup(dirFd);
    DIR* dir = copy >= 0 ? fdopendir(copy) : nullptr;
    if (dir == nullptr) {
        if (copy >= 0) {
            close(copy);
        }
        return 0;
    }
    while (const dirent* entry = readdir(dir)) {
        const std::string_view name = entry->d_name;
        if (name == "." || name == "..") {
            continue;
        }
        struct stat info {};
        if (fstatat(dirFd, entry->d_name, &info, AT_SYMLINK_NOFOLLOW) != 0) {
            continue;
        }
        total += static_cast<unsigned long long>(info.st_blocks) * 512ULL;
        if (S_ISDIR(info.st_mode) && info.st_dev == device) {
            const int child =
                openat(dirFd, entry->d_name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
            if (child >= 0) {
                total += folderBytes(child, device);
                close(child);
            }
        }
    }
    closedir(dir);
    return total;
}

bool readWholeFile(const std::string& path, std::string& text) {
    const int fd = open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) {
        return errno == ENOENT;
    }
    char buffer[8192];
    ssize_t got = 0;
    while ((got = read(fd, buffer, sizeof buffer)) > 0) {
        text.append(buffer, static_cast<std::size_t>(got));
    }
    close(fd);
    return got == 0;
}

// Replaces `path` with `text` through a temporary file and rename, so readers never see half a
// file.
bool replaceFile(const std::string& path, const std::string& text, const TrashContext& context) {
    std::string temp = path + ".XXXXXX";
    const int fd = mkstemp(temp.data());
    if (fd < 0) {
        return false;
    }
    giveToUser(fd, context);
    bool ok = write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    ok = close(fd) == 0 && ok;
    if (!ok || rename(temp.c_str(), path.c_str()) != 0) {
        unlink(temp.c_str());
        return false;
    }
    return true;
}

void addDirectorySize(const std::string& trashDir, const std::string& name,
                      const std::string& infoPath, const TrashContext& context) {
    const std::string trashed = trashDir + "/files/" + name;
    const int fd = open(trashed.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) {
        return;
    }
    struct stat folder {};
    struct stat info {};
    unsigned long long bytes = 0;
    if (fstat(fd, &folder) == 0) {
        bytes = folderBytes(fd, folder.st_dev);
    }
    close(fd);
    if (stat(infoPath.c_str(), &info) != 0) {
        return;
    }
    const std::string sizesPath = trashDir + "/directorysizes";
    std::string text;
    if (!readWholeFile(sizesPath, text)) {
        return;
    }
    if (!text.empty() && text.back() != '\n') {
        text += '\n';
    }
    text += formatDirectorySizesLine(bytes, static_cast<long long>(info.st_mtime), name);
    replaceFile(sizesPath, text, context);
}

// Writes the .trashinfo (O_EXCL, first free name) and renames the item into files/.
TrashResult moveWithInfo(const std::string& itemPath, const std::string& trashDir,
                         const std::string& infoPathText, bool isFolder,
                         const TrashContext& context) {
    TrashResult result;
    result.trashDir = trashDir;
    const std::string leaf(lastPathComponent(itemPath));
    const std::string text = formatTrashInfo(infoPathText, formatDeletionDate(context.now()));
    for (unsigned n = 0; n < kMaxNameAttempts; ++n) {
        const std::string name = numberedName(leaf, n);
        const std::string infoPath = trashDir + "/info/" + name + ".trashinfo";
        const std::string target = trashDir + "/files/" + name;
        const int fd =
            open(infoPath.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
        if (fd < 0) {
            if (errno == EEXIST) {
                continue;
            }
            result.error = errorText("cannot write the Trash record", errno);
            return result;
        }
        giveToUser(fd, context);
        const bool written =
            write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size());
        const bool closed = close(fd) == 0;
        if (!written || !closed) {
            unlink(infoPath.c_str());
            result.error = "cannot write the Trash record";
            return result;
        }
        if (renameat2(AT_FDCWD, itemPath.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) !=
            0) {
            const int error = errno;
            unlink(infoPath.c_str());
            if (error == EEXIST || error == ENOTEMPTY) {
                continue; // a stray entry in files/ without its record: take the next name
            }
            result.error = error == EXDEV ? std::string("the Trash is on another file system")
                                          : errorText("cannot move into the Trash", error);
            return result;
        }
        if (isFolder) {
            addDirectorySize(trashDir, name, infoPath, context);
        }
        result.ok = true;
        result.trashedPath = target;
        result.infoPath = infoPath;
        return result;
    }
    result.error = "no free name in the Trash";
    return result;
}

// The top directory of the file system holding `folder` (a resolved absolute path).
std::string topDirectoryOf(const std::string& folder, dev_t device) {
    std::string top = folder;
    while (top != "/") {
        const std::size_t slash = top.rfind('/');
        const std::string up = slash == 0 ? std::string("/") : top.substr(0, slash);
        struct stat info {};
        if (stat(up.c_str(), &info) != 0 || info.st_dev != device) {
            break;
        }
        top = up;
    }
    return top;
}

// $topdir/.Trash/$uid when .Trash is a sticky real folder, else $topdir/.Trash-$uid when it is a
// real folder owned by the user (created when missing). Empty when neither can be used.
std::string topDirectoryTrash(const std::string& topDir, dev_t device, const TrashContext& context,
                              TrashLocation& location) {
    const std::string base = topDir == "/" ? "" : topDir;
    const std::string uid = std::to_string(context.uid);
    struct stat shared {};
    if (isRealFolder(base + "/.Trash", &shared) && (shared.st_mode & S_ISVTX) != 0) {
        const std::string dir = base + "/.Trash/" + uid;
        struct stat own {};
        if (ensureFolder(dir, 0700, context) && isRealFolder(dir, &own) &&
            own.st_uid == context.uid && own.st_dev == device &&
            ensureTrashSubfolders(dir, context)) {
            location = TrashLocation::topDirShared;
            return dir;
        }
    }
    const std::string dir = base + "/.Trash-" + uid;
    struct stat own {};
    if (ensureFolder(dir, 0700, context) && isRealFolder(dir, &own) && own.st_uid == context.uid &&
        own.st_dev == device && ensureTrashSubfolders(dir, context)) {
        location = TrashLocation::topDirUser;
        return dir;
    }
    return {};
}

} // namespace

std::string TrashContext::homeTrash() const {
    return dataHome + "/Trash";
}

std::time_t TrashContext::now() const {
    return clock ? clock() : std::time(nullptr);
}

std::string numberedName(const std::string& name, unsigned n) {
    if (n == 0) {
        return name;
    }
    const std::string_view extension = pathExtension(name);
    const std::string number = " (" + std::to_string(n) + ")";
    if (extension.empty()) {
        return name + number;
    }
    const std::string base = name.substr(0, name.size() - extension.size() - 1);
    return base + number + "." + std::string(extension);
}

TrashResult moveToTrash(const std::string& path, const TrashContext& context) {
    TrashResult result;
    const std::optional<std::string> normal = normalizeAbsolutePath(path);
    if (!normal || *normal == "/") {
        result.error = "not a clean absolute path";
        return result;
    }
    struct stat item {};
    if (lstat(normal->c_str(), &item) != 0) {
        result.error = errorText("cannot look at the item", errno);
        return result;
    }
    const std::size_t slash = normal->rfind('/');
    const std::string parent = slash == 0 ? std::string("/") : normal->substr(0, slash);
    char realParentBuffer[PATH_MAX];
    if (realpath(parent.c_str(), realParentBuffer) == nullptr) {
        result.error = errorText("cannot resolve the item's folder", errno);
        return result;
    }
    const std::string realParent = realParentBuffer;
    struct stat parentInfo {};
    if (stat(realParent.c_str(), &parentInfo) != 0) {
        result.error = errorText("cannot look at the item's folder", errno);
        return result;
    }
    if (S_ISDIR(item.st_mode) && item.st_dev != parentInfo.st_dev) {
        result.error = "a mount point cannot be moved to the Trash";
        return result;
    }
    const std::string realItem =
        (realParent == "/" ? "" : realParent) + "/" + std::string(lastPathComponent(*normal));
    const bool isFolder = S_ISDIR(item.st_mode);

    const std::string homeTrash = ensureHomeTrash(context);
    struct stat homeTrashInfo {};
    if (!homeTrash.empty() && stat(homeTrash.c_str(), &homeTrashInfo) == 0 &&
        homeTrashInfo.st_dev == item.st_dev) {
        char realTrash[PATH_MAX];
        if (realpath(homeTrash.c_str(), realTrash) != nullptr &&
            (isWithinFolder(realItem, realTrash) || isWithinFolder(realTrash, realItem))) {
            result.error = "the item is the Trash or lies in it already";
            return result;
        }
        result = moveWithInfo(*normal, homeTrash, *normal, isFolder, context);
        result.location = result.ok ? TrashLocation::home : TrashLocation::none;
        return result;
    }

    const std::string topDir = topDirectoryOf(realParent, item.st_dev);
    TrashLocation location = TrashLocation::none;
    const std::string trashDir = topDirectoryTrash(topDir, item.st_dev, context, location);
    if (trashDir.empty()) {
        result.error = "no usable Trash on the item's file system";
        return result;
    }
    if (isWithinFolder(realItem, trashDir) || isWithinFolder(trashDir, realItem)) {
        result.error = "the item is the Trash or lies in it already";
        return result;
    }
    const std::string relative =
        topDir == "/" ? realItem.substr(1) : realItem.substr(topDir.size() + 1);
    result = moveWithInfo(*normal, trashDir, relative, isFolder, context);
    result.location = result.ok ? location : TrashLocation::none;
    return result;
}

TrashResult moveIntoHomeTrashManually(const std::string& path, const TrashContext& context) {
    TrashResult result;
    const std::optional<std::string> normal = normalizeAbsolutePath(path);
    if (!normal || *normal == "/") {
        result.error = "not a clean absolute path";
        return result;
    }
    struct stat item {};
    if (lstat(normal->c_str(), &item) != 0) {
        result.error = errorText("cannot look at the item", errno);
        return result;
    }
    const std::string homeTrash = ensureHomeTrash(context);
    if (homeTrash.empty()) {
        result.error = "the home Trash cannot be created";
        return result;
    }
    if (isWithinFolder(*normal, homeTrash) || isWithinFolder(homeTrash, *normal)) {
        result.error = "the item is the Trash or lies in it already";
        return result;
    }
    result = moveWithInfo(*normal, homeTrash, *normal, S_ISDIR(item.st_mode), context);
    result.location = result.ok ? TrashLocation::home : TrashLocation::none;
    return result;
}

bool forgetTrashEntry(const std::string& trashDir, const std::string& name) {
    bool ok = true;
    const std::string infoPath = trashDir + "/info/" + name + ".trashinfo";
    if (unlink(infoPath.c_str()) != 0 && errno != ENOENT) {
        ok = false;
    }
    const std::string sizesPath = trashDir + "/directorysizes";
    std::string text;
    if (!readWholeFile(sizesPath, text) || text.empty()) {
        return ok;
    }
    std::string kept;
    bool changed = false;
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::size_t newline = rest.find('\n');
        const std::string_view line = rest.substr(0, newline);
        rest.remove_prefix(newline == std::string_view::npos ? rest.size() : newline + 1);
        if (directorySizesLineName(line) == name) {
            changed = true;
            continue;
        }
        kept += line;
        kept += '\n';
    }
    if (changed) {
        struct stat info {};
        TrashContext owner;
        if (stat(trashDir.c_str(), &info) == 0) {
            owner.uid = info.st_uid;
            owner.gid = info.st_gid;
        }
        ok = replaceFile(sizesPath, kept, owner) && ok;
    }
    return ok;
}

} // namespace sondrel
