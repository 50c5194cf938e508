#pragma once
// FileItem: the handle through which everything outside the scanner sees a node of the tree.
//
// A FileItem is a (tree, node) pair. It keeps the whole tree's memory alive, so a view that holds
// a node (the folder being viewed, the selection) can go on using it and its subtree after the
// scanner has published a new root. It never keeps a node alive through `parent`: the parent is
// only reachable while the node is attached, and a detached node reports no parent (and so a
// percentageOfParent of 1.0).
//
// Identity is cheap: (tree serial, node address). Two handles are equal exactly when they name
// the same node of the same tree; two nodes made for the same path are different items.
//
// Threading: reading is safe from any thread while nobody mutates; the mutators
// (setSize, removeFromParent) are for the one thread that owns the tree (the GUI thread).

#include "core/model/file_category.h"
#include "core/model/file_tree.h"
#include "core/model/reclaimable_status.h"

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace sondrel {

/// Identity of a node: unique for the life of the process while its tree is alive.
struct FileItemId {
    std::uint64_t treeSerial = 0;
    std::uintptr_t node = 0;
    friend bool operator==(const FileItemId&, const FileItemId&) = default;
};

/// Shared handle to one node of a FileTree. A default-constructed FileItem is null.
class FileItem {
public:
    FileItem() = default;
    /// Wraps `node`, which must belong to `tree`.
    FileItem(std::shared_ptr<FileTree> tree, FileNode* node);
    /// Handle to the root of `tree` (null when the tree has no root).
    static FileItem rootOf(std::shared_ptr<FileTree> tree);

    /// True when this handle names a node.
    explicit operator bool() const { return m_node != nullptr; }

    FileItemId id() const;
    /// Absolute location, derived from the parent chain (bytes).
    std::string url() const;
    /// Name as read from the disk (bytes; may be invalid UTF-8).
    std::string_view name() const { return m_node->name(); }
    bool isDirectory() const { return m_node->isDirectory(); }
    std::int64_t size() const { return m_node->size; }
    std::int64_t fileCount() const { return m_node->fileCount; }
    FileCategory category() const { return m_node->category; }
    /// The category a visualisation colours the item with: for a folder the one that holds most
    /// of its subtree's bytes in the tree's measure (the first in display order on a tie), its
    /// own category when it holds no bytes; for a file or bundle its category.
    FileCategory dominantCategory() const;
    /// Bytes of the item's whole subtree per category (indexed by FileCategory) in the tree's
    /// measure: a folder's CategoryBytes, a file's size under its own category.
    std::array<std::int64_t, kAllFileCategories.size()> categoryBreakdown() const;
    /// Number of direct children.
    std::size_t childCount() const { return m_node->childCount; }
    /// Direct children, largest first.
    std::vector<FileItem> children() const;
    /// Calls `visit` for each direct child in order without making handles (hot paths).
    void forEachChild(const std::function<void(const FileNode&)>& visit) const;
    /// The enclosing node, or a null item for the root and for a detached node.
    FileItem parent() const;

    /// Size text, for example "1.2 MB".
    std::string formattedSize() const;
    /// Fraction 0..1 of the parent's size; 1.0 without a parent or when the parent's size < 1.
    double percentageOfParent() const;
    /// Safety verdict from the path.
    ReclaimableStatus reclaimableStatus() const;
    /// One-sentence removal rationale from the path and category.
    std::string_view removalRationale() const;

    /// Sets the size (GUI thread only).
    void setSize(std::int64_t size) const { m_node->size = size; }
    /// Removes every child with this item's id from the parent's list, subtracts this item's
    /// size from the direct parent only (ancestors and file counts keep their values) and marks
    /// the item detached. Returns false (and changes nothing) for a root or detached item.
    bool removeFromParent() const;
    /// Undoes removeFromParent: links the item back into its parent's children at its place by
    /// size and adds its size back to the direct parent. Returns false (and changes nothing)
    /// unless the item is detached.
    bool reattachToParent() const;

    /// The underlying node and tree, for code that walks many nodes at once.
    const FileNode* node() const { return m_node; }
    const std::shared_ptr<FileTree>& tree() const { return m_tree; }

    friend bool operator==(const FileItem& a, const FileItem& b) { return a.id() == b.id(); }

private:
    std::shared_ptr<FileTree> m_tree;
    FileNode* m_node = nullptr;
};

} // namespace sondrel

template <> struct std::hash<sondrel::FileItemId> {
    std::size_t operator()(const sondrel::FileItemId& id) const noexcept {
        return std::hash<std::uint64_t>{}(id.treeSerial * 0x9E3779B97F4A7C15ULL ^ id.node);
    }
};

template <> struct std::hash<sondrel::FileItem> {
    std::size_t operator()(const sondrel::FileItem& item) const noexcept {
        return std::hash<sondrel::FileItemId>{}(item.id());
    }
};
