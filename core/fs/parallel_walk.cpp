#include "core/fs/parallel_walk.h"

#include "core/fs/folder_listing.h"
#include "core/fs/mount_table.h"
#include "core/fs/work_stealing_pool.h"
#include "core/util/path_text.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <mutex>
#include <sys/resource.h>
#include <sys/sysmacros.h>
#include <thread>
#include <unistd.h>
#include <unordered_set>

#ifndef STATX_MNT_ID
#define STATX_MNT_ID 0x00001000U
#endif
#ifndef STATX_ATTR_MOUNT_ROOT
#define STATX_ATTR_MOUNT_ROOT 0x00002000
#endif

namespace sondrel {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kDirFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

// Files of one folder stat'ed by the folder's own job; more are split into slices of kSlice
// that other workers take, so one folder of 100,000 files keeps every worker busy.
constexpr std::size_t kWideFolder = 2048;
constexpr std::size_t kSlice = 1024;

// An opened folder that jobs of its subfolders open relative to. Reference counted: `refs`
// keeps the record (and, through `parent`, the chain up to the root, used to rebuild a path)
// alive; `fdUsers` keeps the descriptor open until every subfolder job has opened its own.
struct DirRef {
    std::atomic<int> refs{1};
    std::atomic<int> fdUsers{1};
    int fd = -1;              // -1 once closed early because of the descriptor bound
    DirRef* parent = nullptr; // holds one reference
    std::string name;         // name in the parent; the root's whole path for the root
    FolderToken token;
    int depth = 0;
};

// Names whose lstat is still to be done, in listing order: NUL-terminated names back to back
// and the visitor's slot of each.
struct StatList {
    std::string names;
    std::vector<std::size_t> offsets;
    std::vector<void*> slots;

    std::size_t size() const { return offsets.size(); }
    const char* name(std::size_t i) const { return names.data() + offsets[i]; }
    std::string_view view(std::size_t i) const {
        const std::size_t end = i + 1 < offsets.size() ? offsets[i + 1] - 1 : names.size() - 1;
        return std::string_view(names.data() + offsets[i], end - offsets[i]);
    }
    void add(std::string_view name, void* slot) {
        offsets.push_back(names.size());
        names.append(name);
        names.push_back('\0');
        slots.push_back(slot);
    }
    void clear() {
        names.clear();
        offsets.clear();
        slots.clear();
    }
};

struct Job {
    DirRef* parent = nullptr; // one reference owned by the job; null for the root
    FolderToken token;
    std::string name;
    // Set for a slice of a wide folder's files: the job stats them in `parent`.
    std::unique_ptr<StatList> stats;
    int fd = -1; // already opened (the root)
    int depth = 0;
};

struct alignas(64) WorkerState {
    std::unique_ptr<std::byte[]> dents{new std::byte[kListingBufferBytes]};
    WalkWorker worker;
    std::vector<Job> children;
    StatList toStat;
};

std::int64_t nowNanos() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now().time_since_epoch())
        .count();
}

void releaseRef(DirRef* dir) {
    while (dir != nullptr && dir->refs.fetch_sub(1) == 1) {
        DirRef* parent = dir->parent;
        delete dir;
        dir = parent;
    }
}

std::string dirPath(const DirRef* dir) {
    std::vector<const std::string*> names;
    for (; dir != nullptr; dir = dir->parent) {
        names.push_back(&dir->name);
    }
    std::string path;
    for (auto it = names.rbegin(); it != names.rend(); ++it) {
        if (!path.empty() && path.back() != '/') {
            path += '/';
        }
        path += **it;
    }
    return path;
}

unsigned defaultThreads() {
    // Folder reads block on a cold cache, so a few more threads than cores keep the disk busy;
    // on a warm cache the extra threads cost little because jobs are short.
    const unsigned cores = std::max(1U, std::thread::hardware_concurrency());
    return std::clamp(cores * 2, 2U, 16U);
}

