#include "core/junk/junk_group.h"

#include "core/model/byte_format.h"

#include <cstdlib>

namespace sondrel {

namespace {

std::int64_t checkedAdd(std::int64_t a, std::int64_t b) {
    std::int64_t sum = 0;
    if (__builtin_add_overflow(a, b, &sum)) {
        std::abort();
    }
    return sum;
}

JunkGroup* findGroup(std::vector<JunkGroup>& groups, std::uint64_t groupId) {
    for (JunkGroup& group : groups) {
        if (group.id == groupId) {
            return &group;
        }
    }
    return nullptr;
}

} // namespace

std::string JunkItem::formattedSize() const {
    return formatBytes(size);
}

std::int64_t JunkGroup::totalSize() const {
    std::int64_t total = 0;
    for (const JunkItem& item : items) {
        total = checkedAdd(total, item.size);
    }
    return total;
}

std::int64_t JunkGroup::selectedSize() const {
    std::int64_t total = 0;
    for (const JunkItem& item : items) {
        if (item.isSelected) {
            total = checkedAdd(total, item.size);
        }
    }
    return total;
}

std::size_t JunkGroup::selectedCount() const {
    std::size_t count = 0;
    for (const JunkItem& item : items) {
        count += item.isSelected ? 1 : 0;
    }
    return count;
}

bool JunkGroup::allSelected() const {
    return !items.empty() && selectedCount() == items.size();
}

bool JunkGroup::hasSomeSelected() const {
    return selectedCount() > 0;
}

std::string JunkGroup::formattedTotalSize() const {
    return formatBytes(totalSize());
}

std::string JunkGroup::formattedSelectedSize() const {
    return formatBytes(selectedSize());
}

std::int64_t junkTotalSize(const std::vector<JunkGroup>& groups) {
    std::int64_t total = 0;
    for (const JunkGroup& group : groups) {
        total = checkedAdd(total, group.totalSize());
    }
    return total;
}

std::int64_t junkSelectedSize(const std::vector<JunkGroup>& groups) {
    std::int64_t total = 0;
    for (const JunkGroup& group : groups) {
        total = checkedAdd(total, group.selectedSize());
    }
    return total;
}

bool toggleItemSelection(std::vector<JunkGroup>& groups, std::uint64_t groupId,
                         std::uint64_t itemId) {
    JunkGroup* group = findGroup(groups, groupId);
    if (group == nullptr) {
        return false;
    }
    for (JunkItem& item : group->items) {
        if (item.id == itemId) {
            item.isSelected = !item.isSelected;
            return true;
        }
    }
    return false;
}

bool toggleGroupSelection(std::vector<JunkGroup>& groups, std::uint64_t groupId) {
    JunkGroup* group = findGroup(groups, groupId);
    if (group == nullptr || group->items.empty()) {
        return false;
    }
    const bool select = !group->allSelected();
    for (JunkItem& item : group->items) {
        item.isSelected = select;
    }
    return true;
}

std::vector<JunkItem> selectedJunkItems(const std::vector<JunkGroup>& groups) {
    std::vector<JunkItem> selected;
    for (const JunkGroup& group : groups) {
        for (const JunkItem& item : group.items) {
            if (item.isSelected) {
                selected.push_back(item);
            }
        }
    }
    return selected;
}

std::vector<JunkItem> selectedJunkItems(const std::vector<JunkGroup>& groups,
                                        std::uint64_t groupId) {
    for (const JunkGroup& group : groups) {
        if (group.id == groupId) {
            return selectedJunkItems(std::vector<JunkGroup>{group});
        }
    }
    return {};
}

} // namespace sondrel
