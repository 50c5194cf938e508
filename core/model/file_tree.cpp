#include "core/model/file_tree.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <new>

namespace sondrel {

namespace {

constexpr std::size_t kChunkBytes = 256 * 1024;
constexpr std::size_t kAlign = alignof(FileNode);

std::size_t alignedSize(std::size_t bytes) {
    return (bytes + kAlign - 1) & ~(kAlign - 1);
}

std::atomic<std::uint64_t> g_nextTreeSerial{1};

} // namespace

FileNode* NodeArena::create(std::string_view name, bool isDirectory, std::int64_t size,
                            std::int64_t fileCount, FileCategory category) {
    const std::size_t nameLength = std::min<std::size_t>(name.size(), 0xFFFF);
    static_assert(alignof(CategoryBytes) <= kAlign && sizeof(CategoryBytes) % kAlign == 0);
    const std::size_t bytes =
        alignedSize(sizeof(FileNode) + nameLength) + (isDirectory ? sizeof(CategoryBytes) : 0);
    if (bytes > m_left) {
        const std::size_t chunk = std::max(kChunkBytes, bytes);
        // operator new[] for std::byte returns memory aligned for any fundamental type.
        m_chunks.emplace_back(new std::byte[chunk]);
        m_cursor = m_chunks.back().get();
        m_left = chunk;
        m_reserved += chunk;
    }
    auto* node = new (m_cursor) FileNode{};
    node->size = size;
    node->otherSize = size;
    node->fileCount = fileCount;
    node->nameLength = static_cast<std::uint16_t>(nameLength);
    node->category = category;
    node->flags = isDirectory ? FileNode::kDirectory : 0;
    if (nameLength > 0) {
        std::memcpy(node + 1, name.data(), nameLength);
    }
    if (isDirectory) {
        new (node->categoryBytes()) CategoryBytes{};
    }
    m_cursor += bytes;
    m_left -= bytes;
    m_used += bytes;
    ++m_nodes;
    return node;
}

void setChildren(FileNode* parent, std::span<FileNode* const> children) {
    FileNode* next = nullptr;
    for (auto it = children.rbegin(); it != children.rend(); ++it) {
        (*it)->parent = parent;
        (*it)->nextSibling = next;
        next = *it;
    }
    parent->firstChild = next;
    parent->childCount = static_cast<std::uint32_t>(children.size());
}

void sumCategoryBytes(FileNode* folder) {
    if (folder->firstChild == nullptr) {
        return;
    }
    CategoryBytes sum;
    for (const FileNode* child = folder->firstChild; child != nullptr; child = child->nextSibling) {
        child->addTo(sum);
    }
    *folder->categoryBytes() = sum;
}

void sortBySizeDescending(std::vector<FileNode*>& nodes) {
    std::stable_sort(nodes.begin(), nodes.end(),
                     [](const FileNode* a, const FileNode* b) { return a->size > b->size; });
}

FileTree::FileTree(std::string rootPath)
    : m_rootPath(std::move(rootPath)), m_serial(g_nextTreeSerial.fetch_add(1)) {}

void FileTree::setMeasure(SizeMeasure measure) {
    if (measure == m_measure) {
        return;
    }
    m_measure = measure;
    std::vector<FileNode*> stack(m_detached);
    if (m_root != nullptr) {
        stack.push_back(m_root);
    }
    std::vector<FileNode*> children;
    while (!stack.empty()) {
        FileNode* node = stack.back();
        stack.pop_back();
        std::swap(node->size, node->otherSize);
        if (CategoryBytes* bytes = node->categoryBytes()) {
            std::swap(bytes->size, bytes->otherSize);
        }
        if (node->firstChild == nullptr) {
            continue;
        }
        children.clear();
        for (FileNode* child = node->firstChild; child != nullptr; child = child->nextSibling) {
            children.push_back(child);
            stack.push_back(child);
        }
        // Children are swapped later; sort them by the measure they are about to show.
        std::stable_sort(
            children.begin(), children.end(),
            [](const FileNode* a, const FileNode* b) { return a->otherSize > b->otherSize; });
        setChildren(node, children);
    }
}

void FileTree::noteDetached(FileNode* node, bool detached) {
    if (detached) {
        m_detached.push_back(node);
    } else {
        std::erase(m_detached, node);
    }
}

void FileTree::adopt(NodeArena&& arena) {
    m_arenas.push_back(std::move(arena));
}

std::string FileTree::pathOf(const FileNode* node) const {
    std::vector<std::string_view> names;
    const FileNode* top = node;
    while (top->parent != nullptr) {
        names.push_back(top->name());
        top = top->parent;
    }
    std::string path = top == m_root ? m_rootPath : std::string(top->name());
    for (auto it = names.rbegin(); it != names.rend(); ++it) {
        if (path.empty() || path.back() != '/') {
            path += '/';
        }
        path += *it;
    }
    return path;
}

std::size_t FileTree::nodeCount() const {
    std::size_t total = m_ownArena.nodeCount();
    for (const NodeArena& arena : m_arenas) {
        total += arena.nodeCount();
    }
    return total;
}

std::size_t FileTree::bytesUsed() const {
    std::size_t total = m_ownArena.bytesUsed();
    for (const NodeArena& arena : m_arenas) {
        total += arena.bytesUsed();
    }
    return total;
}

std::size_t FileTree::bytesReserved() const {
    std::size_t total = m_ownArena.bytesReserved();
    for (const NodeArena& arena : m_arenas) {
        total += arena.bytesReserved();
    }
    return total;
}

} // namespace sondrel
