#pragma once
// Cumulative processor-time counters of each processor and the parser of Linux's /proc/stat.

#include <cstdint>
#include <string_view>
#include <vector>

namespace sondrel {

/// Cumulative ticks one processor has spent in each state since boot. On Linux, irq and softirq
/// are counted as system and iowait as idle; steal and guest time are left out (guest time is
/// already part of user time).
struct ProcessorTicks {
    std::uint64_t user = 0;
    std::uint64_t system = 0;
    std::uint64_t idle = 0;
    std::uint64_t nice = 0;

    bool operator==(const ProcessorTicks&) const = default;
};

/// Parses the per-processor lines ("cpu0 ...", "cpu1 ...") of a /proc/stat text, in their order;
/// the aggregate "cpu" line and every other line are ignored. A line with fewer than four
/// counters or a counter that is not a number is skipped. Returns an empty list when the text
/// holds no usable processor line. Pure; never throws.
std::vector<ProcessorTicks> parseProcStat(std::string_view text);

} // namespace sondrel
