// `sondrel-cli monitor [--samples N] [--interval S] [--json]`: CPU, memory and disk figures as
// the telemetry screen shows them. The CPU load is measured over an interval, so the command
// reads the processor counters once, waits S seconds (2 by default, the screen's period) and
// then prints a sample; with N samples it repeats the wait N times. JSON output is one array
// with an object per sample.

#include "cli/command_registry.h"
#include "core/model/platform_terms.h"
#include "core/monitor/cpu_load_tracker.h"
#include "core/monitor/system_overview.h"
#include "core/util/json_writer.h"
#include "core/util/text_escape.h"
#include "platform/system_sampler.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <ostream>
#include <string>
#include <thread>

namespace sondrel::cli {

namespace {

constexpr long long kMaxSamples = 1'000'000;
constexpr double kMaxIntervalSeconds = 3600.0;

std::string percentText(double percent) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.0f%%", percent);
    return buffer;
}

std::string term(std::string_view text) {
    return withPlatformTerms(text, currentTextPlatform());
}

void writeJson(JsonWriter& json, int index, const SystemOverview& o) {
    json.beginObject().key("sample").value(index);
    json.key("cpu")
        .beginObject()
        .key("userPercent")
        .value(o.cpu.userPercent)
        .key("systemPercent")
        .value(o.cpu.systemPercent)
        .key("idlePercent")
        .value(o.cpu.idlePercent)
        .key("totalUsagePercent")
        .value(o.cpu.totalUsagePercent())
        .endObject();
    json.key("memory")
        .beginObject()
        .key("totalBytes")
        .value(o.memory.totalBytes)
        .key("activeBytes")
        .value(o.memory.activeBytes)
        .key("wiredBytes")
        .value(o.memory.wiredBytes)
        .key("compressedBytes")
        .value(o.memory.compressedBytes)
        .key("freeBytes")
        .value(o.memory.freeBytes)
        .key("usedBytes")
        .value(o.memory.usedBytes())
        .key("usagePercent")
        .value(o.memory.usagePercent())
        .key("formattedTotal")
        .value(o.memory.formattedTotal())
        .key("formattedUsed")
        .value(o.memory.formattedUsed())
        .key("formattedFree")
        .value(o.memory.formattedFree())
        .key("formattedWired")
        .value(o.memory.formattedWired())
        .key("formattedCompressed")
        .value(o.memory.formattedCompressed())
        .endObject();
    json.key("disk")
        .beginObject()
        .key("totalBytes")
        .value(o.disk.totalBytes)
        .key("freeBytes")
        .value(o.disk.freeBytes)
        .key("purgeableBytes")
        .value(o.disk.purgeableBytes)
        .key("availableBytes")
        .value(o.disk.availableBytes)
        .key("effectiveAvailableBytes")
        .value(o.disk.effectiveAvailableBytes())
        .key("usedBytes")
        .value(o.disk.usedBytes())
        .key("rawUsedBytes")
        .value(o.disk.rawUsedBytes())
        .key("usagePercent")
        .value(o.disk.usagePercent())
        .endObject();
    json.key("hostName")
        .value(o.hostName)
        .key("osVersion")
        .value(o.osVersion)
        .key("uptimeHours")
        .value(o.uptimeHours)
        .endObject();
}

void writeFacts(std::ostream& out, const SystemOverview& o) {
    out << term("Mac Name") << ": " << terminalText(o.hostName) << '\n'
        << term("macOS Version") << ": " << terminalText(o.osVersion) << '\n'
        << "System Uptime: " << o.formattedUptime() << '\n';
}

// "  Label:" padded so that the figures after it line up.
std::ostream& labelled(std::ostream& out, std::string_view label) {
    std::string text = "  " + std::string(label) + ":";
    text.resize(text.size() < 21 ? 21 : text.size() + 1, ' ');
    return out << text;
}

void writeText(std::ostream& out, int index, int count, const SystemOverview& o) {
    out << '\n' << "Sample " << index << " of " << count << '\n';
    labelled(out, "Processor Load")
        << percentText(o.cpu.totalUsagePercent()) << "  User: " << percentText(o.cpu.userPercent)
        << " | System: " << percentText(o.cpu.systemPercent) << '\n';
    labelled(out, "Memory Pressure")
        << percentText(o.memory.usagePercent()) << "  " << o.memory.formattedUsed() << " of "
        << o.memory.formattedTotal() << '\n';
    labelled(out, term("APFS Storage"))
        << percentText(o.disk.usagePercent()) << "  " << o.disk.formattedUsed() << " of "
        << o.disk.formattedTotal() << " (" << o.disk.formattedEffectiveAvailable()
        << " available)\n";
    labelled(out, "Memory Allocation")
        << "Active " << o.memory.formattedActive() << " | Wired " << o.memory.formattedWired()
        << " | Compressed " << o.memory.formattedCompressed() << " | Free "
        << o.memory.formattedFree() << '\n';
    labelled(out, "Storage") << "Total " << o.disk.formattedTotal() << " | Used Space "
                             << o.disk.formattedUsed() << " | " << term("Available (Finder)") << ' '
                             << o.disk.formattedEffectiveAvailable() << " | Purgeable "
                             << o.disk.formattedPurgeable() << " | Physical Free "
                             << o.disk.formattedFree() << '\n';
}

int runMonitor(CommandContext& context) {
    const long long samples = context.args.takeInteger("--samples").value_or(1);
    const double interval = context.args.takeNumber("--interval").value_or(2.0);
    if (!context.args.positionals().empty()) {
        throw UsageError("monitor takes no positional arguments");
    }
    if (samples < 1 || samples > kMaxSamples) {
        throw UsageError("--samples must be between 1 and 1000000");
    }
    if (std::isnan(interval) || interval <= 0.0) {
        throw UsageError("--interval must be positive: a number of seconds above 0");
    }
    if (interval > kMaxIntervalSeconds) {
        throw UsageError("--interval must be at most 3600 seconds");
    }
    const int count = static_cast<int>(samples);
    const auto wait = std::chrono::duration<double>(interval);

    std::unique_ptr<SystemSampler> sampler = makeSystemSampler();
    SystemOverview overview = SystemOverview::withHostFacts(sampler->hostFacts());
    CpuLoadTracker tracker;
    // The first reading only sets the baseline: its load would be the idle default.
    tracker.next(sampler->processorTicks());

    JsonWriter json(context.out);
    if (context.json) {
        json.beginArray();
    } else {
        writeFacts(context.out, overview);
        context.out.flush();
    }
    for (int index = 1; index <= count; ++index) {
        std::this_thread::sleep_for(wait);
        overview.cpu = tracker.next(sampler->processorTicks());
        overview.memory = sampler->memory();
        overview.disk = sampler->disk();
        if (context.json) {
            writeJson(json, index, overview);
        } else {
            writeText(context.out, index, count, overview);
        }
        context.out.flush();
    }
    if (context.json) {
        json.endArray();
        context.out << '\n';
    }
    return kExitOk;
}

const CommandRegistration registration{{
    "monitor",
    "print CPU load, memory use and disk capacity, sampled over an interval",
    "monitor [--samples N] [--interval SECONDS] [--json]",
    runMonitor,
}};

} // namespace

} // namespace sondrel::cli
