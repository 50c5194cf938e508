#include "core/search/large_file_search.h"

#include "core/fs/parallel_walk.h"
#include "core/util/path_text.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <set>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace sondrel {

namespace {

bool isApplicationBundle(std::string_view name) {
    return name.size() > 4 && asciiLower(name.substr(name.size() - 4)) == ".app";
}

// One root's walk: folders are entered unless they are bundles (the walk itself drops hidden
// and pruned names), every regular file is stat'ed, and the large ones are kept per worker so
// the hot path shares nothing.
class LargeFileVisitor final : public WalkVisitor {
public:
    explicit LargeFileVisitor(std::int64_t minimumSize) : m_minimumSize(minimumSize) {}

    void prepare(unsigned workers) override { m_hits = std::vector<Hits>(workers); }

    bool folderFound(WalkWorker&, const WalkEntry& entry, FolderToken&) override {
        return !isApplicationBundle(entry.name);
    }

    bool fileFound(WalkWorker&, const WalkEntry& entry, void*&) override {
        return entry.type == DT_REG;
    }

    void fileStat(WalkWorker& worker, FolderToken, void*, std::string_view name,
                  const struct stat* info) override {
        if (info == nullptr || !S_ISREG(info->st_mode)) {
            return;
        }
        const bool large = info->st_size >= m_minimumSize;
        // Progress: items are files checked, "bytes" the files found.
        worker.report(1, large ? 1 : 0);
        if (!large) {
            return;
        }
        LargeFile file;
        file.path = worker.pathOf(name);
        file.name.assign(name);
        file.size = info->st_size;
        file.modified = info->st_mtim.tv_sec;
        file.category = categoryFrom(file.path, false);
        file.device = static_cast<std::uint64_t>(info->st_dev);
        file.inode = static_cast<std::uint64_t>(info->st_ino);
        m_hits[worker.index()].files.push_back(std::move(file));
    }

    // Moves every worker's hits to the end of `out`.
    void collect(std::vector<LargeFile>& out) {
        for (Hits& hits : m_hits) {
            std::move(hits.files.begin(), hits.files.end(), std::back_inserter(out));
            hits.files.clear();
        }
    }

private:
    struct alignas(64) Hits {
        std::vector<LargeFile> files;
    };

    std::int64_t m_minimumSize;
    std::vector<Hits> m_hits;
};

struct FoundFile {
    std::size_t root;
    LargeFile file;
};

// Keeps one entry per (device, inode): the earliest root's, then the smallest path.
std::vector<LargeFile> distinctFiles(std::vector<FoundFile> found) {
    std::sort(found.begin(), found.end(), [](const FoundFile& a, const FoundFile& b) {
        if (a.file.device != b.file.device) {
            return a.file.device < b.file.device;
        }
        if (a.file.inode != b.file.inode) {
            return a.file.inode < b.file.inode;
        }
        if (a.root != b.root) {
            return a.root < b.root;
        }
        return a.file.path < b.file.path;
    });
    std::vector<LargeFile> files;
    files.reserve(found.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
        if (i > 0 && found[i].file.device == found[i - 1].file.device &&
            found[i].file.inode == found[i - 1].file.inode) {
            continue;
        }
        files.push_back(std::move(found[i].file));
    }
    std::sort(files.begin(), files.end(), [](const LargeFile& a, const LargeFile& b) {
        return a.size != b.size ? a.size > b.size : a.path < b.path;
    });
    return files;
}

std::string withoutTrailingSlashes(std::string path) {
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    return path;
}

} // namespace

bool isSearchExcludedFolder(std::string_view name) {
    return std::find(kSearchPruneNames.begin(), kSearchPruneNames.end(), name) !=
               kSearchPruneNames.end() ||
           isApplicationBundle(name);
}

LargeSearchResult searchLargeFiles(const std::vector<std::string>& roots,
                                   const LargeSearchOptions& options, const CancelToken& cancel) {
    LargeSearchResult result;
    WalkOptions walkOptions;
    walkOptions.skipHidden = true;
    walkOptions.pruneNames.assign(kSearchPruneNames.begin(), kSearchPruneNames.end());
    walkOptions.oneFilesystem = options.oneFilesystem;
    walkOptions.threads = options.threads;
    walkOptions.progressIntervalSeconds = options.progressIntervalSeconds;

    std::vector<FoundFile> found;
    std::set<std::pair<dev_t, ino_t>> walkedRoots;
    std::int64_t checkedBefore = 0;
    std::int64_t foundBefore = 0;
    for (std::size_t index = 0; index < roots.size(); ++index) {
        SearchRootOutcome outcome;
        outcome.path = withoutTrailingSlashes(roots[index]);
        if (cancel.isCancelled()) {
            result.roots.push_back(std::move(outcome));
            continue;
        }
        const int fd = open(outcome.path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (fd < 0) {
            outcome.error = errno;
            result.roots.push_back(std::move(outcome));
            continue;
        }
        outcome.walked = true;
        struct stat rootInfo {};
        if (fstat(fd, &rootInfo) == 0 &&
            !walkedRoots.insert({rootInfo.st_dev, rootInfo.st_ino}).second) {
            close(fd); // the same folder as an earlier root: walked already
            result.roots.push_back(std::move(outcome));
            continue;
        }
        if (options.onProgress) {
            walkOptions.onProgress = [&options, checkedBefore,
                                      foundBefore](const WalkProgress& progress) {
                LargeSearchProgress report;
                report.filesChecked = checkedBefore + progress.items;
                report.filesFound = foundBefore + progress.bytes;
                report.currentPath = progress.currentPath;
                options.onProgress(report);
            };
        }
        LargeFileVisitor visitor(options.minimumSize);
        const WalkOutcome walked = walkTreeAt(fd, outcome.path, {}, walkOptions, visitor, cancel);
        checkedBefore += walked.items;
        foundBefore += walked.bytes;
        std::vector<LargeFile> files;
        visitor.collect(files);
        for (LargeFile& file : files) {
            found.push_back({index, std::move(file)});
        }
        result.roots.push_back(std::move(outcome));
    }
    result.filesChecked = checkedBefore;
    result.cancelled = cancel.isCancelled();
    result.files = distinctFiles(std::move(found));
    return result;
}

} // namespace sondrel
