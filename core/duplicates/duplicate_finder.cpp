#include "core/duplicates/duplicate_finder.h"

#include "core/duplicates/sample_hash.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <thread>
#include <tuple>
#include <unistd.h>
#include <utility>

namespace sondrel {

namespace {

constexpr auto kProgressInterval = std::chrono::milliseconds(80);

// A candidate in a size cluster, with what hashing found.
struct HashItem {
    std::size_t candidate = 0; // index into the candidate list
    std::size_t cluster = 0;
    std::optional<Sha256Digest> digest;
    std::int64_t modifiedNs = 0; // as fstat saw it when hashing
};

// Throttles progress reports from several hashing threads.
class ProgressThrottle {
public:
    explicit ProgressThrottle(const DuplicateScanOptions& options) : m_options(options) {}

    void report(const DuplicateScanProgress& progress, bool force) {
        if (!m_options.onProgress) {
            return;
        }
        std::lock_guard lock(m_mutex);
        const auto now = std::chrono::steady_clock::now();
        if (!force && now - m_last < kProgressInterval) {
            return;
        }
        m_last = now;
        m_options.onProgress(progress);
    }

private:
    const DuplicateScanOptions& m_options;
    std::mutex m_mutex;
    std::chrono::steady_clock::time_point m_last{};
};

// Keeps one candidate per (device, inode): hard links are one file.
std::vector<DuplicateCandidate> oneNamePerFile(std::vector<DuplicateCandidate> candidates) {
    std::set<std::pair<dev_t, ino_t>> seen;
    std::vector<DuplicateCandidate> kept;
    kept.reserve(candidates.size());
    for (DuplicateCandidate& candidate : candidates) {
        if (seen.emplace(candidate.device, candidate.inode).second) {
            kept.push_back(std::move(candidate));
        }
    }
    return kept;
}

// Hashes the item if the file is still the one the size pass saw.
void hashItem(HashItem& item, const DuplicateCandidate& candidate, unsigned char* buffer) {
    struct stat info {};
    const int fd = openRegularFile(candidate.path, info);
    if (fd < 0) {
        return;
    }
    if (info.st_dev == candidate.device && info.st_ino == candidate.inode &&
        info.st_size == candidate.size) {
        item.modifiedNs =
            static_cast<std::int64_t>(info.st_mtim.tv_sec) * 1000000000 + info.st_mtim.tv_nsec;
        item.digest = sampledDigest(fd, candidate.size, buffer);
    }
    close(fd);
}

} // namespace

unsigned hashThreadCount(unsigned requested) {
    if (requested != 0) {
        return requested;
    }
    const unsigned cores = std::max(1U, std::thread::hardware_concurrency());
    return std::clamp(cores * 4, 4U, 32U);
}

DuplicateScanResult groupCandidates(std::vector<DuplicateCandidate> candidates,
                                    const DuplicateScanOptions& options,
                                    const CancelToken& cancel) {
    DuplicateScanResult result;
    candidates = oneNamePerFile(std::move(candidates));
    result.candidateCount = candidates.size();

    // Size clusters, smallest size first; members keep enumeration order.
    std::map<std::int64_t, std::vector<std::size_t>> bySize;
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        bySize[candidates[i].size].push_back(i);
    }
    std::vector<HashItem> items;
    std::vector<std::pair<std::size_t, std::size_t>> clusterRanges; // [first, end) into items
    for (const auto& [size, members] : bySize) {
        if (members.size() < 2) {
            continue;
        }
        const std::size_t first = items.size();
        for (std::size_t member : members) {
            items.push_back(HashItem{member, clusterRanges.size(), std::nullopt, 0});
        }
        clusterRanges.emplace_back(first, items.size());
    }
    result.clusterCount = clusterRanges.size();

    ProgressThrottle throttle(options);
    DuplicateScanProgress progress;
    progress.phase = DuplicateScanProgress::Phase::hashing;
    progress.clusterCount = clusterRanges.size();
    throttle.report(progress, true);

