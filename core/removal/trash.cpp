#include "core/removal/trash.h"

#include "core/fs/measure_tree.h"
#include "core/fs/mount_table.h"
#include "core/removal/folder_descent.h"
#include "core/removal/folder_fd.h"
#include "core/removal/mount_boundary.h"
#include "core/removal/path_safety.h"
#include "core/removal/trash_info.h"
#include "core/util/path_text.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <random>
#include <sys/stat.h>
#include <sys/sysmacros.h>
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

// True when the entry open at `fd` may be given to the trash's user: a folder (folders have no
// hard links), an inode with a single link, or one the user owns already. A hard link to
// someone else's file stays theirs.
bool mayHandBack(int fd, const TrashContext& context) {
    struct stat info {};
    return fstatat(fd, "", &info, AT_EMPTY_PATH | AT_SYMLINK_NOFOLLOW) == 0 &&
           (S_ISDIR(info.st_mode) || info.st_nlink == 1 || info.st_uid == context.uid);
}

// Gives the entry `name` of the open folder `parentFd`, and for a folder everything below it,
// back to the user after an administrator move, so that the user can empty the Trash. Every
// entry is opened without following links and checked on that descriptor before it is chowned:
// mount points (and all below them) and hard links to other people's files are left alone.
// Any depth (FolderDescent holds one folder descriptor at a time).
class HandBack final : public FolderDescent {
public:
    explicit HandBack(const TrashContext& context) : m_context(context) {}

