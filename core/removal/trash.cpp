#include "core/removal/trash.h"

#include "core/removal/folder_fd.h"
#include "core/removal/path_safety.h"
#include "core/removal/trash_info.h"
#include "core/util/path_text.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

namespace sondrel {

namespace {

// Attempts at a free name before giving up; a trash with that many clashes of one name is
// broken in some way that more attempts will not mend.
constexpr unsigned kMaxNameAttempts = 10000;

constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

std::string errorText(const std::string& what, int error) {
    return what + ": " + std::strerror(error);
}

bool runningForAnotherUser(const TrashContext& context) {
    return geteuid() != context.uid;
}

// Gives what this process created to the trash's user when running for another user (the
// privileged helper runs as root for the calling user).
void giveToUser(int fd, const TrashContext& context) {
    if (runningForAnotherUser(context)) {
        [[maybe_unused]] const int ignored = fchown(fd, context.uid, context.gid);
    }
}

// Gives the whole moved item back to the user, without following links or leaving its file
// system: after an administrator move the user must be able to empty the Trash.
void giveTreeToUser(int dirFd, dev_t device, const TrashContext& context) {
    const int copy = dup(dirFd);
    DIR* dir = copy >= 0 ? fdopendir(copy) : nullptr;
    if (dir == nullptr) {
        if (copy >= 0) {
            close(copy);
        }
        return;
    }
    while (const dirent* entry = readdir(dir)) {
        const std::string_view name = entry->d_name;
        if (name == "." || name == "..") {
            continue;
        }
        fchownat(dirFd, entry->d_name, context.uid, context.gid, AT_SYMLINK_NOFOLLOW);
        const FolderFd child(openat(dirFd, entry->d_name, kFolderFlags));
        struct stat info {};
        if (child.valid() && fstat(child.get(), &info) == 0 && info.st_dev == device) {
            giveTreeToUser(child.get(), device, context);
        }
    }
    closedir(dir);
}

// The trash folder with its files/ and info/ open.
struct OpenTrash {
    FolderFd dir;
    FolderFd files;
    FolderFd info;
};

bool openSubfolders(OpenTrash& trash, const TrashContext& context) {
    if (!trash.dir.valid()) {
        return false;
    }
    trash.files = openOrMakeFolderAt(trash.dir.get(), "files", 0700, context.uid, context.gid);
    trash.info = openOrMakeFolderAt(trash.dir.get(), "info", 0700, context.uid, context.gid);
    return trash.files.valid() && trash.info.valid();
}

// The home trash, created when missing.
bool openHomeTrash(const std::string& trashDir, const TrashContext& context, OpenTrash& trash) {
    const std::size_t slash = trashDir.rfind('/');
    const FolderFd dataHome = openOrMakeFolderPath(trashDir.substr(0, slash), context.strictPaths,
                                                   context.uid, context.gid);
    if (!dataHome.valid()) {
        return false;
    }
    trash.dir = openOrMakeFolderAt(dataHome.get(), "Trash", 0700, context.uid, context.gid);
    return openSubfolders(trash, context);
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
            const FolderFd child(openat(dirFd, entry->d_name, kFolderFlags));
            if (child.valid()) {
                total += folderBytes(child.get(), device);
            }
        }
    }
    closedir(dir);
    return total;
}

// Reads the file `name` of the open folder; a missing file reads as empty.
bool readFileAt(int dirFd, const char* name, std::string& text) {
    const int fd = openat(dirFd, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        return errno == ENOENT;
    }
    struct stat info {};
    if (fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        close(fd);
        return false;
    }
    char buffer[8192];
    ssize_t got = 0;
    while ((got = read(fd, buffer, sizeof buffer)) > 0) {
        text.append(buffer, static_cast<std::size_t>(got));
    }
    close(fd);
    return got == 0;
}

// Replaces the file `name` of the open folder with `text` through a temporary file and
// renameat, so readers never see half a file.
bool replaceFileAt(int dirFd, const char* name, const std::string& text, uid_t uid, gid_t gid) {
    std::random_device seed;
    for (int attempt = 0; attempt < 16; ++attempt) {
        const std::string temp = std::string(name) + "." + std::to_string(seed());
        const int fd =
            openat(dirFd, temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
        if (fd < 0) {
            if (errno == EEXIST) {
                continue;
            }
            return false;
        }
        if (geteuid() != uid) {
            [[maybe_unused]] const int ignored = fchown(fd, uid, gid);
        }
        bool ok = write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size());
        ok = close(fd) == 0 && ok;
        if (!ok || renameat(dirFd, temp.c_str(), dirFd, name) != 0) {
            unlinkat(dirFd, temp.c_str(), 0);
            return false;
        }
        return true;
    }
    return false;
}

