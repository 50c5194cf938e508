#pragma once
// Compact storage for the scanned size tree.
//
// A tree holds millions of nodes, so a node is a fixed 56-byte header followed by its name
// bytes, allocated from chunked arenas. A folder node also carries the bytes of its whole
// subtree per category (CategoryBytes, 144 bytes after the name); files carry nothing more. A node
// stores no path: its location is derived from the parent chain and the tree's root path. Children
// are a singly linked list in display order (largest first after sorting). Nodes are never freed
// one by one; the whole tree is released with its last owner (see FileItem, which holds the tree
// through a shared_ptr).
//
// Threading: an arena is used by one thread at a time. A scan gives every worker its own arena
// and hands them all to the FileTree when it finishes; after that the tree is touched on one
// thread only (the GUI thread in the app).

#include "core/model/file_category.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace sondrel {

/// Which of a node's two sizes `FileNode::size` holds.
enum class SizeMeasure : std::uint8_t {
    allocated, ///< bytes on disk: allocated blocks (`st_blocks * 512`), as `du` counts
    apparent,  ///< apparent length (`st_size`), as `du --apparent-size` counts
};

/// Bytes of a folder's whole subtree per FileCategory (indexed by the enum's value), in both
/// measures, counting every file below it, also those below the tree's depth limit. A folder's
/// entries add up to its size when its builder filled them (the scanner does; a hand-built
/// folder keeps zeros).
struct CategoryBytes {
    std::array<std::int64_t, kAllFileCategories.size()> size{};      ///< in the tree's measure
    std::array<std::int64_t, kAllFileCategories.size()> otherSize{}; ///< in the other measure

    /// Adds (sign 1) or takes off (sign -1) a file of `category` with the given sizes.
    void add(FileCategory category, std::int64_t bytes, std::int64_t otherBytes, int sign = 1) {
        size[static_cast<std::size_t>(category)] += sign * bytes;
        otherSize[static_cast<std::size_t>(category)] += sign * otherBytes;
    }
    /// Adds (sign 1) or takes off (sign -1) all of `other`'s entries.
    void add(const CategoryBytes& other, int sign = 1) {
        for (std::size_t i = 0; i < size.size(); ++i) {
            size[i] += sign * other.size[i];
            otherSize[i] += sign * other.otherSize[i];
        }
    }
};

/// One node of the size tree. Created only by NodeArena; the name bytes follow the header.
struct FileNode {
    /// Flag bits of `flags`.
    enum Flag : std::uint8_t {
        kDirectory = 1U << 0, ///< a folder (an application bundle is one too)
        kDetached = 1U << 1,  ///< removed from its parent's children (parent kept for the path)
    };

    FileNode* parent = nullptr;      ///< enclosing node; null for the root
    FileNode* firstChild = nullptr;  ///< first child in display order
    FileNode* nextSibling = nullptr; ///< next child of the same parent
    std::int64_t size = 0;           ///< bytes: own size, or the sum of the descendants
    std::int64_t otherSize = 0;      ///< the same in the tree's other SizeMeasure
    std::int64_t fileCount = 1;      ///< files under the node; a file counts 1
    std::uint32_t childCount = 0;    ///< length of the child list
    std::uint16_t nameLength = 0;    ///< bytes of the name that follows this header
    FileCategory category = FileCategory::other;
    std::uint8_t flags = 0;

    /// The name bytes as read from the disk (not necessarily UTF-8).
    std::string_view name() const { return {reinterpret_cast<const char*>(this + 1), nameLength}; }
    /// True for folders and bundles.
    bool isDirectory() const { return (flags & kDirectory) != 0; }
    /// True once the node was removed from its parent's child list.
    bool isDetached() const { return (flags & kDetached) != 0; }
    /// A folder's subtree bytes per category (stored after the name); null for files and
    /// bundles.
    CategoryBytes* categoryBytes() {
        return isDirectory() ? reinterpret_cast<CategoryBytes*>(categoryBytesAddress()) : nullptr;
    }
    const CategoryBytes* categoryBytes() const {
        return const_cast<FileNode*>(this)->categoryBytes();
    }
    /// Adds (sign 1) or takes off (sign -1) what this node holds to `bytes`: a folder its
    /// CategoryBytes, a file or bundle its sizes under its own category.
    void addTo(CategoryBytes& bytes, int sign = 1) const {
        if (const CategoryBytes* own = categoryBytes()) {
            bytes.add(*own, sign);
        } else {
            bytes.add(category, size, otherSize, sign);
        }
    }

private:
    std::byte* categoryBytesAddress() {
        const auto end = reinterpret_cast<std::uintptr_t>(this + 1) + nameLength;
        constexpr std::uintptr_t kAlign = alignof(CategoryBytes);
        return reinterpret_cast<std::byte*>((end + kAlign - 1) & ~(kAlign - 1));
    }
};

