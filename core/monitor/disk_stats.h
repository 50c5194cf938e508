#pragma once
// Capacity of the start-up volume ("/") at one moment, in bytes.

#include <cstdint>
#include <string>

namespace sondrel {

/// Volume capacity figures, with df's meanings on Linux: total = f_blocks, free = available =
/// f_bavail (what an ordinary user may still write), reserved = f_bfree - f_bavail (blocks kept
/// for root: neither used nor free for the user), all times f_frsize. So used = total - f_bfree
/// and used + available + reserved = total. A volume without reserved blocks leaves `reserved`
/// at 0, and then every figure is total-based. `purgeableBytes` is never filled by a sampler
/// and stays 0; it exists so that a free-plus-purgeable figure can be formed when the volume
/// reports no available capacity. Default: everything 0. Pure value; safe on any thread.
struct DiskStats {
    std::int64_t totalBytes = 0;
    std::int64_t freeBytes = 0;
    std::int64_t purgeableBytes = 0;
    std::int64_t availableBytes = 0;
    std::int64_t reservedBytes = 0;

    /// available when it is above 0, otherwise free + purgeable.
    std::int64_t effectiveAvailableBytes() const;
    /// max(total - reserved - effectiveAvailable, 0): df's "Used".
    std::int64_t usedBytes() const;
    /// max(total - free, 0).
    std::int64_t rawUsedBytes() const;
    /// used / (total - reserved) * 100, which is df's Use% (used / (used + available)) when
    /// the figures add up; 0 when that capacity is <= 0.
    double usagePercent() const;

    /// Byte texts in the application's one byte format.
    std::string formattedTotal() const;
    std::string formattedUsed() const;
    std::string formattedFree() const;
    std::string formattedPurgeable() const;
    std::string formattedEffectiveAvailable() const;
    std::string formattedReserved() const;

    bool operator==(const DiskStats&) const = default;
};

} // namespace sondrel
