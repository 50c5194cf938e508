#include "core/care/care_sources.h"

#include "core/apps/leftover_trash.h"
#include "core/junk/junk_clean.h"

#include <map>
#include <string>

namespace sondrel {

std::optional<CareCategory> careCategoryOf(JunkType type) {
    switch (type) {
    case JunkType::xcode:
        return CareCategory::developerCaches;
    case JunkType::userCaches:
        return CareCategory::appCaches;
    case JunkType::logs:
        return CareCategory::logs;
    case JunkType::trash:
        return CareCategory::trash;
    case JunkType::nodeModules:
    case JunkType::orphaned:
        break;
    }
    return std::nullopt;
}

CareSources careSourcesOf(const std::vector<JunkGroup>& groups,
                          std::vector<AssociatedItem> orphans) {
    CareSources sources;
    for (const JunkGroup& group : groups) {
        if (!careCategoryOf(group.type)) {
            continue;
        }
        sources.junk.insert(sources.junk.end(), group.items.begin(), group.items.end());
    }
    sources.orphans = std::move(orphans);
    return sources;
}

std::vector<CareItem> careItemsOf(const CareSources& sources) {
    std::vector<CareItem> items;
    items.reserve(sources.junk.size() + sources.orphans.size());
    for (const JunkItem& item : sources.junk) {
        if (const std::optional<CareCategory> category = careCategoryOf(item.type)) {
            items.push_back({item.path, item.size, *category, item.isPermissionLocked});
        }
    }
    for (const AssociatedItem& item : sources.orphans) {
        items.push_back({item.path, item.size, CareCategory::orphanedLeftovers, false});
    }
    return items;
}

CareCleanResult cleanFromSources(const std::vector<CareItem>& chosen, const CareSources& sources,
                                 const RemovalContext& context, const CancelToken& cancel,
                                 const CareCleanProgress& progress) {
    std::map<std::string, const JunkItem*> junkByPath;
    for (const JunkItem& item : sources.junk) {
        junkByPath.emplace(item.path, &item);
    }
    std::map<std::string, const AssociatedItem*> orphanByPath;
    for (const AssociatedItem& item : sources.orphans) {
        orphanByPath.emplace(item.path, &item);
    }

    CareCleanResult result;
    std::vector<JunkItem> junk;
    std::vector<AssociatedItem> orphans;
    for (const CareItem& item : chosen) {
        if (item.category == CareCategory::orphanedLeftovers) {
            if (const auto found = orphanByPath.find(item.path); found != orphanByPath.end()) {
                orphans.push_back(*found->second);
                continue;
            }
        } else if (const auto found = junkByPath.find(item.path); found != junkByPath.end()) {
            junk.push_back(*found->second);
            continue;
        }
        result.failures.push_back({item.path, "not found by the last scan"});
    }

    const std::size_t total = junk.size() + orphans.size();
    const JunkCleanReport junkReport =
        cleanJunkItems(junk, context, cancel,
                       [&progress, total](std::size_t done, std::size_t, const std::string&) {
                           if (progress) {
                               progress(done, total);
                           }
                       });
    result.bytesFreed += junkReport.freed;
    result.removedCount += junkReport.removed;
    for (const JunkCleanFailure& failure : junkReport.failures) {
        result.failures.push_back({failure.path, failure.reason});
    }
    result.cancelled = junkReport.cancelled;

    const LeftoverTrashReport orphanReport =
        trashLeftovers(orphans, context, cancel,
                       [&progress, total, before = junk.size()](std::size_t done, std::size_t) {
                           if (progress) {
                               progress(before + done, total);
                           }
                       });
    result.bytesFreed += orphanReport.freed;
    result.removedCount += orphanReport.removed;
    for (const LeftoverOutcome& outcome : orphanReport.outcomes) {
        if (!outcome.removed) {
            result.failures.push_back({outcome.path, outcome.message});
        }
    }
    result.cancelled = result.cancelled || orphanReport.cancelled;
    return result;
}

} // namespace sondrel
