#include "core/apps/leftover_trash.h"

namespace sondrel {

LeftoverTrashReport
trashLeftovers(const std::vector<AssociatedItem>& items, const RemovalContext& context,
               const CancelToken& cancel,
               const std::function<void(std::size_t, std::size_t)>& onProgress) {
    LeftoverTrashReport report;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (cancel.isCancelled()) {
            report.cancelled = true;
            break;
        }
        const AssociatedItem& item = items[i];
        const RemovalOutcome outcome = safeMoveToTrash(item.path, context);
        LeftoverOutcome result;
        result.id = item.id;
        result.path = item.path;
        result.removed = outcome.removed;
        result.message = outcome.removed ? std::string() : outcome.message;
        result.trashedPath = outcome.trashedPath;
        if (outcome.removed) {
            ++report.removed;
            report.freed += item.size;
        }
        report.outcomes.push_back(std::move(result));
        if (onProgress) {
            onProgress(i + 1, items.size());
        }
    }
    return report;
}

} // namespace sondrel
