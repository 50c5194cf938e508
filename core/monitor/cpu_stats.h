#pragma once
// CPU load of one sampling interval, as shares of all processor time in percent (0..100).

namespace sondrel {

/// Shares of processor time spent in user code (nice included), in the kernel and idle during
/// one interval. The default value (0, 0, 100) means "no figure yet": the first sample after
/// start-up, an interval shorter than one tick, or a source that could not be read.
struct CPUStats {
    double userPercent = 0.0;
    double systemPercent = 0.0;
    double idlePercent = 100.0;

    /// user + system, clamped to 0..100 (a non-positive sum gives 0, above 100 gives 100).
    double totalUsagePercent() const;

    bool operator==(const CPUStats&) const = default;
};

} // namespace sondrel
