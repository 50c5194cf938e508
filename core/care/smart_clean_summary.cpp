#include "core/care/smart_clean_summary.h"

#include "core/model/byte_format.h"

#include <limits>

namespace sondrel {

namespace {

constexpr std::array<std::string_view, kCareCategoryCount> kKeys = {"developer", "orphans",
                                                                    "caches", "logs", "trash"};

} // namespace

std::string_view careCategoryKey(CareCategory category) {
    return kKeys[indexOf(category)];
}

std::optional<CareCategory> careCategoryFromKey(std::string_view key) {
    for (CareCategory category : kCareCategories) {
        if (careCategoryKey(category) == key) {
            return category;
        }
    }
    return std::nullopt;
}

std::int64_t saturatingAdd(std::int64_t a, std::int64_t b) {
    std::int64_t sum = 0;
    if (__builtin_add_overflow(a, b, &sum)) {
        return b > 0 ? std::numeric_limits<std::int64_t>::max()
                     : std::numeric_limits<std::int64_t>::min();
    }
    return sum;
}

std::int64_t SmartCleanSummary::bytesOf(CareCategory category) const {
    switch (category) {
    case CareCategory::developerCaches:
        return developerJunkBytes;
    case CareCategory::orphanedLeftovers:
        return orphanedResidueBytes;
    case CareCategory::appCaches:
        return systemCacheBytes;
    case CareCategory::logs:
        return logBytes;
    case CareCategory::trash:
        return trashBytes;
    }
    return 0;
}

void SmartCleanSummary::add(CareCategory category, std::int64_t bytes) {
    switch (category) {
    case CareCategory::developerCaches:
        developerJunkBytes = saturatingAdd(developerJunkBytes, bytes);
        break;
    case CareCategory::orphanedLeftovers:
        orphanedResidueBytes = saturatingAdd(orphanedResidueBytes, bytes);
        break;
    case CareCategory::appCaches:
        systemCacheBytes = saturatingAdd(systemCacheBytes, bytes);
        break;
    case CareCategory::logs:
        logBytes = saturatingAdd(logBytes, bytes);
        break;
    case CareCategory::trash:
        trashBytes = saturatingAdd(trashBytes, bytes);
        break;
    }
}

std::int64_t SmartCleanSummary::totalReclaimableBytes() const {
    std::int64_t total = 0;
    for (CareCategory category : kCareCategories) {
        total = saturatingAdd(total, bytesOf(category));
    }
    return total;
}

std::string SmartCleanSummary::formattedTotal() const {
    return formatBytes(totalReclaimableBytes());
}

} // namespace sondrel
