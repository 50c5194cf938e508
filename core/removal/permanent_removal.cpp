#include "core/removal/permanent_removal.h"

#include "core/removal/folder_descent.h"
#include "core/removal/folder_fd.h"
#include "core/removal/mount_boundary.h"
#include "core/removal/path_safety.h"
#include "core/removal/trash.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace sondrel {

namespace {

std::function<void(const std::string&)>& raceHook() {
    static std::function<void(const std::string&)> hook;
    return hook;
}

constexpr int kDirFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

void addFailure(RemovalReport& report, std::string path, int error) {
    report.failures.push_back({std::move(path), std::strerror(error)});
}

constexpr const char* kMountPointText = "a mount point: nothing in it is removed";

// How many times an entry that keeps changing between a folder and something else is looked
// at again before it is reported.
constexpr int kMaxLooks = 4;

// Removes an item and everything below it, one folder descriptor at a time (FolderDescent).
// A mount point is neither entered nor removed: it is checked by name before anything is done
// and, for a folder, again on the descriptor that the walk then uses.
class Removal final : public FolderDescent {
public:
    explicit Removal(RemovalReport& report) : m_report(report) {}

protected:
    FolderFd enter(int parentFd, const std::string& name, const std::string& path) override {
        for (int look = 0; look < kMaxLooks; ++look) {
            EntryStatus status;
            if (!statEntryAt(parentFd, name.c_str(), status)) {
                if (errno != ENOENT) {
                    addFailure(m_report, path, errno);
                }
                return {};
            }
            if (status.mountPoint) {
                m_report.failures.push_back({path, kMountPointText});
                return {};
            }
            if (S_ISDIR(status.stat.stx_mode)) {
                if (raceHook()) {
                    raceHook()(path);
                }
                FolderFd child(openat(parentFd, name.c_str(), kDirFlags));
                if (!child.valid() && errno != ELOOP && errno != ENOTDIR) {
                    if (errno != ENOENT) {
                        addFailure(m_report, path, errno);
                    }
                    return {};
                }
                if (child.valid()) {
                    // Opened without following links: whatever it is now, it is a real folder
                    // inside the parent we hold open, so the walk cannot leave the item.
                    if (isMountBoundary(parentFd, child.get())) {
                        m_report.failures.push_back({path, kMountPointText});
                        return {};
                    }
                    m_failuresBefore.push_back(m_report.failures.size());
                    return child;
                }
                // The folder was swapped for something else (a link) after it was looked at:
                // remove that thing itself below.
            }
            // A name that became a mount point since it was looked at cannot be unlinked (EBUSY).
            if (unlinkat(parentFd, name.c_str(), 0) == 0) {
                ++m_report.removedEntries;
                return {};
            }
            if (errno != EISDIR) {
                if (errno == EBUSY) {
                    m_report.failures.push_back({path, kMountPointText});
                } else if (errno != ENOENT) {
                    addFailure(m_report, path, errno);
                }
                return {};
            }
            // Swapped for a folder after it was looked at: look again.
        }
        m_report.failures.push_back({path, "it kept changing while it was removed"});
        return {};
    }

    void leave(int parentFd, const std::string& name, const std::string& path) override {
        const std::size_t failuresBefore = m_failuresBefore.back();
        m_failuresBefore.pop_back();
        if (unlinkat(parentFd, name.c_str(), AT_REMOVEDIR) == 0) {
            ++m_report.removedEntries;
        } else if (errno != ENOENT &&
                   (errno != ENOTEMPTY || m_report.failures.size() == failuresBefore)) {
            addFailure(m_report, path, errno);
        }
    }

