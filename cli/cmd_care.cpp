// `sondrel-cli care [--json]`: the Smart Care health score of the home, its three sub-scores and
// the five reclaimable figures, from the same scoring the dashboard uses.
// `sondrel-cli care clean [--skip CATEGORY ...] [--yes]`: the clean. Without --yes it prints the
// manifest (every item a clean would remove) and removes nothing; with --yes it removes the items
// of every category not skipped and prints the freed total and the new score.
//
// The items are what the junk scan and the application scan find (the same scans as
// `sondrel-cli junk` and `sondrel-cli apps orphans`); disk and memory come from the system
// sampler. The clean removes each item through the chain of the scan that found it.

#include "cli/command_registry.h"
#include "core/care/care_clean.h"
#include "core/care/care_scores.h"
#include "core/care/care_sources.h"
#include "core/care/care_texts.h"
#include "core/junk/junk_folders.h"
#include "core/junk/junk_scan.h"
#include "core/model/byte_format.h"
#include "core/removal/privileged_helper_client.h"
#include "core/util/json_writer.h"
#include "core/util/text_escape.h"
#include "platform/app_catalogue.h"
#include "platform/helper_location.h"
#include "platform/system_sampler.h"

#include <ctime>
#include <memory>
#include <ostream>
#include <string>
#include <unistd.h>