    // Hash in (device, inode) order, which follows the disk layout more closely than paths.
    std::vector<std::size_t> order(items.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        order[i] = i;
    }
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        const DuplicateCandidate& x = candidates[items[a].candidate];
        const DuplicateCandidate& y = candidates[items[b].candidate];
        return std::tie(x.device, x.inode) < std::tie(y.device, y.inode);
    });
    std::vector<std::atomic<std::size_t>> remaining(clusterRanges.size());
    for (std::size_t c = 0; c < clusterRanges.size(); ++c) {
        remaining[c].store(clusterRanges[c].second - clusterRanges[c].first);
    }
    std::atomic<std::size_t> next{0};
    std::atomic<std::size_t> clustersDone{0};
    auto hashWorker = [&] {
        auto buffer = std::make_unique<unsigned char[]>(kSampleBytes);
        for (;;) {
            if (cancel.isCancelled()) {
                return;
            }
            const std::size_t index = next.fetch_add(1, std::memory_order_relaxed);
            if (index >= order.size()) {
                return;
            }
            HashItem& item = items[order[index]];
            hashItem(item, candidates[item.candidate], buffer.get());
            if (remaining[item.cluster].fetch_sub(1, std::memory_order_acq_rel) == 1) {
                DuplicateScanProgress done = progress;
                done.clustersDone = clustersDone.fetch_add(1, std::memory_order_relaxed) + 1;
                throttle.report(done, done.clustersDone == done.clusterCount);
            }
        }
    };
    const auto threads = static_cast<unsigned>(std::min<std::size_t>(
        hashThreadCount(options.hashThreads), std::max<std::size_t>(1, order.size())));
    std::vector<std::thread> workers;
    for (unsigned t = 1; t < threads; ++t) {
        workers.emplace_back(hashWorker);
    }
    hashWorker();
    for (std::thread& worker : workers) {
        worker.join();
    }
    if (cancel.isCancelled()) {
        result.cancelled = true;
        return result;
    }

    std::uint64_t nextId = 1;
    for (const auto& [first, end] : clusterRanges) {
        std::map<Sha256Digest, std::vector<const HashItem*>> byDigest;
        for (std::size_t i = first; i < end; ++i) {
            if (items[i].digest) {
                byDigest[*items[i].digest].push_back(&items[i]);
            }
        }
        for (auto& [digest, members] : byDigest) {
            if (members.size() < 2) {
                continue;
            }
            std::stable_sort(
                members.begin(), members.end(),
                [](const HashItem* a, const HashItem* b) { return a->modifiedNs < b->modifiedNs; });
            DuplicateGroup group;
            group.id = nextId++;
            group.size = candidates[members.front()->candidate].size;
            group.digest = toHex(digest);
            for (const HashItem* member : members) {
                const DuplicateCandidate& candidate = candidates[member->candidate];
                DuplicateFile file;
                file.id = nextId++;
                file.path = candidate.path;
                file.size = candidate.size;
                file.modifiedNs = member->modifiedNs;
                file.device = candidate.device;
                file.inode = candidate.inode;
                file.isSelected = !group.files.empty();
                group.files.push_back(std::move(file));
            }
            result.groups.push_back(std::move(group));
        }
    }
    sortByWastedSize(result.groups);
    return result;
}

DuplicateScanResult findDuplicates(const DuplicateScanOptions& options, const CancelToken& cancel) {
    ProgressThrottle throttle(options);
    std::function<void(std::int64_t)> onFilesSeen;
    if (options.onProgress) {
        onFilesSeen = [&throttle](std::int64_t seen) {
            DuplicateScanProgress progress;
            progress.filesSeen = seen;
            throttle.report(progress, false);
        };
    }
    std::vector<DuplicateCandidate> candidates =
        collectCandidates(options.folders, options.minimumSize, cancel, onFilesSeen);
    if (cancel.isCancelled()) {
        DuplicateScanResult result;
        result.cancelled = true;
        return result;
    }
    return groupCandidates(std::move(candidates), options, cancel);
}

} // namespace sondrel