    void failed(const std::string& path, const std::string& reason) override {
        m_report.failures.push_back({path, reason});
    }

private:
    RemovalReport& m_report;
    // For each folder being emptied: the failures reported before it, so that a folder left
    // non-empty because of them is not reported again.
    std::vector<std::size_t> m_failuresBefore;
};

bool endsWithFiles(const std::string& path) {
    return path.size() > 6 && path.compare(path.size() - 6, 6, "/files") == 0;
}

// The trash folder whose files/ holds `parent`, when `parent` is such a files/ folder: the home
// trash, $topdir/.Trash-$uid or $topdir/.Trash/$uid.
std::string trashDirOfFilesFolder(const std::string& parent, const std::string& homeTrash) {
    if (!endsWithFiles(parent)) {
        return {};
    }
    const std::string trashDir = parent.substr(0, parent.size() - 6);
    if (!homeTrash.empty() && normalizeAbsolutePath(homeTrash).value_or("") == trashDir) {
        return trashDir;
    }
    const std::size_t slash = trashDir.rfind('/');
    const std::string_view last = std::string_view(trashDir).substr(slash + 1);
    const auto allDigits = [](std::string_view text) {
        return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
    };
    if (last.rfind(".Trash-", 0) == 0 && allDigits(last.substr(7))) {
        return trashDir;
    }
    if (allDigits(last) && slash != std::string::npos && slash >= 7 &&
        std::string_view(trashDir).substr(slash - 7, 7) == "/.Trash") {
        return trashDir;
    }
    return {};
}

} // namespace

RemovalReport removePermanently(const std::string& path, const std::string& homeTrash,
                                bool strict) {
    RemovalReport report;
    const std::optional<std::string> normal = normalizeAbsolutePath(path);
    if (!normal || *normal == "/") {
        report.failures.push_back({path, "not a clean absolute path"});
        report.removed = !pathExists(path);
        return report;
    }
    const std::size_t slash = normal->rfind('/');
    const std::string parent = slash == 0 ? std::string("/") : normal->substr(0, slash);
    const std::string leaf = normal->substr(slash + 1);

    // The item's folder is reached from "/" without following any link: a resolved path in
    // strict mode, else resolved here. A folder swapped for a link afterwards makes it fail.
    std::string walked = parent;
    if (!strict) {
        char buffer[PATH_MAX];
        if (realpath(parent.c_str(), buffer) == nullptr) {
            if (errno != ENOENT) {
                addFailure(report, *normal, errno);
            }
            report.removed = !pathExists(*normal);
            return report;
        }
        walked = buffer;
    }
    const FolderFd parentFd = openFolder(walked, true);
    if (!parentFd.valid()) {
        if (errno != ENOENT) {
            addFailure(report, *normal, errno);
        }
        report.removed = !pathExists(*normal);
        return report;
    }
    Removal(report).run(parentFd.get(), leaf, *normal);
    report.removed =
        faccessat(parentFd.get(), leaf.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) != 0 && errno == ENOENT;
    if (report.removed) {
        if (const std::string trashDir = trashDirOfFilesFolder(parent, homeTrash);
            !trashDir.empty()) {
            if (!forgetTrashEntry(trashDir, leaf, strict)) {
                report.failures.push_back({trashDir + "/info/" + leaf + ".trashinfo",
                                           "its Trash record could not be removed"});
            }
        }
    }
    return report;
}

void setRemovalRaceHookForTesting(std::function<void(const std::string& path)> hook) {
    raceHook() = std::move(hook);
}

bool clearImmutableFlags(const std::string& path) {
    const FolderFd fd(open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!fd.valid()) {
        return false;
    }
    struct stat info {};
    if (fstat(fd.get(), &info) != 0 || !(S_ISREG(info.st_mode) || S_ISDIR(info.st_mode))) {
        return false;
    }
    int flags = 0;
    if (ioctl(fd.get(), FS_IOC_GETFLAGS, &flags) != 0) {
        return false;
    }
    constexpr int kLocking = FS_IMMUTABLE_FL | FS_APPEND_FL;
    if ((flags & kLocking) == 0) {
        return true;
    }
    flags &= ~kLocking;
    return ioctl(fd.get(), FS_IOC_SETFLAGS, &flags) == 0;
}

bool pathExists(const std::string& path) {
    struct stat info {};
    return lstat(path.c_str(), &info) == 0 || errno != ENOENT;
}

} // namespace sondrel
