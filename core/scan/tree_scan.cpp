#include "core/scan/tree_scan.h"

#include "core/fs/parallel_walk.h"
#include "core/model/file_category.h"
#include "core/scan/size_tree_visitor.h"
#include "core/util/path_text.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace sondrel {

namespace {

using Clock = std::chrono::steady_clock;

// The root node's name: the last component, or the whole path for "/".
std::string_view rootNodeName(const std::string& root) {
    const std::string_view name = lastPathComponent(root);
    return name.empty() ? std::string_view(root) : name;
}

std::string normalisedRoot(const std::string& path) {
    std::string root = path;
    while (root.size() > 1 && root.back() == '/') {
        root.pop_back();
    }
    return root;
}

} // namespace

ScanResult scanTree(const std::string& rootPath, const ScanOptions& options,
                    const CancelToken& cancel) {
    const auto start = Clock::now();
    ScanResult result;
    const std::string root = normalisedRoot(rootPath);
    const int fd = open(root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) {
        if (errno == ENOTDIR && access(root.c_str(), R_OK) == 0) {
            // A readable file: a root with nothing in it.
            result.tree = std::make_shared<FileTree>(root);
            result.tree->declareMeasure(options.measure);
            result.tree->setRoot(
                result.tree->arena().create(rootNodeName(root), true, 0, 0, FileCategory::other));
        } else {
            result.accessDenied = true;
        }
        result.elapsedSeconds = std::chrono::duration<double>(Clock::now() - start).count();
        return result;
    }

    WalkOptions walkOptions;
    walkOptions.skipHidden = true;
    walkOptions.threads = options.threads;
    walkOptions.enterForeignFilesystems = options.enterForeignFilesystems;
    walkOptions.progressIntervalSeconds = options.progressIntervalSeconds;
    if (options.onProgress) {
        walkOptions.onProgress = [&options](const WalkProgress& progress) {
            options.onProgress(ScanProgress{progress.items, progress.bytes, progress.currentPath});
        };
    }
    SizeTreeVisitor visitor(rootNodeName(root), options.maxDepth, options.measure);
    const WalkOutcome walk =
        walkTreeAt(fd, root, visitor.rootToken(), walkOptions, visitor, cancel);
    auto tree = std::make_shared<FileTree>(root);
    tree->declareMeasure(options.measure);
    const std::int64_t duplicateBytes = visitor.finish(*tree);
    result.tree = std::move(tree);
    result.items = walk.items;
    result.bytes = walk.bytes - duplicateBytes;
    result.cancelled = cancel.isCancelled();
    result.elapsedSeconds = std::chrono::duration<double>(Clock::now() - start).count();
    return result;
}

bool isPathAccessibleAndReadable(const std::string& path) {
    struct stat info {};
    if (stat(path.c_str(), &info) != 0) {
        return false;
    }
    if (S_ISDIR(info.st_mode)) {
        const int fd = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (fd < 0) {
            return false;
        }
        close(fd);
        return true;
    }
    return access(path.c_str(), R_OK) == 0;
}

} // namespace sondrel
