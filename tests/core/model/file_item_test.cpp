// The size tree: derived paths, identity, shares of the parent, removal from the parent, the
// lifetime of handles after a new tree replaces the old one, and the memory a node costs.

#include "core/model/file_item.h"

#include <gtest/gtest.h>

#include <memory>
#include <unordered_set>

namespace sondrel {
namespace {

// /scan -> docs (folder) -> report.pdf (600), notes.txt (400); big.iso (3000) at the top.
struct SmallTree {
    std::shared_ptr<FileTree> tree = std::make_shared<FileTree>("/scan");
    FileNode* root = nullptr;
    FileNode* docs = nullptr;
    FileNode* report = nullptr;
    FileNode* notes = nullptr;
    FileNode* iso = nullptr;

    SmallTree() {
        NodeArena& arena = tree->arena();
        root = arena.create("scan", true, 4000, 3);
        docs = arena.create("docs", true, 1000, 2);
        report = arena.create("report.pdf", false, 600, 1, FileCategory::document);
        notes = arena.create("notes.txt", false, 400, 1, FileCategory::document);
        iso = arena.create("big.iso", false, 3000, 1, FileCategory::archive);
        std::vector<FileNode*> docsChildren{report, notes};
        setChildren(docs, docsChildren);
        std::vector<FileNode*> top{docs, iso};
        sortBySizeDescending(top);
        setChildren(root, top);
        tree->setRoot(root);
    }
    FileItem item(FileNode* node) const { return {tree, node}; }
};

TEST(FileItem, PathsAreDerivedFromTheParentChain) {
    SmallTree t;
    EXPECT_EQ(t.item(t.root).url(), "/scan");
    EXPECT_EQ(t.item(t.report).url(), "/scan/docs/report.pdf");
    EXPECT_EQ(t.item(t.report).name(), "report.pdf");

    auto rootTree = std::make_shared<FileTree>("/");
    FileNode* slashRoot = rootTree->arena().create("/", true);
    FileNode* etc = rootTree->arena().create("etc", true);
    std::vector<FileNode*> kids{etc};
    setChildren(slashRoot, kids);
    rootTree->setRoot(slashRoot);
    EXPECT_EQ(FileItem(rootTree, etc).url(), "/etc");
}

TEST(FileItem, ChildrenAreLargestFirstAndStable) {
    SmallTree t;
    const auto children = FileItem::rootOf(t.tree).children();
    ASSERT_EQ(children.size(), 2U);
    EXPECT_EQ(children[0].name(), "big.iso");
    EXPECT_EQ(children[1].name(), "docs");

    NodeArena arena;
    std::vector<FileNode*> nodes;
    for (const char* name : {"a", "b", "c", "d"}) {
        nodes.push_back(arena.create(name, false, std::string_view(name) == "c" ? 9 : 5));
    }
    sortBySizeDescending(nodes);
    EXPECT_EQ(nodes[0]->name(), "c");
    EXPECT_EQ(nodes[1]->name(), "a");
    EXPECT_EQ(nodes[2]->name(), "b");
    EXPECT_EQ(nodes[3]->name(), "d");
}

TEST(FileItem, IdentityIsPerNodeAndPerTree) {
    SmallTree first;
    SmallTree second;
    EXPECT_EQ(first.item(first.docs), first.item(first.docs));
    EXPECT_NE(first.item(first.docs), first.item(first.notes));
    // Same path, different scan: different items.
    EXPECT_NE(first.item(first.docs), second.item(second.docs));
    std::unordered_set<FileItem> set{first.item(first.docs), first.item(first.docs),
                                     second.item(second.docs)};
    EXPECT_EQ(set.size(), 2U);
}

TEST(FileItem, PercentageOfParent) {
    SmallTree t;
    EXPECT_DOUBLE_EQ(t.item(t.root).percentageOfParent(), 1.0);
    EXPECT_DOUBLE_EQ(t.item(t.iso).percentageOfParent(), 0.75);
    EXPECT_DOUBLE_EQ(t.item(t.report).percentageOfParent(), 0.6);
    t.docs->size = 0;
    EXPECT_DOUBLE_EQ(t.item(t.report).percentageOfParent(), 1.0);
    t.item(t.docs).removeFromParent();
    // A detached node no longer reaches its former parent.
    EXPECT_FALSE(t.item(t.docs).parent());
    EXPECT_DOUBLE_EQ(t.item(t.docs).percentageOfParent(), 1.0);
}

TEST(FileItem, RemovingAdjustsOnlyTheDirectParent) {
    SmallTree t;
    const FileItem report = t.item(t.report);
    ASSERT_TRUE(report.removeFromParent());
    EXPECT_EQ(t.docs->size, 400);
    EXPECT_EQ(t.docs->childCount, 1U);
    EXPECT_EQ(t.docs->firstChild, t.notes);
    EXPECT_EQ(t.root->size, 4000); // ancestors keep their totals until the next scan
    EXPECT_EQ(t.docs->fileCount, 2);
    EXPECT_EQ(report.url(), "/scan/docs/report.pdf"); // still names where it was
    EXPECT_FALSE(report.removeFromParent());
    EXPECT_FALSE(FileItem::rootOf(t.tree).removeFromParent());

    // Putting it back (an undone move to the Trash) restores the list order and the size.
    ASSERT_TRUE(report.reattachToParent());
    EXPECT_EQ(t.docs->size, 1000);
    EXPECT_EQ(t.docs->childCount, 2U);
    EXPECT_EQ(t.docs->firstChild, t.report);
    EXPECT_EQ(t.report->nextSibling, t.notes);
    EXPECT_EQ(report.parent(), t.item(t.docs));
    EXPECT_FALSE(report.reattachToParent());
    // The smallest child goes back at the end.
    const FileItem notes = t.item(t.notes);
    ASSERT_TRUE(notes.removeFromParent());
    ASSERT_TRUE(notes.reattachToParent());
    EXPECT_EQ(t.report->nextSibling, t.notes);
    EXPECT_EQ(t.notes->nextSibling, nullptr);
}

TEST(FileItem, AHeldNodeOutlivesItsScan) {
    FileItem held;
    {
        SmallTree t;
        held = t.item(t.docs);
    } // the scanner's root and every other handle are gone
    EXPECT_EQ(held.url(), "/scan/docs");
    ASSERT_EQ(held.children().size(), 2U);
    EXPECT_EQ(held.children()[0].name(), "report.pdf");
    EXPECT_EQ(held.children()[0].formattedSize(), "600 bytes");
}

TEST(FileItem, JudgementsComeFromTheDerivedPath) {
    auto tree = std::make_shared<FileTree>("/Users/a/Downloads");
    FileNode* root = tree->arena().create("Downloads", true);
    FileNode* dmg = tree->arena().create("setup.DMG", false, 5, 1, FileCategory::archive);
    std::vector<FileNode*> kids{dmg};
    setChildren(root, kids);
    tree->setRoot(root);
    const FileItem item(tree, dmg);
    EXPECT_EQ(item.reclaimableStatus(), ReclaimableStatus::safeToClean);
    EXPECT_EQ(std::string(item.removalRationale()).rfind("Downloaded software installer", 0), 0U);
}

TEST(FileItem, NodeCostStaysWithinBudget) {
    // A million nodes with typical 12-byte names: at most 64 bytes per node plus the name.
    auto tree = std::make_shared<FileTree>("/big");
    NodeArena& arena = tree->arena();
    constexpr std::size_t kNodes = 1'000'000;
    for (std::size_t i = 0; i < kNodes; ++i) {
        arena.create("file-000000.", false, 1);
    }
    const double perNode = static_cast<double>(tree->bytesReserved()) / kNodes;
    EXPECT_LE(perNode, 64.0 + 12.0) << perNode << " bytes per node";
    EXPECT_EQ(tree->nodeCount(), kNodes);
}

} // namespace
} // namespace sondrel
