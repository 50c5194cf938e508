#include "core/scan/folder_walk.h"

#include "core/model/file_category.h"
#include "core/scan/link_sightings.h"
#include "core/scan/work_stealing_pool.h"
#include "core/util/path_text.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <dirent.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace sondrel {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kDirFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
constexpr std::size_t kDentsBufferBytes = 64 * 1024;
constexpr int kFlushEvery = 64;

// What a job does with its folder.
enum class Mode : std::uint8_t {
    expand,   // build nodes for its entries
    collapse, // add the sizes and count of the regular files below to a leaf node
    bundle,   // add the sizes below to a bundle node (its count stays 1)
};

// An opened folder that jobs of its subfolders open relative to. Reference counted: `refs`
// keeps the record (and, through `parent`, the chain up to the root, used to rebuild a path)
// alive; `fdUsers` keeps the descriptor open until every subfolder job has opened its own.
struct DirRef {
    std::atomic<int> refs{1};
    std::atomic<int> fdUsers{1};
    int fd = -1;              // -1 once closed early because of the descriptor bound
    DirRef* parent = nullptr; // holds one reference
    std::string name;         // name in the parent; the root's whole path for the root
};

// File names whose sizes are still to be read, in listing order: NUL-terminated names back to
// back and, for an expanded folder, the node of each name.
struct StatList {
    std::string names;
    std::vector<std::size_t> offsets;
    std::vector<FileNode*> nodes;

    std::size_t size() const { return offsets.size(); }
    const char* name(std::size_t i) const { return names.data() + offsets[i]; }
    void add(std::string_view name, FileNode* node) {
        offsets.push_back(names.size());
        names.append(name);
        names.push_back('\0');
        if (node != nullptr) {
            nodes.push_back(node);
        }
    }
    void clear() {
        names.clear();
        offsets.clear();
        nodes.clear();
    }
};

struct Job {
    DirRef* parent = nullptr; // one reference owned by the job; null for the root
    FileNode* node = nullptr; // expand: the folder's node; collapse/bundle: the leaf to add to
    std::string name;
    // Set for a slice of a wide folder's files: the job stats them in `parent` (no folder to
    // open), so one folder of 100,000 files keeps every worker busy.
    std::unique_ptr<StatList> stats;
    int fd = -1; // already opened (the root)
    int depth = 0;
    Mode mode = Mode::expand;
    bool top = true; // the first job of its node (its failure to open drops the node)
};

// Files of one folder stat'ed by the folder's own job; more are split into slices of kSlice.
constexpr std::size_t kWideFolder = 2048;
constexpr std::size_t kSlice = 1024;

