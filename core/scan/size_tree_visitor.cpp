#include "core/scan/size_tree_visitor.h"

#include "core/model/file_category.h"
#include "core/util/path_text.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <dirent.h>

namespace sondrel {

namespace {

// What a folder token stands for. `object` is always a FileNode*.
enum Tag : std::uint32_t {
    kExpand,      // a folder with children: its node
    kLeaf,        // a folder below the depth limit: its childless leaf
    kInsideLeaf,  // a folder inside such a leaf: the leaf it adds to
    kBundle,      // an application bundle: its node (shown as one file)
    kInsideBundle // a folder inside a bundle: the bundle it adds to
};

// Marks, in `fileCount`, a node to be dropped by finish(): a folder that could not be opened,
// or one (or a bundle) that a cancelled walk never reached.
constexpr std::int64_t kDropped = -1;
// Marks, in `size`, a file whose stat has not arrived (yet).
constexpr std::int64_t kUnmeasured = -1;

FileNode* nodeOf(FolderToken token) {
    return static_cast<FileNode*>(token.object);
}

// Children are prepended as they are listed (one folder is listed by one worker, so no lock);
// finish() restores the listing order.
void prepend(FileNode* parent, FileNode* child) {
    child->parent = parent;
    child->nextSibling = parent->firstChild;
    parent->firstChild = child;
    ++parent->childCount;
}

} // namespace

SizeTreeVisitor::SizeTreeVisitor(std::string_view rootName, int maxDepth, SizeMeasure measure)
    : m_maxDepth(std::max(1, maxDepth)), m_measure(measure) {
    m_root = m_rootArena.create(rootName, true, 0, 0, FileCategory::other);
}

FolderToken SizeTreeVisitor::rootToken() const {
    return {m_root, kExpand};
}

void SizeTreeVisitor::prepare(unsigned workers) {
    m_workers = std::vector<WorkerState>(workers);
}

bool SizeTreeVisitor::folderFound(WalkWorker& worker, const WalkEntry& entry, FolderToken& child) {
    FileNode* parent = nodeOf(entry.parent);
    switch (entry.parent.tag) {
    case kInsideLeaf:
    case kLeaf:
        child = {parent, kInsideLeaf};
        return true;
    case kInsideBundle:
    case kBundle:
        child = {parent, kInsideBundle};
        return true;
    default:
        break;
    }
    NodeArena& nodes = m_workers[worker.index()].arena;
    if (endsWith(entry.name, ".app") && !endsWith(parent->name(), ".app")) {
        // An application bundle is one item: measured whole, shown as a file.
        FileNode* node = nodes.create(entry.name, false, 0, 1, categoryFrom(entry.name, false));
        prepend(parent, node);
        worker.report(3, 0);
        child = {node, kBundle};
    } else if (entry.depth <= m_maxDepth) {
        FileNode* node = nodes.create(entry.name, true, 0, 0, FileCategory::other);
        prepend(parent, node);
        child = {node, kExpand};
    } else {
        FileNode* node = nodes.create(entry.name, true, 0, 0, FileCategory::other);
        prepend(parent, node);
        worker.report(1, 0);
        child = {node, kLeaf};
    }
    return true;
}

bool SizeTreeVisitor::fileFound(WalkWorker& worker, const WalkEntry& entry, void*& slot) {
    if (entry.type == DT_LNK) {
        return false; // links are never followed nor counted
    }
    if (entry.parent.tag != kExpand) {
        return entry.type == DT_REG; // leaves and bundles add their regular files only
    }
    FileNode* file = m_workers[worker.index()].arena.create(entry.name, false, kUnmeasured, 1,
                                                            categoryFrom(entry.name, false));
    prepend(nodeOf(entry.parent), file);
    slot = file;
    return true;
}

void SizeTreeVisitor::fileStat(WalkWorker& worker, FolderToken parent, void* slot,
                               std::string_view name, const struct stat* info) {
    WorkerState& state = m_workers[worker.index()];
    const bool regular = info != nullptr && S_ISREG(info->st_mode);
    const bool counted = info != nullptr && !S_ISDIR(info->st_mode) && !S_ISLNK(info->st_mode);
    const std::int64_t apparent = counted ? std::max<std::int64_t>(0, info->st_size) : 0;
    const std::int64_t allocated = counted ? std::max<std::int64_t>(0, info->st_blocks) * 512 : 0;
    const bool apparentFirst = m_measure == SizeMeasure::apparent;
    const std::int64_t size = apparentFirst ? apparent : allocated;
    const std::int64_t other = apparentFirst ? allocated : apparent;
    if (parent.tag == kExpand) {
        auto* file = static_cast<FileNode*>(slot);
        file->size = size; // a failed stat leaves a file of size 0
        file->otherSize = other;
        if (regular && info->st_nlink > 1) {
            state.links.push_back({static_cast<std::uint64_t>(info->st_dev),
                                   static_cast<std::uint64_t>(info->st_ino), file, size, other, 1,
                                   file->category});
        }
        worker.report(1, size);
        return;
    }
    if (!regular) {
        return;
    }
    state.pendingBytes += size;
    state.pendingOther += other;
    ++state.pendingFiles;
    const bool bundle = parent.tag == kBundle || parent.tag == kInsideBundle;
    // A collapsed folder still knows its bytes per category; a bundle is one application.
    const FileCategory category = bundle ? FileCategory::application : categoryFrom(name, false);
    if (!bundle) {
        state.pendingCategories.add(category, size, other);
    }
    if (info->st_nlink > 1) {
        state.links.push_back({static_cast<std::uint64_t>(info->st_dev),
                               static_cast<std::uint64_t>(info->st_ino), nodeOf(parent), size,
                               other, bundle ? 3 : 1, category});
    }
}

void SizeTreeVisitor::statBatchDone(WalkWorker& worker, FolderToken folder) {
    WorkerState& state = m_workers[worker.index()];
    if (state.pendingFiles == 0 && state.pendingBytes == 0) {
        return;
    }
    FileNode* leaf = nodeOf(folder);
    std::atomic_ref<std::int64_t>(leaf->size).fetch_add(state.pendingBytes);
    std::atomic_ref<std::int64_t>(leaf->otherSize).fetch_add(state.pendingOther);
    if (folder.tag == kLeaf || folder.tag == kInsideLeaf) {
        std::atomic_ref<std::int64_t>(leaf->fileCount).fetch_add(state.pendingFiles);
        CategoryBytes& pending = state.pendingCategories;
        CategoryBytes& bytes = *leaf->categoryBytes();
        for (std::size_t i = 0; i < pending.size.size(); ++i) {
            if (pending.size[i] != 0 || pending.otherSize[i] != 0) {
                std::atomic_ref<std::int64_t>(bytes.size[i]).fetch_add(pending.size[i]);
                std::atomic_ref<std::int64_t>(bytes.otherSize[i]).fetch_add(pending.otherSize[i]);
                pending.size[i] = 0;
                pending.otherSize[i] = 0;
            }
        }
        worker.report(0, state.pendingBytes);
    } else {
        worker.report(0, 3 * state.pendingBytes); // a bundle is reported three times
    }
    state.pendingBytes = 0;
    state.pendingOther = 0;
    state.pendingFiles = 0;
}

void SizeTreeVisitor::folderSkipped(WalkWorker& worker, FolderToken folder, FolderSkip why) {
    (void)worker;
    FileNode* node = nodeOf(folder);
    switch (why) {
    case FolderSkip::mountPoint:
        return; // shown as an empty folder
    case FolderSkip::unreadable:
        // A folder that cannot be opened is left out; an unreadable bundle stays, empty.
        if (folder.tag == kExpand || folder.tag == kLeaf) {
            std::atomic_ref<std::int64_t>(node->fileCount).store(kDropped);
        }
        return;
    case FolderSkip::cancelled:
        // Never measured: not shown, so the totals are the sum of what is shown.
        if (folder.tag == kExpand || folder.tag == kLeaf || folder.tag == kBundle) {
            std::atomic_ref<std::int64_t>(node->fileCount).store(kDropped);
        }
        return;
    }
}

std::int64_t SizeTreeVisitor::finish(FileTree& tree) {
    std::vector<LinkSighting> links;
    for (WorkerState& state : m_workers) {
        links.insert(links.end(), state.links.begin(), state.links.end());
        state.links.clear();
    }
    const std::int64_t duplicateBytes = keepBytesAtOneLink(links);

    // Bottom-up: drop, sum, sort.
    struct Frame {
        FileNode* node;
        bool childrenDone;
    };
    std::vector<Frame> stack{{m_root, false}};
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
        std::int64_t other = 0;
        std::int64_t files = 0;
        for (FileNode* child = node->firstChild; child != nullptr; child = child->nextSibling) {
            if (child->fileCount == kDropped || (!child->isDirectory() && child->size < 0)) {
                continue;
            }
            children.push_back(child);
            if (__builtin_add_overflow(size, child->size, &size) ||
                __builtin_add_overflow(other, child->otherSize, &other) ||
                __builtin_add_overflow(files, child->fileCount, &files)) {
                std::abort(); // 2^63 bytes: the tree is corrupt, not a real disk
            }
        }
        std::reverse(children.begin(), children.end()); // back to listing order
        sortBySizeDescending(children);
        setChildren(node, children);
        sumCategoryBytes(node);
        node->size = size;
        node->otherSize = other;
        node->fileCount = files;
    }

    tree.adopt(std::move(m_rootArena));
    for (WorkerState& state : m_workers) {
        tree.adopt(std::move(state.arena));
    }
    tree.setRoot(m_root);
    return duplicateBytes;
}

} // namespace sondrel
