// The JSON tree and ncdu export writers over a small hand-built tree.

#include "core/scan/tree_export.h"
#include "tests/fuzz/tree_export_fuzz_entry.h"

#include <gtest/gtest.h>

#include <sstream>

namespace sondrel {
namespace {

std::shared_ptr<FileTree> smallTree() {
    auto tree = std::make_shared<FileTree>("/data/home");
    NodeArena& arena = tree->arena();
    FileNode* root = arena.create("home", true, 30, 3);
    FileNode* docs = arena.create("docs", true, 20, 2);
    FileNode* leaf = arena.create("deep", true, 15, 1); // collapsed: no children, has a size
    FileNode* note = arena.create("a\nb.txt", false, 5, 1, FileCategory::document);
    FileNode* app = arena.create("Tool.app", false, 10, 1, FileCategory::application);
    FileNode* docChildren[] = {leaf, note};
    setChildren(docs, docChildren);
    FileNode* rootChildren[] = {docs, app};
    setChildren(root, rootChildren);
    tree->setRoot(root);
    return tree;
}

TEST(TreeExport, JsonTreeNamesEveryNodeAndGivesTheRootItsPath) {
    std::ostringstream out;
    ASSERT_TRUE(writeTreeJson(out, FileItem::rootOf(smallTree())));
    EXPECT_EQ(out.str(), "{\"name\":\"home\",\"path\":\"/data/home\",\"size\":30,\"fileCount\":3,"
                         "\"category\":\"Other\",\"isDirectory\":true,\"children\":["
                         "{\"name\":\"docs\",\"size\":20,\"fileCount\":2,"
                         "\"category\":\"Other\",\"isDirectory\":true,\"children\":["
                         "{\"name\":\"deep\",\"size\":15,\"fileCount\":1,"
                         "\"category\":\"Other\",\"isDirectory\":true,\"children\":[]},"
                         "{\"name\":\"a\\nb.txt\",\"size\":5,"
                         "\"fileCount\":1,\"category\":\"Documents\",\"isDirectory\":false}"
                         "]},"
                         "{\"name\":\"Tool.app\",\"size\":10,\"fileCount\":1,"
                         "\"category\":\"Applications\",\"isDirectory\":false}"
                         "]}\n");
}

TEST(TreeExport, JsonTreeSizeGrowsWithNodesNotDepth) {
    // A chain of 2,000 folders with 100-byte names: each name is written once.
    auto tree = std::make_shared<FileTree>("/chain");
    NodeArena& arena = tree->arena();
    FileNode* root = arena.create("chain", true, 1, 1);
    FileNode* parent = root;
    for (int i = 0; i < 2000; ++i) {
        FileNode* child = arena.create(std::string(100, 'n'), true, 1, 1);
        FileNode* only[] = {child};
        setChildren(parent, only);
        parent = child;
    }
    tree->setRoot(root);
    std::ostringstream out;
    ASSERT_TRUE(writeTreeJson(out, FileItem::rootOf(tree)));
    EXPECT_LT(out.str().size(), 2001U * 200U);
}

TEST(TreeExport, NonUtf8NamesStayDistinctAndReadBack) {
    // The byte E9 alone and the two bytes C3 A9 ("é") are different files.
    const std::string file("\0\x08", 2); // a separator and the control byte of a file
    const std::string input =
        std::string("/data/caf\xE9") + file + "caf\xE9" + file + "caf\xC3\xA9" + file + "\x1b[2J";
    const fuzz::FuzzTree built = fuzz::buildFuzzTree(input);
    ASSERT_EQ(built.names.size(), 3U);
    std::ostringstream json;
    ASSERT_TRUE(writeTreeJson(json, FileItem::rootOf(built.tree)));
    EXPECT_NE(json.str().find(R"("path":"/data/caf\udce9")"), std::string::npos) << json.str();
    EXPECT_NE(json.str().find(R"({"name":"caf\udce9","size")"), std::string::npos);
    EXPECT_NE(json.str().find("{\"name\":\"caf\xC3\xA9\",\"size\""), std::string::npos);
    EXPECT_NE(json.str().find(R"({"name":"\u001b[2J","size")"), std::string::npos);
    std::ostringstream ncdu;
    ASSERT_TRUE(writeNcduExport(ncdu, FileItem::rootOf(built.tree), 0));
    EXPECT_NE(ncdu.str().find(R"({"name":"caf\udce9","asize")"), std::string::npos);
    EXPECT_TRUE(fuzz::checkTreeJson(input));
    EXPECT_TRUE(fuzz::checkNcduExport(input));
}

TEST(TreeExport, NcduExportNestsFoldersAndGivesCollapsedFoldersTheirTotal) {
    std::ostringstream out;
    ASSERT_TRUE(writeNcduExport(out, FileItem::rootOf(smallTree()), 1700000000));
    const std::string text = out.str();
    EXPECT_EQ(text.rfind("[1,2,{\"progname\":\"sondrel\",", 0), 0U);
    EXPECT_NE(text.find("\"timestamp\":1700000000},\n[{\"name\":\"/data/home\",\"asize\":0,"),
              std::string::npos);
    EXPECT_NE(text.find("[{\"name\":\"docs\",\"asize\":0,\"dsize\":0},\n"
                        "[{\"name\":\"deep\",\"asize\":15,\"dsize\":15}],\n"
                        "{\"name\":\"a\\nb.txt\",\"asize\":5,\"dsize\":5}]"),
              std::string::npos)
        << text;
    EXPECT_EQ(text.substr(text.size() - 3), "]]\n");
}

} // namespace
} // namespace sondrel
