#include "core/scan/tree_scan.h"

#include "core/model/file_category.h"
#include "core/scan/folder_walk.h"
#include "core/scan/foreign_mounts.h"
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

// Drops unreadable folders, sums sizes and counts bottom-up and sorts every child list.
void finishTree(FileNode* root) {
    struct Frame {
        FileNode* node;
        bool childrenDone;
    };
    std::vector<Frame> stack{{root, false}};
    std::vector<FileNode*> children;
    while (!stack.empty()) {
        const std::size_t top = stack.size() - 1;
        FileNode* node = stack[top].node;
        if (!stack[top].childrenDone) {
            stack[top].childrenDone = true;
            for (FileNode* child = node->firstChild; child != nullptr; child = child->nextSibling) {
                if (child->isDirectory() && child->firstChild != nullptr) {
                    stack.push_back({child, false});
                }
            }
            continue;
        }
        stack.pop_back();
        children.clear();
        std::int64_t size = 0;
        std::int64_t files = 0;
        for (FileNode* child = node->firstChild; child != nullptr; child = child->nextSibling) {
            if (child->fileCount == kUnreadableFolder) {
                continue;
            }
            children.push_back(child);
            if (__builtin_add_overflow(size, child->size, &size) ||
                __builtin_add_overflow(files, child->fileCount, &files)) {
                std::abort(); // 2^63 bytes: the tree is corrupt, not a real disk
            }
        }
        sortBySizeDescending(children);
        setChildren(node, children);
        node->size = size;
        node->fileCount = files;
    }
}

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
            result.tree->setRoot(
                result.tree->arena().create(rootNodeName(root), true, 0, 0, FileCategory::other));
        } else {
            result.accessDenied = true;
        }
        result.elapsedSeconds = std::chrono::duration<double>(Clock::now() - start).count();
        return result;
    }

    ForeignMounts mounts;
    bool checkMounts = false;
    if (!options.enterForeignFilesystems) {
        mounts = foreignMounts();
        char* real = realpath(root.c_str(), nullptr);
        checkMounts = real == nullptr || mounts.anyBelow(real);
        std::free(real);
        // The file system the root itself lies on is always walked (scanning /sys or /proc on
        // purpose); only other foreign mounts below it are left out.
        struct stat rootInfo {};
        if (fstat(fd, &rootInfo) == 0) {
            mounts.devices.erase(static_cast<std::uint64_t>(rootInfo.st_dev));
        }
    }
    FolderWalk walk =
        walkFolder(fd, root, rootNodeName(root), options, cancel, std::move(mounts), checkMounts);
    finishTree(walk.root);
    auto tree = std::make_shared<FileTree>(root);
    for (NodeArena& arena : walk.arenas) {
        tree->adopt(std::move(arena));
    }
    tree->setRoot(walk.root);
    result.tree = std::move(tree);
    result.items = walk.items;
    result.bytes = walk.bytes;
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
