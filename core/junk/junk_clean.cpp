#include "core/junk/junk_clean.h"

#include "core/model/byte_format.h"
#include "core/removal/path_safety.h"
#include "core/removal/permanent_removal.h"

#include <algorithm>
#include <sys/stat.h>

namespace sondrel {

namespace {

// Why `item` may not be touched now, or "" when it may.
std::string staleReason(const JunkItem& item) {
    const std::optional<std::string> path = normalizeAbsolutePath(item.path);
    const std::optional<std::string> root = normalizeAbsolutePath(item.root);
    if (!path || !root || *path == *root || !isWithinFolder(*path, *root)) {
        return "no longer inside the folder it was found in";
    }
    struct stat info {};
    if (!item.isLink && lstat(item.path.c_str(), &info) == 0 && S_ISLNK(info.st_mode)) {
        return "is now a symbolic link";
    }
    return {};
}

struct Pending {
    const JunkItem* item;
    std::string reason;
};

} // namespace

JunkCleanReport cleanJunkItems(const std::vector<JunkItem>& items, const RemovalContext& context,
                               const CancelToken& cancel, const JunkCleanProgress& onProgress) {
    JunkCleanReport report;
    std::vector<Pending> forAdministrator;
    auto succeed = [&report](const JunkItem& item) {
        ++report.removed;
        report.freed += item.size;
        report.removedPaths.push_back(item.path);
    };
    auto fail = [&report](const JunkItem& item, std::string reason) {
        report.failures.push_back({item.title, item.path, std::move(reason)});
    };

    std::size_t done = 0;
    for (const JunkItem& item : items) {
        if (cancel.isCancelled()) {
            report.cancelled = true;
            break;
        }
        if (std::string reason = staleReason(item); !reason.empty()) {
            fail(item, std::move(reason));
        } else {
            // Each item is checked against its own root; the administrator step is held back
            // and run once for all items below.
            RemovalContext own = context;
            own.allowedRoots = {item.root};
            own.administrator = nullptr;
            const RemovalOutcome outcome =
                deleteItemSafely(item.path, item.type == JunkType::trash, own);
            if (outcome.removed) {
                succeed(item);
            } else if (outcome.step != RemovalStep::refused && context.administrator != nullptr) {
                forAdministrator.push_back({&item, outcome.message});
            } else {
                fail(item, outcome.message);
            }
        }
        ++done;
        if (onProgress) {
            onProgress(done, items.size(), item.title);
        }
    }

    if (forAdministrator.empty()) {
        return report;
    }
    if (cancel.isCancelled()) {
        report.cancelled = true;
        for (const Pending& pending : forAdministrator) {
            fail(*pending.item, pending.reason);
        }
        return report;
    }
    std::vector<std::string> paths;
    std::vector<std::string> roots;
    for (const Pending& pending : forAdministrator) {
        paths.push_back(pending.item->path);
        if (std::find(roots.begin(), roots.end(), pending.item->root) == roots.end()) {
            roots.push_back(pending.item->root);
        }
    }
    const std::vector<HelperPathResult> results =
        context.administrator->run(HelperVerb::remove, paths, roots);
    for (std::size_t i = 0; i < forAdministrator.size(); ++i) {
        const JunkItem& item = *forAdministrator[i].item;
        if (!pathExists(item.path)) {
            succeed(item);
            continue;
        }
        const std::string answer = i < results.size() ? results[i].message : std::string();
        if (answer == "cancelled") {
            report.administratorCancelled = true;
        }
        fail(item, forAdministrator[i].reason + "; administrator: " +
                       (answer.empty() ? std::string("not removed") : answer));
    }
    return report;
}

std::string junkCleaningText(std::size_t current, std::size_t total) {
    return "Cleaning " + std::to_string(current) + " of " + std::to_string(total) + " ...";
}

std::string junkCleanResultText(const JunkCleanReport& report) {
    std::string text = "Freed " + formatBytes(report.freed) + ".";
    if (!report.failures.empty()) {
        const std::size_t count = report.failures.size();
        text += " " + std::to_string(count) + (count == 1 ? " item" : " items") +
                " could not be removed.";
    }
    if (report.administratorCancelled) {
        text += " Administrator authorization was cancelled; nothing that needed it was removed.";
    }
    return text;
}

} // namespace sondrel
