// The JSON tree and ncdu export writers over a small hand-built tree.

#include "core/scan/tree_export.h"

#include <gtest/gtest.h>

#include <sstream>

namespace sondrel {
namespace {

TEST(TreeExport, JsonStringsKeepEveryByte) {
    const struct {
        std::string_view bytes;
        std::string_view json;
    } cases[] = {
        {"plain", "\"plain\""},
        {"quote\" back\\", "\"quote\\\" back\\\\\""},
        {"new\nline\ttab\x01", "\"new\\nline\\ttab\\u0001\""},
        {"caf\xC3\xA9", "\"caf\xC3\xA9\""},                  // valid UTF-8 passes through
        {"bad\xff\xC3\xA9", "\"bad\\u00ff\\u00c3\\u00a9\""}, // invalid: every high byte escaped
    };
    for (const auto& c : cases) {
        std::string out;
        appendJsonString(out, c.bytes);
        EXPECT_EQ(out, c.json);
    }
}

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

TEST(TreeExport, JsonTreeHasEveryNodeWithItsPath) {
    std::ostringstream out;
    ASSERT_TRUE(writeTreeJson(out, FileItem::rootOf(smallTree())));
    EXPECT_EQ(out.str(),
              "{\"name\":\"home\",\"path\":\"/data/home\",\"size\":30,\"fileCount\":3,"
              "\"category\":\"Other\",\"isDirectory\":true,\"children\":["
              "{\"name\":\"docs\",\"path\":\"/data/home/docs\",\"size\":20,\"fileCount\":2,"
              "\"category\":\"Other\",\"isDirectory\":true,\"children\":["
              "{\"name\":\"deep\",\"path\":\"/data/home/docs/deep\",\"size\":15,\"fileCount\":1,"
              "\"category\":\"Other\",\"isDirectory\":true,\"children\":[]},"
              "{\"name\":\"a\\nb.txt\",\"path\":\"/data/home/docs/a\\nb.txt\",\"size\":5,"
              "\"fileCount\":1,\"category\":\"Documents\",\"isDirectory\":false,\"children\":[]}"
              "]},"
              "{\"name\":\"Tool.app\",\"path\":\"/data/home/Tool.app\",\"size\":10,\"fileCount\":1,"
              "\"category\":\"Applications\",\"isDirectory\":false,\"children\":[]}"
              "]}\n");
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
