#include "core/model/file_item.h"

#include "core/model/byte_format.h"

namespace sondrel {

FileItem::FileItem(std::shared_ptr<FileTree> tree, FileNode* node)
    : m_tree(std::move(tree)), m_node(node) {}

FileItem FileItem::rootOf(std::shared_ptr<FileTree> tree) {
    if (!tree || tree->root() == nullptr) {
        return {};
    }
    FileNode* root = tree->root();
    return {std::move(tree), root};
}

FileItemId FileItem::id() const {
    if (m_node == nullptr) {
        return {};
    }
    return {m_tree->serial(), reinterpret_cast<std::uintptr_t>(m_node)};
}

std::string FileItem::url() const {
    return m_tree->pathOf(m_node);
}

std::vector<FileItem> FileItem::children() const {
    std::vector<FileItem> list;
    list.reserve(m_node->childCount);
    for (FileNode* child = m_node->firstChild; child != nullptr; child = child->nextSibling) {
        list.emplace_back(m_tree, child);
    }
    return list;
}

void FileItem::forEachChild(const std::function<void(const FileNode&)>& visit) const {
    for (const FileNode* child = m_node->firstChild; child != nullptr; child = child->nextSibling) {
        visit(*child);
    }
}

FileItem FileItem::parent() const {
    if (m_node->parent == nullptr || m_node->isDetached()) {
        return {};
    }
    return {m_tree, m_node->parent};
}

FileCategory FileItem::dominantCategory() const {
    const CategoryBytes* bytes = m_node->categoryBytes();
    if (bytes == nullptr) {
        return m_node->category;
    }
    FileCategory best = m_node->category;
    std::int64_t most = 0;
    for (const FileCategory category : kAllFileCategories) {
        const std::int64_t held = bytes->size[static_cast<std::size_t>(category)];
        if (held > most) {
            most = held;
            best = category;
        }
    }
    return best;
}

std::array<std::int64_t, kAllFileCategories.size()> FileItem::categoryBreakdown() const {
    if (const CategoryBytes* bytes = m_node->categoryBytes()) {
        return bytes->size;
    }
    std::array<std::int64_t, kAllFileCategories.size()> sums{};
    sums[static_cast<std::size_t>(m_node->category)] = m_node->size;
    return sums;
}

std::string FileItem::formattedSize() const {
    return formatBytes(m_node->size);
}

double FileItem::percentageOfParent() const {
    const FileItem up = parent();
    if (!up || up.size() < 1) {
        return 1.0;
    }
    return static_cast<double>(m_node->size) / static_cast<double>(up.size());
}

ReclaimableStatus FileItem::reclaimableStatus() const {
    return reclaimableStatusFor(url());
}

std::string_view FileItem::removalRationale() const {
    return removalRationaleFor(url(), m_node->category);
}

bool FileItem::removeFromParent() const {
    FileNode* up = m_node->parent;
    if (up == nullptr || m_node->isDetached()) {
        return false;
    }
    FileNode** link = &up->firstChild;
    while (*link != nullptr) {
        if (*link == m_node) {
            *link = m_node->nextSibling;
            --up->childCount;
        } else {
            link = &(*link)->nextSibling;
        }
    }
    m_node->nextSibling = nullptr;
    m_node->flags |= FileNode::kDetached;
    up->size -= m_node->size;
    up->otherSize -= m_node->otherSize;
    m_node->addTo(*up->categoryBytes(), -1);
    m_tree->noteDetached(m_node, true);
    return true;
}

bool FileItem::reattachToParent() const {
    FileNode* up = m_node->parent;
    if (up == nullptr || !m_node->isDetached()) {
        return false;
    }
    FileNode** link = &up->firstChild;
    while (*link != nullptr && (*link)->size >= m_node->size) {
        link = &(*link)->nextSibling;
    }
    m_node->nextSibling = *link;
    *link = m_node;
    ++up->childCount;
    m_node->flags = static_cast<std::uint8_t>(m_node->flags & ~FileNode::kDetached);
    up->size += m_node->size;
    up->otherSize += m_node->otherSize;
    m_node->addTo(*up->categoryBytes());
    m_tree->noteDetached(m_node, false);
    return true;
}

} // namespace sondrel
