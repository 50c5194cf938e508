#include "core/duplicates/candidate_collector.h"

#include "core/fs/parallel_walk.h"
#include "core/util/path_text.h"

#include <algorithm>
#include <dirent.h>

namespace sondrel {

namespace {

// Collects candidates per worker; the lists are merged after the walk.
class CandidateVisitor final : public WalkVisitor {
public:
    explicit CandidateVisitor(std::int64_t minimumSize) : m_minimumSize(minimumSize) {}

    void prepare(unsigned workers) override { m_perWorker.assign(workers, {}); }

    bool folderFound(WalkWorker&, const WalkEntry& entry, FolderToken&) override {
        // Application bundles are one item to the user: their insides are never candidates.
        return !endsWith(entry.name, ".app");
    }

    bool fileFound(WalkWorker& worker, const WalkEntry& entry, void*&) override {
        worker.report(1, 0);
        return entry.type == DT_REG;
    }

    void fileStat(WalkWorker& worker, FolderToken, void*, std::string_view name,
                  const struct stat* info) override {
        if (info == nullptr || !S_ISREG(info->st_mode) || info->st_size < m_minimumSize) {
            return;
        }
        DuplicateCandidate candidate;
        candidate.path = worker.pathOf(name);
        candidate.size = info->st_size;
        candidate.modifiedNs =
            static_cast<std::int64_t>(info->st_mtim.tv_sec) * 1000000000 + info->st_mtim.tv_nsec;
        candidate.device = info->st_dev;
        candidate.inode = info->st_ino;
        m_perWorker[worker.index()].push_back(std::move(candidate));
    }

    std::vector<DuplicateCandidate> takeSorted() {
        std::vector<DuplicateCandidate> all;
        for (std::vector<DuplicateCandidate>& list : m_perWorker) {
            std::move(list.begin(), list.end(), std::back_inserter(all));
        }
        std::sort(all.begin(), all.end(),
                  [](const DuplicateCandidate& a, const DuplicateCandidate& b) {
                      return a.path < b.path;
                  });
        return all;
    }

private:
    std::int64_t m_minimumSize;
    std::vector<std::vector<DuplicateCandidate>> m_perWorker;
};

} // namespace

std::vector<DuplicateCandidate>
collectCandidates(const std::vector<std::string>& folders, std::int64_t minimumSize,
                  const CancelToken& cancel, const std::function<void(std::int64_t)>& onFilesSeen) {
    std::vector<DuplicateCandidate> all;
    std::int64_t seenBefore = 0;
    for (const std::string& folder : folders) {
        if (cancel.isCancelled()) {
            break;
        }
        WalkOptions options;
        options.skipHidden = true;
        options.followRootLink = true;
        if (onFilesSeen) {
            options.onProgress = [&onFilesSeen, seenBefore](const WalkProgress& progress) {
                onFilesSeen(seenBefore + progress.items);
            };
        }
        CandidateVisitor visitor(minimumSize);
        const WalkOutcome outcome = walkTree(folder, {}, options, visitor, cancel);
        seenBefore += outcome.items;
        std::vector<DuplicateCandidate> found = visitor.takeSorted();
        std::move(found.begin(), found.end(), std::back_inserter(all));
    }
    return all;
}

} // namespace sondrel
