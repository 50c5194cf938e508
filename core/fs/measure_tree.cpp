#include "core/fs/measure_tree.h"

#include "core/fs/parallel_walk.h"

#include <algorithm>
#include <atomic>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace sondrel {

namespace {

std::int64_t allocatedBytes(const struct stat& info) {
    return static_cast<std::int64_t>(info.st_blocks) * 512;
}

std::int64_t apparentBytes(const struct stat& info) {
    return std::max<std::int64_t>(0, info.st_size);
}

// Sums per worker; a multiply-linked entry is noted and settled after the walk, so that the
// same inode seen by two workers counts once without a shared set on the hot path.
class MeasureVisitor final : public WalkVisitor {
public:
    void prepare(unsigned workers) override { m_workers = std::vector<Sums>(workers); }

    bool folderFound(WalkWorker&, const WalkEntry&, FolderToken&) override { return true; }

    bool fileFound(WalkWorker&, const WalkEntry&, void*&) override { return true; }

    void fileStat(WalkWorker& worker, FolderToken, void*, std::string_view,
                  const struct stat* info) override {
        if (info != nullptr) {
            add(worker, *info, false);
        } else {
            m_incomplete.store(true, std::memory_order_relaxed);
        }
    }

    void folderOpened(WalkWorker& worker, FolderToken, const struct stat* info) override {
        Sums& sums = m_workers[worker.index()];
        ++sums.folders;
        if (info != nullptr) {
            add(worker, *info, true);
        }
    }

    void folderSkipped(WalkWorker&, FolderToken, FolderSkip why) override {
        if (why == FolderSkip::mountPoint) {
            m_mountInside.store(true, std::memory_order_relaxed);
        } else {
            m_incomplete.store(true, std::memory_order_relaxed);
        }
    }

    void unreadableFolderStat(WalkWorker& worker, FolderToken, const struct stat* info) override {
        if (info != nullptr) {
            add(worker, *info, true);
        }
    }

    void listingFailed(WalkWorker&, FolderToken, int) override {
        m_incomplete.store(true, std::memory_order_relaxed);
    }

    void mountedFileFound(WalkWorker&, FolderToken, std::string_view) override {
        m_mountInside.store(true, std::memory_order_relaxed);
    }

    TreeSize finish() {
        TreeSize total;
        std::vector<Link> links;
        for (const Sums& sums : m_workers) {
            total.allocated += sums.allocated;
            total.apparent += sums.apparent;
            total.files += sums.files;
            total.folders += sums.folders;
            links.insert(links.end(), sums.links.begin(), sums.links.end());
        }
        std::sort(links.begin(), links.end(), [](const Link& a, const Link& b) {
            return a.device != b.device ? a.device < b.device : a.inode < b.inode;
        });
        for (std::size_t i = 1; i < links.size(); ++i) {
            if (links[i].device == links[i - 1].device && links[i].inode == links[i - 1].inode) {
                total.allocated -= links[i].allocated;
                total.apparent -= links[i].apparent;
                --total.files;
            }
        }
        total.exists = true;
        total.complete = !m_incomplete.load();
        total.mountInside = m_mountInside.load();
        return total;
    }

private:
    struct Link {
        std::uint64_t device;
        std::uint64_t inode;
        std::int64_t allocated;
        std::int64_t apparent;
    };
    struct alignas(64) Sums {
        std::int64_t allocated = 0;
        std::int64_t apparent = 0;
        std::int64_t files = 0;
        std::int64_t folders = 0;
        std::vector<Link> links;
    };

    void add(WalkWorker& worker, const struct stat& info, bool folder) {
        Sums& sums = m_workers[worker.index()];
        const std::int64_t allocated = allocatedBytes(info);
        const std::int64_t apparent = apparentBytes(info);
        sums.allocated += allocated;
        sums.apparent += apparent;
        if (!folder) {
            ++sums.files;
            if (info.st_nlink > 1) {
                sums.links.push_back({static_cast<std::uint64_t>(info.st_dev),
                                      static_cast<std::uint64_t>(info.st_ino), allocated,
                                      apparent});
            }
        }
        worker.report(1, allocated);
    }

    std::vector<Sums> m_workers;
    std::atomic<bool> m_incomplete{false};
    std::atomic<bool> m_mountInside{false};
};

WalkOptions walkOptionsFor(const MeasureOptions& options) {
    WalkOptions walkOptions;
    walkOptions.skipHidden = options.skipHidden;
    walkOptions.oneFilesystem = options.oneFilesystem;
    walkOptions.statFolders = true;
    walkOptions.findMountedFiles = true;
    walkOptions.followRootLink = false;
    walkOptions.threads = options.threads;
    return walkOptions;
}

} // namespace

TreeSize measureTree(const std::string& path, const MeasureOptions& options,
                     const CancelToken& cancel) {
    TreeSize size;
    struct stat info {};
    if (lstat(path.c_str(), &info) != 0) {
        return size;
    }
    size.exists = true;
    if (!S_ISDIR(info.st_mode)) {
        size.allocated = allocatedBytes(info);
        size.apparent = apparentBytes(info);
        size.files = 1;
        size.complete = true;
        return size;
    }
    const int fd = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) {
        // A folder that cannot be read: its own size only.
        size.allocated = allocatedBytes(info);
        size.apparent = apparentBytes(info);
        size.folders = 1;
        return size;
    }
    return measureTreeAt(fd, path, options, cancel);
}

TreeSize measureTreeAt(int folderFd, const std::string& path, const MeasureOptions& options,
                       const CancelToken& cancel) {
    struct stat info {};
    if (folderFd < 0 || fstat(folderFd, &info) != 0 || !S_ISDIR(info.st_mode)) {
        if (folderFd >= 0) {
            close(folderFd);
        }
        return {};
    }
    const WalkOptions walkOptions = walkOptionsFor(options);
    MeasureVisitor visitor;
    const WalkOutcome outcome = walkTreeAt(folderFd, path, {}, walkOptions, visitor, cancel);
    TreeSize size = visitor.finish();
    size.complete = size.complete && !outcome.cancelled;
    return size;
}

TreeSize measureTree(const std::string& path) {
    const CancelToken cancel;
    return measureTree(path, MeasureOptions{}, cancel);
}

} // namespace sondrel
