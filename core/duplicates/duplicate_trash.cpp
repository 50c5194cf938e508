#include "core/duplicates/duplicate_trash.h"

#include "core/duplicates/duplicate_verify.h"

namespace sondrel {

namespace {

// The outcome of one selected copy: empty reason when it was moved.
std::string trashOne(const DuplicateFile& file, const DuplicateFile* reference,
                     const RemovalContext& context, const CancelToken& cancel) {
    if (reference != nullptr) {
        const CopyVerdict verdict = verifyCopy(file, *reference, cancel);
        if (verdict != CopyVerdict::identical) {
            return describe(verdict);
        }
    }
    // The name must still be the verified file when it is moved.
    if (!isUnchangedSinceScan(file)) {
        return describe(CopyVerdict::copyChanged);
    }
    const RemovalOutcome outcome = moveDuplicateToTrash(file.path, context);
    if (outcome.removed) {
        return {};
    }
    return outcome.message.empty() ? std::string(describe(outcome.step)) : outcome.message;
}

} // namespace

DuplicateTrashReport
trashSelectedDuplicates(std::vector<DuplicateGroup> groups, const RemovalContext& context,
                        const CancelToken& cancel,
                        const std::function<void(std::size_t, std::size_t)>& onProgress) {
    DuplicateTrashReport report;
    const std::size_t total = totalSelectedCount(groups);
    std::size_t done = 0;
    for (DuplicateGroup& group : groups) {
        if (group.files.empty()) {
            continue;
        }
        std::size_t referenceIndex = 0;
        for (std::size_t i = 0; i < group.files.size(); ++i) {
            if (!group.files[i].isSelected) {
                referenceIndex = i;
                break;
            }
        }
        const DuplicateFile reference = group.files[referenceIndex];
        // The reference goes last when it is itself selected: the others are compared with it.
        std::vector<std::size_t> order;
        for (std::size_t i = 0; i < group.files.size(); ++i) {
            if (i != referenceIndex) {
                order.push_back(i);
            }
        }
        order.push_back(referenceIndex);

        std::vector<bool> gone(group.files.size(), false);
        for (std::size_t i : order) {
            const DuplicateFile& file = group.files[i];
            if (!file.isSelected) {
                continue;
            }
            if (cancel.isCancelled()) {
                report.cancelled = true;
                break;
            }
            const bool isReference = i == referenceIndex;
            const std::string reason =
                trashOne(file, isReference ? nullptr : &reference, context, cancel);
            if (reason.empty()) {
                gone[i] = true;
                ++report.moved;
                report.freed += file.size;
                report.movedPaths.push_back(file.path);
            } else if (!cancel.isCancelled()) {
                report.failures.push_back({file.path, reason});
            }
            ++done;
            if (onProgress) {
                onProgress(done, total);
            }
        }
        DuplicateGroup left = group;
        left.files.clear();
        for (std::size_t i = 0; i < group.files.size(); ++i) {
            if (!gone[i]) {
                left.files.push_back(group.files[i]);
            }
        }
        if (left.files.size() >= 2) {
            report.remaining.push_back(std::move(left));
        }
    }
    return report;
}

} // namespace sondrel
