#include "core/removal/removal_chains.h"

#include "core/removal/permanent_removal.h"

#include <climits>
#include <cstdlib>
#include <unistd.h>

namespace sondrel {

namespace {

std::function<void(const std::string&)>& chainHook() {
    static std::function<void(const std::string&)> hook;
    return hook;
}

RemovalOutcome success(RemovalStep step) {
    return RemovalOutcome{true, step, {}};
}

RemovalOutcome failure(std::string message) {
    return RemovalOutcome{false, RemovalStep::failed, std::move(message)};
}

// The safety verdict as an outcome, or nothing when the path may be removed.
std::optional<RemovalOutcome> refusal(const std::string& path, const RemovalContext& context) {
    const PathVerdict verdict = checkRemovablePath(path, context.trash.home, context.allowedRoots);
    if (verdict == PathVerdict::allowed) {
        return std::nullopt;
    }
    return RemovalOutcome{false, RemovalStep::refused, std::string(describe(verdict))};
}

// realpath() of `path`, or of its deepest existing folder with the missing rest appended.
std::string resolvedAllowingMissing(const std::string& path) {
    std::string head = path;
    std::string tail;
    while (head.size() > 1) {
        char buffer[PATH_MAX];
        if (realpath(head.c_str(), buffer) != nullptr) {
            return (std::string(buffer) == "/" ? "" : std::string(buffer)) + tail;
        }
        const std::size_t slash = head.rfind('/');
        tail = head.substr(slash) + tail;
        head = slash == 0 ? std::string("/") : head.substr(0, slash);
    }
    return tail.empty() ? std::string("/") : tail;
}

// An item fixed for acting on: its folder resolved through links once, the resolved path
// checked again under the rules, and a strict trash context, so every step walks exactly this
// path from "/" without following any link. A folder on the way swapped for a link after this
// makes the steps fail instead of acting outside the roots.
struct FixedItem {
    std::string path;
    TrashContext trash;
};

// Checks `path` and fixes it; an outcome when the chain stops here (refused, already gone).
std::optional<RemovalOutcome> fixItem(const std::string& path, const RemovalContext& context,
                                      FixedItem& item) {
    if (std::optional<RemovalOutcome> refused = refusal(path, context)) {
        return refused;
    }
    if (!pathExists(path)) {
        return success(RemovalStep::alreadyGone);
    }
    const std::string normal = *normalizeAbsolutePath(path);
    const std::size_t slash = normal.rfind('/');
    char buffer[PATH_MAX];
    if (realpath(slash == 0 ? "/" : normal.substr(0, slash).c_str(), buffer) == nullptr) {
        return pathExists(path) ? failure("cannot find the item's folder")
                                : success(RemovalStep::alreadyGone);
    }
    item.path = (std::string(buffer) == "/" ? "" : std::string(buffer)) + normal.substr(slash);
    if (std::optional<RemovalOutcome> refused = refusal(item.path, context)) {
        return refused;
    }
    item.trash = context.trash;
    item.trash.strictPaths = true;
    if (const std::optional<std::string> dataHome = normalizeAbsolutePath(context.trash.dataHome)) {
        item.trash.dataHome = resolvedAllowingMissing(*dataHome);
    }
    if (chainHook()) {
        chainHook()(path);
    }
    return std::nullopt;
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
    FixedItem item;
    if (std::optional<RemovalOutcome> stop = fixItem(path, context, item)) {
        return *stop;
    }
    clearImmutableFlags(item.path);
    const TrashResult trashed = moveToTrash(item.path, item.trash);
    if (trashed.ok && !pathExists(item.path)) {
        return success(RemovalStep::trash);
    }
    const TrashResult moved = moveIntoHomeTrashManually(item.path, item.trash);
    if (moved.ok && !pathExists(item.path)) {
        return success(RemovalStep::manualMove);
    }
    if (!pathExists(item.path)) {
        return success(RemovalStep::alreadyGone);
    }
    std::string message = trashed.error.empty() ? "not moved to the Trash" : trashed.error;
    if (!moved.error.empty() && moved.error != trashed.error) {
        message += "; " + moved.error;
    }
    if (!withAdministrator) {
        return failure(message);
    }
    return administratorStep(HelperVerb::trash, item.path, context, message);
}

} // namespace

RemovalContext RemovalContext::forUser(const std::string& home, const std::string& dataHome,
                                       std::vector<std::string> allowedRoots) {
    return forUser(home, dataHome, std::move(allowedRoots), getuid(), getgid());
}

RemovalContext RemovalContext::forUser(const std::string& home, const std::string& dataHome,
                                       std::vector<std::string> allowedRoots, uid_t uid,
                                       gid_t gid) {
    RemovalContext context;
    context.trash.home = home;
    context.trash.dataHome = dataHome;
    context.trash.uid = uid;
    context.trash.gid = gid;
    context.allowedRoots =
        allowedRoots.empty() ? std::vector<std::string>{home} : std::move(allowedRoots);
    return context;
}

RemovalOutcome deleteItemSafely(const std::string& path, bool isTrashGroup,
                                const RemovalContext& context) {
    FixedItem item;
    if (std::optional<RemovalOutcome> stop = fixItem(path, context, item)) {
        return *stop;
    }
    if (!isTrashGroup) {
        const TrashResult trashed = moveToTrash(item.path, item.trash);
        if (trashed.ok && !pathExists(item.path)) {
            return success(RemovalStep::trash);
        }
    }
    const RemovalReport report = removePermanently(item.path, item.trash.homeTrash(), true);
    if (report.removed) {
        return success(RemovalStep::permanent);
    }
    return administratorStep(HelperVerb::remove, item.path, context, firstFailure(report));
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

void setRemovalChainHookForTesting(std::function<void(const std::string& path)> hook) {
    chainHook() = std::move(hook);
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
