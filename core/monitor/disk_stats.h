#pragma once
// Capacity of the start-up volume ("/") at one moment, in bytes.

#include <cstdint>
#include <string>

namespace sondrel {

/// Volume capacity figures. On Linux: total = f_blocks, free = f_bfree (including the blocks
/// reserved for root), available = f_bavail (what an ordinary user may still write), all times
/// f_frsize. `purgeableBytes` is never filled by a sampler and stays 0; it exists so that a
/// free-plus-purgeable figure can be formed when the volume reports no available capacity.
/// Default: everything 0. Pure value; safe on any thread.
struct DiskStats {
    std::int64_t totalBytes = 0;
    std::int64_t freeBytes = 0;
    std::int64_t purgeableBytes = 0;
    std::int64_t availableBytes = 0;

    /// available when it is above 0, otherwise free + purgeable.
    std::int64_t effectiveAvailableBytes() const;
    /// max(total - effectiveAvailable, 0).
    std::int64_t usedBytes() const;
    /// max(total - free, 0).
    std::int64_t rawUsedBytes() const;
    /// used / total * 100, or 0 when total <= 0.
    double usagePercent() const;

    /// Byte texts in the application's one byte format.
    std::string formattedTotal() const;
    std::string formattedUsed() const;
    std::string formattedFree() const;
    std::string formattedPurgeable() const;
    std::string formattedEffectiveAvailable() const;

    bool operator==(const DiskStats&) const = default;
};

} // namespace sondrel
