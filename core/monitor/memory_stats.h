#pragma once
// Physical memory use of the machine at one moment, in bytes.

#include <cstdint>
#include <string>

namespace sondrel {

/// Physical memory figures. `usedBytes()` is active + wired + compressed; on Linux the sampler
/// fills the three so that they add up to MemTotal - MemAvailable (what `free` calls used).
/// Default: everything 0 (the source could not be read). Pure value; safe on any thread.
struct MemoryStats {
    std::uint64_t totalBytes = 0;      ///< installed physical memory
    std::uint64_t activeBytes = 0;     ///< memory in use by programs (Linux: anonymous + shmem)
    std::uint64_t wiredBytes = 0;      ///< kernel memory that cannot be paged out or dropped
    std::uint64_t compressedBytes = 0; ///< memory held by the compressed swap pool (zswap)
    std::uint64_t freeBytes = 0;       ///< completely unused memory (Linux: MemFree)

    /// active + wired + compressed (caches that the system can drop count as neither).
    std::uint64_t usedBytes() const;
    /// used / total * 100, or 0 when total is 0.
    double usagePercent() const;

    /// Byte texts of the fields in the application's one byte format ("15.9 GB").
    std::string formattedTotal() const;
    std::string formattedUsed() const;
    std::string formattedFree() const;
    std::string formattedActive() const;
    std::string formattedWired() const;
    std::string formattedCompressed() const;

    bool operator==(const MemoryStats&) const = default;
};

} // namespace sondrel