static_assert(sizeof(FileNode) == 56, "FileNode header must stay compact");

/// Bump allocator of FileNodes. Not thread-safe: one arena per building thread.
class NodeArena {
public:
    NodeArena() = default;
    NodeArena(NodeArena&&) noexcept = default;
    NodeArena& operator=(NodeArena&&) noexcept = default;
    NodeArena(const NodeArena&) = delete;
    NodeArena& operator=(const NodeArena&) = delete;
    ~NodeArena() = default;

    /// Creates a node with no parent and no children. Names longer than 65535 bytes are cut
    /// (no file system allows such names). A folder gets zeroed CategoryBytes. `otherSize` starts
    /// equal to `size`, so a builder that knows one measure only gives the same figures in both.
    /// The node lives as long as the arena's memory.
    FileNode* create(std::string_view name, bool isDirectory, std::int64_t size = 0,
                     std::int64_t fileCount = 1, FileCategory category = FileCategory::other);

    /// Bytes reserved by this arena's chunks.
    std::size_t bytesReserved() const { return m_reserved; }
    /// Bytes actually handed out to nodes (headers, names and alignment).
    std::size_t bytesUsed() const { return m_used; }
    /// Number of nodes created.
    std::size_t nodeCount() const { return m_nodes; }

private:
    friend class FileTree;
    std::vector<std::unique_ptr<std::byte[]>> m_chunks;
    std::byte* m_cursor = nullptr;
    std::size_t m_left = 0;
    std::size_t m_reserved = 0;
    std::size_t m_used = 0;
    std::size_t m_nodes = 0;
};

/// Links `children` under `parent` in the given order, replacing any previous child list, and
/// sets each child's `parent`. Does not change sizes.
void setChildren(FileNode* parent, std::span<FileNode* const> children);

/// Sets the CategoryBytes of `folder` (which must have some) to the sum of what its children
/// hold (see FileNode::addTo); a child folder's own CategoryBytes must be settled first. A
/// childless folder keeps its entries (a collapsed folder's are filled by its builder).
void sumCategoryBytes(FileNode* folder);

/// Stable sort of `nodes` by size, largest first (equal sizes keep their order).
void sortBySizeDescending(std::vector<FileNode*>& nodes);

/// Owner of a whole scanned tree: its arenas, its root node and the root's absolute path.
class FileTree {
public:
    /// Creates an empty tree whose root will live at `rootPath` (absolute, bytes).
    explicit FileTree(std::string rootPath);
    FileTree(const FileTree&) = delete;
    FileTree& operator=(const FileTree&) = delete;
    ~FileTree() = default;

    /// Takes ownership of an arena's nodes (moved from `arena`). Call before sharing the tree.
    void adopt(NodeArena&& arena);
    /// Sets the root node (it must belong to an adopted arena or to `arena()`).
    void setRoot(FileNode* root) { m_root = root; }

    /// The tree's own arena, for building small trees on one thread (tests, single-threaded
    /// builders). Nodes created here are owned by the tree.
    NodeArena& arena() { return m_ownArena; }

    /// The root node, null before setRoot.
    FileNode* root() const { return m_root; }
    /// Absolute path of the root node.
    const std::string& rootPath() const { return m_rootPath; }

    /// The measure every node's `size` holds (the other is in `otherSize`).
    SizeMeasure measure() const { return m_measure; }
    /// Records which measure the builder put in `size`, changing no node. Before sharing.
    void declareMeasure(SizeMeasure measure) { m_measure = measure; }
    /// Makes `size` hold `measure`: swaps the two sizes of every node (and of every folder's
    /// CategoryBytes), detached ones included, and re-sorts every child list largest first. No
    /// effect when it already does. O(nodes); on the thread that owns the tree.
    void setMeasure(SizeMeasure measure);
    /// Bookkeeping of FileItem::removeFromParent/reattachToParent, so that setMeasure also
    /// reaches nodes outside the child lists.
    void noteDetached(FileNode* node, bool detached);
    /// A number unique to this tree for the life of the process; part of every node's id.
    std::uint64_t serial() const { return m_serial; }

    /// Absolute path of `node`, derived from the parent chain (bytes, not necessarily UTF-8).
    std::string pathOf(const FileNode* node) const;

    /// Total nodes and bytes used by all arenas of this tree (for memory reports).
    std::size_t nodeCount() const;
    /// Bytes handed out to nodes including names and alignment.
    std::size_t bytesUsed() const;
    /// Bytes reserved in arena chunks (what the process actually holds).
    std::size_t bytesReserved() const;

private:
    std::string m_rootPath;
    std::uint64_t m_serial;
    FileNode* m_root = nullptr;
    SizeMeasure m_measure = SizeMeasure::apparent;
    std::vector<FileNode*> m_detached;
    NodeArena m_ownArena;
    std::vector<NodeArena> m_arenas;
};

} // namespace sondrel