namespace sondrel::cli {

namespace {

constexpr std::string_view kCategoryKeys = "developer, orphans, caches, logs, trash";

// Everything a Smart Clean of this home chooses from: the junk and the leftovers of removed
// applications.
CareSources findCareSources(const Locations& locations, const CancelToken& cancel) {
    std::vector<JunkGroup> junk = scanJunk(JunkFolders::from(locations), cancel);
    AppDiscovery apps = discoverApps(locations, SystemRoots::forThisMachine(), cancel,
                                     static_cast<std::int64_t>(std::time(nullptr)));
    return careSourcesOf(junk, std::move(apps.orphans));
}

struct Sample {
    DiskStats disk;
    MemoryStats memory;
};

Sample sampleSystem() {
    std::unique_ptr<SystemSampler> sampler = makeSystemSampler();
    return {sampler->disk(), sampler->memory()};
}

std::string rowTitle(CareCategory category) {
    return careRowText(category).title;
}

// "  Label:" padded so that the figures after it line up.
std::ostream& labelled(std::ostream& out, std::string_view label) {
    std::string text = "  " + std::string(label) + ":";
    text.resize(text.size() < 30 ? 30 : text.size() + 1, ' ');
    return out << text;
}

void writeScoresText(std::ostream& out, const CareScores& scores, std::int64_t total) {
    out << "Health Score: " << scores.health << "/100  (" << careConditionLine(scores.health, total)
        << ")\n";
    labelled(out, "Disk Hygiene") << scores.clutter << "/60  " << careClutterDetail(total) << '\n';
    labelled(out, "Storage Headroom") << scores.disk << "/25\n";
    labelled(out, "Memory Pressure") << scores.memory << "/15\n";
}

void writeScoresJson(JsonWriter& json, const CareScores& scores) {
    json.key("healthScore")
        .value(scores.health)
        .key("clutterScore")
        .value(scores.clutter)
        .key("diskScore")
        .value(scores.disk)
        .key("memoryScore")
        .value(scores.memory);
}

void writeSummaryJson(JsonWriter& json, const SmartCleanSummary& summary) {
    json.key("summary")
        .beginObject()
        .key("developerJunkBytes")
        .value(summary.developerJunkBytes)
        .key("orphanedResidueBytes")
        .value(summary.orphanedResidueBytes)
        .key("systemCacheBytes")
        .value(summary.systemCacheBytes)
        .key("logBytes")
        .value(summary.logBytes)
        .key("trashBytes")
        .value(summary.trashBytes)
        .key("totalReclaimableBytes")
        .value(summary.totalReclaimableBytes())
        .endObject();
}

void writeManifestText(std::ostream& out, const CareManifest& manifest,
                       const CareSwitches& switches, bool listItems) {
    for (const CareManifestRow& row : manifest.rows()) {
        labelled(out, rowTitle(row.category)) << formatBytes(row.totalBytes);
        if (!switches.isOn(row.category)) {
            out << "  (skipped)";
        }
        out << '\n';
        if (listItems && switches.isOn(row.category)) {
            for (const CareItem& item : row.items) {
                out << "      " << formatBytes(item.size) << "  " << terminalText(item.path)
                    << (item.needsAdmin ? "  (needs password)" : "") << '\n';
            }
        }
    }
    labelled(out, "Total") << formatBytes(manifest.selectedBytes(switches)) << '\n';
}

void writeManifestJson(JsonWriter& json, const CareManifest& manifest,
                       const CareSwitches& switches) {
    json.key("categories").beginArray();
    for (const CareManifestRow& row : manifest.rows()) {
        json.beginObject()
            .key("category")
            .value(careCategoryKey(row.category))
            .key("title")
            .value(rowTitle(row.category))
            .key("selected")
            .value(switches.isOn(row.category))
            .key("bytes")
            .value(row.totalBytes)
            .key("items")
            .beginArray();
        for (const CareItem& item : row.items) {
            json.beginObject()
                .key("path")
                .value(item.path)
                .key("size")
                .value(item.size)
                .key("needsAdmin")
                .value(item.needsAdmin)
                .endObject();
        }
        json.endArray().endObject();
    }
    json.endArray();
    json.key("selectedBytes").value(manifest.selectedBytes(switches));
}

int runReport(CommandContext& context) {
    const CancelToken cancel;
    const CareManifest manifest(careItemsOf(findCareSources(context.locations, cancel)));
    const SmartCleanSummary summary = manifest.summary();
    const Sample sample = sampleSystem();
    const CareScores scores = scoreAfterScan(summary, sample.disk, sample.memory);
    const std::int64_t total = summary.totalReclaimableBytes();
    if (context.json) {
        JsonWriter json(context.out);
        json.beginObject();
        writeScoresJson(json, scores);
        json.key("condition").value(careConditionLine(scores.health, total));
        writeSummaryJson(json, summary);
        json.key("status").value(careScanCompletedStatus(total));
        json.endObject();
        context.out << '\n';
        return kExitOk;
    }
    writeScoresText(context.out, scores, total);
    context.out << "Reclaimable:\n";
    writeManifestText(context.out, manifest, CareSwitches{}, false);
    context.out << careScanCompletedStatus(total) << '\n';
    return kExitOk;
}

int runClean(CommandContext& context, const CareSwitches& switches, bool yes) {
    const CancelToken cancel;
    const CareSources sources = findCareSources(context.locations, cancel);
    const CareManifest manifest(careItemsOf(sources));
    if (!yes) {
        if (context.json) {
            JsonWriter json(context.out);
            json.beginObject().key("dryRun").value(true);
            writeManifestJson(json, manifest, switches);
            json.endObject();
            context.out << '\n';
        } else {
            context.out << "Smart Clean Pre-Flight Manifest (dry run: nothing was removed)\n";
            writeManifestText(context.out, manifest, switches, true);
            context.out << "Run again with --yes to remove these items.\n";
        }
        return kExitOk;
    }

    RemovalContext removal = RemovalContext::forUser(context.locations);
    std::unique_ptr<PrivilegedHelperClient> administrator;
    const std::string helper = installedHelperPath();
    if (access(helper.c_str(), X_OK) == 0) {
        administrator = std::make_unique<PrivilegedHelperClient>(helper);
        removal.administrator = administrator.get();
    }
    const CareCleanResult result =
        cleanFromSources(manifest.selectedItems(switches), sources, removal, cancel, {});
    const Sample sample = sampleSystem();
    const CareScores scores = scoreAfterClean(sample.disk, sample.memory);
    const std::int64_t freed = std::max<std::int64_t>(result.bytesFreed, 0);
    for (const CareCleanFailure& failure : result.failures) {
        fail(context.err, failure.path + ": " + failure.reason);
    }
    if (context.json) {
        JsonWriter json(context.out);
        json.beginObject()
            .key("dryRun")
            .value(false)
            .key("freedBytes")
            .value(freed)
            .key("removedItems")
            .value(static_cast<std::uint64_t>(result.removedCount))
            .key("failedItems")
            .value(static_cast<std::uint64_t>(result.failures.size()));
        writeScoresJson(json, scores);
        json.key("status").value(careCleanCompletedStatus(freed)).endObject();
        context.out << '\n';
    } else {
        context.out << careCleanCompletedStatus(freed) << " (" << result.removedCount
                    << (result.removedCount == 1 ? " item" : " items") << " removed)\n";
        writeScoresText(context.out, scores, 0);
    }
    return result.failures.empty() ? kExitOk : kExitFailure;
}

int runCare(CommandContext& context) {
    CareSwitches switches;
    bool skipped = false;
    while (std::optional<std::string> skip = context.args.takeOption("--skip")) {
        const std::optional<CareCategory> category = careCategoryFromKey(*skip);
        if (!category) {
            throw UsageError("unknown category '" + *skip + "' for --skip (one of " +
                             std::string(kCategoryKeys) + ")");
        }
        switches.set(*category, false);
        skipped = true;
    }
    const bool yes = context.args.takeFlag("--yes");
    const std::vector<std::string> words = context.args.positionals();
    if (words.size() == 1 && words.front() == "clean") {
        return runClean(context, switches, yes);
    }
    if (!words.empty()) {
        throw UsageError(words.front() == "clean" ? "care clean takes no other arguments"
                                                  : "care takes no argument other than 'clean'");
    }
    if (skipped || yes) {
        throw UsageError("--skip and --yes belong to 'care clean'");
    }
    return runReport(context);
}

const CommandRegistration registration{{
    "care",
    "print the health score and what a Smart Clean would reclaim; 'care clean' runs it",
    "care [--json]\n"
    "       sondrel-cli care clean [--skip developer|orphans|caches|logs|trash ...] [--yes]",
    runCare,
}};

} // namespace

} // namespace sondrel::cli