void addDirectorySize(const OpenTrash& trash, const std::string& name, const std::string& infoName,
                      const TrashContext& context) {
    const FolderFd moved(openat(trash.files.get(), name.c_str(), kFolderFlags));
    struct stat folder {};
    struct stat info {};
    if (!moved.valid() || fstat(moved.get(), &folder) != 0 ||
        fstatat(trash.info.get(), infoName.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0) {
        return;
    }
    const unsigned long long bytes = folderBytes(moved.get(), folder.st_dev);
    std::string text;
    if (!readFileAt(trash.dir.get(), "directorysizes", text)) {
        return;
    }
    if (!text.empty() && text.back() != '\n') {
        text += '\n';
    }
    text += formatDirectorySizesLine(bytes, static_cast<long long>(info.st_mtime), name);
    replaceFileAt(trash.dir.get(), "directorysizes", text, context.uid, context.gid);
}

// Writes the .trashinfo (O_EXCL, first free name) and renames the item into files/.
TrashResult moveWithInfo(int itemParent, const std::string& leaf, const OpenTrash& trash,
                         const std::string& trashDir, const std::string& infoPathText,
                         bool isFolder, const TrashContext& context) {
    TrashResult result;
    result.trashDir = trashDir;
    const std::string text = formatTrashInfo(infoPathText, formatDeletionDate(context.now()));
    for (unsigned n = 0; n < kMaxNameAttempts; ++n) {
        const std::string name = numberedName(leaf, n);
        const std::string infoName = name + ".trashinfo";
        const int fd = openat(trash.info.get(), infoName.c_str(),
                              O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
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
            unlinkat(trash.info.get(), infoName.c_str(), 0);
            result.error = "cannot write the Trash record";
            return result;
        }
        if (renameat2(itemParent, leaf.c_str(), trash.files.get(), name.c_str(),
                      RENAME_NOREPLACE) != 0) {
            const int error = errno;
            unlinkat(trash.info.get(), infoName.c_str(), 0);
            if (error == EEXIST || error == ENOTEMPTY) {
                continue; // a stray entry in files/ without its record: take the next name
            }
            result.error = error == EXDEV ? std::string("the Trash is on another file system")
                                          : errorText("cannot move into the Trash", error);
            return result;
        }
        if (runningForAnotherUser(context)) {
            fchownat(trash.files.get(), name.c_str(), context.uid, context.gid,
                     AT_SYMLINK_NOFOLLOW);
            const FolderFd moved(openat(trash.files.get(), name.c_str(), kFolderFlags));
            struct stat info {};
            if (moved.valid() && fstat(moved.get(), &info) == 0) {
                giveTreeToUser(moved.get(), info.st_dev, context);
            }
        }
        if (isFolder) {
            addDirectorySize(trash, name, infoName, context);
        }
        result.ok = true;
        result.trashedPath = trashDir + "/files/" + name;
        result.infoPath = trashDir + "/info/" + infoName;
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

// A trash folder opened from `parent`: a real folder owned by the user on `device`.
bool usableTrashFolder(const FolderFd& folder, dev_t device, const TrashContext& context) {
    struct stat info {};
    return folder.valid() && fstat(folder.get(), &info) == 0 && info.st_uid == context.uid &&
           info.st_dev == device;
}

// $topdir/.Trash/$uid when .Trash is a sticky real folder, else $topdir/.Trash-$uid when it is a
// real folder owned by the user (created when missing). Empty when neither can be used.
std::string openTopDirectoryTrash(const std::string& topDir, dev_t device,
                                  const TrashContext& context, TrashLocation& location,
                                  OpenTrash& trash) {
    const FolderFd top = openFolder(topDir, context.strictPaths);
    if (!top.valid()) {
        return {};
    }
    const std::string base = topDir == "/" ? "" : topDir;
    const std::string uid = std::to_string(context.uid);
    const FolderFd shared(openat(top.get(), ".Trash", kFolderFlags));
    struct stat sharedInfo {};
    if (shared.valid() && fstat(shared.get(), &sharedInfo) == 0 &&
        (sharedInfo.st_mode & S_ISVTX) != 0) {
        trash.dir = openOrMakeFolderAt(shared.get(), uid, 0700, context.uid, context.gid);
        if (usableTrashFolder(trash.dir, device, context) && openSubfolders(trash, context)) {
            location = TrashLocation::topDirShared;
            return base + "/.Trash/" + uid;
        }
    }
    trash.dir = openOrMakeFolderAt(top.get(), ".Trash-" + uid, 0700, context.uid, context.gid);
    if (usableTrashFolder(trash.dir, device, context) && openSubfolders(trash, context)) {
        location = TrashLocation::topDirUser;
        return base + "/.Trash-" + uid;
    }
    return {};
}

// The item split into its resolved folder (open) and its name.
struct OpenItem {
    std::string normal;     // the path as given, normalised
    std::string realParent; // its folder, links resolved
    std::string leaf;
    FolderFd parent;
    struct stat info {};
};

bool openItem(const std::string& path, const TrashContext& context, OpenItem& item,
              std::string& error) {
    const std::optional<std::string> normal = normalizeAbsolutePath(path);
    if (!normal || *normal == "/") {
        error = "not a clean absolute path";
        return false;
    }
    item.normal = *normal;
    const std::size_t slash = normal->rfind('/');
    const std::string parent = slash == 0 ? std::string("/") : normal->substr(0, slash);
    item.leaf = normal->substr(slash + 1);
    if (context.strictPaths) {
        item.realParent = parent;
    } else {
        char buffer[PATH_MAX];
        if (realpath(parent.c_str(), buffer) == nullptr) {
            error = errorText("cannot find the item's folder", errno);
            return false;
        }
        item.realParent = buffer;
    }
    item.parent = openFolder(item.realParent, context.strictPaths);
    struct stat parentInfo {};
    if (!item.parent.valid() || fstat(item.parent.get(), &parentInfo) != 0) {
        error = errorText("cannot open the item's folder", errno);
        return false;
    }
    if (fstatat(item.parent.get(), item.leaf.c_str(), &item.info, AT_SYMLINK_NOFOLLOW) != 0) {
        error = errorText("cannot look at the item", errno);
        return false;
    }
    if (S_ISDIR(item.info.st_mode) && item.info.st_dev != parentInfo.st_dev) {
        error = "a mount point cannot be moved to the Trash";
        return false;
    }
    return true;
}

std::string realItemPath(const OpenItem& item) {
    return (item.realParent == "/" ? "" : item.realParent) + "/" + item.leaf;
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
    OpenItem item;
    if (!openItem(path, context, item, result.error)) {
        return result;
    }
    const std::string realItem = realItemPath(item);
    const bool isFolder = S_ISDIR(item.info.st_mode);

    const std::optional<std::string> dataHome = normalizeAbsolutePath(context.dataHome);
    if (!dataHome || *dataHome == "/") {
        result.error = "the home Trash has no clean path";
        return result;
    }
    OpenTrash home;
    const bool homeOpened = openHomeTrash(*dataHome + "/Trash", context, home);
    struct stat homeInfo {};
    const bool homeKnown = homeOpened ? fstat(home.dir.get(), &homeInfo) == 0
                                      : stat(dataHome->c_str(), &homeInfo) == 0;
    if (!homeKnown || homeInfo.st_dev == item.info.st_dev) {
        // An item on the home trash's file system goes there or nowhere: a home trash that is a
        // link or cannot be made is never a reason to use a top-directory trash instead.
        if (!homeOpened) {
            result.error = "the home Trash cannot be used (missing, a link or not a folder)";
            return result;
        }
        const std::string trashDir = *dataHome + "/Trash";
        char realTrash[PATH_MAX];
        const std::string resolvedTrash =
            realpath(trashDir.c_str(), realTrash) != nullptr ? realTrash : trashDir;
        if (isWithinFolder(realItem, resolvedTrash) || isWithinFolder(resolvedTrash, realItem)) {
            result.error = "the item is the Trash or lies in it already";
            return result;
        }
        result = moveWithInfo(item.parent.get(), item.leaf, home, trashDir, item.normal, isFolder,
                              context);
        result.location = result.ok ? TrashLocation::home : TrashLocation::none;
        return result;
    }

    const std::string topDir = topDirectoryOf(item.realParent, item.info.st_dev);
    TrashLocation location = TrashLocation::none;
    OpenTrash top;
    const std::string trashDir =
        openTopDirectoryTrash(topDir, item.info.st_dev, context, location, top);
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
    result = moveWithInfo(item.parent.get(), item.leaf, top, trashDir, relative, isFolder, context);
    result.location = result.ok ? location : TrashLocation::none;
    return result;
}

TrashResult moveIntoHomeTrashManually(const std::string& path, const TrashContext& context) {
    TrashResult result;
    OpenItem item;
    if (!openItem(path, context, item, result.error)) {
        return result;
    }
    const std::optional<std::string> dataHome = normalizeAbsolutePath(context.dataHome);
    OpenTrash home;
    if (!dataHome || *dataHome == "/" || !openHomeTrash(*dataHome + "/Trash", context, home)) {
        result.error = "the home Trash cannot be created";
        return result;
    }
    const std::string trashDir = *dataHome + "/Trash";
    if (isWithinFolder(item.normal, trashDir) || isWithinFolder(trashDir, item.normal)) {
        result.error = "the item is the Trash or lies in it already";
        return result;
    }
    result = moveWithInfo(item.parent.get(), item.leaf, home, trashDir, item.normal,
                          S_ISDIR(item.info.st_mode), context);
    result.location = result.ok ? TrashLocation::home : TrashLocation::none;
    return result;
}

bool forgetTrashEntry(const std::string& trashDir, const std::string& name, bool strict) {
    const FolderFd trash = openFolder(trashDir, strict);
    if (!trash.valid()) {
        return errno == ENOENT;
    }
    bool ok = true;
    const FolderFd info(openat(trash.get(), "info", kFolderFlags));
    if (info.valid() && unlinkat(info.get(), (name + ".trashinfo").c_str(), 0) != 0 &&
        errno != ENOENT) {
        ok = false;
    }
    std::string text;
    if (!readFileAt(trash.get(), "directorysizes", text) || text.empty()) {
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
        struct stat owner {};
        if (fstat(trash.get(), &owner) != 0) {
            return false;
        }
        ok = replaceFileAt(trash.get(), "directorysizes", kept, owner.st_uid, owner.st_gid) && ok;
    }
    return ok;
}

} // namespace sondrel
