// `sondrel-cli apps`: the installed applications with their sizes and leftovers, largest first.
// `sondrel-cli apps orphans`: leftovers of applications that are no longer installed.
// `sondrel-cli apps uninstall ID [--keep-leftovers] [--yes]`: uninstalls the application with
// that identifier (or that exact name) the way it was installed, after saying what goes with
// it, and moves its leftovers to the Trash unless --keep-leftovers is given.

#include "cli/command_registry.h"
#include "core/apps/app_info.h"
#include "core/model/byte_format.h"
#include "core/model/platform_terms.h"
#include "core/util/json_writer.h"
#include "core/util/text_escape.h"
#include "platform/app_catalogue.h"
#include "platform/app_uninstaller.h"

#include <ctime>
#include <iostream>
#include <ostream>

namespace sondrel::cli {

namespace {

AppDiscovery discover(const CommandContext& context) {
    const CancelToken never;
    return discoverApps(context.locations, SystemRoots::forThisMachine(), never,
                        static_cast<std::int64_t>(std::time(nullptr)));
}

void writeItemJson(JsonWriter& json, const AssociatedItem& item) {
    json.beginObject()
        .key("path")
        .value(item.path)
        .key("type")
        .value(typeKey(item.type))
        .key("typeName")
        .value(displayName(item.type))
        .key("size")
        .value(item.size)
        .endObject();
}

void writeAppsJson(std::ostream& out, const AppDiscovery& found) {
    JsonWriter json(out);
    json.beginObject()
        .key("status")
        .value(appScanFoundText(found.apps.size(), found.orphans.size()))
        .key("apps")
        .beginArray();
    for (const AppInfo& app : found.apps) {
        json.beginObject()
            .key("name")
            .value(app.name)
            .key("identifier")
            .value(app.identifier)
            .key("version")
            .value(app.version)
            .key("kind")
            .value(appKindKey(app.kind))
            .key("package")
            .value(app.package)
            .key("location")
            .value(app.location)
            .key("desktopFile")
            .value(app.desktopFile)
            .key("icon")
            .value(app.icon)
            .key("size")
            .value(app.bundleSize)
            .key("leftoverSize")
            .value(app.leftoverSize())
            .key("totalSize")
            .value(app.totalSize())
            .key("leftovers")
            .beginArray();
        for (const AssociatedItem& item : app.associatedItems) {
            writeItemJson(json, item);
        }
        json.endArray().endObject();
    }
    json.endArray().endObject();
    out << '\n';
}

void writeOrphansJson(std::ostream& out, const AppDiscovery& found) {
    JsonWriter json(out);
    std::int64_t total = 0;
    for (const AssociatedItem& item : found.orphans) {
        total += item.size;
    }
    json.beginObject().key("count").value(static_cast<std::int64_t>(found.orphans.size()));
    json.key("size").value(total).key("orphans").beginArray();
    for (const AssociatedItem& item : found.orphans) {
        writeItemJson(json, item);
    }
    json.endArray().endObject();
    out << '\n';
}

void printApps(std::ostream& out, const AppDiscovery& found) {
    out << appScanFoundText(found.apps.size(), found.orphans.size()) << '\n';
    for (const AppInfo& app : found.apps) {
        out << '\n'
            << terminalText(app.name) << "  " << formatBytes(app.totalSize()) << "  ("
            << appKindKey(app.kind) << ' ' << terminalText(app.identifier) << ' '
            << terminalText(app.version) << ")\n";
        out << "  " << terminalText(app.location) << "  " << formatBytes(app.bundleSize) << '\n';
        for (const AssociatedItem& item : app.associatedItems) {
            out << "  " << displayName(item.type) << ": " << terminalText(item.path) << "  "
                << formatBytes(item.size) << '\n';
        }
    }
}

void printOrphans(std::ostream& out, const AppDiscovery& found) {
    out << found.orphans.size() << " orphaned leftover items\n";
    for (const AssociatedItem& item : found.orphans) {
        out << "  " << formatBytes(item.size) << "  " << displayName(item.type) << "  "
            << terminalText(item.path) << '\n';
    }
}

const AppInfo* findApp(const std::vector<AppInfo>& apps, const std::string& wanted,
                       std::string& problem) {
    std::vector<const AppInfo*> matches;
    for (const AppInfo& app : apps) {
        if (app.identifier == wanted) {
            matches.push_back(&app);
        }
    }
    if (matches.empty()) {
        for (const AppInfo& app : apps) {
            if (app.name == wanted) {
                matches.push_back(&app);
            }
        }
    }
    if (matches.empty()) {
        problem = "no installed application is called '" + wanted + "' (see `sondrel-cli apps`)";
        return nullptr;
    }
    if (matches.size() > 1) {
        problem = "'" + wanted + "' names " + std::to_string(matches.size()) +
                  " applications; use the identifier of one (see `sondrel-cli apps --json`)";
        return nullptr;
    }
    return matches.front();
}

int runUninstall(CommandContext& context, const std::string& wanted, bool keepLeftovers, bool yes) {
    const AppDiscovery found = discover(context);
    std::string problem;
    const AppInfo* app = findApp(found.apps, wanted, problem);
    if (app == nullptr) {
        return fail(context.err, problem);
    }
    CommandPackageRemover packages(runSubprocess,
                                   CommandPackageRemover::packageKitClientInstalled());
    const std::vector<std::string> others = packages.alsoRemoved(*app);
    context.err << "Uninstall " << terminalText(app->name) << " (" << appKindKey(app->kind) << ' '
                << terminalText(app->identifier) << ", " << formatBytes(app->bundleSize) << ")";
    if (!keepLeftovers && !app->associatedItems.empty()) {
        context.err << " and move " << app->associatedItems.size() << " leftover items ("
                    << formatBytes(app->leftoverSize()) << ") to the Trash";
    }
    context.err << ".\n";
    if (!others.empty()) {
        context.err << "Removing it also removes these packages:";
        for (const std::string& name : others) {
            context.err << ' ' << terminalText(name);
        }
        context.err << '\n';
    }
    if (!yes) {
        context.err << "Proceed? [y/N] " << std::flush;
        std::string answer;
        if (!std::getline(std::cin, answer) || (answer != "y" && answer != "yes")) {
            return fail(context.err,
                        "not confirmed; nothing was removed (use --yes to skip asking)");
        }
    }
    UninstallTools tools;
    tools.packages = &packages;
    const UninstallResult result = uninstallApp(*app, !keepLeftovers, context.locations, tools);
    if (context.json) {
        JsonWriter json(context.out);
        json.beginObject()
            .key("success")
            .value(result.success)
            .key("cancelled")
            .value(result.cancelled)
            .key("error")
            .value(result.error)
            .key("leftoversMoved")
            .value(static_cast<std::int64_t>(result.leftovers.removed))
            .key("leftoversFreed")
            .value(result.leftovers.freed)
            .endObject();
        context.out << '\n';
    } else if (result.success) {
        context.out << withPlatformTerms("Successfully uninstalled " + app->name +
                                             " and moved application bundle and residues to "
                                             "macOS Trash.",
                                         currentTextPlatform())
                    << '\n';
    }
    if (!result.success) {
        return fail(context.err, result.error);
    }
    for (const LeftoverOutcome& outcome : result.leftovers.outcomes) {
        if (!outcome.removed) {
            context.err << "not moved: " << terminalText(outcome.path) << ": " << outcome.message
                        << '\n';
        }
    }
    return kExitOk;
}

int runApps(CommandContext& context) {
    const bool keepLeftovers = context.args.takeFlag("--keep-leftovers");
    const bool yes = context.args.takeFlag("--yes");
    const std::vector<std::string> positionals = context.args.positionals();
    if (!positionals.empty() && positionals.front() == "uninstall") {
        if (positionals.size() != 2) {
            throw UsageError("`apps uninstall` takes one application identifier");
        }
        return runUninstall(context, positionals[1], keepLeftovers, yes);
    }
    if (keepLeftovers || yes) {
        throw UsageError("--keep-leftovers and --yes belong to `apps uninstall`");
    }
    const bool orphans = !positionals.empty() && positionals.front() == "orphans";
    if (positionals.size() > (orphans ? 1U : 0U)) {
        throw UsageError("unexpected argument '" + positionals.back() + "'");
    }
    const AppDiscovery found = discover(context);
    if (orphans) {
        context.json ? writeOrphansJson(context.out, found) : printOrphans(context.out, found);
    } else {
        context.json ? writeAppsJson(context.out, found) : printApps(context.out, found);
    }
    return kExitOk;
}

const CommandRegistration registration{{
    "apps",
    "list installed applications and their leftovers; uninstall one",
    "apps [--json]\n"
    "       sondrel-cli apps orphans [--json]\n"
    "       sondrel-cli apps uninstall ID [--keep-leftovers] [--yes] [--json]",
    runApps,
}};

} // namespace

} // namespace sondrel::cli
