#include "core/duplicates/duplicate_group.h"

#include "core/util/path_text.h"

#include <algorithm>
#include <cstdlib>

namespace sondrel {

std::string DuplicateFile::name() const {
    return std::string(lastPathComponent(path));
}

std::size_t DuplicateGroup::selectedCount() const {
    return static_cast<std::size_t>(std::count_if(
        files.begin(), files.end(), [](const DuplicateFile& file) { return file.isSelected; }));
}

std::int64_t DuplicateGroup::wastedSize() const {
    std::int64_t wasted = 0;
    if (__builtin_mul_overflow(static_cast<std::int64_t>(selectedCount()), size, &wasted)) {
        std::abort();
    }
    return wasted;
}

std::int64_t totalWastedSize(const std::vector<DuplicateGroup>& groups) {
    std::int64_t total = 0;
    for (const DuplicateGroup& group : groups) {
        if (__builtin_add_overflow(total, group.wastedSize(), &total)) {
            std::abort();
        }
    }
    return total;
}

std::size_t totalSelectedCount(const std::vector<DuplicateGroup>& groups) {
    std::size_t count = 0;
    for (const DuplicateGroup& group : groups) {
        count += group.selectedCount();
    }
    return count;
}

void autoSelect(std::vector<DuplicateGroup>& groups, bool keepNewest) {
    for (DuplicateGroup& group : groups) {
        std::stable_sort(group.files.begin(), group.files.end(),
                         [keepNewest](const DuplicateFile& a, const DuplicateFile& b) {
                             return keepNewest ? a.modifiedNs > b.modifiedNs
                                               : a.modifiedNs < b.modifiedNs;
                         });
        for (std::size_t i = 0; i < group.files.size(); ++i) {
            group.files[i].isSelected = i != 0;
        }
    }
}

void sortByWastedSize(std::vector<DuplicateGroup>& groups) {
    std::stable_sort(groups.begin(), groups.end(),
                     [](const DuplicateGroup& a, const DuplicateGroup& b) {
                         return a.wastedSize() > b.wastedSize();
                     });
}

bool toggleFile(std::vector<DuplicateGroup>& groups, std::uint64_t fileId) {
    for (DuplicateGroup& group : groups) {
        for (DuplicateFile& file : group.files) {
            if (file.id == fileId) {
                file.isSelected = !file.isSelected;
                return true;
            }
        }
    }
    return false;
}

} // namespace sondrel
