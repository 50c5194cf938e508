#include "core/care/care_manifest.h"

#include <algorithm>
#include <set>
#include <utility>

namespace sondrel {

bool CareSwitches::noneOn() const {
    return std::none_of(on.begin(), on.end(), [](bool value) { return value; });
}

CareManifest::CareManifest() {
    for (CareCategory category : kCareCategories) {
        m_rows[indexOf(category)].category = category;
    }
}

CareManifest::CareManifest(std::vector<CareItem> items) : CareManifest() {
    std::set<std::pair<CareCategory, std::string>> seen;
    for (CareItem& item : items) {
        if (!seen.emplace(item.category, item.path).second) {
            continue;
        }
        item.size = std::max<std::int64_t>(item.size, 0);
        CareManifestRow& row = m_rows[indexOf(item.category)];
        row.totalBytes = saturatingAdd(row.totalBytes, item.size);
        row.items.push_back(std::move(item));
    }
    for (CareManifestRow& row : m_rows) {
        std::stable_sort(row.items.begin(), row.items.end(),
                         [](const CareItem& a, const CareItem& b) { return a.size > b.size; });
    }
}

SmartCleanSummary CareManifest::summary() const {
    SmartCleanSummary summary;
    for (const CareManifestRow& row : m_rows) {
        summary.add(row.category, row.totalBytes);
    }
    return summary;
}

std::vector<CareItem> CareManifest::selectedItems(const CareSwitches& switches) const {
    std::vector<CareItem> items;
    for (const CareManifestRow& row : m_rows) {
        if (switches.isOn(row.category)) {
            items.insert(items.end(), row.items.begin(), row.items.end());
        }
    }
    return items;
}

std::int64_t CareManifest::selectedBytes(const CareSwitches& switches) const {
    std::int64_t total = 0;
    for (const CareManifestRow& row : m_rows) {
        if (switches.isOn(row.category)) {
            total = saturatingAdd(total, row.totalBytes);
        }
    }
    return total;
}

std::size_t CareManifest::itemCount() const {
    std::size_t count = 0;
    for (const CareManifestRow& row : m_rows) {
        count += row.items.size();
    }
    return count;
}

bool CareManifest::selectionNeedsAdmin(const CareSwitches& switches) const {
    for (const CareManifestRow& row : m_rows) {
        if (switches.isOn(row.category) &&
            std::any_of(row.items.begin(), row.items.end(),
                        [](const CareItem& item) { return item.needsAdmin; })) {
            return true;
        }
    }
    return false;
}

} // namespace sondrel
