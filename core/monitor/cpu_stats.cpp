#include "core/monitor/cpu_stats.h"

#include <algorithm>

namespace sondrel {

double CPUStats::totalUsagePercent() const {
    const double sum = userPercent + systemPercent;
    if (!(sum > 0.0)) {
        return 0.0;
    }
    return std::min(sum, 100.0);
}

} // namespace sondrel