struct alignas(64) WorkerState {
    std::unique_ptr<std::byte[]> dents{new std::byte[kDentsBufferBytes]};
    std::int64_t pendingItems = 0;
    std::int64_t pendingBytes = 0;
    int pendingReports = 0;
    std::vector<Job> children;
    StatList toStat;
    std::vector<LinkSighting> links;
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

int descriptorBudget() {
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

class Walker {
public:
    Walker(const ScanOptions& options, const CancelToken& cancel, unsigned threads,
           ForeignMounts mounts, bool checkMounts)
        : m_options(options), m_cancel(cancel), m_pool(threads), m_arenas(threads),
          m_states(threads), m_mounts(std::move(mounts)), m_checkMounts(checkMounts),
          m_maxDepth(std::max(1, options.maxDepth)), m_fdBudget(descriptorBudget()),
          m_intervalNanos(static_cast<std::int64_t>(options.progressIntervalSeconds * 1e9)),
          m_lastPublish(nowNanos()) {}

    NodeArena& arena(unsigned worker) { return m_arenas[worker]; }

    void run(Job root) {
        m_pool.run(std::move(root), [this](unsigned worker, Job&& job) { handle(worker, job); });
    }

    std::vector<NodeArena>& arenas() { return m_arenas; }
    // After the walk: keeps the bytes of each multiply-linked file at one sighting, the one
    // whose holder has the smallest path (so every scan picks the same one), and takes them
    // off the others. Returns the bytes to take off the progress counter.
    std::int64_t countLinksOnce();
    std::int64_t items() const { return m_items.load(); }
    std::int64_t bytes() const { return m_bytes.load(); }

private:
    void handle(unsigned worker, Job& job);
    void handleSlice(WorkerState& state, Job& job);
    int openFolder(Job& job);
    void releaseParentDescriptor(const Job& job);
    void expandEntry(unsigned worker, Job& job, DirRef* self, const char* name, unsigned char type,
                     FileNode*& tail);
    // Stats files [begin, end) of `list`: sets the sizes of an expanded folder's nodes, or
    // returns the bytes and count of the regular files for a collapsed folder or bundle.
    std::pair<std::int64_t, std::int64_t> statFiles(WorkerState& state, const DirRef* dir,
                                                    Mode mode, FileNode* leaf, const StatList& list,
                                                    std::size_t begin, std::size_t end);
    void addToLeaf(WorkerState& state, const DirRef* dir, Mode mode, FileNode* leaf,
                   std::int64_t bytes, std::int64_t files);
    void report(WorkerState& state, std::int64_t items, std::int64_t bytes, const DirRef* dir,
                std::string_view name);
    void flush(WorkerState& state, const DirRef* dir, std::string_view name);
    // Logical size of a stat'ed entry (0 for folders and links). A multiply-linked file is
    // noted with `holder`, the node its bytes go to, for countLinksOnce().
    std::int64_t sizeOf(WorkerState& state, const struct stat& info, FileNode* holder, Mode mode);

    const ScanOptions& m_options;
    const CancelToken& m_cancel;
    WorkStealingPool<Job> m_pool;
    std::vector<NodeArena> m_arenas;
    std::vector<WorkerState> m_states;
    ForeignMounts m_mounts;
    bool m_checkMounts;
    int m_maxDepth;
    int m_fdBudget;
    std::int64_t m_intervalNanos;
    std::atomic<int> m_openFds{0};
    std::atomic<std::int64_t> m_items{0};
    std::atomic<std::int64_t> m_bytes{0};
    std::atomic<std::int64_t> m_lastPublish;
};

void Walker::releaseParentDescriptor(const Job& job) {
    DirRef* parent = job.parent;
    if (parent != nullptr && parent->fd >= 0 && parent->fdUsers.fetch_sub(1) == 1) {
        close(parent->fd);
        m_openFds.fetch_sub(1);
    }
}

int Walker::openFolder(Job& job) {
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

void Walker::report(WorkerState& state, std::int64_t items, std::int64_t bytes, const DirRef* dir,
                    std::string_view name) {
    state.pendingItems += items;
    state.pendingBytes += bytes;
    if (++state.pendingReports >= kFlushEvery) {
        flush(state, dir, name);
    }
}

void Walker::flush(WorkerState& state, const DirRef* dir, std::string_view name) {
    if (state.pendingReports == 0 && state.pendingItems == 0 && state.pendingBytes == 0) {
        return;
    }
    const std::int64_t items = m_items.fetch_add(state.pendingItems) + state.pendingItems;
    const std::int64_t bytes = m_bytes.fetch_add(state.pendingBytes) + state.pendingBytes;
    state.pendingItems = 0;
    state.pendingBytes = 0;
    state.pendingReports = 0;
    if (!m_options.onProgress) {
        return;
    }
    const std::int64_t now = nowNanos();
    std::int64_t last = m_lastPublish.load();
    if (now - last < m_intervalNanos || !m_lastPublish.compare_exchange_strong(last, now)) {
        return;
    }
    ScanProgress progress;
    progress.items = items;
    progress.bytes = bytes;
    progress.currentPath = name.empty() ? dirPath(dir) : joinPath(dirPath(dir), name);
    m_options.onProgress(progress);
}

std::int64_t Walker::sizeOf(WorkerState& state, const struct stat& info, FileNode* holder,
                            Mode mode) {
    if (S_ISDIR(info.st_mode) || S_ISLNK(info.st_mode)) {
        return 0;
    }
    const std::int64_t size = std::max<std::int64_t>(0, info.st_size);
    if (S_ISREG(info.st_mode) && info.st_nlink > 1) {
        state.links.push_back({static_cast<std::uint64_t>(info.st_dev),
                               static_cast<std::uint64_t>(info.st_ino), holder, size,
                               mode == Mode::bundle ? 3 : 1});
    }
    return size;
}

std::int64_t Walker::countLinksOnce() {
    std::vector<LinkSighting> all;
    for (WorkerState& state : m_states) {
        all.insert(all.end(), state.links.begin(), state.links.end());
        state.links.clear();
    }
    return keepBytesAtOneLink(all);
}

std::pair<std::int64_t, std::int64_t> Walker::statFiles(WorkerState& state, const DirRef* dir,
                                                        Mode mode, FileNode* leaf,
                                                        const StatList& list, std::size_t begin,
                                                        std::size_t end) {
    std::int64_t bytes = 0;
    std::int64_t files = 0;
    for (std::size_t i = begin; i < end && !m_cancel.isCancelled(); ++i) {
        const char* name = list.name(i);
        struct stat info {};
        const bool ok = statIn(dir, name, info);
        if (mode == Mode::expand) {
            // A failed stat leaves a file of size 0.
            const std::int64_t size = ok ? sizeOf(state, info, list.nodes[i], mode) : 0;
            list.nodes[i]->size = size;
            report(state, 1, size, dir, name);
        } else if (ok && S_ISREG(info.st_mode)) {
            bytes += sizeOf(state, info, leaf, mode);
            ++files;
        }
    }
    return {bytes, files};
}

void Walker::addToLeaf(WorkerState& state, const DirRef* dir, Mode mode, FileNode* leaf,
                       std::int64_t bytes, std::int64_t files) {
    if (mode == Mode::collapse) {
        std::atomic_ref<std::int64_t>(leaf->size).fetch_add(bytes);
        std::atomic_ref<std::int64_t>(leaf->fileCount).fetch_add(files);
        report(state, 0, bytes, dir, {});
    } else if (mode == Mode::bundle) {
        std::atomic_ref<std::int64_t>(leaf->size).fetch_add(bytes);
        report(state, 0, 3 * bytes, dir, {}); // a bundle is reported three times
    }
}

void Walker::expandEntry(unsigned worker, Job& job, DirRef* self, const char* name,
                         unsigned char type, FileNode*& tail) {
    WorkerState& state = m_states[worker];
    NodeArena& nodes = m_arenas[worker];
    const std::string_view nameView(name);
    const auto append = [&](FileNode* child) {
        child->parent = job.node;
        if (tail == nullptr) {
            job.node->firstChild = child;
        } else {
            tail->nextSibling = child;
        }
        tail = child;
        ++job.node->childCount;
    };

    struct stat info {};
    bool haveInfo = false;
    if (type == DT_UNKNOWN) {
        if (fstatat(self->fd, name, &info, AT_SYMLINK_NOFOLLOW) == 0) {
            haveInfo = true;
            type = static_cast<unsigned char>(IFTODT(info.st_mode));
        } else {
            type = DT_REG; // a failed stat gives a file of size 0
        }
    }
    if (type == DT_LNK) {
        return; // links are never followed nor counted
    }
    if (type == DT_DIR) {
        Job child;
        child.name.assign(nameView);
        child.depth = job.depth + 1;
        if (!endsWith(self->name, ".app") && endsWith(nameView, ".app")) {
            // An application bundle is one item: measured whole, shown as a file.
            child.mode = Mode::bundle;
            child.node = nodes.create(nameView, false, 0, 1, categoryFrom(nameView, false));
            report(state, 3, 0, self, nameView);
        } else if (job.depth + 1 <= m_maxDepth) {
            child.mode = Mode::expand;
            child.node = nodes.create(nameView, true, 0, 0, FileCategory::other);
        } else {
            child.mode = Mode::collapse;
            child.node = nodes.create(nameView, true, 0, 0, FileCategory::other);
            report(state, 1, 0, self, nameView);
        }
        append(child.node);
        state.children.push_back(std::move(child));
        return;
    }
    FileNode* file = nodes.create(nameView, false, 0, 1, categoryFrom(nameView, false));
    append(file);
    if (haveInfo) {
        file->size = sizeOf(state, info, file, Mode::expand);
        report(state, 1, file->size, self, nameView);
    } else {
        state.toStat.add(nameView, file); // sized after the listing, maybe by other workers
    }
}

void Walker::handleSlice(WorkerState& state, Job& job) {
    if (!m_cancel.isCancelled()) {
        const auto [bytes, files] =
            statFiles(state, job.parent, job.mode, job.node, *job.stats, 0, job.stats->size());
        addToLeaf(state, job.parent, job.mode, job.node, bytes, files);
        flush(state, job.parent, {});
    }
    releaseParentDescriptor(job);
    releaseRef(job.parent);
}

void Walker::handle(unsigned worker, Job& job) {
    WorkerState& state = m_states[worker];
    if (job.stats) {
        handleSlice(state, job);
        return;
    }
    if (m_cancel.isCancelled()) {
        releaseParentDescriptor(job);
        releaseRef(job.parent);
        return;
    }
    const int fd = openFolder(job);
    releaseParentDescriptor(job);
    if (fd < 0) {
        if (job.top && job.mode != Mode::bundle) {
            std::atomic_ref<std::int64_t>(job.node->fileCount).store(kUnreadableFolder);
        }
        releaseRef(job.parent);
        return;
    }
    if (m_checkMounts && job.parent != nullptr) {
        struct stat info {};
        if (fstat(fd, &info) == 0 &&
            m_mounts.devices.count(static_cast<std::uint64_t>(info.st_dev)) != 0) {
            close(fd); // pseudo, network or FUSE file system: shown as an empty folder
            releaseRef(job.parent);
            return;
        }
    }

    auto* self = new DirRef;
    self->fd = fd;
    self->parent = job.parent; // takes over the job's reference
    self->name = std::move(job.name);

    std::int64_t sumBytes = 0;
    std::int64_t sumFiles = 0;
    FileNode* tail = nullptr;
    std::byte* buffer = state.dents.get();
    state.toStat.clear();
    bool cancelled = false;
    while (!cancelled) {
        const ssize_t read = getdents64(fd, buffer, kDentsBufferBytes);
        if (read <= 0) {
            break; // end of the folder, or a folder that opens but cannot be read
        }
        for (ssize_t offset = 0; offset < read;) {
            const auto* entry = reinterpret_cast<const dirent64*>(buffer + offset);
            offset += entry->d_reclen;
            const char* name = entry->d_name;
            if (name[0] == '.' || name[0] == '\0') {
                continue; // ".", ".." and hidden names are never scanned
            }
            if (m_cancel.isCancelled()) {
                cancelled = true;
                break;
            }
            if (job.mode == Mode::expand) {
                expandEntry(worker, job, self, name, entry->d_type, tail);
                continue;
            }
            // Collapsed folder or bundle: only sizes, no nodes.
            unsigned char type = entry->d_type;
            struct stat info {};
            if (type == DT_UNKNOWN) {
                if (fstatat(fd, name, &info, AT_SYMLINK_NOFOLLOW) != 0) {
                    continue;
                }
                type = static_cast<unsigned char>(IFTODT(info.st_mode));
                if (type == DT_REG) {
                    sumBytes += sizeOf(state, info, job.node, job.mode);
                    ++sumFiles;
                    continue;
                }
            }
            if (type == DT_DIR) {
                Job child;
                child.name.assign(name);
                child.node = job.node;
                child.depth = job.depth + 1;
                child.mode = job.mode;
                child.top = false;
                state.children.push_back(std::move(child));
            } else if (type == DT_REG) {
                state.toStat.add(name, nullptr);
            }
        }
    }

    // Sizes of the files: here for an ordinary folder; a wide folder is split into slices
    // that other workers take.
    const StatList& toStat = state.toStat;
    if (toStat.size() <= kWideFolder) {
        const auto [bytes, files] =
            statFiles(state, self, job.mode, job.node, toStat, 0, toStat.size());
        sumBytes += bytes;
        sumFiles += files;
    } else if (!m_cancel.isCancelled()) {
        for (std::size_t begin = 0; begin < toStat.size(); begin += kSlice) {
            const std::size_t end = std::min(toStat.size(), begin + kSlice);
            auto slice = std::make_unique<StatList>();
            slice->names.assign(toStat.names, toStat.offsets[begin],
                                end < toStat.size() ? toStat.offsets[end] - toStat.offsets[begin]
                                                    : std::string::npos);
            for (std::size_t i = begin; i < end; ++i) {
                slice->offsets.push_back(toStat.offsets[i] - toStat.offsets[begin]);
                if (job.mode == Mode::expand) {
                    slice->nodes.push_back(toStat.nodes[i]);
                }
            }
            Job sliceJob;
            sliceJob.stats = std::move(slice);
            sliceJob.node = job.node;
            sliceJob.mode = job.mode;
            state.children.push_back(std::move(sliceJob));
        }
    }
    state.toStat.clear();
    addToLeaf(state, self, job.mode, job.node, sumBytes, sumFiles);
    flush(state, self, {});

    // Hand the subfolders and slices to the pool. The descriptor stays open for them unless
    // too many are open already; then they open and stat by path.
    std::vector<Job> children;
    children.swap(state.children);
    if (!children.empty() && !m_cancel.isCancelled()) {
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
    releaseRef(self);
}

} // namespace

FolderWalk walkFolder(int rootFd, const std::string& rootPath, std::string_view rootName,
                      const ScanOptions& options, const CancelToken& cancel, ForeignMounts mounts,
                      bool checkMounts) {
    const unsigned threads = options.threads > 0 ? options.threads : defaultThreads();
    Walker walker(options, cancel, threads, std::move(mounts), checkMounts);
    Job job;
    job.fd = rootFd;
    job.name = rootPath;
    job.node = walker.arena(0).create(rootName, true, 0, 0, FileCategory::other);
    FolderWalk walk;
    walk.root = job.node;
    walker.run(std::move(job));
    const std::int64_t duplicateBytes = walker.countLinksOnce();
    walk.items = walker.items();
    walk.bytes = walker.bytes() - duplicateBytes;
    walk.arenas = std::move(walker.arenas());
    return walk;
}

} // namespace sondrel
