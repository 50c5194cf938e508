#pragma once
// One complete telemetry sample plus the facts about the machine taken when the monitor started.

#include "core/monitor/cpu_stats.h"
#include "core/monitor/disk_stats.h"
#include "core/monitor/memory_stats.h"

#include <string>

namespace sondrel {

/// Facts about the machine that do not change while the program watches it.
struct HostFacts {
    std::string hostName;     ///< the machine's network name ("" when unknown)
    std::string osVersion;    ///< operating-system version text ("" when unknown)
    double uptimeSeconds = 0; ///< time since boot when the facts were read (0 when unknown)
};

/// The latest figures of the system monitor. hostName, osVersion and uptimeHours are taken once,
/// when the overview is created (uptime does not grow afterwards); cpu, memory and disk are
/// replaced by every sample. Pure value; safe on any thread.
struct SystemOverview {
    CPUStats cpu;
    MemoryStats memory;
    DiskStats disk;
    std::string hostName;
    std::string osVersion;
    double uptimeHours = 0.0;

    /// An overview with default figures and the given host facts (uptime converted to hours).
    static SystemOverview withHostFacts(const HostFacts& facts);
    /// uptimeHours as "%.1f hours" ("3.4 hours").
    std::string formattedUptime() const;
};

} // namespace sondrel