    /// Empty when everything that was to be handed back was; else the first problem
    /// ("path: reason").
    const std::string& problem() const { return m_problem; }

protected:
    FolderFd enter(int parentFd, const std::string& name, const std::string& path) override {
        FolderFd folder(openat(parentFd, name.c_str(),
                               O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        if (folder.valid()) {
            if (isMountBoundary(parentFd, folder.get())) {
                return {};
            }
            if (fchown(folder.get(), m_context.uid, m_context.gid) != 0) {
                failed(path, std::strerror(errno));
            }
            return folder;
        }
        const FolderFd entry(openat(parentFd, name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
        if (entry.valid() && !isMountBoundary(parentFd, entry.get()) &&
            mayHandBack(entry.get(), m_context) &&
            fchownat(entry.get(), "", m_context.uid, m_context.gid,
                     AT_EMPTY_PATH | AT_SYMLINK_NOFOLLOW) != 0) {
            failed(path, std::strerror(errno));
        }
        return {};
    }

    void failed(const std::string& path, const std::string& reason) override {
        if (m_problem.empty()) {
            m_problem = path + ": " + reason;
        }
    }

private:
    const TrashContext& m_context;
    std::string m_problem;
};

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

// What a folder about to be trashed holds: whether a mount point lies anywhere in it, and its
// size as `du -B1` counts it (allocated bytes, the folder's own blocks included, each
// multiply-linked inode once).
struct FolderSurvey {
    bool holdsMount = false;
    /// Every folder inside was read: `bytes` is whole, and the walk looked at every entry.
    bool complete = false;
    /// The mount table could be read (it answers for the whole tree, read or not).
    bool mountTableRead = false;
    unsigned long long bytes = 0;
};

// Surveys the folder open at `folderFd` (at `path`, its folder resolved) with the shared walk on
// a copy of the descriptor, staying on its file system: a mount point inside is a folder the
// walk leaves out as one or a bind-mounted file it reports. The mount table is asked too: it
// lists mount points below the folder also where the walk could not read.
FolderSurvey surveyFolder(int folderFd, const std::string& path) {
    FolderSurvey survey;
    const CancelToken never;
    const TreeSize size =
        measureTreeAt(fcntl(folderFd, F_DUPFD_CLOEXEC, 0), path, MeasureOptions{}, never);
    const MountTable mounts = MountTable::read();
    survey.mountTableRead = !mounts.entries().empty();
    survey.holdsMount = size.mountInside || mounts.anyBelow(path);
    survey.complete = size.exists && size.complete;
    survey.bytes = static_cast<unsigned long long>(size.allocated);
    return survey;
}

// How reading a small record file of a trash went.
enum class RecordRead : unsigned char {
    read,    ///< the text was read
    missing, ///< there is no such file
    foreign, ///< not a regular file of `owner`'s alone (a link, a hard link, someone else's)
    failed,  ///< it could not be read
};

// Reads the file `name` of the open folder when it is a regular file owned by `owner` with a
// single link. Anything else is never read: running as root, its content must not end up in a
// file the user owns.
RecordRead readRecordAt(int dirFd, const char* name, uid_t owner, std::string& text) {
    const FolderFd fd(openat(dirFd, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!fd.valid()) {
        return errno == ENOENT ? RecordRead::missing
                               : (errno == ELOOP ? RecordRead::foreign : RecordRead::failed);
    }
    struct stat info {};
    if (fstat(fd.get(), &info) != 0) {
        return RecordRead::failed;
    }
    if (!S_ISREG(info.st_mode) || info.st_nlink != 1 || info.st_uid != owner) {
        return RecordRead::foreign;
    }
    char buffer[8192];
    ssize_t got = 0;
    while ((got = read(fd.get(), buffer, sizeof buffer)) > 0) {
        text.append(buffer, static_cast<std::size_t>(got));
    }
    return got == 0 ? RecordRead::read : RecordRead::failed;
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

// Adds the line of the trashed folder `name` to the trash's directorysizes. A directorysizes
// that is not the user's own plain file is replaced by a fresh one, never read.
void addDirectorySize(const OpenTrash& trash, const std::string& name, const std::string& infoName,
                      unsigned long long bytes, const TrashContext& context) {
    struct stat info {};
    if (fstatat(trash.info.get(), infoName.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0) {
        return;
    }
    std::string text;
    const RecordRead read = readRecordAt(trash.dir.get(), "directorysizes", context.uid, text);
    if (read == RecordRead::failed) {
        return;
    }
    if (read == RecordRead::foreign) {
        text.clear();
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
                         std::optional<unsigned long long> folderBytes,
                         const TrashContext& context) {
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
            HandBack handBack(context);
            handBack.run(trash.files.get(), name, trashDir + "/files/" + name);
            if (!handBack.problem().empty()) {
                result.handBackProblem = handBack.problem();
            }
        }
        if (folderBytes) {
            addDirectorySize(trash, name, infoName, *folderBytes, context);
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
    std::optional<unsigned long long> folderBytes; // for a folder: its size as du counts it
};

std::string realItemPath(const OpenItem& item) {
    return (item.realParent == "/" ? "" : item.realParent) + "/" + item.leaf;
}

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
    // Reached from "/" without following any link: the folder just resolved (or, in strict
    // mode, given resolved) and nothing a link swapped in since.
    item.parent = openFolder(item.realParent, true);
    if (!item.parent.valid()) {
        error = errorText("cannot open the item's folder", errno);
        return false;
    }
    EntryStatus status;
    if (!statEntryAt(item.parent.get(), item.leaf.c_str(), status) ||
        fstatat(item.parent.get(), item.leaf.c_str(), &item.info, AT_SYMLINK_NOFOLLOW) != 0) {
        error = errorText("cannot look at the item", errno);
        return false;
    }
    if (status.mountPoint) {
        error = "a mount point cannot be moved to the Trash";
        return false;
    }
    if (S_ISDIR(item.info.st_mode)) {
        // Moving a folder moves whatever is mounted inside it along; that is never what was
        // meant, so such a folder stays where it is.
        const FolderFd folder(openat(item.parent.get(), item.leaf.c_str(), kFolderFlags));
        if (folder.valid() && isMountBoundary(item.parent.get(), folder.get())) {
            error = "a mount point cannot be moved to the Trash";
            return false;
        }
        FolderSurvey survey;
        if (folder.valid()) {
            survey = surveyFolder(folder.get(), realItemPath(item));
        } else {
            const MountTable mounts = MountTable::read();
            survey.mountTableRead = !mounts.entries().empty();
            survey.holdsMount = mounts.anyBelow(realItemPath(item));
        }
        if (survey.holdsMount) {
            error = "the folder holds a mount point; unmount it before moving the folder to the "
                    "Trash";
            return false;
        }
        if (!survey.complete && !survey.mountTableRead) {
            error = "the folder could not be read whole, so it cannot be told whether it holds "
                    "a mount point";
            return false;
        }
        if (survey.complete) {
            item.folderBytes = survey.bytes;
        }
    }
    return true;
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
        result = moveWithInfo(item.parent.get(), item.leaf, home, trashDir, item.normal,
                              item.folderBytes, context);
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
    result = moveWithInfo(item.parent.get(), item.leaf, top, trashDir, relative, item.folderBytes,
                          context);
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
                          item.folderBytes, context);
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
    // directorysizes is rewritten for the trash folder's owner; one that is not theirs alone
    // is left as it is (never read, so its content cannot reach the owner's new file).
    struct stat owner {};
    if (fstat(trash.get(), &owner) != 0) {
        return false;
    }
    std::string text;
    if (readRecordAt(trash.get(), "directorysizes", owner.st_uid, text) != RecordRead::read ||
        text.empty()) {
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
        ok = replaceFileAt(trash.get(), "directorysizes", kept, owner.st_uid, owner.st_gid) && ok;
    }
    return ok;
}

} // namespace sondrel
