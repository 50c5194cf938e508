#include "core/care/care_clean.h"

#include "core/fs/folder_listing.h"
#include "core/fs/measure_tree.h"
#include "core/removal/permanent_removal.h"

#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace sondrel {

namespace {

RemovalOutcome removeOne(const CareItem& item, const RemovalContext& context) {
    switch (item.category) {
    case CareCategory::trash:
        return deleteItemSafely(item.path, true, context);
    case CareCategory::orphanedLeftovers:
        return safeMoveToTrash(item.path, context);
    case CareCategory::developerCaches:
    case CareCategory::appCaches:
    case CareCategory::logs:
        return deleteItemSafely(item.path, false, context);
    }
    return {};
}

std::string reasonOf(const RemovalOutcome& outcome) {
    return outcome.message.empty() ? std::string(describe(outcome.step)) : outcome.message;
}

// One helper run for all `pending` items with `verb`; results go into `result`.
void runAdministratorBatch(const std::vector<const CareItem*>& pending, HelperVerb verb,
                           const RemovalContext& context, CareCleanResult& result) {
    if (pending.empty()) {
        return;
    }
    std::vector<std::string> paths;
    paths.reserve(pending.size());
    for (const CareItem* item : pending) {
        paths.push_back(item->path);
    }
    const std::vector<HelperPathResult> answers =
        context.administrator->run(verb, paths, context.allowedRoots);
    for (std::size_t i = 0; i < pending.size(); ++i) {
        const bool ok = i < answers.size() && answers[i].ok && !pathExists(pending[i]->path);
        if (ok) {
            result.bytesFreed = saturatingAdd(result.bytesFreed, pending[i]->size);
            ++result.removedCount;
        } else {
            result.failures.push_back(
                {pending[i]->path, i < answers.size() ? answers[i].message : "no answer"});
        }
    }
}

} // namespace

CareCleanResult cleanCareItems(const std::vector<CareItem>& items, const RemovalContext& context,
                               const CancelToken& cancel, const CareCleanProgress& progress) {
    CareCleanResult result;
    // The chains run without their administrator step; what needs it is gathered for one batch.
    RemovalContext userOnly = context;
    userOnly.administrator = nullptr;
    std::vector<const CareItem*> removeAsAdmin;
    std::vector<const CareItem*> trashAsAdmin;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (cancel.isCancelled()) {
            result.cancelled = true;
            break;
        }
        if (progress) {
            progress(i, items.size());
        }
        const CareItem& item = items[i];
        const RemovalOutcome outcome = removeOne(item, userOnly);
        if (outcome.step == RemovalStep::alreadyGone) {
            continue;
        }
        if (outcome.removed) {
            result.bytesFreed = saturatingAdd(result.bytesFreed, item.size);
            ++result.removedCount;
            continue;
        }
        if (context.administrator != nullptr && outcome.step != RemovalStep::refused &&
            pathExists(item.path)) {
            (item.category == CareCategory::orphanedLeftovers ? trashAsAdmin : removeAsAdmin)
                .push_back(&item);
            continue;
        }
        result.failures.push_back({item.path, reasonOf(outcome)});
    }
    if (!result.cancelled) {
        runAdministratorBatch(removeAsAdmin, HelperVerb::remove, context, result);
        runAdministratorBatch(trashAsAdmin, HelperVerb::trash, context, result);
    } else {
        for (const auto* list : {&removeAsAdmin, &trashAsAdmin}) {
            for (const CareItem* item : *list) {
                result.failures.push_back({item->path, "cancelled"});
            }
        }
    }
    if (progress) {
        progress(items.size(), items.size());
    }
    return result;
}

std::vector<CareItem> listTrashItems(const std::string& trashFiles, const CancelToken& cancel) {
    std::vector<CareItem> items;
    const int fd = open(trashFiles.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) {
        return items;
    }
    std::vector<std::string> names;
    auto buffer = std::make_unique_for_overwrite<std::byte[]>(kListingBufferBytes);
    forEachEntryAt(fd, buffer.get(), kListingBufferBytes, [&](const ListedEntry& entry) {
        names.emplace_back(entry.name);
        return true;
    });
    close(fd);
    for (const std::string& name : names) {
        if (cancel.isCancelled()) {
            break;
        }
        CareItem item;
        item.path = trashFiles + "/" + name;
        item.category = CareCategory::trash;
        const TreeSize size = measureTree(item.path, MeasureOptions{}, cancel);
        if (!size.exists) {
            continue;
        }
        item.size = size.allocated;
        items.push_back(std::move(item));
    }
    return items;
}

} // namespace sondrel
