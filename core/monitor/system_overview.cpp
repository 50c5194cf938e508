#include "core/monitor/system_overview.h"

#include <cmath>
#include <cstdio>

namespace sondrel {

SystemOverview SystemOverview::withHostFacts(const HostFacts& facts) {
    SystemOverview overview;
    overview.hostName = facts.hostName;
    overview.osVersion = facts.osVersion;
    overview.uptimeHours = std::isfinite(facts.uptimeSeconds) && facts.uptimeSeconds > 0
                               ? facts.uptimeSeconds / 3600.0
                               : 0.0;
    return overview;
}

std::string SystemOverview::formattedUptime() const {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.1f hours", uptimeHours);
    return buffer;
}

} // namespace sondrel
