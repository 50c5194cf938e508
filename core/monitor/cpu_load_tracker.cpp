#include "core/monitor/cpu_load_tracker.h"

#include <utility>

namespace sondrel {

namespace {

// Difference of a cumulative counter; a counter that went backwards adds nothing.
std::uint64_t delta(std::uint64_t current, std::uint64_t previous) {
    return current >= previous ? current - previous : 0;
}

} // namespace

CPUStats CpuLoadTracker::next(std::vector<ProcessorTicks> current) {
    if (current.empty()) {
        return CPUStats{};
    }
    if (!m_previous || m_previous->size() != current.size()) {
        m_previous = std::move(current);
        return CPUStats{};
    }
    std::uint64_t user = 0;
    std::uint64_t system = 0;
    std::uint64_t idle = 0;
    for (std::size_t i = 0; i < current.size(); ++i) {
        const ProcessorTicks& now = current[i];
        const ProcessorTicks& before = (*m_previous)[i];
        user += delta(now.user, before.user) + delta(now.nice, before.nice);
        system += delta(now.system, before.system);
        idle += delta(now.idle, before.idle);
    }
    m_previous = std::move(current);
    const std::uint64_t total = user + system + idle;
    if (total == 0) {
        return CPUStats{};
    }
    const auto share = [total](std::uint64_t part) {
        return static_cast<double>(part) / static_cast<double>(total) * 100.0;
    };
    return CPUStats{share(user), share(system), share(idle)};
}

} // namespace sondrel
