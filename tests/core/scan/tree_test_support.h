#pragma once
// Helpers shared by the tree scan tests: a scan with fixed options, a child by name, the tree as
// one line of text, and the consistency check every finished tree must pass.

#include "core/scan/tree_scan.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <string>
#include <string_view>
#include <unistd.h>

namespace sondrel::test {

inline ScanResult scan(const std::string& path, int maxDepth = 4, unsigned threads = 4) {
    ScanOptions options;
    options.maxDepth = maxDepth;
    options.threads = threads;
    CancelToken cancel;
    return scanTree(path, options, cancel);
}

// A child by name (null item when absent).
inline FileItem child(const FileItem& parent, std::string_view name) {
    for (const FileItem& item : parent.children()) {
        if (item.name() == name) {
            return item;
        }
    }
    return {};
}

// The whole tree as one line: name(size,count)[children...]; folders end in '/'.
inline std::string describe(const FileItem& item) {
    std::string text(item.name());
    text += item.isDirectory() ? "/" : "";
    text += "(" + std::to_string(item.size()) + "," + std::to_string(item.fileCount()) + ")";
    if (item.childCount() > 0) {
        text += "[";
        for (const FileItem& c : item.children()) {
            text += describe(c) + ";";
        }
        text += "]";
    }
    return text;
}

// A folder's bytes per category add up to its size in both measures.
inline void expectCategoriesAddUp(const FileItem& item) {
    const CategoryBytes* bytes = item.node()->categoryBytes();
    if (bytes == nullptr) {
        return;
    }
    std::int64_t size = 0;
    std::int64_t other = 0;
    for (std::size_t i = 0; i < bytes->size.size(); ++i) {
        EXPECT_GE(bytes->size[i], 0) << item.url();
        size += bytes->size[i];
        other += bytes->otherSize[i];
    }
    EXPECT_EQ(size, item.size()) << item.url();
    EXPECT_EQ(other, item.node()->otherSize) << item.url();
}

// Every folder's size and count equal the sums of its children's, children are sorted, and
// every folder's bytes per category add up to its sizes.
inline void expectConsistent(const FileItem& item) {
    expectCategoriesAddUp(item);
    if (item.childCount() == 0) {
        return;
    }
    std::int64_t size = 0;
    std::int64_t files = 0;
    std::int64_t previous = INT64_MAX;
    for (const FileItem& c : item.children()) {
        size += c.size();
        files += c.fileCount();
        EXPECT_LE(c.size(), previous) << item.url();
        previous = c.size();
        EXPECT_EQ(c.parent(), item);
        expectConsistent(c);
    }
    EXPECT_EQ(item.size(), size) << item.url();
    EXPECT_EQ(item.fileCount(), files) << item.url();
}

inline void symlinkOrFail(const std::string& target, const std::string& link) {
    ASSERT_EQ(symlink(target.c_str(), link.c_str()), 0) << link;
}

} // namespace sondrel::test
