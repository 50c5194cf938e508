// sondrel-bench-floor_walker: the syscall floor of a folder-size scan, for the benchmarks.
//
// Usage: sondrel-bench-floor_walker ROOT [--threads N] [--skip-hidden] [--du] [--prune NAME]...
//        [--min BYTES]
//
// It does only what any size scan must do: openat each folder relative to its parent,
// getdents64 its entries, fstatat each entry that is not a folder (the size), on N threads
// (default 2) sharing one stack of folders. Symbolic links are not followed; a multiply-linked
// file counts once. --skip-hidden leaves out names starting with '.', like the app's scan.
// Prints "files F bytes B folders D"; with --skip-hidden the bytes equal the root size of
// `sondrel-cli scan` on the same tree. --du is the floor of a du-style measure instead: every
// entry is stat'ed, folders (fstat of the opened folder) and links included, and the bytes are
// the allocated ones (st_blocks * 512), as `du -sB1` counts them. --prune leaves out folders
// of that exact name (repeatable) and --min counts the files of at least BYTES as "large L":
// with --skip-hidden, the search's pruned names and --min 20971520 it is the floor of the
// large-file search (which also leaves out *.app folders).

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <mutex>
#include <set>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

struct Dir {
    int fd = -1;
    std::atomic<int> users{1};
};

void release(Dir* dir) {
    if (dir != nullptr && dir->users.fetch_sub(1) == 1) {
        close(dir->fd);
        delete dir;
    }
}

struct Job {
    Dir* parent;
    std::string name;
};

struct Walk {
    std::mutex mutex;
    std::condition_variable wake;
    std::vector<Job> stack;
    int busy = 0;
    bool skipHidden = false;
    bool duMode = false;
    std::vector<std::string> pruned;
    long long minimum = -1;
    std::atomic<long long> large{0};
    std::atomic<long long> files{0};
    std::atomic<long long> bytes{0};
    std::atomic<long long> folders{0};
    std::mutex linkMutex;
    std::set<std::pair<dev_t, ino_t>> links;

    void work() {
        std::vector<char> buffer(64 * 1024);
        for (;;) {
            Job job;
            {
                std::unique_lock lock(mutex);
                wake.wait(lock, [&] { return !stack.empty() || busy == 0; });
                if (stack.empty()) {
                    return;
                }
                job = std::move(stack.back());
                stack.pop_back();
                ++busy;
            }
            folder(job, buffer);
            {
                std::lock_guard lock(mutex);
                --busy;
                if (busy == 0 && stack.empty()) {
                    wake.notify_all();
                }
            }
        }
    }

    void folder(Job& job, std::vector<char>& buffer) {
        const int fd = job.parent == nullptr
                           ? open(job.name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)
                           : openat(job.parent->fd, job.name.c_str(),
                                    O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        release(job.parent);
        if (fd < 0) {
            return;
        }
        ++folders;
        long long localBytes = 0;
        if (duMode) {
            struct stat own {};
            if (fstat(fd, &own) == 0) {
                localBytes += static_cast<long long>(own.st_blocks) * 512;
            }
        }
        auto* self = new Dir;
        self->fd = fd;
        std::vector<Job> children;
        long long localFiles = 0;
        for (;;) {
            const ssize_t n = getdents64(fd, buffer.data(), buffer.size());
            if (n <= 0) {
                break;
            }
            for (ssize_t off = 0; off < n;) {
                const auto* entry = reinterpret_cast<const dirent64*>(buffer.data() + off);
                off += entry->d_reclen;
                const char* name = entry->d_name;
                if (name[0] == '.' &&
                    (skipHidden || name[1] == '\0' || (name[1] == '.' && name[2] == '\0'))) {
                    continue;
                }
                unsigned char type = entry->d_type;
                struct stat info {};
                bool haveInfo = false;
                if (type == DT_UNKNOWN) {
                    if (fstatat(fd, name, &info, AT_SYMLINK_NOFOLLOW) != 0) {
                        continue;
                    }
                    haveInfo = true;
                    type = static_cast<unsigned char>(IFTODT(info.st_mode));
                }
                if (type == DT_DIR) {
                    if (!pruned.empty() &&
                        std::find(pruned.begin(), pruned.end(), name) != pruned.end()) {
                        continue;
                    }
                    children.push_back({self, name});
                    continue;
                }
                if ((type != DT_REG && !duMode) ||
                    (!haveInfo && fstatat(fd, name, &info, AT_SYMLINK_NOFOLLOW) != 0)) {
                    continue;
                }
                ++localFiles;
                if (info.st_nlink > 1) {
                    std::lock_guard lock(linkMutex);
                    if (!links.insert({info.st_dev, info.st_ino}).second) {
                        continue;
                    }
                }
                localBytes += duMode ? static_cast<long long>(info.st_blocks) * 512 : info.st_size;
                if (minimum >= 0 && info.st_size >= minimum) {
                    ++large;
                }
            }
        }
        files += localFiles;
        bytes += localBytes;
        self->users += static_cast<int>(children.size());
        if (!children.empty()) {
            std::lock_guard lock(mutex);
            for (Job& child : children) {
                stack.push_back(std::move(child));
            }
            wake.notify_all();
        }
        release(self);
    }
};

} // namespace

int main(int argc, char** argv) {
    std::string root;
    unsigned threads = 2;
    Walk walk;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--threads" && i + 1 < argc) {
            threads = static_cast<unsigned>(std::max(1, std::atoi(argv[++i])));
        } else if (arg == "--skip-hidden") {
            walk.skipHidden = true;
        } else if (arg == "--du") {
            walk.duMode = true;
        } else if (arg == "--prune" && i + 1 < argc) {
            walk.pruned.emplace_back(argv[++i]);
        } else if (arg == "--min" && i + 1 < argc) {
            walk.minimum = std::atoll(argv[++i]);
        } else if (root.empty() && arg[0] != '-') {
            root = arg;
        } else {
            std::fprintf(
                stderr,
                "usage: sondrel-bench-floor_walker ROOT [--threads N] [--skip-hidden] [--du] "
                "[--prune NAME]... [--min BYTES]\n");
            return 2;
        }
    }
    if (root.empty()) {
        std::fprintf(stderr,
                     "usage: sondrel-bench-floor_walker ROOT [--threads N] [--skip-hidden] [--du] "
                     "[--prune NAME]... [--min BYTES]\n");
        return 2;
    }
    walk.stack.push_back({nullptr, root});
    std::vector<std::thread> pool;
    for (unsigned t = 1; t < threads; ++t) {
        pool.emplace_back([&walk] { walk.work(); });
    }
    walk.work();
    for (std::thread& thread : pool) {
        thread.join();
    }
    std::printf("files %lld bytes %lld folders %lld", walk.files.load(), walk.bytes.load(),
                walk.folders.load());
    if (walk.minimum >= 0) {
        std::printf(" large %lld", walk.large.load());
    }
    std::printf("\n");
    return 0;
}
