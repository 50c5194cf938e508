// sondrel-bench-dups_floor [--threads N] FOLDER...: the read floor of a sampled duplicate scan.
// It walks the folders with nftw (no links followed, hidden names left out), keeps regular files
// of 1 MiB or more once per (device, inode), and for every size shared by two or more of them
// reads the same three 64 KiB samples a scan reads (head, middle at L / 2, tail at L - 65,536)
// on N threads (default 2), without hashing or grouping. What a scan cannot do with less I/O.

#ifndef _GNU_SOURCE
#define _GNU_SOURCE
#endif
#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <ftw.h>
#include <map>
#include <set>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

constexpr std::int64_t kMiB = 1048576;
constexpr std::int64_t kSample = 65536;

struct Entry {
    std::string path;
    std::int64_t size;
};
std::vector<Entry> g_entries;
std::set<std::pair<dev_t, ino_t>> g_seen;

int visit(const char* path, const struct stat* info, int type, struct FTW* where) {
    const char* name = path + where->base;
    if (where->level > 0 && name[0] == '.') {
        return type == FTW_D ? FTW_SKIP_SUBTREE : FTW_CONTINUE;
    }
    if (type == FTW_F && S_ISREG(info->st_mode) && info->st_size >= kMiB &&
        g_seen.emplace(info->st_dev, info->st_ino).second) {
        g_entries.push_back({path, info->st_size});
    }
    return FTW_CONTINUE;
}

std::int64_t readSamples(const Entry& entry, unsigned char* buffer) {
    const int fd = open(entry.path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        return 0;
    }
    struct stat info {};
    std::int64_t total = 0;
    if (fstat(fd, &info) == 0 && S_ISREG(info.st_mode)) {
        const std::int64_t length = info.st_size;
        const std::int64_t offsets[3] = {0, length / 2, length - kSample};
        for (std::int64_t offset : offsets) {
            const ssize_t got = pread(fd, buffer, kSample, offset);
            total += got > 0 ? got : 0;
        }
    }
    close(fd);
    return total;
}

} // namespace

int main(int argc, char** argv) {
    unsigned threads = 2;
    std::vector<std::string> folders;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--threads") == 0 && i + 1 < argc) {
            threads = static_cast<unsigned>(std::max(1, std::atoi(argv[++i])));
        } else {
            folders.emplace_back(argv[i]);
        }
    }
    for (const std::string& folder : folders) {
        nftw(folder.c_str(), visit, 64, FTW_PHYS | FTW_ACTIONRETVAL);
    }
    std::map<std::int64_t, std::vector<std::size_t>> bySize;
    for (std::size_t i = 0; i < g_entries.size(); ++i) {
        bySize[g_entries[i].size].push_back(i);
    }
    std::vector<std::size_t> work;
    for (const auto& [size, members] : bySize) {
        if (members.size() >= 2) {
            work.insert(work.end(), members.begin(), members.end());
        }
    }
    std::atomic<std::size_t> next{0};
    std::atomic<std::int64_t> bytes{0};
    std::vector<std::thread> pool;
    for (unsigned t = 0; t < threads; ++t) {
        pool.emplace_back([&] {
            std::vector<unsigned char> buffer(kSample);
            for (std::size_t i; (i = next.fetch_add(1)) < work.size();) {
                bytes += readSamples(g_entries[work[i]], buffer.data());
            }
        });
    }
    for (std::thread& thread : pool) {
        thread.join();
    }
    std::printf("%zu candidates, %zu read, %lld bytes read\n", g_entries.size(), work.size(),
                static_cast<long long>(bytes.load()));
    return 0;
}
