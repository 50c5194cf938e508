#pragma once
// Turns successive per-processor tick readings into the CPU load of each interval.

#include "core/monitor/cpu_stats.h"
#include "core/monitor/processor_ticks.h"

#include <optional>
#include <vector>

namespace sondrel {

/// Keeps the previous reading and computes the load between it and the next one.
/// Not thread-safe: one owner calls it (the monitor on the GUI thread, the CLI on its thread).
class CpuLoadTracker {
public:
    /// The load since the previous reading, then `current` becomes the previous reading.
    /// - an empty `current` (the source could not be read): default CPUStats, previous kept;
    /// - no previous reading or a different processor count: default CPUStats;
    /// - otherwise the counters' differences summed over processors, user = user + nice;
    ///   a counter that went backwards (Linux's iowait can) adds 0 for that interval;
    /// - a total difference of 0 (two readings within one tick): default CPUStats.
    CPUStats next(std::vector<ProcessorTicks> current);

    /// True once a reading has been kept to compare the next one against.
    bool hasPrevious() const { return m_previous.has_value(); }

private:
    std::optional<std::vector<ProcessorTicks>> m_previous;
};

} // namespace sondrel
