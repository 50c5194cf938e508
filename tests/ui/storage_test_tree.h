#pragma once
// An in-memory scanned tree for the storage view tests (nothing on disk):
//
//   /scan/home                      (root, 62,485,760 + 5,000 bytes)
//     Videos/        40,000,000     movie.mp4 30,000,000, clip.mov 10,000,000
//     Projects/      12,000,000     app/ 12,000,000 (main.cpp 12,000,000)
//     exact.iso      10,485,760     exactly the "> 10 MB" threshold
//     notes.txt           5,000
//
// Children are listed largest first, as the scanner leaves them.

#include "core/model/file_item.h"
#include "core/model/file_tree.h"

#include <memory>
#include <string_view>
#include <vector>

namespace sondrel::test {

inline FileItem makeStorageTestTree() {
    auto tree = std::make_shared<FileTree>("/scan/home");
    NodeArena& a = tree->arena();
    const auto node = [&](std::string_view name, bool dir, std::int64_t size, FileCategory cat,
                          std::vector<FileNode*> children = {}) {
        FileNode* n = a.create(name, dir, size, dir ? 0 : 1, cat);
        std::int64_t files = dir ? 0 : 1;
        for (FileNode* c : children) {
            files += c->fileCount;
        }
        n->fileCount = files;
        setChildren(n, children);
        if (dir) {
            sumCategoryBytes(n);
        }
        return n;
    };
    FileNode* videos = node("Videos", true, 40'000'000, FileCategory::video,
                            {node("movie.mp4", false, 30'000'000, FileCategory::video),
                             node("clip.mov", false, 10'000'000, FileCategory::video)});
    FileNode* exact = node("exact.iso", false, 10'485'760, FileCategory::archive);
    FileNode* projects =
        node("Projects", true, 12'000'000, FileCategory::other,
             {node("app", true, 12'000'000, FileCategory::developer,
                   {node("main.cpp", false, 12'000'000, FileCategory::developer)})});
    FileNode* notes = node("notes.txt", false, 5'000, FileCategory::document);
    FileNode* root =
        node("home", true, 62'490'760, FileCategory::other, {videos, projects, exact, notes});
    tree->setRoot(root);
    return FileItem::rootOf(tree);
}

/// The direct child of `folder` named `name` (null item when there is none).
inline FileItem childNamed(const FileItem& folder, std::string_view name) {
    for (const FileItem& child : folder.children()) {
        if (child.name() == name) {
            return child;
        }
    }
    return {};
}

} // namespace sondrel::test
