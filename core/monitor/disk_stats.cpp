#include "core/monitor/disk_stats.h"

#include "core/model/byte_format.h"

#include <algorithm>

namespace sondrel {

std::int64_t DiskStats::effectiveAvailableBytes() const {
    return availableBytes > 0 ? availableBytes : freeBytes + purgeableBytes;
}

std::int64_t DiskStats::usedBytes() const {
    return std::max<std::int64_t>(totalBytes - reservedBytes - effectiveAvailableBytes(), 0);
}

std::int64_t DiskStats::rawUsedBytes() const {
    return std::max<std::int64_t>(totalBytes - freeBytes, 0);
}

double DiskStats::usagePercent() const {
    const std::int64_t capacity = totalBytes - reservedBytes;
    if (totalBytes <= 0 || capacity <= 0) {
        return 0.0;
    }
    return std::min(static_cast<double>(usedBytes()) / static_cast<double>(capacity) * 100.0,
                    100.0);
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
std::string DiskStats::formattedReserved() const {
    return formatBytes(reservedBytes);
}

} // namespace sondrel
