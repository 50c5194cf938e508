#include "core/duplicates/duplicate_trash.h"

#include "core/duplicates/duplicate_verify.h"

#include <cerrno>
#include <sys/stat.h>

namespace sondrel {

namespace {

// What became of one selected copy.
struct CopyOutcome {
    enum class Kind : unsigned char { moved, alreadyGone, failed };
    Kind kind = Kind::failed;
    std::string reason; ///< why it failed
};

// True when nothing at all is at `path`, not even a dangling link: the name itself is gone
// (ENOENT), or a folder on the way to it has become something else (ENOTDIR).
bool nothingAt(const std::string& path) {
    struct stat info {};
    return lstat(path.c_str(), &info) != 0 && (errno == ENOENT || errno == ENOTDIR);
}

CopyOutcome trashOne(const DuplicateFile& file, const DuplicateFile* reference,
                     const RemovalContext& context, const CancelToken& cancel) {
    // The user removed it since the scan: what they asked for is already true, so it is not
    // reported as a copy that could not be removed.
    if (nothingAt(file.path)) {
        return {CopyOutcome::Kind::alreadyGone, {}};
    }
    if (reference != nullptr) {
        const CopyVerdict verdict = verifyCopy(file, *reference, cancel);
        if (verdict != CopyVerdict::identical) {
            return {CopyOutcome::Kind::failed, describe(verdict)};
        }
    }
    // The name must still be the verified file when it is moved.
    if (!isUnchangedSinceScan(file)) {
        return {CopyOutcome::Kind::failed, describe(CopyVerdict::copyChanged)};
    }
    const RemovalOutcome outcome = moveDuplicateToTrash(file.path, context);
    if (outcome.removed) {
        return {CopyOutcome::Kind::moved, {}};
    }
    return {CopyOutcome::Kind::failed,
            outcome.message.empty() ? std::string(describe(outcome.step)) : outcome.message};
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
            const CopyOutcome outcome =
                trashOne(file, isReference ? nullptr : &reference, context, cancel);
            if (outcome.kind == CopyOutcome::Kind::moved) {
                gone[i] = true;
                ++report.moved;
                report.freed += file.size;
                report.movedPaths.push_back(file.path);
            } else if (outcome.kind == CopyOutcome::Kind::alreadyGone) {
                // Counted as removed, but its bytes were freed by whoever removed it, not by
                // this run: `freed` stays as it is.
                gone[i] = true;
                ++report.moved;
                report.alreadyGonePaths.push_back(file.path);
            } else if (!cancel.isCancelled()) {
                report.failures.push_back({file.path, outcome.reason});
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
