#pragma once
// Where the telemetry figures come from: the operating system's processor counters, memory
// figures, the capacity of the start-up volume and a few facts about the machine.

#include "core/monitor/disk_stats.h"
#include "core/monitor/memory_stats.h"
#include "core/monitor/processor_ticks.h"
#include "core/monitor/system_overview.h"

#include <memory>
#include <vector>

namespace sondrel {

/// Reads the raw telemetry sources. Every method returns the defaults (an empty list, all-zero
/// stats, empty facts) when its source cannot be read, and never throws. Implementations are
/// used from one thread at a time (the monitor's GUI thread or the CLI's main thread).
/// Tests supply their own implementation to feed recorded figures.
class SystemSampler {
public:
    virtual ~SystemSampler() = default;

    /// Cumulative tick counters of every processor, in processor order; empty on failure.
    virtual std::vector<ProcessorTicks> processorTicks() = 0;
    /// Physical memory figures now; all 0 on failure.
    virtual MemoryStats memory() = 0;
    /// Capacity of the volume holding "/" now; all 0 on failure.
    virtual DiskStats disk() = 0;
    /// Host name, OS version text and uptime, read now; empty fields where unknown.
    virtual HostFacts hostFacts() = 0;
};

/// The sampler of the running operating system (Linux: /proc, statvfs("/"), uname, os-release).
std::unique_ptr<SystemSampler> makeSystemSampler();

} // namespace sondrel
