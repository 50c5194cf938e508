#include "core/monitor/memory_stats.h"

#include "core/model/byte_format.h"

#include <limits>

namespace sondrel {

namespace {

// The byte formatter takes signed counts; memory sizes never come near the limit.
std::string formatUnsigned(std::uint64_t bytes) {
    constexpr auto kMax = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    return formatBytes(static_cast<std::int64_t>(bytes > kMax ? kMax : bytes));
}

} // namespace

std::uint64_t MemoryStats::usedBytes() const {
    return activeBytes + wiredBytes + compressedBytes;
}

double MemoryStats::usagePercent() const {
    if (totalBytes == 0) {
        return 0.0;
    }
    return static_cast<double>(usedBytes()) / static_cast<double>(totalBytes) * 100.0;
}

std::string MemoryStats::formattedTotal() const {
    return formatUnsigned(totalBytes);
}
std::string MemoryStats::formattedUsed() const {
    return formatUnsigned(usedBytes());
}
std::string MemoryStats::formattedFree() const {
    return formatUnsigned(freeBytes);
}
std::string MemoryStats::formattedActive() const {
    return formatUnsigned(activeBytes);
}
std::string MemoryStats::formattedWired() const {
    return formatUnsigned(wiredBytes);
}
std::string MemoryStats::formattedCompressed() const {
    return formatUnsigned(compressedBytes);
}

} // namespace sondrel
