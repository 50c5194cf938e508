#include "core/scan/link_sightings.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace sondrel {

namespace {

// Path of `node` below the tree's root, for ordering only.
std::string relativePath(const FileNode* node) {
    std::vector<std::string_view> names;
    for (; node != nullptr; node = node->parent) {
        names.push_back(node->name());
    }
    std::string path;
    for (auto it = names.rbegin(); it != names.rend(); ++it) {
        path += *it;
        path += '/';
    }
    return path;
}

} // namespace

std::int64_t keepBytesAtOneLink(std::vector<LinkSighting>& all) {
    std::sort(all.begin(), all.end(), [](const LinkSighting& a, const LinkSighting& b) {
        return a.device != b.device ? a.device < b.device : a.inode < b.inode;
    });
    std::int64_t reported = 0;
    for (std::size_t begin = 0; begin < all.size();) {
        std::size_t end = begin + 1;
        while (end < all.size() && all[end].device == all[begin].device &&
               all[end].inode == all[begin].inode) {
            ++end;
        }
        if (end - begin > 1) {
            std::size_t keep = begin;
            std::string keepPath = relativePath(all[begin].holder);
            for (std::size_t i = begin + 1; i < end; ++i) {
                std::string path = relativePath(all[i].holder);
                if (path < keepPath) {
                    keep = i;
                    keepPath = std::move(path);
                }
            }
            for (std::size_t i = begin; i < end; ++i) {
                if (i != keep) {
                    all[i].holder->size -= all[i].size;
                    all[i].holder->otherSize -= all[i].otherSize;
                    if (CategoryBytes* bytes = all[i].holder->categoryBytes()) {
                        bytes->add(all[i].category, all[i].size, all[i].otherSize, -1);
                    }
                    reported += all[i].size * all[i].reports;
                }
            }
        }
        begin = end;
    }
    return reported;
}

} // namespace sondrel
