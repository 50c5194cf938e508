// `sondrel-cli junk`: lists developer caches, project dependency folders, user caches, logs and
// the Trash's entries of the home, grouped, with sizes.
// `sondrel-cli junk clean [--group TYPE ...] [--include-node-modules] [--yes]` removes the
// default selection (every item except node_modules folders), or only the named groups: items
// go to the Trash, Trash entries are removed for good. It prints what it freed and what failed,
// and exits 1 when something could not be removed.

#include "cli/command_registry.h"
#include "cli/interrupt_scope.h"
#include "core/junk/junk_clean.h"
#include "core/junk/junk_scan.h"
#include "core/junk/junk_texts.h"
#include "core/model/byte_format.h"
#include "core/util/json_writer.h"
#include "core/util/text_escape.h"
#include "platform/helper_location.h"

#include <csignal>
#include <ctime>
#include <iostream>
#include <memory>
#include <ostream>
#include <unistd.h>

namespace sondrel::cli {

namespace {

std::vector<JunkGroup> runScan(CommandContext& context, CancelToken& cancel) {
    if (context.stderrIsTerminal) {
        context.err << kJunkScanningText << std::flush;
    }
    InterruptScope interrupt(cancel);
    std::vector<JunkGroup> groups = scanJunk(JunkFolders::from(context.locations), cancel);
    if (context.stderrIsTerminal) {
        context.err << "\r\033[K" << std::flush;
    }
    return groups;
}

void printGroups(std::ostream& out, const std::vector<JunkGroup>& groups) {
    const std::int64_t now = std::time(nullptr);
    out << junkFoundText(groups) << '\n';
    for (const JunkGroup& group : groups) {
        out << '\n'
            << group.title << " [" << junkTypeKey(group.type) << "]  " << group.formattedTotalSize()
            << "  (" << group.selectedCount() << "/" << group.items.size() << " selected)\n";
        for (const JunkItem& item : group.items) {
            out << (item.isSelected ? "  [x] " : "  [ ] ") << item.formattedSize() << "  "
                << terminalText(item.title) << (item.isPermissionLocked ? "  (admin)" : "") << "  "
                << junkLastUsedText(item.modifiedSeconds, now) << "\n      "
                << terminalText(item.path) << '\n';
        }
    }
}

void writeGroupsJson(std::ostream& out, const std::vector<JunkGroup>& groups) {
    JsonWriter json(out);
    json.beginObject()
        .key("status")
        .value(junkFoundText(groups))
        .key("total")
        .value(junkTotalSize(groups))
        .key("selected")
        .value(junkSelectedSize(groups))
        .key("groups")
        .beginArray();
    for (const JunkGroup& group : groups) {
        json.beginObject()
            .key("type")
            .value(std::string(junkTypeKey(group.type)))
            .key("title")
            .value(group.title)
            .key("description")
            .value(group.description)
            .key("total")
            .value(group.totalSize())
            .key("items")
            .beginArray();
        for (const JunkItem& item : group.items) {
            json.beginObject()
                .key("title")
                .value(item.title)
                .key("path")
                .value(item.path)
                .key("size")
                .value(item.size)
                .key("detail")
                .value(item.detail)
                .key("selected")
                .value(item.isSelected)
                .key("adminRequired")
                .value(item.isPermissionLocked)
                .key("modified")
                .value(item.modifiedSeconds)
                .endObject();
        }
        json.endArray().endObject();
    }
    json.endArray().endObject();
    out << '\n';
}

// The items a clean removes: the default selection, in the named groups only when some are
// named; node_modules folders only when asked for (naming their group asks for them).
std::vector<JunkItem> chooseItems(const std::vector<JunkGroup>& groups,
                                  const std::vector<JunkType>& named, bool nodeModules) {
    std::vector<JunkItem> chosen;
    for (const JunkGroup& group : groups) {
        const bool isNamed = std::find(named.begin(), named.end(), group.type) != named.end();
        if (!named.empty() && !isNamed) {
            continue;
        }
        for (const JunkItem& item : group.items) {
            const bool take =
                group.type == JunkType::nodeModules ? nodeModules || isNamed : item.isSelected;
            if (take) {
                chosen.push_back(item);
            }
        }
    }
    return chosen;
}

void writeReportJson(std::ostream& out, const JunkCleanReport& report) {
    JsonWriter json(out);
    json.beginObject()
        .key("message")
        .value(junkCleanResultText(report))
        .key("removed")
        .value(static_cast<std::uint64_t>(report.removed))
        .key("freed")
        .value(report.freed)
        .key("removedPaths")
        .beginArray();
    for (const std::string& path : report.removedPaths) {
        json.value(path);
    }
    json.endArray().key("failures").beginArray();
    for (const JunkCleanFailure& failure : report.failures) {
        json.beginObject()
            .key("path")
            .value(failure.path)
            .key("reason")
            .value(failure.reason)
            .endObject();
    }
    json.endArray()
        .key("administratorCancelled")
        .value(report.administratorCancelled)
        .key("cancelled")
        .value(report.cancelled)
        .endObject();
    out << '\n';
}

int runJunkClean(CommandContext& context, const std::vector<JunkType>& named, bool nodeModules,
                 bool yes) {
    CancelToken cancel;
    const std::vector<JunkGroup> groups = runScan(context, cancel);
    if (cancel.isCancelled()) {
        return fail(context.err, "cancelled; nothing was removed");
    }
    const std::vector<JunkItem> items = chooseItems(groups, named, nodeModules);
    if (items.empty()) {
        context.out << "Nothing to clean.\n";
        return kExitOk;
    }
    std::int64_t total = 0;
    for (const JunkItem& item : items) {
        total += item.size;
    }
    if (!yes) {
        context.err << "Remove " << items.size() << " items (" << formatBytes(total)
                    << ")? Items go to the Trash; Trash entries are removed for good. [y/N] "
                    << std::flush;
        std::string answer;
        if (!std::getline(std::cin, answer) || (answer != "y" && answer != "yes")) {
            return fail(context.err,
                        "not confirmed; nothing was removed (use --yes to skip asking)");
        }
    }

    RemovalContext removal =
        RemovalContext::forUser(context.locations, junkRoots(JunkFolders::from(context.locations)));
    std::unique_ptr<PrivilegedHelperClient> administrator;
    const std::string helper = installedHelperPath();
    if (access(helper.c_str(), X_OK) == 0) {
        administrator = std::make_unique<PrivilegedHelperClient>(helper);
        removal.administrator = administrator.get();
    }
    JunkCleanReport report;
    {
        InterruptScope interrupt(cancel);
        report =
            cleanJunkItems(items, removal, cancel,
                           [&context](std::size_t done, std::size_t count, const std::string&) {
                               if (context.stderrIsTerminal) {
                                   context.err << "\r\033[K" << junkCleaningText(done, count)
                                               << std::flush;
                               }
                           });
        if (context.stderrIsTerminal) {
            context.err << "\r\033[K" << std::flush;
        }
    }
    for (const JunkCleanFailure& failure : report.failures) {
        context.err << "sondrel-cli: " << terminalText(failure.path) << ": " << failure.reason
                    << '\n';
    }
    if (context.json) {
        writeReportJson(context.out, report);
    } else {
        context.out << junkCleanResultText(report) << '\n'
                    << "removed " << report.removed << ", freed " << formatBytes(report.freed)
                    << ", failed " << report.failures.size() << '\n';
    }
    return report.failures.empty() && !report.cancelled ? kExitOk : kExitFailure;
}

int runJunk(CommandContext& context) {
    std::vector<JunkType> named;
    while (const std::optional<std::string> key = context.args.takeOption("--group")) {
        const std::optional<JunkType> type = junkTypeFromKey(*key);
        if (!type || *type == JunkType::orphaned) {
            throw UsageError("--group must be developer, node_modules, user_caches, logs or "
                             "trash, not '" +
                             *key + "'");
        }
        named.push_back(*type);
    }
    const bool nodeModules = context.args.takeFlag("--include-node-modules");
    const bool yes = context.args.takeFlag("--yes");
    const std::vector<std::string> positionals = context.args.positionals();
    if (!positionals.empty() && positionals.front() == "clean" && positionals.size() == 1) {
        return runJunkClean(context, named, nodeModules, yes);
    }
    if (!positionals.empty()) {
        throw UsageError("unexpected argument '" + positionals.front() + "'");
    }
    if (!named.empty() || nodeModules || yes) {
        throw UsageError("--group, --include-node-modules and --yes belong to `junk clean`");
    }
    CancelToken cancel;
    const std::vector<JunkGroup> groups = runScan(context, cancel);
    if (cancel.isCancelled()) {
        return fail(context.err, "cancelled");
    }
    if (context.json) {
        writeGroupsJson(context.out, groups);
    } else {
        printGroups(context.out, groups);
    }
    return context.out ? kExitOk : kExitFailure;
}

const CommandRegistration registration{{
    "junk",
    "list developer caches, node_modules, caches, logs and Trash; `junk clean` removes them",
    "junk [--json]\n"
    "       sondrel-cli junk clean [--group TYPE ...] [--include-node-modules] [--yes] [--json]\n"
    "TYPE is developer, node_modules, user_caches, logs or trash",
    runJunk,
}};

} // namespace

} // namespace sondrel::cli
