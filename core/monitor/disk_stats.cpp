#include "core/monitor/disk_stats.h"

#include "core/model/byte_format.h"

#include <algorithm>

namespace sondrel {

std::int64_t DiskStats::effectiveAvailableBytes() const {
    return availableBytes > 0 ? availableBytes : freeBytes + purgeableBytes;
}

std::int64_t DiskStats::usedBytes() const {
    return std::max<std::int64_t>(totalBytes - effectiveAvailableBytes(), 0);
}

std::int64_t DiskStats::rawUsedBytes() const {
    return std::max<std::int64_t>(totalBytes - freeBytes, 0);
}

double DiskStats::usagePercent() const {
    if (totalBytes <= 0) {
        return 0.0;
    }
    return static_cast<double>(usedBytes()) / static_cast<double>(totalBytes) * 100.0;
}

std::string DiskStats::formattedTotal() const {
    return formatBytes(totalBytes);
}
std::string DiskStats::formattedUsed() const {
    return formatBytes(usedBytes());
}
std::string DiskStats::formattedFree() const {
    return formatBytes(freeBytes);
}
std::string DiskStats::formattedPurgeable() const {
    return formatBytes(purgeableBytes);
}
std::string DiskStats::formattedEffectiveAvailable() const {
    return formatBytes(effectiveAvailableBytes());
}

} // namespace sondrel
