#include "core/removal/removal_chains.h"

#include "core/removal/permanent_removal.h"

namespace sondrel {

namespace {

RemovalOutcome success(RemovalStep step) {
    return RemovalOutcome{true, step, {}, {}};
}

RemovalOutcome failure(std::string message) {
    return RemovalOutcome{false, RemovalStep::failed, std::move(message), {}};
}

// The safety verdict as an outcome, or nothing when the path may be removed.
std::optional<RemovalOutcome> refusal(const std::string& path, const RemovalContext& context) {
    const PathVerdict verdict = checkRemovablePath(path, context.trash.home, context.allowedRoots);
    if (verdict == PathVerdict::allowed) {
        return std::nullopt;
    }
    return RemovalOutcome{false, RemovalStep::refused, std::string(describe(verdict)), {}};
}

std::string firstFailure(const RemovalReport& report) {
    if (report.failures.empty()) {
        return "could not be removed";
    }
    std::string text = report.failures.front().reason;
    if (report.failures.size() > 1) {
        text += " (and " + std::to_string(report.failures.size() - 1) + " more)";
    }
    return text;
}

// Runs the helper on one path; the outcome is judged by what remains at the path.
RemovalOutcome administratorStep(HelperVerb verb, const std::string& path,
                                 const RemovalContext& context, const std::string& before) {
    if (context.administrator == nullptr) {
        return failure(before);
    }
    const std::vector<HelperPathResult> results =
        context.administrator->run(verb, {path}, context.allowedRoots);
    if (!pathExists(path)) {
        return success(RemovalStep::administrator);
    }
    std::string message = before + "; administrator: ";
    message += results.empty() || results.front().message.empty() ? "not removed"
                                                                  : results.front().message;
    return failure(message);
}

RemovalOutcome trashChain(const std::string& path, const RemovalContext& context,
                          bool withAdministrator) {
    if (std::optional<RemovalOutcome> refused = refusal(path, context)) {
        return *refused;
    }
    if (!pathExists(path)) {
        return success(RemovalStep::alreadyGone);
    }
    clearImmutableFlags(path);
    const TrashResult trashed = moveToTrash(path, context.trash);
    if (trashed.ok && !pathExists(path)) {
        return RemovalOutcome{true, RemovalStep::trash, {}, trashed.trashedPath};
    }
    const TrashResult moved = moveIntoHomeTrashManually(path, context.trash);
    if (moved.ok && !pathExists(path)) {
        return RemovalOutcome{true, RemovalStep::manualMove, {}, moved.trashedPath};
    }
    if (!pathExists(path)) {
        return success(RemovalStep::alreadyGone);
    }
    std::string message = trashed.error.empty() ? "not moved to the Trash" : trashed.error;
    if (!moved.error.empty() && moved.error != trashed.error) {
        message += "; " + moved.error;
    }
    if (!withAdministrator) {
        return failure(message);
    }
    return administratorStep(HelperVerb::trash, path, context, message);
}

} // namespace

RemovalOutcome deleteItemSafely(const std::string& path, bool isTrashGroup,
                                const RemovalContext& context) {
    if (std::optional<RemovalOutcome> refused = refusal(path, context)) {
        return *refused;
    }
    if (!pathExists(path)) {
        return success(RemovalStep::alreadyGone);
    }
    if (!isTrashGroup) {
        const TrashResult trashed = moveToTrash(path, context.trash);
        if (trashed.ok && !pathExists(path)) {
            return success(RemovalStep::trash);
        }
    }
    const RemovalReport report = removePermanently(path, context.trash.homeTrash());
    if (report.removed) {
        return success(RemovalStep::permanent);
    }
    return administratorStep(HelperVerb::remove, path, context, firstFailure(report));
}

RemovalOutcome deleteWithAdminPrivileges(const std::string& path, const RemovalContext& context) {
    if (std::optional<RemovalOutcome> refused = refusal(path, context)) {
        return *refused;
    }
    return administratorStep(HelperVerb::remove, path, context, "not removed");
}

RemovalOutcome safeMoveToTrash(const std::string& path, const RemovalContext& context) {
    return trashChain(path, context, true);
}

RemovalOutcome moveDuplicateToTrash(const std::string& path, const RemovalContext& context) {
    return trashChain(path, context, false);
}

std::string_view describe(RemovalStep step) {
    switch (step) {
    case RemovalStep::refused:
        return "refused by the safety rules";
    case RemovalStep::alreadyGone:
        return "nothing was there";
    case RemovalStep::trash:
        return "moved to the Trash";
    case RemovalStep::manualMove:
        return "moved into the home Trash";
    case RemovalStep::permanent:
        return "removed permanently";
    case RemovalStep::administrator:
        return "removed with administrator rights";
    case RemovalStep::failed:
        return "could not be removed";
    }
    return "could not be removed";
}

} // namespace sondrel