int defaultDescriptorBudget() {
    rlimit limit{};
    rlim_t soft = 1024;
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY) {
        soft = limit.rlim_cur;
    }
    return static_cast<int>(std::clamp<rlim_t>(soft / 4, 16, 1024));
}

// lstat of `name` in `dir`, relative to its descriptor, or by path once that was closed.
bool statIn(const DirRef* dir, const char* name, struct stat& info) {
    if (dir->fd >= 0) {
        return fstatat(dir->fd, name, &info, AT_SYMLINK_NOFOLLOW) == 0;
    }
    return fstatat(AT_FDCWD, joinPath(dirPath(dir), name).c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0;
}

void copyStatx(const struct statx& sx, struct stat& info) {
    info.st_dev = makedev(sx.stx_dev_major, sx.stx_dev_minor);
    info.st_ino = static_cast<ino_t>(sx.stx_ino);
    info.st_mode = sx.stx_mode;
    info.st_nlink = static_cast<nlink_t>(sx.stx_nlink);
    info.st_uid = sx.stx_uid;
    info.st_gid = sx.stx_gid;
    info.st_rdev = makedev(sx.stx_rdev_major, sx.stx_rdev_minor);
    info.st_size = static_cast<off_t>(sx.stx_size);
    info.st_blksize = static_cast<blksize_t>(sx.stx_blksize);
    info.st_blocks = static_cast<blkcnt_t>(sx.stx_blocks);
    info.st_atim = {sx.stx_atime.tv_sec, sx.stx_atime.tv_nsec};
    info.st_mtim = {sx.stx_mtime.tv_sec, sx.stx_mtime.tv_nsec};
    info.st_ctim = {sx.stx_ctime.tv_sec, sx.stx_ctime.tv_nsec};
}

// The stat of an open folder with its mount identity.
struct FolderStat {
    struct stat info {};
    bool haveMountRoot = false; // the kernel said whether it is a mount root
    bool isMountRoot = false;
    bool haveMountId = false;
    std::uint64_t mountId = 0;
};

bool statFolder(int fd, FolderStat& out) {
    struct statx sx {};
    if (statx(fd, "", AT_EMPTY_PATH | AT_STATX_SYNC_AS_STAT, STATX_BASIC_STATS | STATX_MNT_ID,
              &sx) != 0) {
        if (fstat(fd, &out.info) != 0) {
            return false;
        }
        return true;
    }
    copyStatx(sx, out.info);
    out.haveMountRoot = (sx.stx_attributes_mask & STATX_ATTR_MOUNT_ROOT) != 0;
    out.isMountRoot = (sx.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
    out.haveMountId = (sx.stx_mask & STATX_MNT_ID) != 0;
    out.mountId = sx.stx_mnt_id;
    return true;
}

bool isHiddenName(std::string_view name) {
    return !name.empty() && name[0] == '.';
}

} // namespace

std::string WalkWorker::pathOf(std::string_view name) const {
    const std::string folder = dirPath(static_cast<const DirRef*>(m_folder));
    return name.empty() ? folder : joinPath(folder, name);
}

class ParallelWalk {
public:
    ParallelWalk(const WalkOptions& options, WalkVisitor& visitor, const CancelToken& cancel)
        : m_options(options), m_visitor(visitor), m_cancel(cancel),
          m_threads(options.threads > 0 ? options.threads : defaultThreads()), m_pool(m_threads),
          m_states(m_threads), m_fdBudget(options.descriptorBudget > 0 ? options.descriptorBudget
                                                                       : defaultDescriptorBudget()),
          m_intervalNanos(static_cast<std::int64_t>(options.progressIntervalSeconds * 1e9)),
          m_lastPublish(nowNanos()) {
        for (unsigned i = 0; i < m_threads; ++i) {
            m_states[i].worker.m_index = i;
        }
        m_pruneNames = options.pruneNames;
        std::sort(m_pruneNames.begin(), m_pruneNames.end());
    }

    WalkOutcome run(int rootFd, const std::string& rootPath, FolderToken rootToken) {
        prepareMounts(rootFd, rootPath);
        m_visitor.prepare(m_threads);
        Job job;
        job.fd = rootFd;
        job.name = rootPath;
        job.token = rootToken;
        m_pool.run(std::move(job), [this](unsigned worker, Job&& next) { handle(worker, next); });
        WalkOutcome outcome;
        outcome.opened = true;
        outcome.cancelled = m_cancel.isCancelled();
        outcome.items = m_items.load();
        outcome.bytes = m_bytes.load();
        return outcome;
    }

private:
    void prepareMounts(int rootFd, const std::string& rootPath);
    // True when the folder open at `fd` (a subfolder, stat'ed in `stat`) is a mount point that
    // the walk leaves out. Records the file systems it enters.
    bool leaveOutMount(const FolderStat& stat, const DirRef* parent, std::string_view name);
    void handle(unsigned worker, Job& job);
    void handleSlice(WorkerState& state, Job& job);
    void listEntry(WorkerState& state, DirRef* self, const ListedEntry& listed);
    void statFiles(WorkerState& state, const DirRef* dir, const StatList& list);
    // lstat of `name` in `dir`; when files' mount points are looked for, by statx, setting
    // `mountRoot` for an entry that is one.
    bool statEntry(const DirRef* dir, const char* name, struct stat& info, bool& mountRoot) const;
    int openFolder(const Job& job) const;
    void releaseParentDescriptor(const Job& job);
    void flush(WorkerState& state);
    bool pruned(std::string_view name) const {
        return !m_pruneNames.empty() &&
               std::binary_search(m_pruneNames.begin(), m_pruneNames.end(), name,
                                  [](std::string_view a, std::string_view b) { return a < b; });
    }

    const WalkOptions& m_options;
    WalkVisitor& m_visitor;
    const CancelToken& m_cancel;
    unsigned m_threads;
    WorkStealingPool<Job> m_pool;
    std::vector<WorkerState> m_states;
    std::vector<std::string> m_pruneNames;
    int m_fdBudget;
    std::int64_t m_intervalNanos;
    std::atomic<int> m_openFds{0};
    std::atomic<std::int64_t> m_items{0};
    std::atomic<std::int64_t> m_bytes{0};
    std::atomic<std::int64_t> m_lastPublish;

    // Mount handling: checked only when a mount point lies below the root (or folders are
    // stat'ed anyway), so the usual walk of a home folder pays nothing for it.
    bool m_checkMounts = false;
    bool m_findFileMounts = false; // findMountedFiles, and a mount lies below the root
    MountTable m_mounts;
    std::mutex m_enteredMutex;
    std::unordered_set<std::uint64_t> m_enteredDevices; // file systems being walked
};

void ParallelWalk::prepareMounts(int rootFd, const std::string& rootPath) {
    m_mounts = MountTable::read();
    char* real = realpath(rootPath.c_str(), nullptr);
    // A table that cannot be read says nothing: then every folder is checked.
    m_checkMounts = real == nullptr || m_mounts.entries().empty() || m_mounts.anyBelow(real);
    m_findFileMounts = m_checkMounts && m_options.findMountedFiles;
    std::free(real);
    struct stat rootInfo {};
    if (fstat(rootFd, &rootInfo) == 0) {
        // The file system the root lies on is always walked (scanning /sys on purpose).
        m_enteredDevices.insert(static_cast<std::uint64_t>(rootInfo.st_dev));
    }
}

bool ParallelWalk::leaveOutMount(const FolderStat& stat, const DirRef* parent,
                                 std::string_view name) {
    const MountEntry* mount = nullptr;
    if (stat.haveMountRoot) {
        if (!stat.isMountRoot) {
            return false;
        }
        mount = stat.haveMountId ? m_mounts.byId(stat.mountId) : nullptr;
    } else {
        // Older kernels: look the folder's path up in the table.
        mount = m_mounts.atMountPoint(joinPath(dirPath(parent), name));
        if (mount == nullptr) {
            return false;
        }
    }
    if (m_options.oneFilesystem) {
        return true;
    }
    if (mount != nullptr && isForeignFilesystemType(mount->type) &&
        !m_options.enterForeignFilesystems) {
        return true;
    }
    // A file system is entered once: a second view of one already walked (a bind mount of a
    // folder of the tree, of a folder beside it on the same disk, or the same disk mounted
    // twice) would count its bytes again.
    std::lock_guard lock(m_enteredMutex);
    return !m_enteredDevices.insert(static_cast<std::uint64_t>(stat.info.st_dev)).second;
}

void ParallelWalk::releaseParentDescriptor(const Job& job) {
    DirRef* parent = job.parent;
    if (parent != nullptr && parent->fd >= 0 && parent->fdUsers.fetch_sub(1) == 1) {
        close(parent->fd);
        m_openFds.fetch_sub(1);
    }
}

int ParallelWalk::openFolder(const Job& job) const {
    if (job.fd >= 0) {
        return job.fd;
    }
    if (job.parent->fd >= 0) {
        return openat(job.parent->fd, job.name.c_str(), kDirFlags);
    }
    // The parent's descriptor was closed to stay within the bound: open by path.
    const std::string path = joinPath(dirPath(job.parent), job.name);
    return open(path.c_str(), kDirFlags);
}

void ParallelWalk::flush(WorkerState& state) {
    WalkWorker& worker = state.worker;
    if (worker.m_pendingReports == 0 && worker.m_pendingItems == 0 && worker.m_pendingBytes == 0) {
        return;
    }
    const std::int64_t items = m_items.fetch_add(worker.m_pendingItems) + worker.m_pendingItems;
    const std::int64_t bytes = m_bytes.fetch_add(worker.m_pendingBytes) + worker.m_pendingBytes;
    worker.m_pendingItems = 0;
    worker.m_pendingBytes = 0;
    worker.m_pendingReports = 0;
    if (!m_options.onProgress) {
        return;
    }
    const std::int64_t now = nowNanos();
    std::int64_t last = m_lastPublish.load();
    if (now - last < m_intervalNanos || !m_lastPublish.compare_exchange_strong(last, now)) {
        return;
    }
    WalkProgress progress;
    progress.items = items;
    progress.bytes = bytes;
    progress.currentPath = worker.pathOf({});
    m_options.onProgress(progress);
}

bool ParallelWalk::statEntry(const DirRef* dir, const char* name, struct stat& info,
                             bool& mountRoot) const {
    if (!m_findFileMounts) {
        return statIn(dir, name, info);
    }
    const std::string path = dir->fd >= 0 ? std::string() : joinPath(dirPath(dir), name);
    struct statx sx {};
    if (statx(dir->fd >= 0 ? dir->fd : AT_FDCWD, dir->fd >= 0 ? name : path.c_str(),
              AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | AT_STATX_SYNC_AS_STAT, STATX_BASIC_STATS,
              &sx) != 0) {
        return false;
    }
    copyStatx(sx, info);
    if ((sx.stx_attributes_mask & STATX_ATTR_MOUNT_ROOT) != 0) {
        mountRoot = (sx.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
    } else {
        // Older kernels: look the entry's path up in the table.
        mountRoot =
            m_mounts.atMountPoint(path.empty() ? joinPath(dirPath(dir), name) : path) != nullptr;
    }
    return true;
}

void ParallelWalk::statFiles(WorkerState& state, const DirRef* dir, const StatList& list) {
    for (std::size_t i = 0; i < list.size() && !m_cancel.isCancelled(); ++i) {
        struct stat info {};
        bool mountRoot = false;
        const bool ok = statEntry(dir, list.name(i), info, mountRoot);
        if (mountRoot) {
            m_visitor.mountedFileFound(state.worker, dir->token, list.view(i));
        }
        m_visitor.fileStat(state.worker, dir->token, list.slots[i], list.view(i),
                           ok ? &info : nullptr);
    }
}

void ParallelWalk::handleSlice(WorkerState& state, Job& job) {
    state.worker.m_folder = job.parent;
    if (!m_cancel.isCancelled()) {
        statFiles(state, job.parent, *job.stats);
        m_visitor.statBatchDone(state.worker, job.parent->token);
        flush(state);
    }
    releaseParentDescriptor(job);
    releaseRef(job.parent);
}

void ParallelWalk::listEntry(WorkerState& state, DirRef* self, const ListedEntry& listed) {
    WalkEntry entry;
    entry.name = listed.name;
    entry.type = listed.type;
    entry.depth = self->depth + 1;
    entry.parent = self->token;
    struct stat info {};
    bool mountRoot = false;
    if (entry.type == DT_UNKNOWN) {
        if (statEntry(self, listed.name.data(), info, mountRoot)) {
            entry.info = &info;
            entry.type = static_cast<unsigned char>(IFTODT(info.st_mode));
        } else {
            entry.type = DT_REG; // vanished or unreadable: a file without a stat
        }
    }
    if (entry.type == DT_DIR) {
        if (pruned(entry.name) || (m_options.maxDepth >= 0 && entry.depth > m_options.maxDepth)) {
            return;
        }
        Job child;
        if (m_visitor.folderFound(state.worker, entry, child.token)) {
            child.name.assign(entry.name);
            child.depth = entry.depth;
            state.children.push_back(std::move(child));
        }
        return;
    }
    void* slot = nullptr;
    if (!m_visitor.fileFound(state.worker, entry, slot)) {
        return;
    }
    if (entry.info != nullptr) {
        if (mountRoot) {
            m_visitor.mountedFileFound(state.worker, self->token, entry.name);
        }
        m_visitor.fileStat(state.worker, self->token, slot, entry.name, entry.info);
    } else if (listed.type == DT_UNKNOWN) {
        m_visitor.fileStat(state.worker, self->token, slot, entry.name, nullptr);
    } else {
        state.toStat.add(entry.name, slot); // stat'ed after the listing, maybe by other workers
    }
}

void ParallelWalk::handle(unsigned worker, Job& job) {
    WorkerState& state = m_states[worker];
    if (job.stats) {
        handleSlice(state, job);
        return;
    }
    state.worker.m_folder = job.parent;
    if (m_cancel.isCancelled()) {
        if (job.parent != nullptr) {
            m_visitor.folderSkipped(state.worker, job.token, FolderSkip::cancelled);
        }
        releaseParentDescriptor(job);
        releaseRef(job.parent);
        return;
    }
    const int fd = openFolder(job);
    if (fd < 0 && m_options.statFolders && job.parent != nullptr) {
        // Its own size still counts (du does so): lstat it while the parent is held.
        struct stat info {};
        const bool ok = statIn(job.parent, job.name.c_str(), info);
        m_visitor.unreadableFolderStat(state.worker, job.token, ok ? &info : nullptr);
    }
    releaseParentDescriptor(job);
    if (fd < 0) {
        m_visitor.folderSkipped(state.worker, job.token, FolderSkip::unreadable);
        releaseRef(job.parent);
        return;
    }
    FolderStat stat;
    bool haveStat = false;
    if (m_options.statFolders || (m_checkMounts && job.parent != nullptr)) {
        haveStat = statFolder(fd, stat);
        if (haveStat && job.parent != nullptr && m_checkMounts &&
            leaveOutMount(stat, job.parent, job.name)) {
            close(fd);
            m_visitor.folderSkipped(state.worker, job.token, FolderSkip::mountPoint);
            releaseRef(job.parent);
            return;
        }
    }

    auto* self = new DirRef;
    self->fd = fd;
    self->parent = job.parent; // takes over the job's reference
    self->name = std::move(job.name);
    self->token = job.token;
    self->depth = job.depth;
    state.worker.m_folder = self;
    m_visitor.folderOpened(state.worker, self->token,
                           haveStat && m_options.statFolders ? &stat.info : nullptr);

    state.toStat.clear();
    const bool skipHidden = m_options.skipHidden;
    const ListingEnd listing =
        forEachEntryAt(fd, state.dents.get(), kListingBufferBytes, [&](const ListedEntry& listed) {
            if (skipHidden && isHiddenName(listed.name)) {
                return true;
            }
            if (m_cancel.isCancelled()) {
                return false;
            }
            listEntry(state, self, listed);
            return true;
        });
    if (listing == ListingEnd::failed) {
        m_visitor.listingFailed(state.worker, self->token, errno);
    }

    // Sizes of the files: here for an ordinary folder; a wide folder is split into slices
    // that other workers take.
    const StatList& toStat = state.toStat;
    if (toStat.size() <= kWideFolder) {
        statFiles(state, self, toStat);
    } else if (!m_cancel.isCancelled()) {
        for (std::size_t begin = 0; begin < toStat.size(); begin += kSlice) {
            const std::size_t end = std::min(toStat.size(), begin + kSlice);
            auto slice = std::make_unique<StatList>();
            slice->names.assign(toStat.names, toStat.offsets[begin],
                                end < toStat.size() ? toStat.offsets[end] - toStat.offsets[begin]
                                                    : std::string::npos);
            for (std::size_t i = begin; i < end; ++i) {
                slice->offsets.push_back(toStat.offsets[i] - toStat.offsets[begin]);
                slice->slots.push_back(toStat.slots[i]);
            }
            Job sliceJob;
            sliceJob.stats = std::move(slice);
            sliceJob.token = self->token;
            state.children.push_back(std::move(sliceJob));
        }
    }
    state.toStat.clear();
    m_visitor.statBatchDone(state.worker, self->token);
    flush(state);

    // Hand the subfolders and slices to the pool. The descriptor stays open for them unless
    // too many are open already; then they open and stat by path.
    std::vector<Job> children;
    children.swap(state.children);
    if (m_cancel.isCancelled()) {
        for (Job& child : children) {
            if (!child.stats) {
                m_visitor.folderSkipped(state.worker, child.token, FolderSkip::cancelled);
            }
        }
        children.clear();
    }
    if (!children.empty()) {
        const auto count = static_cast<int>(children.size());
        if (m_openFds.load() < m_fdBudget) {
            m_openFds.fetch_add(1);
            self->fdUsers.fetch_add(count);
        } else {
            close(fd);
            self->fd = -1;
        }
        self->refs.fetch_add(count);
        for (Job& child : children) {
            child.parent = self;
            m_pool.push(worker, std::move(child));
        }
        if (self->fd >= 0 && self->fdUsers.fetch_sub(1) == 1) {
            close(fd);
            m_openFds.fetch_sub(1);
        }
    } else {
        close(fd);
    }
    children.clear();
    state.children.swap(children); // keep the capacity for the next job
    state.worker.m_folder = nullptr;
    releaseRef(self);
}

WalkOutcome walkTreeAt(int rootFd, const std::string& rootPath, FolderToken rootToken,
                       const WalkOptions& options, WalkVisitor& visitor,
                       const CancelToken& cancel) {
    ParallelWalk walk(options, visitor, cancel);
    return walk.run(rootFd, rootPath, rootToken);
}

WalkOutcome walkTree(const std::string& rootPath, FolderToken rootToken, const WalkOptions& options,
                     WalkVisitor& visitor, const CancelToken& cancel) {
    std::string root = rootPath;
    while (root.size() > 1 && root.back() == '/') {
        root.pop_back();
    }
    const int flags =
        O_RDONLY | O_DIRECTORY | O_CLOEXEC | (options.followRootLink ? 0 : O_NOFOLLOW);
    const int fd = open(root.c_str(), flags);
    if (fd < 0) {
        WalkOutcome outcome;
        outcome.error = errno;
        return outcome;
    }
    return walkTreeAt(fd, root, rootToken, options, visitor, cancel);
}

} // namespace sondrel
